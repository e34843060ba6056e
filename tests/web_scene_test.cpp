// The web scene as files: directories, held texts, and the scene of a triangulation.
// Whether a browser shows it is tested in tests/web.
#include "testing.h"

using namespace std::filesystem;
using namespace std::string_literals;

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
    for (const char* name : {"jsc3d.webgl.js", "jsc3d.js", "index.html"}) { // which depends on the build
        fileReplicate(name, ".");
        EXPECT_NE(exists(name), captured.printed(std::string("ERROR: ") + name)) << name;
    }
    fileReplicate("3d.obj", ".");
    EXPECT_TRUE(captured.printed("fileReplicate, ERROR: unknown file 3d.obj"));
    fileReplicate("index.html", "missing");
    EXPECT_TRUE(captured.printed("WARNING: missing/index.html not writeable"));
    Kelm_2D dt;
    dt.insert({Point2(0, 0, 1), Point2(4, 0, 2), Point2(0, 4, 3)});
    dt.writeObj("expected.obj");
    createDirectory("web/scene");
    std::ofstream("web/scene/3d.obj") << "old";
    dt.writeWebScene("web/scene");
    EXPECT_EQ(captured.take().rfind("writeWebScene: Creating web/scene\n", 0), 0u);
    EXPECT_EQ(file_size("web/scene/3d.obj"), file_size("expected.obj"));
    for (const char* name : {"index.html", "jsc3d.js"})
        EXPECT_EQ(readFile("web/scene/"s + name), readFile(name)) << name;
    dt.writeWebScene("expected.obj");
    EXPECT_TRUE(captured.printed("WARNING: Can't create directory expected.obj"));
}
