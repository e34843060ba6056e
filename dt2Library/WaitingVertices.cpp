// Searching among vertices on one line.
// When they are asked for, and what becomes of duplicates, is decided in VertexVault and its owner.

#include "WaitingVertices.h"

#include "HashTable.h"
#include "SegmentTable.h"

namespace QUOR_KELM25D {

namespace {

/// Of several vertices at one place the one that stays, as far as is known.
struct Staying {
    Point2* pVtx = nullptr;
    std::size_t position = 0;
    bool isFree() const noexcept { return pVtx == nullptr; }
    std::uint64_t getHash() const noexcept { return hashOfPlace(pVtx->x(), pVtx->y()); }
};

} // namespace

std::size_t WaitingVertices::PlaceHash::operator()(const Place& place) const noexcept {
    return standardHash(hashOfPlace(place.first, place.second));
}

Point2* WaitingVertices::find(const Point2& point) {
    for (; numHashed < vEntries.size(); ++numHashed) {
        const IdxVtx& entry = vEntries[numHashed];
        if (entry.bActive) mWaiting.emplace(placeOf(*entry.pVtx), entry.pVtx);
    }
    const auto it = mWaiting.find(placeOf(point));
    return it != mWaiting.end() ? it->second : nullptr;
}

bool WaitingVertices::getFirstTriple(Point2*& a, Point2*& b, Point2*& c) {
    for (; numCollinear < vEntries.size(); ++numCollinear) {
        const IdxVtx& entry = vEntries[numCollinear];
        if (!entry.bActive) continue;
        if (firstOfLine == npos) {
            firstOfLine = numCollinear;
            continue;
        }
        Point2* pFirst = vEntries[firstOfLine].pVtx;
        if (secondOfLine == npos) {
            if (*entry.pVtx != *pFirst) secondOfLine = numCollinear;
            continue;
        }
        Point2* pSecond = vEntries[secondOfLine].pVtx;
        const Orientation2 orientation = quorTest.getOrientation2Filtered(pFirst, pSecond, entry.pVtx);
        if (orientation == ORIENTATION2_COLLINEAR) continue;
        a = pFirst;
        b = pSecond;
        c = entry.pVtx;
        if (orientation == ORIENTATION2_CW) std::swap(b, c);
        return true;
    }
    return false;
}

std::vector<WaitingVertices::Duplicate> WaitingVertices::findDuplicates() const {
    std::vector<Duplicate> vDuplicates;
    HashTable<Staying> staying(vEntries.size());
    for (std::size_t i = 0; i < vEntries.size(); ++i) {
        if (!vEntries[i].bActive) continue;
        Staying current{vEntries[i].pVtx, i};
        Staying& other = staying.find(current.getHash(),
                                      [&](const Staying& record) { return *record.pVtx == *current.pVtx; });
        if (other.isFree()) {
            staying.fill(other, current);
            continue;
        }
        if (SegmentTable::isConstraintVertex(current.pVtx)) std::swap(current, other);
        vDuplicates.push_back({current.position, other.pVtx});
    }
    return vDuplicates;
}

void WaitingVertices::entryLeft(std::size_t position) {
    if (position < numHashed) mWaiting.erase(placeOf(*vEntries[position].pVtx));
    if (position == firstOfLine || position == secondOfLine) forgetLine();
}

void WaitingVertices::forget() noexcept {
    PlaceMap().swap(mWaiting);
    numHashed = 0;
    forgetLine();
}

void WaitingVertices::forgetLine() noexcept {
    numCollinear = 0;
    firstOfLine = secondOfLine = npos;
}

} // namespace QUOR_KELM25D
