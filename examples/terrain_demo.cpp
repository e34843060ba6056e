// Triangulates a terrain file and says what came out: size, hull, areas, time; writes the mesh as OBJ.
// Usage: terrain_demo POINTS.xyz OUTPUT_FOLDER

#include <kelm25d/kelm25d.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

using namespace QUOR_KELM25D;

namespace {

struct Summary {
    unsigned numHullEdges = 0;
    double planArea = 0.0;
    double surfaceArea = 0.0;
};

Summary summarize(const Kelm_2D& dt) {
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    Summary summary;
    for (const Triangle2* pT : vTriangles) {
        summary.planArea += pT->getArea2D();
        summary.surfaceArea += pT->getArea25D();
        for (int i = 0; i < 3; ++i) {
            if (pT->getOppositeTriangle(i) == nullptr) ++summary.numHullEdges;
        }
    }
    return summary;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s POINTS.xyz OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    std::vector<Point2> vPoints;
    if (!readXYZ(argv[1], vPoints) || vPoints.empty()) return 1;
    std::printf("%s: %zu points read from %s\n", getKelm2DVersion().c_str(), vPoints.size(), argv[1]);

    Kelm_2D dt;
    const auto start = std::chrono::steady_clock::now();
    dt.insert(vPoints);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (!dt.is2D()) {
        std::printf("All points are on one line, there is nothing to triangulate.\n");
        return 1;
    }

    const Summary summary = summarize(dt);
    std::printf("vertices      %12u\n", dt.numberOfPoints());
    std::printf("triangles     %12u\n", dt.numberOfTriangles());
    std::printf("hull edges    %12u\n", summary.numHullEdges);
    std::printf("plan area     %12.3f km2\n", summary.planArea / 1e6);
    std::printf("surface area  %12.3f km2\n", summary.surfaceArea / 1e6);
    std::printf("time          %12.4f s\n", elapsed.count());
    std::printf("speed         %12.0f points per second\n",
                static_cast<double>(vPoints.size()) / elapsed.count());

    const std::string objFile = std::string(argv[2]) + "/terrain.obj";
    dt.writeObj(objFile);
    std::printf("\nOpen %s in a mesh viewer to see the terrain.\n", objFile.c_str());
    return 0;
}
