// The slow half of progress reporting: registration, and the calls to the receivers.
// The step counter, which is on the hot path, is inline in the header.
#include "ProgressPublisher.h"

#include <algorithm>

namespace QUOR_KELM25D {

ProgressPublisher::ProgressPublisher(const std::string& publisherName) : name(publisherName) {
}

void ProgressPublisher::begin(const char* newLabel, int newTotal) {
    if (bMuted || mSubscribers.empty()) return;
    total = newTotal;
    label = newLabel;
    count = 0;
    bDone = false;
    stepSize = std::max(1, total / 100);
}

void ProgressPublisher::report() {
    for (ProgressPublisher* pParent : vParents)
        pParent->advance(0);
    double value = fraction();
    if (value >= 1.0) {
        value = 1.0;
        bDone = true;
    }
    publish(MSG_PROGRESS, label, value);
}

void ProgressPublisher::finish() {
    if (bMuted) return;
    if (!mSubscribers.empty()) {
        count = total;
        if (!bDone) {
            bDone = true;
            publish(MSG_PROGRESS, label, 1.0);
        }
    }
    // Cleared for one that has lost its last receiver too, or it would go on counting in the next task.
    label.clear();
    total = 0;
    count = 0;
}

double ProgressPublisher::fraction() const {
    if (bDone) return 1.0;
    double sum = total == 0 ? 0.0 : static_cast<double>(count) / total;
    for (const ProgressPublisher* pChild : vChildren)
        sum += pChild->fraction();
    return sum;
}

void ProgressPublisher::addChild(ProgressPublisher& child) {
    vChildren.push_back(&child);
    child.vParents.push_back(this);
}

bool ProgressPublisher::isSubscribed(MsgType msgType, const MsgBase* pReceiver) const {
    const auto range = mSubscribers.equal_range(msgType);
    return std::any_of(range.first, range.second,
                       [&](const auto& entry) { return entry.second == pReceiver; });
}

void ProgressPublisher::subscribe(MsgType msgType, MsgBase* pReceiver) {
    if (pReceiver != nullptr && !isSubscribed(msgType, pReceiver)) mSubscribers.emplace(msgType, pReceiver);
}

void ProgressPublisher::unsubscribe(MsgType msgType, MsgBase* pReceiver) {
    const auto range = mSubscribers.equal_range(msgType);
    const auto it =
        std::find_if(range.first, range.second, [&](const auto& entry) { return entry.second == pReceiver; });
    if (it != range.second) mSubscribers.erase(it);
}

void ProgressPublisher::publish(MsgType msgType, const std::string& s, double value) {
    // A receiver may change the registrations within its update, so the loop runs over a copy; a receiver
    // that has been unsubscribed meanwhile may be dead already.
    std::vector<MsgBase*> vReceivers;
    const auto range = mSubscribers.equal_range(msgType);
    for (auto it = range.first; it != range.second; ++it)
        vReceivers.push_back(it->second);
    for (MsgBase* pReceiver : vReceivers) {
        if (isSubscribed(msgType, pReceiver)) pReceiver->update(msgType, s, value);
    }
}

} // namespace QUOR_KELM25D
