// Runs one batch of tasks on several threads and waits for all of them: fork and join.
// Nothing is shared between batches; a task must not touch what another task of its batch writes.
#pragma once

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
    /// done. Where the system gives fewer threads, those do all the work.
    void run(void (T::*fn)(), int numThreads) {
        const int numTasks = static_cast<int>(sPending.size());
        std::vector<std::thread> vThreads;
        try {
            for (int i = 1; i < numThreads && i < numTasks; ++i) {
                vThreads.emplace_back(&MTCtrl::worker, this, fn);
            }
        } catch (const std::system_error&) {
            // The calling thread works in any case.
        }
        worker(fn);
        for (std::thread& thread : vThreads) {
            thread.join();
        }
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
            (pTask->*fn)();
            const std::lock_guard<std::mutex> lock(mtx);
            sDone.insert(pTask);
            sStarted.erase(pTask);
        }
    }

    std::set<T*> sPending; // not started
    std::set<T*> sStarted; // being run
    std::set<T*> sDone;
    std::mutex mtx; // guards the three sets
};

} // namespace QUOR_KELM25D
