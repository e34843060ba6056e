// Bulk insertion with two threads beside the same with one, in one process, runs in turn.
// Usage: thread_compare [RUNS [CPUS]]. The ratio is best on an idle machine with a core for each thread.

#include "benchPoints.h"
#include "compare.h"

#include <kelm25d/Kelm_2D.h>

using namespace QUOR_KELM25D;

namespace {

void compareThreads(bench::Kind kind, int numPoints, int numRuns, int numCPU) {
    const std::vector<Point2> vPoints = bench::makePoints(kind, numPoints);
    const auto insertWith = [&](int numThreads) {
        Kelm_2D dt;
        dt.setNumCPU(numThreads);
        std::vector<Point2*> vHandles;
        dt.insert(vPoints, vHandles);
        return dt.numberOfTriangles();
    };
    bench::compare(
        bench::nameOf(kind) + ", " + std::to_string(numPoints), numRuns, [&] { return insertWith(numCPU); },
        [&] { return insertWith(1); });
}

} // namespace

int main(int argc, char** argv) {
    const int numRuns = argc > 1 ? std::max(1, std::atoi(argv[1])) : 11;
    const int numCPU = argc > 2 ? std::max(1, std::atoi(argv[2])) : 2;
    const std::string header = std::to_string(numCPU) + " CPUs, ms";
    bench::printHeader("threads, insertion of points", header.c_str(), "1 CPU, ms");
    for (const int numPoints : {1000, 10000, 30000, 100000, 1000000}) {
        const int numRunsOfSize = numRuns * std::max(1, std::min(20, 1000000 / numPoints));
        for (const bench::Kind kind : bench::allKinds()) {
            compareThreads(kind, numPoints, numRunsOfSize, numCPU);
        }
    }
    return 0;
}
