// Counts the steps of a long operation and reports the fraction done to the subscribed receivers.
// Used on the thread that runs the owner's operation only; worker threads do not touch it.
#pragma once

#include <kelm25d/MsgBase.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace QUOR_KELM25D {

class ProgressPublisher {
public:
    explicit ProgressPublisher(const std::string& publisherName);
    ProgressPublisher(const ProgressPublisher&) = delete;
    ProgressPublisher& operator=(const ProgressPublisher&) = delete;

    /// Starts a task. Without a subscriber nothing happens, so that unobserved operations do no string work;
    /// therefore the label is not converted before that is known.
    void begin(const char* newLabel, int newTotal);
    void begin(const std::string& newLabel, int newTotal) { begin(newLabel.c_str(), newTotal); }

    /// n more steps are done. Stands on the hot path of insertion: two tests when nobody listens.
    void advance(int n) {
        if (bMuted || (mSubscribers.empty() && vParents.empty())) return;
        if (total == 0 || bDone) return;
        count += n;
        if (count % stepSize == 0) report();
    }

    /// n steps one after the other: reports fall due at multiples of the step size only.
    void advanceSteps(std::size_t n) {
        if (total == 0) return;
        for (; n > 0; --n) {
            advance(1);
        }
    }

    /// Ends the task; publishes 1.0 unless advance() already has.
    void finish();

    /// The part of the task that is done, plus the parts that the children have done.
    double fraction() const;

    /// Makes child's fraction count here and lets this publisher report whenever the child does. Both must
    /// live as long as either works; a child's receivers and its parent's are told separately.
    void addChild(ProgressPublisher& child);

    /// Switches all reporting off or on; owners set it around nested work.
    void mute(bool bMute) { bMuted = bMute; }
    bool isMuted() const { return bMuted; }

    /// A pair that is already present is not added again, nor is null. pReceiver is not owned.
    void subscribe(MsgType msgType, MsgBase* pReceiver);
    void unsubscribe(MsgType msgType, MsgBase* pReceiver);

    /// Tells every receiver of msgType, in the order of registration.
    void publish(MsgType msgType, const std::string& s, double value);

    const std::string& getName() const { return name; }

private:
    void report();
    bool isSubscribed(MsgType msgType, const MsgBase* pReceiver) const;

    std::vector<ProgressPublisher*> vChildren; // their fractions add to this one's
    std::vector<ProgressPublisher*> vParents;  // told when this one moves
    std::multimap<MsgType, MsgBase*> mSubscribers;
    int total = 0;      // steps of the current task, 0 when idle
    int count = 0;      // steps done
    int stepSize = 1;   // steps between reports, at least 1
    std::string label;  // text of the current task
    bool bDone = false; // 1.0 has been published for this task
    bool bMuted = false;
    std::string name; // for diagnosis only
};

/// Switches a publisher off for nested work, as long as this lives.
class MuteProgress {
public:
    explicit MuteProgress(ProgressPublisher& progress_) : progress(progress_), bBefore(progress.isMuted()) {
        progress.mute(true);
    }
    ~MuteProgress() { progress.mute(bBefore); }
    MuteProgress(const MuteProgress&) = delete;
    MuteProgress& operator=(const MuteProgress&) = delete;

private:
    ProgressPublisher& progress;
    bool bBefore;
};

} // namespace QUOR_KELM25D
