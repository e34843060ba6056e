// The vertex store: every vertex of a triangulation, ordered along the Hilbert curve.
// The vertices' storage is the pool of Mesh2; what happens to triangles is decided there too. Vertices before
// there is a mesh are the subject of WaitingVertices, those found redundant of VertexDuplicates; both are
// reached through here only.
//
// The index is a sequence of entries whose first numSorted elements stand in key order; later ones stand as
// they were added and are merged in when they pass a third of the whole. A binary search in the sorted part
// replaces a spatial tree: the vertex found is close to the query, and so is its incident triangle. A removed
// vertex only loses its active flag until the next rebuild.
//
// A vertex has an incident triangle if and only if it is part of the mesh. Active vertices without one wait
// for the set to become two-dimensional; searches for a start triangle pass over them.
#pragma once

#include "HC2.h"
#include "QuorTest.h"
#include "SimplePool.h"
#include "VertexDuplicates.h"
#include "WaitingVertices.h"
#include "hilbertSort.h"

#include <kelm25d/Bbox2.h>

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace QUOR_KELM25D {

class VertexVault {
public:
    using EntryIterator = const IdxVtx*;

    /// Bulk operations below this length, and with fewer than ten times as many points as CPUs, use one
    /// thread: starting others costs more than it saves.
    static constexpr std::size_t minParallel = 20000;

    /// What the vault uses of its owner, which outlives it. numCPU is read at each call.
    VertexVault(SimplePool<Point2>& vertexPool, const HC2& hilbert, QuorTest& quorTest, const int& numCPU);
    VertexVault(const VertexVault&) = delete;
    VertexVault& operator=(const VertexVault&) = delete;
    ~VertexVault();

    // --- adding -------------------------------------------------------------------------------------------

    /// A new vertex with the point's coordinates and custom index, not yet part of anything.
    Point2* makeVertex(const Point2& p) { return new (vertexPool.allocate()) Point2(p); }
    /// Appends one active entry, unsorted.
    void addVertex(std::uint32_t key, Point2* pVtx);
    /// Copies points into new vertices and appends their entries in Hilbert order; handles, if wanted, in
    /// input order. firstIdx becomes the position of the first new entry.
    void addVertices(const std::vector<Point2>& vPoints, std::vector<Point2*>* pvHandles,
                     std::size_t& firstIdx);
    /// The same from n triples x, y, z; custom index -1.
    void addVertices(int n, const double* xyz, std::vector<Point2*>* pvHandles, std::size_t& firstIdx);

    // --- searching ----------------------------------------------------------------------------------------

    /// A triangle close to the key, and where there is a choice close to q; never null. Only when
    /// full-dimensional.
    Triangle2* getCloT(std::uint32_t key, const Point2& q) const;
    /// Position of the active entry of that vertex; 2147483647 and an error line if there is none.
    std::size_t getIdxOfActiveVtx(const Point2* pQuery) const;
    /// Whether it is a vertex of this vault and active.
    bool isActive(const Point2* pVtx) const { return findVertex(pVtx) != npos; }
    /// The active vertex with equal x and y, or null.
    Point2* getVertexPointer(const Point2& point) const;
    /// The waiting vertex with equal x and y, or null. Only while not full-dimensional.
    Point2* findWaiting(const Point2& point) { return waiting.find(point); }
    /// Three vertices that make a first triangle, counterclockwise, in index order but for that. Only while
    /// not full-dimensional; false if all points are collinear.
    bool getFirstTriple(Point2*& a, Point2*& b, Point2*& c);

    // --- reading ------------------------------------------------------------------------------------------

    bool isFullDimensional() const noexcept { return bFullDimensional; }
    std::size_t size() const noexcept { return vIdxVtxAct.size(); }
    std::size_t numberOfPoints() const noexcept { return vIdxVtxAct.size() - numInactive; }
    /// The entries from a position to the end; valid until the index changes.
    void getRange(std::size_t firstIdx, EntryIterator& begin, EntryIterator& end) const;
    /// Replaces the argument by all active vertices in index order.
    void getVertexPointers(std::vector<Point2*>& vVertices) const;
    /// The incident triangle of the first active vertex that has one; null before full-dimensional.
    Triangle2* getOneValidTriangle() const noexcept;
    /// Box of the active vertices, wired to nothing; invalid if there are none.
    Bbox2 computeBoundingBox() const;

    // --- upkeep -------------------------------------------------------------------------------------------

    void setFullDimensional(bool bFull) noexcept;
    /// Sorts the first n entries along the curve, and along finer ones where many share a key. For vertices
    /// that have waited, before they enter the mesh; all of them active, see dropInactive.
    void orderFront(std::size_t n);
    /// Moves the ends of constraint segments to the front of the index, so that of several vertices at one
    /// place such a one stays. The result is their number.
    std::size_t orderConstraintVerticesFirst();
    /// Takes inactive entries out of the index, which keeps its order.
    void dropInactive();
    /// The vertex left the triangulation.
    void deactivate(Point2* pVtx);
    /// Recomputes every key after the Hilbert curve changed.
    void rekey();
    /// Sorts the index and drops inactive entries from its end; with bConditional only when enough has piled
    /// up.
    void sortIfNeeded(bool bConditional);

    // --- duplicates ---------------------------------------------------------------------------------------

    /// No duplicate is pending. True at every moment outside an insertion.
    bool dupIsClean() const noexcept { return duplicates.empty(); }
    /// Records that pDup stands where pExisting already is; nothing if they are the same. Thread safe.
    void addDuplicate(Point2* pDup, Point2* pExisting) { duplicates.add(pDup, pExisting); }
    /// After a bulk insertion: takes redundant vertices out of the index and puts the survivors into the
    /// handles. While not full-dimensional it looks for duplicates itself; the first in index order stays.
    void fixDuplicates(std::vector<Point2*>* pvHandles);
    /// After the insertion of a single vertex that met a duplicate: the surviving vertex.
    Point2* resolveDuplicate(Point2* pNew);

    // --- the frame of four far corners around a bulk insertion with several threads -----------------------

    /// Makes the four corners of the box, which are no entries of the index.
    void createFakeCorners(const Bbox2& box);
    bool hasFakeCorners() const noexcept { return !vFakeBoxHandles.empty(); }
    Point2* getFakeCorner(std::size_t i) const;
    /// Deletes the corners; they must have left the mesh.
    void deleteFakeCorners();

private:
    template <class Source>
    void addFrom(const Source& source, std::vector<Point2*>* pvHandles, std::size_t& firstIdx);
    std::size_t lowerBound(std::uint32_t key) const noexcept;
    template <class Matches>
    std::size_t findActive(std::uint32_t key, const Matches& matches) const;
    void deactivateEntry(IdxVtx& entry) noexcept;
    std::size_t findVertex(const Point2* pQuery) const;
    void entriesMoved();
    void addWaitingDuplicates();
    void deactivateRedundant();

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    SimplePool<Point2>& vertexPool;
    const HC2& hilbert;
    const int& numCPU;

    bool bFullDimensional = false;          // triangles exist
    IdxVtxVector vIdxVtxAct;                // the index
    std::size_t numSorted = 0;              // the first numSorted entries are in order
    std::vector<std::uint32_t> vKeySamples; // of every sampleStep-th sorted entry: small enough for the cache
    std::size_t numDeactivated = 0;         // removals since the last sort
    std::size_t numInactive = 0;            // entries with the flag cleared
    mutable std::size_t lastFound = npos;   // position found last; may hold another entry by now
    std::vector<Point2*> vFakeBoxHandles;   // empty outside a bulk insertion with several threads; owned
    VertexDuplicates duplicates;            // pending; none outside an insertion
    WaitingVertices waiting;                // while not full-dimensional: of vIdxVtxAct

    // Positions by vertex, of the first numPlaced entries: made when scanning has become costly, dropped when
    // entries move.
    using PositionMap = std::unordered_map<const Point2*, std::size_t>;
    mutable PositionMap mPosition;
    mutable std::size_t numPlaced = 0;
    mutable std::size_t numScanned = 0; // entries looked at since entries moved last
};

} // namespace QUOR_KELM25D
