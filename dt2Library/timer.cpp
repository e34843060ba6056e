// The stopwatches by name.
// The map of running ones is process-wide and unguarded: for one thread at a time.
#include <kelm25d/timer.h>

#include <chrono>
#include <iomanip>
#include <iostream>
#include <map>

namespace QUOR_KELM25D {

double timer(const std::string& name) {
    using Clock = std::chrono::steady_clock;
    static std::map<std::string, Clock::time_point> mRunning;

    const bool bQuiet = name.compare(0, 7, "[quiet]") == 0;
    const auto it = mRunning.find(name);
    if (it == mRunning.end()) {
        if (!bQuiet) std::cout << "...Timer [" << name << "] start" << std::endl;
        mRunning.emplace(name, Clock::now());
        return -1.0;
    }

    const std::chrono::duration<double> elapsed = Clock::now() - it->second;
    mRunning.erase(it);
    if (!bQuiet) {
        const std::ios_base::fmtflags flags = std::cout.flags();
        std::cout << "...Timer [" << name << "] stop, elapsed time: " << std::fixed << std::setprecision(3)
                  << elapsed.count() << " s" << std::endl;
        std::cout.flags(flags);
        std::cout << std::setprecision(6);
    }
    return elapsed.count();
}

} // namespace QUOR_KELM25D
