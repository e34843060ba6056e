// What is known of the vertices while all of them lie on one line: which one stands at a place, and which
// three could begin the mesh.
// They stand in the index of VertexVault, which tells when entries leave it or move. Nothing is changed here.
//
// A long line of points that arrive one by one must not be searched anew for each. So both questions remember
// how many leading entries they have looked at, and what they found there, until entries move.
#pragma once

#include "QuorTest.h"
#include "hilbertSort.h"

#include <kelm25d/Point2.h>

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class WaitingVertices {
public:
    /// A vertex where another one is already.
    struct Duplicate {
        std::size_t position; // in the index
        Point2* pExisting;
    };

    /// Both outlive it.
    WaitingVertices(const IdxVtxVector& vEntries_, QuorTest& quorTest_)
        : vEntries(vEntries_), quorTest(quorTest_) {}

    /// The active vertex with equal x and y, or null.
    Point2* find(const Point2& point);
    /// Three active vertices that make a triangle, counterclockwise, in index order but for that. False if
    /// all are collinear.
    bool getFirstTriple(Point2*& a, Point2*& b, Point2*& c);
    /// Of active vertices at one place the first in index order stays, but an end of a constraint segment
    /// does in any case; these are the others.
    std::vector<Duplicate> findDuplicates() const;

    /// The entry at a position is active no more.
    void entryLeft(std::size_t position);
    /// Entries have moved, or wait no longer.
    void forget() noexcept;

private:
    using Place = std::pair<double, double>;
    struct PlaceHash {
        std::size_t operator()(const Place& place) const noexcept;
    };
    using PlaceMap = std::unordered_map<Place, Point2*, PlaceHash>;

    static Place placeOf(const Point2& p) noexcept { return Place(p.x(), p.y()); }
    void forgetLine() noexcept;

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    const IdxVtxVector& vEntries;
    QuorTest& quorTest;

    PlaceMap mWaiting; // of the first numHashed entries, the active ones
    std::size_t numHashed = 0;
    std::size_t numCollinear = 0;                        // leading entries that are known to hold no triple
    std::size_t firstOfLine = npos, secondOfLine = npos; // two different active points among them
};

} // namespace QUOR_KELM25D
