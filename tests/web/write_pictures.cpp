// Writes pictures of a hilly terrain, to be opened by the programs they are made for: a web scene for the
// test in the browser, and a page with an object of every kind for Ghostscript. Usage: write_pictures FOLDER
// [PAGE.ps]
#include <kelm25d/kelm25d.h>

#include <cmath>
#include <vector>

using namespace QUOR_KELM25D;

int main(int argc, char** argv) {
    // As far from the origin as national grids are.
    std::vector<Point2> vPoints;
    for (int k = 0; k < 6400; ++k) {
        const int i = k / 80, j = k % 80;
        vPoints.emplace_back(4.5e6 + 10 * i, 5.6e6 + 10 * j, 60 * std::sin(0.1 * i) * std::cos(0.13 * j));
    }
    Kelm_2D dt;
    dt.insert(vPoints);
    dt.writeWebScene(argv[1]);
    if (argc < 3) return 0;

    Visualizer2 page(argv[2]);
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    vTriangles.resize(40);
    page.addObject(vTriangles, Color(CPALEGREEN, 0.5F, true));
    dt.show(&page, true);
    page.addObject(Circle2(vPoints[2000], 400.0), Color(CYELLOW, 1.0F, true));
    page.addObject(Segment2(vPoints[0], vPoints.back()), Color(CBLUE, 2.0F, true));
    page.addObject(vPoints[4000], Color(CORANGE, 4.0F, false));
    page.addObject(Label(vPoints[1000], "first\nsecond (line\\", true, 12), Color(CBLACK, 1.0F, false));
    page.writeFile();
}
