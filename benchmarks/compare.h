// Two pieces of work run in turn: medians of their times, and the median of the ratios of neighbouring runs.
// What the work is, and beside what, is told in the programs that include this.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace bench {

using Work = std::function<unsigned()>; // gives a number by which both can be seen to have done the same
using MakeWork = std::function<Work()>; // makes what the work needs, before its time runs

inline double secondsOf(const Work& work, unsigned& result) {
    const auto start = std::chrono::steady_clock::now();
    result = work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> vValues) {
    std::sort(vValues.begin(), vValues.end());
    return vValues[vValues.size() / 2];
}

inline void printHeader(const char* rows, const char* first, const char* second) {
    std::printf("\n| %-30s | %12s | %12s | ratio |\n", rows, first, second);
    std::printf("|--------------------------------|--------------|--------------|-------|\n");
}

/// Whether two results differ by no more than this part of the larger one.
inline bool agree(unsigned first, unsigned second, double tolerance) {
    const double larger = std::max(first, second);
    return larger - std::min(first, second) <= tolerance * larger;
}

/// Prints a row for work that is made anew for each run; ends the program where the two results don't agree.
inline void compareMade(const std::string& name, int numRuns, const MakeWork& makeFirst,
                        const MakeWork& makeSecond, double tolerance = 0.0) {
    std::vector<double> vFirst, vSecond, vRatios;
    const auto timeOf = [](const MakeWork& make, unsigned& result) {
        const Work work = make();
        return secondsOf(work, result);
    };
    for (int run = 0; run < numRuns; ++run) {
        unsigned resultOfFirst = 0, resultOfSecond = 0;
        vFirst.push_back(timeOf(makeFirst, resultOfFirst));
        vSecond.push_back(timeOf(makeSecond, resultOfSecond));
        vRatios.push_back(vFirst.back() / vSecond.back());
        if (!agree(resultOfFirst, resultOfSecond, tolerance)) {
            std::printf("%s: the results differ, %u and %u\n", name.c_str(), resultOfFirst, resultOfSecond);
            std::exit(1);
        }
    }
    std::printf("| %-30s | %12.2f | %12.2f | %5.2f |\n", name.c_str(), 1e3 * median(vFirst),
                1e3 * median(vSecond), median(vRatios));
    std::fflush(stdout);
}

/// The same for work that needs nothing made.
inline void compare(const std::string& name, int numRuns, const Work& first, const Work& second,
                    double tolerance = 0.0) {
    compareMade(
        name, numRuns, [&] { return first; }, [&] { return second; }, tolerance);
}

} // namespace bench
