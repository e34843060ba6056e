// Triangulates a terrain file, asks the mesh for its hull and for heights along a line, makes break lines
// and a boundary part of it, checks it, and leaves a mesh, a map and a scene for the browser behind.
// Usage: terrain_demo POINTS.xyz OUTPUT_FOLDER

#include <kelm25d/kelm25d.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

using namespace QUOR_KELM25D;

namespace {

void printSummary(const Kelm_2D& dt, double seconds) {
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    double planArea = 0.0, surfaceArea = 0.0;
    for (const Triangle2* pT : vTriangles) {
        planArea += pT->getArea2D();
        surfaceArea += pT->getArea25D();
    }
    std::printf("vertices      %12u\n", dt.numberOfPoints());
    std::printf("triangles     %12zu\n", vTriangles.size());
    std::printf("plan area     %12.3f km2\n", planArea / 1e6);
    std::printf("surface area  %12.3f km2\n", surfaceArea / 1e6);
    std::printf("time          %12.4f s\n", seconds);
    std::printf("speed         %12.0f points per second\n", dt.numberOfPoints() / seconds);
}

std::vector<Segment2> hullOf(Kelm_2D& dt) {
    std::vector<Point2*> vCorners, vAll;
    dt.getConvexHull(false, vCorners);
    dt.getConvexHull(true, vAll);
    std::vector<Segment2> vHull;
    for (std::size_t i = 0; i < vCorners.size(); ++i) {
        vHull.emplace_back(*vCorners[i], *vCorners[(i + 1) % vCorners.size()]);
    }
    std::printf("convex hull   %12zu corners, %zu vertices on it\n", vCorners.size(), vAll.size());
    return vHull;
}

/// A line from corner to corner of the box, laid over the terrain; a table of some heights along it.
std::vector<Segment2> profileOf(Kelm_2D& dt) {
    const Bbox2 box = dt.computeBoundingBox();
    std::vector<Segment2> vLine = {Segment2(box.getMinPoint(), box.getMaxPoint())}, vExact, vThin;
    dt.drape(vLine, vExact, -1.0);
    dt.drape(vLine, vThin, 2.0);
    std::printf("\nThe diagonal laid over the terrain: %zu pieces, %zu within 2 m of the height\n",
                vExact.size(), vThin.size());
    std::printf("%12s %12s %10s\n", "x", "y", "height");
    constexpr int numRows = 8;
    for (int i = 0; i <= numRows; ++i) {
        const double share = static_cast<double>(i) / numRows;
        const double x = box.get_minX() + share * box.getRangeX(),
                     y = box.get_minY() + share * box.getRangeY();
        double height = 0.0;
        if (dt.getHeight(x, y, height)) std::printf("%12.2f %12.2f %10.3f\n", x, y, height);
    }
    return vExact;
}

/// The way down from a place: in each step to the lowest place at a given distance, as long as that is lower.
void addDescent(Kelm_2D& dt, Point2 place, double step, std::vector<Segment2>& vLines) {
    for (bool bLower = true; bLower;) {
        std::vector<Point2> vAround;
        generateCircle(32, place.x(), place.y(), 0.0, step, step, vAround);
        const Point2 from = place;
        for (const Point2& candidate : vAround) {
            double z = 0.0;
            if (!dt.getHeight(candidate.x(), candidate.y(), z) || z >= place.z()) continue;
            place = Point2(candidate.x(), candidate.y(), z);
        }
        bLower = place.z() < from.z();
        if (bLower) vLines.emplace_back(from, place);
    }
}

/// Ways down from a grid of places, to be break lines of the mesh.
std::vector<Segment2> breakLinesOf(Kelm_2D& dt) {
    constexpr int numStarts = 12; // in each direction
    const Bbox2 box = dt.computeBoundingBox();
    std::vector<Segment2> vLines;
    for (int i = 1; i < numStarts; ++i) {
        for (int j = 1; j < numStarts; ++j) {
            const double x = box.get_minX() + box.getRangeX() * i / numStarts,
                         y = box.get_minY() + box.getRangeY() * j / numStarts;
            double z = 0.0;
            if (dt.getHeight(x, y, z)) addDescent(dt, Point2(x, y, z), box.getRangeX() / 60, vLines);
        }
    }
    return vLines;
}

/// A polygon within the terrain, on its surface.
std::vector<Segment2> boundaryOf(Kelm_2D& dt) {
    const Bbox2 box = dt.computeBoundingBox();
    const Point2 center = box.computeCenter();
    std::vector<Point2> vCorners;
    generateCircle(48, center.x(), center.y(), 0.0, 0.42 * box.getRangeX(), 0.42 * box.getRangeY(), vCorners);
    for (Point2& corner : vCorners) {
        double z = 0.0;
        dt.getHeight(corner.x(), corner.y(), z);
        corner.setZ(z);
    }
    std::vector<Segment2> vBoundary;
    for (std::size_t i = 0; i < vCorners.size(); ++i) {
        vBoundary.emplace_back(vCorners[i], vCorners[(i + 1) % vCorners.size()]);
    }
    return vBoundary;
}

/// Makes segments edges of the mesh. The result is the pieces as which they stand in it when all are there.
const ConstraintGraph2* addConstraints(Kelm_2D& dt, const char* name,
                                       const std::vector<Segment2>& vSegments) {
    const unsigned numBefore = dt.numberOfPoints();
    const auto start = std::chrono::steady_clock::now();
    const ConstraintGraph2* pGraph = dt.createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (pGraph == nullptr) return nullptr;
    std::printf("%-13s %12zu segments, %u new vertices, %s, %.4f s\n", name, vSegments.size(),
                dt.numberOfPoints() - numBefore, pGraph->isPolygon() ? "one closed polygon" : "open lines",
                elapsed.count());
    return pGraph;
}

/// From green in the valleys over brown to white, lit from the north-west.
Color shade(const Triangle2& t, double minZ, double maxZ) {
    const Vector2 u = *t.getCorner(1) - *t.getCorner(0), v = *t.getCorner(2) - *t.getCorner(0);
    const double nx = u.y() * v.z() - u.z() * v.y(), ny = u.z() * v.x() - u.x() * v.z(),
                 nz = u.x() * v.y() - u.y() * v.x();
    const double light = std::max(0.0, (-nx + ny + 1.2 * nz) / std::sqrt(nx * nx + ny * ny + nz * nz) / 1.85);
    const double height = (t.getCorner(0)->z() - minZ) / std::max(1.0, maxZ - minZ);
    const auto step = [](double value) { return std::round(20.0 * std::min(1.0, value)) / 20.0; };
    const double brightness = 0.25 + 0.75 * light;
    return Color(step(brightness * (0.45 + 0.55 * height)), step(brightness * (0.68 + 0.27 * height)),
                 step(brightness * (0.40 + 0.50 * height)), 1.0, false);
}

void drawMap(Kelm_2D& dt, const std::vector<Segment2>& vHull, const std::vector<Segment2>& vProfile,
             const ConstraintGraph2* pBreakLines, const ConstraintGraph2* pBoundary,
             const std::string& filename) {
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    double minZ = vTriangles.front()->getCorner(0)->z(), maxZ = minZ;
    for (const Triangle2* pT : vTriangles) {
        minZ = std::min(minZ, pT->getCorner(0)->z());
        maxZ = std::max(maxZ, pT->getCorner(0)->z());
    }
    Visualizer2 map(filename);
    map.addHeaderLine("Terrain with its convex hull, a draped diagonal, break lines and a boundary");
    for (const Triangle2* pT : vTriangles) {
        map.addObject(*pT, shade(*pT, minZ, maxZ));
    }
    if (pBreakLines != nullptr) pBreakLines->show(&map, Color(0.0, 0.1, 0.8, 0.8, false));
    if (pBoundary != nullptr) pBoundary->show(&map, Color(CBLACK, 1.5F, false));
    map.addObject(vHull, Color(CBLUE, 1.5F, false));
    map.addObject(vProfile, Color(CRED, 1.0F, false));
    map.writeFile();
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

    printSummary(dt, elapsed.count());
    const std::vector<Segment2> vHull = hullOf(dt);
    const std::vector<Segment2> vProfile = profileOf(dt);

    std::printf("\nConstraints\n");
    const ConstraintGraph2* pBreakLines = addConstraints(dt, "break lines", breakLinesOf(dt));
    const ConstraintGraph2* pBoundary = addConstraints(dt, "boundary", boundaryOf(dt));
    std::vector<ConstraintSegment2*> vPieces;
    dt.getAliveConstraintSegments(vPieces);
    std::printf("%-13s %12zu constrained edges\n", "together", vPieces.size());

    const bool bValid = dt.checkValidity(true, "terrain_demo");
    std::printf("\nThe mesh is %s: links and empty circles checked.\n\n", bValid ? "valid" : "BROKEN");

    const std::string folder = argv[2];
    dt.writeObj(folder + "/terrain.obj");
    drawMap(dt, vHull, vProfile, pBreakLines, pBoundary, folder + "/terrain_map.ps");
    dt.writeWebScene((folder + "/web").c_str());
    std::printf("\nOpen %s/terrain.obj in a mesh viewer to see the terrain,\n", argv[2]);
    std::printf("     %s/terrain_map.ps in a PostScript viewer for the map,\n", argv[2]);
    std::printf("     and http://localhost:8000 in a browser, after\n");
    std::printf("     python3 -m http.server --directory %s/web\n", argv[2]);
    return bValid ? 0 : 1;
}
