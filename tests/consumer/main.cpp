// A program against the installed library: all headers compile, the library links, loads and triangulates.
// Returns 0 if everything is as expected, else a bit for each fault; what a triangulation can do is tested
// elsewhere.
#include <kelm25d/kelm25d.h>

#include <string>

int main(int argc, char** argv) {
    using namespace QUOR_KELM25D;

    Kelm_2D dt;
    dt.insert({Point2(0, 0, 1), Point2(1, 0, 2), Point2(1, 1, 3), Point2(0, 1, 4), Point2(0.5, 0.5, 5)});
    const bool bTriangulated = dt.numberOfTriangles() == 4;

    // Exceptions of the library must be recognised across its boundary.
    bool bCaught = false;
    try {
        getOrientation2(nullptr, nullptr, nullptr);
    } catch (const KelmException&) {
        bCaught = true;
    }

    const bool bVersion = argc == 2 && getKelm2DVersion() == std::string("Kelm 2.5D, RELEASE, v") + argv[1];
    return (bTriangulated ? 0 : 1) + (bCaught ? 0 : 2) + (bVersion ? 0 : 4);
}
