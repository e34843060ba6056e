// Runs one batch of tasks on several threads and waits for all of them: fork and join.
// Nothing is shared between batches; a task must not touch what another task of its batch writes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace QUOR_KELM25D {

/// Runner of one batch of tasks of type T. The tasks stay the caller's.
template <class T>
class MTCtrl {
public:
    /// Takes the task pointers of a sequence, each once.
    template <class Iterator>
    MTCtrl(Iterator first, Iterator last) : vTasks(first, last) {}
    MTCtrl(const MTCtrl&) = delete;
    MTCtrl& operator=(const MTCtrl&) = delete;

    /// Runs fn on every task with numThreads threads, the calling one among them, and returns when all are
    /// done. Where the system gives fewer threads, those do all the work. If a task throws, no further one is
    /// started, and its exception comes out of here.
    void run(void (T::*fn)(), int numThreads) {
        const std::size_t numWanted = std::min(vTasks.size(), static_cast<std::size_t>(numThreads));
        std::vector<std::thread> vThreads;
        vThreads.reserve(numWanted);
        try {
            while (vThreads.size() + 1 < numWanted) {
                vThreads.emplace_back(&MTCtrl::worker, this, fn);
            }
        } catch (const std::system_error&) {
            // The calling thread works in any case.
        }
        worker(fn);
        for (std::thread& thread : vThreads) {
            thread.join();
        }
        if (pFailure) std::rethrow_exception(pFailure);
    }

private:
    void worker(void (T::*fn)()) {
        while (T* pTask = takeTask()) {
            try {
                (pTask->*fn)();
            } catch (...) {
                const std::lock_guard<std::mutex> lock(mtx);
                if (!pFailure) pFailure = std::current_exception();
                numStarted = vTasks.size();
            }
        }
    }

    /// The next task, in the order given; null if there is none.
    T* takeTask() {
        const std::lock_guard<std::mutex> lock(mtx);
        return numStarted < vTasks.size() ? vTasks[numStarted++] : nullptr;
    }

    std::vector<T*> vTasks;
    std::size_t numStarted = 0;
    std::exception_ptr pFailure; // of the first task that threw
    std::mutex mtx;              // guards the two above
};

/// Runs fn on every element of a sequence: on numThreads threads, or in turn on this one if that is 1.
template <class T>
void runTasks(std::vector<T>& vTasks, void (T::*fn)(), int numThreads) {
    if (numThreads == 1) {
        for (T& task : vTasks) {
            (task.*fn)();
        }
        return;
    }
    std::vector<T*> vPointers;
    vPointers.reserve(vTasks.size());
    for (T& task : vTasks) {
        vPointers.push_back(&task);
    }
    MTCtrl<T>(vPointers.begin(), vPointers.end()).run(fn, numThreads);
}

} // namespace QUOR_KELM25D
