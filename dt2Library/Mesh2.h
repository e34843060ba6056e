// The kernel: all vertices and triangles of one triangulation, and whatever changes or searches them.
// It knows which edges are constrained from a table of segments, and nothing else of constraints; zones,
// files and drawings are built on top of it. Who owns all that is Dt2.
//
// The triangles cover exactly the convex hull of the inserted points. There is no bounding triangle and no
// ghost triangle: an edge on the hull has a null neighbour, and nothing is triangulated until three points
// that are not collinear exist. All decisions are made in the xy plane.
//
// Members are grouped under the file that defines them.
#pragma once

#include "HC2.h"
#include "MeshInserter.h"
#include "ProgressPublisher.h"
#include "QuorTest.h"
#include "SegmentTable.h"
#include "SimplePool.h"
#include "VertexVault.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/Edge2.h>

#include <cstddef>
#include <mutex>
#include <vector>

namespace QUOR_KELM25D {

class MeshListener;

class Mesh2 {
public:
    // --- Mesh2.cpp: construction, single points, reading, settings -----------------------------------------

    /// numExpectedVertices sizes the first blocks of the pools and is no limit.
    explicit Mesh2(unsigned numExpectedVertices);
    ~Mesh2();
    Mesh2(const Mesh2&) = delete;
    Mesh2& operator=(const Mesh2&) = delete;

    /// Listeners are told in the order of registration and outlive all changes of the mesh.
    void addListener(MeshListener* pListener) { vListeners.push_back(pListener); }

    /// pNear, if known, is a triangle near p.
    Point2* insertPoint(const Point2& p, Triangle2* pNear = nullptr);
    bool is2D() const noexcept { return vertexVault.isFullDimensional(); }
    unsigned numberOfPoints() const noexcept { return static_cast<unsigned>(vertexVault.numberOfPoints()); }
    unsigned numberOfTriangles() const;
    void getTrianglePointers(std::vector<Triangle2*>& vTriangles) const;
    void getVertexPointers(std::vector<Point2*>& vVertices) const;
    /// Any triangle; null before is2D().
    Triangle2* getOneTriangle() const noexcept { return vertexVault.getOneValidTriangle(); }
    Bbox2 computeBoundingBox() const { return vertexVault.computeBoundingBox(); }
    /// The box of all points ever inserted, whatever has been removed.
    const Bbox2& getExtent() const noexcept { return extent; }
    int setNumCPU(int numCPU_);
    int getNumCPU() const noexcept { return numCPU; }

    /// After an import that failed, with an error line: the triangles are no triangulation, and nothing that
    /// would walk through them or change them may be done.
    bool isBroken(const char* where) const;
    bool isBroken() const noexcept { return bBroken; }
    void setBroken(bool bBroken_) noexcept { bBroken = bBroken_; }
    /// To be told when triangles were made with no regard to circles: several threads rely on those.
    void setNotDelaunay() noexcept { bMayBeDelaunay = false; }
    /// In import mode vertices enter without flips, but for those on the line of a hull edge.
    bool isImportMode() const noexcept { return bImportMode; }
    void setImportMode(bool bImport) noexcept { bImportMode = bImport; }

    ProgressPublisher& getProgress() noexcept { return progress; }
    QuorTest& getQuorTest() noexcept { return quorTest; }
    SegmentTable& getSegmentTable() noexcept { return segmentTable; }
    const SegmentTable& getSegmentTable() const noexcept { return segmentTable; }

    /// For those who bring triangles of their own: vertices without triangles, for an empty mesh, at places
    /// that are all different; vVertices receives them in input order. Then triangles, which the caller
    /// links, and beginFullDimensional; at the end finishVertices.
    void addVertices(const std::vector<Point2>& vPlaces, std::vector<Point2*>& vVertices);
    void beginFullDimensional() noexcept { vertexVault.setFullDimensional(true); }
    void finishVertices() { vertexVault.sortIfNeeded(false); }
    /// To forget points that were put around all others for a while.
    void setExtent(const Bbox2& extent_) { extent = extent_; }

    Triangle2* createTriangle(Point2* a, Point2* b, Point2* c);
    /// Takes a triangle out of use; whoever has it as a neighbour must be told by the caller.
    void recycleTriangle(Triangle2* pT);

    // --- Mesh2_bulk.cpp: many points at once ---------------------------------------------------------------

    void insertVector(const std::vector<Point2>& v, std::vector<Point2*>* pvHandles = nullptr);
    void insertArray(int numPoints, const double* aCoordinates, Point2** aHandles);
    /// From how many vertices on a bulk insertion uses several threads; at least 1000.
    void setMinParallelInsertion(std::size_t n) { minParallelInsertion = n; }
    double measureTriangulationTime(const std::vector<Point2>& v) const;

    /// For the threads of a bulk insertion: a range of stored vertices on the calling thread, fresh triangles
    /// side by side for each thread and their return, and duplicates, which each thread may find.
    void insertRangeSequential(VertexVault::EntryIterator first, VertexVault::EntryIterator last,
                               Triangle2* pHint);
    int createTriangles(int wanted, Triangle2*& pFirst);
    void releaseTriangles(Triangle2* pFirst, int count);
    void addDuplicate(Point2* pDup, Point2* pExisting) { vertexVault.addDuplicate(pDup, pExisting); }
    const Point2* getFakeCorner() const { return vertexVault.getFakeCorner(0); }

    // --- Mesh2_location.cpp: how a vertex enters the mesh, flips -------------------------------------------

    /// Puts a stored vertex into the mesh; the result is a triangle near it, the start for the next one.
    Triangle2* insertVertex(Point2* q, Triangle2* pStart);
    /// Where the walk to q starts. Queries often come along a line or a curve: then at the triangle found
    /// last.
    Triangle2* findStart(const Point2& q) const;
    /// See MeshInserter::locateFrom.
    Location locateFrom(const Point2* q, Triangle2* pStart) { return inserter.locateFrom(q, pStart); }
    /// The hull edges visible from q, which lies outside or on the hull, in counterclockwise hull order. edge
    /// is one of them, or the one that q is on. Good until the next call and until the mesh changes.
    const std::vector<Edge2>& getVisibleHull(const Point2* q, Edge2 edge);
    /// See MeshInserter::flip.
    static void flip(Triangle2* pT, int i) { MeshInserter::flip(pT, i); }
    /// Whether the edge is no constraint and has a neighbour and the two triangles form a strictly convex
    /// quadrilateral.
    bool canBeFlipped(const Triangle2* pT, int i);
    /// Flips in passes until no edge of the given triangles, or of those flipped on the way, violates the
    /// empty circle, but for constraints. Empties the argument.
    void repairDelaunay(std::vector<Triangle2*>& vTriangles);
    /// The same from the triangles around a vertex.
    void legalizeAround(Point2* pVtx);
    /// The same from an edge, if there is one between the two vertices.
    void legalizeEdge(const Point2* a, const Point2* b);

    // --- Mesh2_removal.cpp: vertices leave -----------------------------------------------------------------

    /// Takes a vertex out of the triangulation. Misuse is met with a warning.
    void remove(Point2* pVtx);
    /// Takes a vertex of the hull out of the mesh, and out of the vault with bDeactivate.
    void remove(Point2* pVtx, bool bDeactivate);

    // --- Mesh2_queries.cpp: questions ----------------------------------------------------------------------

    Triangle2* locate(const Point2& p);
    /// The same, but of several triangles that meet at the point always the one with the leftmost centre.
    Triangle2* locateUniquely(const Point2& p);
    /// The edge between two vertices, from a to b if there is a triangle on the left, else from b to a; no
    /// edge if there is none. Linear in the smaller number of neighbours.
    static Edge2 findEdge(const Point2* a, const Point2* b);
    Triangle2* getAdjacentTriangle(Point2* p0, Point2* p1) const;
    void getIncidentTriangles(Point2* pVtx, std::vector<Triangle2*>& vTriangles) const;
    void getIncidentVertices(Point2* pVtx, std::vector<Point2*>& vVertices) const;
    /// Appends the edges of the hull, counterclockwise from the lowest of the leftmost vertices; none before
    /// is2D().
    void getHullEdges(std::vector<Edge2>& vEdges);
    void getConvexHull(bool bAllVertices, std::vector<Point2*>& vHull);
    bool getHeight(double x, double y, double& height, Triangle2* pApproxT, double tolerance);
    /// The height of a triangle's plane at a place in or near it, kept between those of its corners.
    double heightInTriangle(const Triangle2& t, double x, double y);

private:
    // --- Mesh2.cpp -----------------------------------------------------------------------------------------

    bool startTriangulation(std::size_t numPreExistingVtx);
    void coverBox(const Bbox2& added);
    Triangle2* takeTriangle();
    /// Tells all listeners of an event.
    template <class... Arguments>
    void tell(void (MeshListener::*event)(Arguments...), Arguments... arguments) const {
        for (MeshListener* pListener : vListeners) {
            (pListener->*event)(arguments...);
        }
    }

    // --- Mesh2_bulk.cpp ------------------------------------------------------------------------------------

    template <class AddVertices>
    void insertBulk(const char* label, std::size_t numPoints, std::vector<Point2*>* pvHandles,
                    const AddVertices& addVertices);
    void insertRange(VertexVault::EntryIterator first, VertexVault::EntryIterator last, Triangle2* pHint);
    bool extendBox(const std::vector<Point2>& v);
    bool needsFrame(std::size_t n) const noexcept;
    bool createFakeBox();
    void removeFakeBox();

    // --- Mesh2_location.cpp --------------------------------------------------------------------------------

    Triangle2* splitHullEdge(Triangle2* pT, Point2* q, int edgeIdx);
    Triangle2* extendHull(Point2* q, Edge2 edge);
    void legalizeHull(const Point2* q);
    bool violatesCircle(const Triangle2* pT, int i);

    // --- Mesh2_removal.cpp ---------------------------------------------------------------------------------

    Triangle2* flipEar(const Point2* pVtx, Triangle2* pT);
    void reduceDegree(const Point2* pVtx, int degree, std::vector<Triangle2*>& vFlipped);
    void reportWatchDog(const Point2* pVtx, int degree) const;
    void closeHole(const Point2* pVtx, std::vector<Triangle2*>& vFlipped);
    void cutEarsOff(Point2* pVtx, std::vector<Triangle2*>& vFlipped);
    void dissolveFan(Point2* pVtx);

    // --- Mesh2_queries.cpp ---------------------------------------------------------------------------------

    bool getHeightNearHull(const Point2& query, double& height, double tolerance);

    int numCPU = 1; // workers of bulk operations
    std::size_t minParallelInsertion = VertexVault::minParallel;
    std::vector<MeshListener*> vListeners; // not owned
    std::vector<Point2*> vRemovedVertices; // their storage stays in the pool
    HC2 hilbert;                           // over the doubled box
    QuorTest quorTest;                     // its range covers every vertex
    SegmentTable segmentTable;             // which edges are constrained; filled by who makes constraints
    MeshInserter inserter{quorTest, segmentTable};
    SimplePool<Triangle2> trianglePool;
    SimplePool<Point2> vertexPool;
    VertexVault vertexVault;
    Bbox2 bbox;                      // of all points ever inserted, doubled on growth; wired to quorTest
    Bbox2 extent;                    // the same, not doubled
    Triangle2* pLastFound = nullptr; // by the last search; may be dead or far off by now
    std::vector<Triangle2*> vDeadTriangles; // cleared, ready for reuse; all others of the pool are in use
    std::mutex mtxFreshTriangles;           // guards the pool in createTriangles
    ProgressPublisher progress;
    bool bImportMode = false;   // vertices enter without flips, while triangles are being cut
    bool bBroken = false;       // the triangles are no triangulation: nothing may walk through them
    bool bMayBeDelaunay = true; // no triangle was ever made with no regard to circles

    // Scratch of the inner loop, empty between calls.
    std::vector<Triangle2*> vPass, vNextPass;
    std::vector<Edge2> vHullEdges;
};

/// While it lives vertices enter a mesh without flips, if so wanted.
class ImportMode {
public:
    ImportMode(Mesh2& mesh_, bool bImport) : mesh(mesh_), bBefore(mesh_.isImportMode()) {
        mesh.setImportMode(bImport);
    }
    ~ImportMode() { mesh.setImportMode(bBefore); }
    ImportMode(const ImportMode&) = delete;
    ImportMode& operator=(const ImportMode&) = delete;

private:
    Mesh2& mesh;
    bool bBefore;
};

} // namespace QUOR_KELM25D
