// A program against the installed library: all headers compile, the library links, loads and triangulates.
// Returns 0 if everything is as expected; what a triangulation can do is tested elsewhere.
#include <kelm25d/kelm25d.h>

#include <iostream>
#include <vector>

int main(int argc, char** argv) {
    using namespace QUOR_KELM25D;

    Kelm_2D dt;
    const Point2* pVertex = dt.insert(Point2(0.0, 0.0, 1.0));
    std::vector<Point2> vPoints = {Point2(1.0, 0.0, 2.0), Point2(1.0, 1.0, 3.0), Point2(0.0, 1.0, 4.0),
                                   Point2(0.5, 0.5, 5.0)};
    dt.insert(vPoints);
    const bool bTriangulated = pVertex != nullptr && dt.is2D() && dt.numberOfTriangles() == 4;

    // Exceptions of the library must be recognised across its boundary.
    bool bCaught = false;
    try {
        getOrientation2(nullptr, nullptr, nullptr);
    } catch (const KelmException&) {
        bCaught = true;
    }

    const bool bVersion = argc == 2 && getKelm2DVersion() == std::string("Kelm 2.5D, RELEASE, v") + argv[1];
    std::cout << "triangulated " << bTriangulated << ", caught " << bCaught << ", version " << bVersion
              << '\n';
    return bTriangulated && bCaught && bVersion ? 0 : 1;
}
