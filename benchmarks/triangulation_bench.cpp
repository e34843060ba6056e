// Times of the library alone: bulk insertion by kind and size, single insertion, constraints, the peak of
// memory. The comparisons with other libraries are in peer_compare.cpp and constraint_compare.cpp.

#include "benchPoints.h"

#include <kelm25d/Kelm_2D.h>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>

using namespace QUOR_KELM25D;

namespace {

void BulkInsertion(benchmark::State& state) {
    const bench::Kind kind = static_cast<bench::Kind>(state.range(0));
    const std::vector<Point2> vPoints = bench::makePoints(kind, static_cast<int>(state.range(1)));
    for (auto _ : state) {
        Kelm_2D dt;
        std::vector<Point2*> vHandles;
        dt.insert(vPoints, vHandles);
        benchmark::DoNotOptimize(vHandles.data());
    }
    state.SetLabel(bench::nameOf(kind));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(vPoints.size()));
}
BENCHMARK(BulkInsertion)->ArgsProduct({{0, 1, 2, 3}, {10000, 1000000}})->Unit(benchmark::kMillisecond);

/// Four doublings of the number of points, for the exponent of growth.
void Growth(benchmark::State& state) {
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Kelm_2D dt;
        dt.insert(vPoints);
        benchmark::DoNotOptimize(dt.getImpl());
    }
}
BENCHMARK(Growth)->Arg(250000)->Arg(500000)->Arg(1000000)->Arg(2000000)->Arg(4000000)->Unit(
    benchmark::kMillisecond);

void SingleInsertion(benchmark::State& state) {
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Kelm_2D dt;
        for (const Point2& p : vPoints) {
            dt.insert(p);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(SingleInsertion)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

/// Polygons of ten segments among a hundred times as many points; the segments alone are timed.
void PolygonInsertion(benchmark::State& state) {
    const int numPolygons = static_cast<int>(state.range(0));
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, 100 * numPolygons);
    std::vector<Segment2> vSegments;
    for (const std::vector<Segment2>& vPolygon : bench::makePolygons(numPolygons)) {
        vSegments.insert(vSegments.end(), vPolygon.begin(), vPolygon.end());
    }
    for (auto _ : state) {
        state.PauseTiming();
        auto pDt = std::make_unique<Kelm_2D>();
        pDt->insert(vPoints);
        state.ResumeTiming();
        pDt->createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY);
        state.PauseTiming();
        pDt.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(vSegments.size()));
}
BENCHMARK(PolygonInsertion)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

/// Segments alone, a tenth of the square's side long: the crossings grow with the square of their number.
void CrossingSegments(benchmark::State& state) {
    const std::vector<Segment2> vSegments =
        bench::makeSegments(static_cast<int>(state.range(0)), 0.1 * bench::sideOfSquare);
    for (auto _ : state) {
        Kelm_2D dt;
        benchmark::DoNotOptimize(dt.createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY));
    }
}
BENCHMARK(CrossingSegments)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

/// A value in bytes from the process's status, 0 where there is none.
double statusBytes(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, std::strlen(key), key) == 0)
            return 1024.0 * std::atof(line.c_str() + std::strlen(key));
    }
    return 0.0;
}

/// Resident bytes a point at the peak of a bulk insertion with handles, beyond what was there before.
void PeakMemory(benchmark::State& state) {
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, static_cast<int>(state.range(0)));
    double bytes = 0.0;
    for (auto _ : state) {
        std::ofstream("/proc/self/clear_refs") << 5; // the peak starts anew
        const double before = statusBytes("VmRSS:");
        Kelm_2D dt;
        std::vector<Point2*> vHandles;
        dt.insert(vPoints, vHandles);
        bytes = statusBytes("VmHWM:") - before;
    }
    state.counters["bytes/point"] = bytes / static_cast<double>(vPoints.size());
}
BENCHMARK(PeakMemory)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
