// Fingers on the canvas of the viewer jsc3d: one rotates, two zoom and move.
// The mouse stays with the viewer itself. To be loaded after jsc3d.js and before a viewer is initialized.
(function () {
    "use strict";
    if (typeof JSC3D === "undefined") return;

    // The viewer listens either to the mouse or, on some old browsers, to touches; those are served here.
    JSC3D.PlatformInfo.isTouchDevice = false;

    // The middle of all fingers and the distance of the first two, in pixels of the frame.
    function getGrip(viewer, touches) {
        var rect = viewer.canvas.getBoundingClientRect();
        var scale = viewer.frameWidth / rect.width;
        var points = Array.prototype.slice.call(touches, 0, 2).map(function (touch) {
            return [(touch.clientX - rect.left) * scale, (touch.clientY - rect.top) * scale];
        });
        var first = points[0];
        var last = points[points.length - 1];
        return {
            numFingers: points.length,
            x: (first[0] + last[0]) / 2,
            y: (first[1] + last[1]) / 2,
            distance: Math.hypot(first[0] - last[0], first[1] - last[1])
        };
    }

    // A drag turns by the same angles as the viewer's own drag with the mouse.
    function rotate(viewer, from, to) {
        viewer.rotate((to.y - from.y) * 360 / viewer.frameWidth, (to.x - from.x) * 360 / viewer.frameHeight, 0);
    }

    // What lies under the middle of the fingers stays there. Panning counts from the middle of the frame.
    function zoomAndMove(viewer, from, to) {
        var factor = from.distance > 0 && to.distance > 0 ? to.distance / from.distance : 1;
        var centerX = viewer.frameWidth / 2;
        var centerY = viewer.frameHeight / 2;
        viewer.zoomFactor *= factor;
        viewer.panning = [
            to.x - centerX + factor * (viewer.panning[0] - (from.x - centerX)),
            to.y - centerY + factor * (viewer.panning[1] - (from.y - centerY))
        ];
    }

    function listen(viewer) {
        var grip = null;

        // A finger more or less begins a new grip, so that nothing jumps.
        function takeGrip(event) {
            event.preventDefault();
            grip = event.targetTouches.length > 0 ? getGrip(viewer, event.targetTouches) : null;
        }

        function follow(event) {
            event.preventDefault();
            var now = getGrip(viewer, event.targetTouches);
            if (viewer.isLoaded && viewer.isDefaultInputHandlerEnabled && grip &&
                grip.numFingers === now.numFingers) {
                (now.numFingers === 1 ? rotate : zoomAndMove)(viewer, grip, now);
                viewer.update();
            }
            grip = now;
        }

        var options = { passive: false };
        viewer.canvas.style.touchAction = "none";
        viewer.canvas.addEventListener("touchstart", takeGrip, options);
        viewer.canvas.addEventListener("touchend", takeGrip, options);
        viewer.canvas.addEventListener("touchcancel", takeGrip, options);
        viewer.canvas.addEventListener("touchmove", follow, options);
    }

    var init = JSC3D.Viewer.prototype.init;
    JSC3D.Viewer.prototype.init = function () {
        init.call(this);
        listen(this);
    };
})();
