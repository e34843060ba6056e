// The web scene in a real browser: loading, mouse, render modes, fingers on an emulated phone.
// Usage: SCENE=FOLDER node --test scene.test.js; scripts/test-web makes the folder and runs this.
// With SCREENSHOTS=FOLDER it leaves pictures there.
"use strict";
const assert = require("node:assert/strict");
const fs = require("node:fs");
const http = require("node:http");
const path = require("node:path");
const { after, before, test } = require("node:test");
const { chromium } = require("playwright-core");

const scene = path.resolve(process.env.SCENE);
const screenshots = process.env.SCREENSHOTS;
const contentTypes = { ".html": "text/html", ".js": "text/javascript", ".obj": "text/plain" };
let server, address, browser;

before(async () => {
    server = http.createServer((request, response) => {
        const name = path.basename(request.url) || "index.html";
        const file = path.join(scene, name);
        if (!fs.existsSync(file)) return response.writeHead(404).end();
        response.writeHead(200, { "Content-Type": contentTypes[path.extname(name)] });
        response.end(fs.readFileSync(file));
    });
    await new Promise((done) => server.listen(0, "127.0.0.1", done));
    address = `http://127.0.0.1:${server.address().port}/`;
    browser = await chromium.launch({
        executablePath: process.env.CHROMIUM || "/usr/bin/chromium",
        args: ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync"],
    });
});

after(async () => {
    if (browser) await browser.close();
    server.close();
});

// Opens a page of the scene in a fresh context and gathers what goes wrong in it.
async function open(url, options = {}) {
    const context = await browser.newContext({ viewport: { width: 1100, height: 860 }, ...options });
    const page = await context.newPage();
    const errors = [];
    page.on("console", (message) => { if (message.type() === "error") errors.push(message.text()); });
    page.on("pageerror", (error) => errors.push(String(error)));
    page.on("requestfailed", (request) => errors.push(`${request.url()} failed`));
    await page.goto(url);
    return { context, page, errors };
}

async function openScene(options) {
    const opened = await open(address, options);
    await opened.page.waitForFunction(() => viewer.isLoaded && !viewer.needUpdate);
    return opened;
}

// The canvas once it is drawn: a checksum, and the share of its pixels that are not background. That runs
// from #FFFFFF at the top to #383840 at the bottom.
async function look(page) {
    await page.waitForFunction(() => !viewer.needUpdate && !viewer.needRepaint);
    return page.evaluate(() => {
        const { width, height } = viewer.canvas;
        const pixels = viewer.canvas.getContext("2d").getImageData(0, 0, width, height).data;
        let numDrawn = 0, checksum = 0;
        for (let y = 0, i = 0; y < height; ++y) {
            const background = [0x38, 0x38, 0x40].map((bottom) => 255 + (bottom - 255) * y / height);
            for (let x = 0; x < width; ++x, i += 4) {
                if (background.some((value, k) => Math.abs(pixels[i + k] - value) > 2)) ++numDrawn;
                checksum = (Math.imul(checksum, 31) + (pixels[i] << 16 | pixels[i + 1] << 8 | pixels[i + 2])) | 0;
            }
        }
        return { checksum, share: numDrawn / (width * height) };
    });
}

async function shoot(page, name) {
    if (screenshots) await page.screenshot({ path: path.join(screenshots, `${name}.png`) });
}

function canvasCenter(page) {
    return page.evaluate(() => {
        const rect = viewer.canvas.getBoundingClientRect();
        return { x: rect.left + rect.width / 2, y: rect.top + rect.height / 2 };
    });
}

test("the scene shows the terrain and follows the mouse", async () => {
    const { context, page, errors } = await openScene();
    let before = await look(page);
    assert.ok(before.share > 0.1 && before.share < 0.9, `terrain on ${before.share} of the canvas`);
    await shoot(page, "smooth");

    const center = await canvasCenter(page);
    for (const key of [null, "Shift", "Control"]) {
        if (key) await page.keyboard.down(key);
        await page.mouse.move(center.x, center.y);
        await page.mouse.down();
        await page.mouse.move(center.x + 60, center.y + 25, { steps: 4 });
        await page.mouse.up();
        if (key) await page.keyboard.up(key);
        const now = await look(page);
        assert.notEqual(now.checksum, before.checksum, `a drag with ${key || "no key"} changes nothing`);
        assert.ok(now.share > 0.02, "the terrain is still in view");
        before = now;
    }
    await shoot(page, "dragged");
    assert.deepEqual(errors, []);
    await context.close();
});

test("each render mode draws its own picture, chosen or clicked", async () => {
    const { context, page, errors } = await openScene();
    const checksums = new Set();
    for (const mode of ["flat", "points", "wireframe", "smooth"]) {
        await page.selectOption("#render_mode_list", mode);
        const { checksum, share } = await look(page);
        assert.ok(share > 0.02, `${mode} draws on ${share} of the canvas`);
        checksums.add(checksum);
        await shoot(page, mode);
    }
    assert.equal(checksums.size, 4);
    await page.evaluate(() => {
        const list = document.getElementById("render_mode_list");
        list.value = "points";
        list.click();
    });
    assert.equal(await page.evaluate(() => viewer.renderMode), "point");
    assert.deepEqual(errors, []);
    await context.close();
});

test("fingers on a phone rotate, zoom and move", async () => {
    const { context, page, errors } = await openScene({
        viewport: { width: 412, height: 860 }, deviceScaleFactor: 2, isMobile: true, hasTouch: true,
    });
    const devtools = await context.newCDPSession(page);
    const center = await canvasCenter(page);
    const touch = (type, points) => devtools.send("Input.dispatchTouchEvent", {
        type, touchPoints: points.map(([dx, dy], id) => ({ x: center.x + dx, y: center.y + dy, id })),
    });
    const state = () => page.evaluate(() => ({
        rotation: [viewer.rotMatrix.m00, viewer.rotMatrix.m11, viewer.rotMatrix.m22],
        zoom: viewer.zoomFactor, panning: viewer.panning, scroll: [scrollX, scrollY],
    }));
    // Fingers go from their first places to their second ones; the result is the state before and after.
    const gesture = async (from, to) => {
        const stateBefore = await state(), pictureBefore = await look(page);
        await touch("touchStart", from);
        for (let step = 1; step <= 5; ++step)
            await touch("touchMove", from.map((p, i) => p.map((value, k) => value + (to[i][k] - value) * step / 5)));
        await touch("touchEnd", []);
        const picture = await look(page);
        assert.notEqual(picture.checksum, pictureBefore.checksum);
        assert.ok(picture.share > 0.02, "the terrain is still in view");
        return [stateBefore, await state()];
    };
    const isNear = (value, expected, tolerance) =>
        assert.ok(Math.abs(value - expected) <= tolerance, `${value} instead of ${expected}`);

    let [was, is] = await gesture([[0, 0]], [[80, 30]]);
    assert.notDeepEqual(is.rotation, was.rotation);
    assert.deepEqual([is.zoom, is.panning, is.scroll], [was.zoom, was.panning, was.scroll]);

    // Around the middle of the canvas; fingers come in whole device pixels, so one in a hundred of tolerance.
    [was, is] = await gesture([[-50, 0], [50, 0]], [[-100, 0], [100, 0]]);
    assert.deepEqual(is.rotation, was.rotation);
    isNear(is.zoom / was.zoom, 2, 0.02);
    isNear(is.panning[0], was.panning[0], 2);

    [was, is] = await gesture([[-50, 0], [50, 0]], [[-10, 30], [90, 30]]);
    isNear(is.zoom / was.zoom, 1, 0.02);
    isNear(is.panning[0] - was.panning[0], 40, 2);
    isNear(is.panning[1] - was.panning[1], 30, 2);
    await shoot(page, "phone");
    assert.deepEqual(errors, []);
    await context.close();
});

test("the page says what is missing", async () => {
    const message = (page) => page.waitForFunction(() => document.getElementById("message").textContent)
        .then((handle) => handle.jsonValue());
    let { context, page } = await open(`file://${scene}/index.html`);
    assert.match(await message(page), /python3 -m http\.server/);
    await context.close();

    ({ context, page } = await open("about:blank"));
    await page.route("**/jsc3d.js", (route) => route.abort());
    await page.goto(address);
    assert.match(await message(page), /jsc3d\.js is missing/);
    await context.close();
});
