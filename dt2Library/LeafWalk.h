// Visits the alive pieces of constraint segments, whatever is divided meanwhile.
// For loops that insert pieces: a segment that dies on the way is followed down to its pieces, and each tree
// below a dead segment is walked once, though a bent constraint may lead there on very many ways.
#pragma once

#include <kelm25d/ConstraintSegment2.h>

#include <unordered_set>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class LeafWalk {
public:
    /// Starts with segments of any state.
    explicit LeafWalk(std::vector<ConstraintSegment2*> vSegments) : vStack(std::move(vSegments)) {}

    void push(ConstraintSegment2* pSegment) { vStack.push_back(pSegment); }
    /// The next alive segment, the one pushed last first; null at the end.
    ConstraintSegment2* next() {
        while (!vStack.empty()) {
            ConstraintSegment2* pSegment = vStack.back();
            vStack.pop_back();
            if (pSegment->isAlive()) return pSegment;
            if (pSegment->aChild[0] == nullptr || !sWalked.insert(pSegment).second) continue;
            vStack.push_back(pSegment->aChild[1]);
            vStack.push_back(pSegment->aChild[0]);
        }
        return nullptr;
    }

private:
    std::vector<ConstraintSegment2*> vStack;
    std::unordered_set<const ConstraintSegment2*> sWalked; // dead ones whose children have been pushed
};

} // namespace QUOR_KELM25D
