// Collecting pending duplicates and answering questions about them.
// Who is redundant is found out by those who insert.

#include "VertexDuplicates.h"

#include "messages.h"

#include <algorithm>

namespace QUOR_KELM25D {

void VertexDuplicates::add(Point2* pDup, Point2* pExisting) {
    if (pDup == pExisting) return;
    const std::lock_guard<std::mutex> lock(mtxDuplicates);
    mRedundant2UniqueVtx.emplace_back(pDup, pExisting);
}

void VertexDuplicates::sort() {
    std::sort(mRedundant2UniqueVtx.begin(), mRedundant2UniqueVtx.end());
    const auto sameVertex = [](const auto& a, const auto& b) { return a.first == b.first; };
    const bool bInserted = std::adjacent_find(mRedundant2UniqueVtx.begin(), mRedundant2UniqueVtx.end(),
                                              sameVertex) == mRedundant2UniqueVtx.end();
    KELM_CHECK(bInserted);
}

Point2* VertexDuplicates::find(const Point2* pVtx) const noexcept {
    const auto it = std::lower_bound(mRedundant2UniqueVtx.begin(), mRedundant2UniqueVtx.end(), pVtx,
                                     [](const auto& pair, const Point2* p) { return pair.first < p; });
    return it != mRedundant2UniqueVtx.end() && it->first == pVtx ? it->second : nullptr;
}

void VertexDuplicates::replaceHandles(std::vector<Point2*>& vHandles) const {
    for (auto it = vHandles.begin(); it != vHandles.end(); ++it) {
        if ((*it)->getIncidentTriangle() != nullptr) continue; // in the mesh, as most are
        Point2* pExistingVtx = find(*it);
        if (pExistingVtx == nullptr) continue;
        KELM_CHECK(**it==*pExistingVtx);
        *it = pExistingVtx;
    }
}

Point2* VertexDuplicates::getOnly(const Point2* pNew) const {
    KELM_CHECK(mRedundant2UniqueVtx.size()==1 && mRedundant2UniqueVtx.front().first==pNew);
    return mRedundant2UniqueVtx.front().second;
}

} // namespace QUOR_KELM25D
