// Writes a web scene of a hilly terrain into a folder, for the test in the browser.
// Usage: write_scene FOLDER
#include <kelm25d/kelm25d.h>

#include <cmath>
#include <vector>

using namespace QUOR_KELM25D;

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    // As far from the origin as national grids are.
    std::vector<Point2> vPoints;
    for (int i = 0; i < 80; ++i) {
        for (int j = 0; j < 80; ++j)
            vPoints.emplace_back(4.5e6 + 10 * i, 5.6e6 + 10 * j, 60 * std::sin(0.1 * i) * std::cos(0.13 * j));
    }
    Kelm_2D dt;
    dt.insert(vPoints);
    dt.writeWebScene(argv[1]);
    return 0;
}
