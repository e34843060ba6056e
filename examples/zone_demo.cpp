// Zones on a terrain: inside and outside of boundaries, their union and difference, a cookie cut along a
// polygon, and high ground without the long thin triangles around it.
// Usage: zone_demo POINTS.xyz OUTPUT_FOLDER

#include <kelm25d/kelm25d.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

using namespace QUOR_KELM25D;

namespace {

using Triangles = std::vector<Triangle2*>;

void printZone(const char* name, const Zone2* pZone) {
    if (pZone == nullptr) return;
    std::printf("%-32s %10zu %12.3f %12.3f\n", name, pZone->getNumberOfTriangles(), pZone->getArea2D() / 1e6,
                pZone->getArea25D() / 1e6);
}

std::vector<Segment2> ringAround(const Point2& center, double radiusX, double radiusY) {
    std::vector<Point2> vCorners;
    generateCircle(72, center.x(), center.y(), 0.0, radiusX, radiusY, vCorners);
    std::vector<Segment2> vRing;
    for (std::size_t i = 0; i < vCorners.size(); ++i) {
        vRing.emplace_back(vCorners[i], vCorners[(i + 1) % vCorners.size()]);
    }
    return vRing;
}

/// Makes a ring part of the mesh, on its surface, and gives the zone inside.
Zone2* insideOf(Kelm_2D& dt, std::vector<Segment2> vRing) {
    std::vector<Segment2> vDraped;
    dt.drape(vRing, vDraped, -1.0);
    return dt.createZone(dt.createConstraint(vDraped, CIS_CONSTRAINED_DELAUNAY), ZL_INSIDE);
}

/// Full colour where the ground lies towards the north-west, darker in the shade.
Color shade(const Triangle2& t, double red, double green, double blue) {
    const Vector2 normal = t.getNormalVector();
    const double light = std::clamp(0.85 + 1.5 * (normal.y() - normal.x()), 0.25, 1.0);
    // Few colours make a small file: one is written whenever it changes. Edges this wide cover the small
    // triangles of the terrain, so that only larger ones need filling.
    const auto mix = [&](double channel) { return std::round(16.0 * channel * light) / 16.0; };
    const bool bLarge = t.getMaxSqEdgeLen2D() > 150.0 * 150.0;
    return Color(mix(red), mix(green), mix(blue), bLarge ? 0.1 : 1.0, bLarge);
}

/// What a zone has, in a colour.
void addZone(Visualizer2& page, const Zone2* pZone, double red, double green, double blue) {
    if (pZone == nullptr) return;
    Triangles vTriangles;
    pZone->getTriangles(vTriangles);
    for (const Triangle2* pT : vTriangles) {
        page.addObject(*pT, shade(*pT, red, green, blue));
    }
}

void addBorder(Visualizer2& page, const Zone2* pZone) {
    if (pZone == nullptr) return;
    std::vector<Segment2> vBorder;
    pZone->getBoundarySegments(vBorder);
    page.addObject(vBorder, Color(CBLACK, 1.0F, false));
}

/// Two overlapping regions and what set operations make of them; a five-cornered cookie with a clean edge.
/// The result is the difference.
Zone2* showRegions(Kelm_2D& dt, const std::string& folder) {
    const Bbox2 box = dt.computeBoundingBox();
    const auto place = [&](double shareX, double shareY) {
        return Point2(box.get_minX() + shareX * box.getRangeX(), box.get_minY() + shareY * box.getRangeY(),
                      0);
    };
    Zone2* pWest =
        insideOf(dt, ringAround(place(0.38, 0.60), 0.30 * box.getRangeX(), 0.28 * box.getRangeY()));
    Zone2* pEast =
        insideOf(dt, ringAround(place(0.66, 0.52), 0.26 * box.getRangeX(), 0.34 * box.getRangeY()));
    const Point2 aCorner[] = {place(0.06, 0.05), place(0.40, 0.08), place(0.47, 0.22), place(0.22, 0.28),
                              place(0.10, 0.20)};
    std::vector<Segment2> vPolygon;
    for (std::size_t i = 0; i < 5; ++i) {
        vPolygon.emplace_back(aCorner[i], aCorner[(i + 1) % 5]);
    }
    Zone2* pCookie = dt.createZone_cookieCutter(vPolygon, true);
    Zone2 *pAll = dt.createZone(nullptr, ZL_GLOBAL), *pUnion = zoneUnion(pWest, pEast),
          *pBoth = zoneIntersection(pWest, pEast), *pDifference = zoneDifference(pWest, pEast);

    std::printf("%-32s %10s %12s %12s\n", "zone", "triangles", "plan, km2", "surface, km2");
    printZone("everything", pAll);
    printZone("inside the western boundary", pWest);
    printZone("inside the eastern boundary", pEast);
    printZone("union", pUnion);
    printZone("intersection", pBoth);
    printZone("difference, west without east", pDifference);
    printZone("cookie cut along a polygon", pCookie);

    Visualizer2 page(folder + "/zones.ps");
    page.addHeaderLine(
        "Zones: west without east (orange), both (red), east without west (blue), a cookie (green)");
    addZone(page, zoneDifference(zoneDifference(pAll, pUnion), pCookie), 0.75, 0.78, 0.72);
    addZone(page, zoneDifference(pEast, pWest), 0.35, 0.60, 1.00);
    addZone(page, pDifference, 1.00, 0.65, 0.20);
    addZone(page, pBoth, 1.00, 0.30, 0.25);
    addZone(page, pCookie, 0.45, 0.85, 0.35);
    for (const Zone2* pZone : {pWest, pEast, pCookie}) {
        addBorder(page, pZone);
    }
    page.writeFile();
    return pDifference;
}

/// Triangles with an edge that is longer than a limit in the plane.
class LongerThan : public UserPredicateT {
public:
    explicit LongerThan(double limit_) : sqLimit(limit_ * limit_) {}
    bool operator()(const Triangle2* pT) override { return pT->getMaxSqEdgeLen2D() > sqLimit; }

private:
    double sqLimit;
};

/// Ground above a height as a triangulation of its own: its points do not fill their convex hull, so long
/// thin triangles span what lies between. Taken off from outside, the rest shows the shape of the high
/// ground.
void showHighGround(const std::vector<Point2>& vPoints, double height, const std::string& folder) {
    std::vector<Point2> vHigh;
    std::copy_if(vPoints.begin(), vPoints.end(), std::back_inserter(vHigh),
                 [&](const Point2& p) { return p.z() > height; });
    Kelm_2D dt;
    dt.insert(vHigh);
    Zone2* pAll = dt.createZone(nullptr, ZL_GLOBAL);
    if (pAll == nullptr) return;
    Triangles vAll;
    pAll->getTriangles(vAll);
    constexpr double limit = 500.0; // metres
    LongerThan isLong(limit);
    Zone2* pGround = peelOffIf(pAll, &isLong);
    if (pGround == nullptr) return;
    const Zone2* pSkin = zoneDifference(pAll, pGround);
    printZone("ground above 450 m, hull", pAll);
    printZone("  without the skin", pGround);
    printZone("  the skin, edges above 500 m", pSkin);

    Visualizer2 page(folder + "/high_ground.ps");
    page.addHeaderLine("High ground, and the skin of long thin triangles (red) that was peeled off");
    addZone(page, pGround, 0.80, 0.72, 0.55);
    Triangles vSkin;
    pSkin->getTriangles(vSkin);
    page.addObject(vSkin, Color(1.0, 0.6, 0.5, 0.1, true));
    addBorder(page, pGround);
    page.writeFile();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s POINTS.xyz OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    std::vector<Point2> vPoints;
    if (!readXYZ(argv[1], vPoints)) return 1;
    Kelm_2D dt;
    dt.insert(vPoints);
    if (!dt.is2D()) {
        std::printf("All points are on one line, there is nothing to triangulate.\n");
        return 1;
    }
    const std::string folder = argv[2];
    Zone2* pDifference = showRegions(dt, folder);
    showHighGround(vPoints, 450.0, folder);
    if (pDifference != nullptr) {
        dt.writeObj(folder + "/zone.obj", pDifference);
        dt.writeWebScene((folder + "/zone_web").c_str(), pDifference);
    }
    std::printf("\nOpen %s/zones.ps and %s/high_ground.ps in a PostScript viewer,\n", argv[2], argv[2]);
    std::printf("     %s/zone.obj, the difference, in a mesh viewer,\n", argv[2]);
    std::printf("     and http://localhost:8000 in a browser, after\n");
    std::printf("     python3 -m http.server --directory %s/zone_web\n", argv[2]);
    return 0;
}
