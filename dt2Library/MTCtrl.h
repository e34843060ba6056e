// Runs one batch of tasks on several threads and waits for all of them: fork and join.
// Nothing is shared between batches; a task must not touch what another task of its batch writes.
#pragma once

#include <algorithm>
#include <exception>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <vector>

namespace QUOR_KELM25D {

/// Runner of one batch of tasks of type T. The tasks stay the caller's.
template <class T>
class MTCtrl {
public:
    /// Takes the task pointers of a sequence.
    template <class Iterator>
    MTCtrl(Iterator first, Iterator last) : sPending(first, last) {}
    MTCtrl(const MTCtrl&) = delete;
    MTCtrl& operator=(const MTCtrl&) = delete;

    /// Runs fn on every task with numThreads threads, the calling one among them, and returns when all are
    /// done. Where the system gives fewer threads, those do all the work. If a task throws, no further one is
    /// started, and its exception comes out of here.
    void run(void (T::*fn)(), int numThreads) {
        const std::size_t numTasks = sPending.size(), numWanted = static_cast<std::size_t>(numThreads);
        std::vector<std::thread> vThreads;
        vThreads.reserve(std::min(numTasks, numWanted));
        try {
            for (std::size_t i = 1; i < numWanted && i < numTasks; ++i) {
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
        for (;;) {
            T* pTask = nullptr;
            {
                const std::lock_guard<std::mutex> lock(mtx);
                if (sPending.empty()) return;
                pTask = *sPending.begin();
                sPending.erase(sPending.begin());
                sStarted.insert(pTask);
            }
            std::exception_ptr pThrown;
            try {
                (pTask->*fn)();
            } catch (...) {
                pThrown = std::current_exception();
            }
            const std::lock_guard<std::mutex> lock(mtx);
            if (pThrown) {
                if (!pFailure) pFailure = pThrown;
                sPending.clear();
            }
            sDone.insert(pTask);
            sStarted.erase(pTask);
        }
    }

    std::set<T*> sPending; // not started
    std::set<T*> sStarted; // being run
    std::set<T*> sDone;
    std::exception_ptr pFailure; // of the first task that threw
    std::mutex mtx;              // guards all of this
};

} // namespace QUOR_KELM25D
