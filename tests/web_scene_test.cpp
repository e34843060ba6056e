// The web scene as files: directories, held texts, and the scene of a triangulation.
// Whether a browser shows it is tested in tests/web.
#include "testing.h"

using namespace std::filesystem;

TEST(WebScene, DirectoriesAreMadeUnlessSomethingElseIsThere) {
    const ScratchDirectory scratch;
    std::ofstream("file") << "text";
    for (const char* name : {"one", "one", "a/b/c", "a/b/c/", "d//e", "f/"})
        EXPECT_TRUE(createDirectory(name) && is_directory(name)) << name;
    for (const char* name : {"", "file", "file/below", "file/far/below"})
        EXPECT_FALSE(createDirectory(name)) << name;
}

TEST(WebScene, TextsAreWrittenOrReported) {
    const ScratchDirectory scratch;
    CoutCapture captured;
    for (const char* name : {"jsc3d.3ds.js", "jsc3d.ie.js", "jsc3d.webgl.js", "jsc3d.js", "jsc3d.console.js",
                             "jsc3d.ctm.js", "jsc3d.touch.js", "index.html"}) {
        fileReplicate(name, ".");
        // Whether the viewer jsc3d.js is held depends on the build.
        const bool bReported = captured.take().find(std::string("ERROR: ") + name) != std::string::npos;
        EXPECT_NE(exists(name), bReported) << name;
    }
    EXPECT_FALSE(exists("jsc3d.webgl.js"));
    fileReplicate("3d.obj", ".");
    EXPECT_TRUE(captured.printed("fileReplicate, ERROR: unknown file 3d.obj"));
    fileReplicate("index.html", "missing");
    EXPECT_TRUE(captured.printed("WARNING: missing/index.html not writeable"));

    Kelm_2D dt;
    dt.insert({Point2(0, 0, 1), Point2(4, 0, 2), Point2(0, 4, 3)});
    dt.writeObj("expected.obj");
    createDirectory("web/scene");
    for (const char* name : {"index.html", "3d.obj", "own.txt"})
        std::ofstream(std::string("web/scene/") + name) << "old";
    dt.writeWebScene("web/scene");
    EXPECT_EQ(captured.take().rfind("writeWebScene: Creating web/scene\n", 0), 0u);
    EXPECT_EQ(file_size("web/scene/3d.obj"), file_size("expected.obj"));
    EXPECT_EQ(file_size("web/scene/own.txt"), 3u);
    for (const char* name : {"index.html", "jsc3d.js", "jsc3d.ctm.js", "jsc3d.touch.js"})
        EXPECT_TRUE(!exists(name) || file_size(path("web/scene") / name) == file_size(name)) << name;
    dt.writeWebScene("expected.obj");
    EXPECT_TRUE(captured.printed("WARNING: Can't create directory expected.obj"));
}
