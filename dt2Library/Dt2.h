// One triangulation: the owner of all its vertices and triangles, and every operation on them.
// The public face is Kelm_2D; vertices by place are found in VertexVault, signs are decided in QuorTest.
//
// The triangles cover exactly the convex hull of the inserted points. There is no bounding triangle and no
// ghost triangle: an edge on the hull has a null neighbour, and nothing is triangulated until three points
// that are not collinear exist. All decisions are made in the xy plane.
//
// Members are grouped under the file that defines them.
#pragma once

#include "HC2.h"
#include "ProgressPublisher.h"
#include "QuorTest.h"
#include "SimplePool.h"
#include "VertexVault.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/Edge2.h>
#include <kelm25d/TriangleAroundVertexIterator.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class Dt2 {
public:
    // --- Dt2.cpp: construction, single points, reading, settings ------------------------------------------

    /// numExpectedVertices sizes the first blocks of the pools and is no limit.
    explicit Dt2(unsigned numExpectedVertices);
    ~Dt2();
    Dt2(const Dt2&) = delete;
    Dt2& operator=(const Dt2&) = delete;

    Point2* insertPoint(const Point2& p);
    bool is2D() const noexcept { return vertexVault.isFullDimensional(); }
    unsigned numberOfPoints() const noexcept { return static_cast<unsigned>(vertexVault.numberOfPoints()); }
    unsigned numberOfTriangles() const;
    void getTrianglePointers(std::vector<Triangle2*>& vTriangles) const;
    void getVertexPointers(std::vector<Point2*>& vVertices) const;
    int setNumCPU(int numCPU_);
    void setDev(const std::string& key, int iValue, double dValue);
    const std::string& getName() const noexcept { return name; }
    void setName(const std::string& name_) { name = name_; }
    void subscribe(MsgType msgType, MsgBase* pReceiver) { progress.subscribe(msgType, pReceiver); }
    void unsubscribe(MsgType msgType, MsgBase* pReceiver) { progress.unsubscribe(msgType, pReceiver); }

    // --- Dt2_bulk.cpp: many points at once ----------------------------------------------------------------

    void insertVector(const std::vector<Point2>& v, std::vector<Point2*>* pvHandles = nullptr);
    void insertArray(int numPoints, const double* aCoordinates, Point2** aHandles);
    double measureTriangulationTime(const std::vector<Point2>& v) const;

    // --- Dt2_location.cpp: the walk, splits and flips -----------------------------------------------------

    /// Puts a stored vertex into the mesh; the result is a triangle near it, the start for the next one.
    Triangle2* insertVertex(Point2* q, Triangle2* pStart);
    /// Walks from pT to q. -1: q lies in pT, on its inner edge edgeIdx unless that is -1. 0 to 2: q lies
    /// outside the hull or on it, and that is the hull edge of pT to start from. 4: q has the place of a
    /// corner of pT.
    int locateFrom(const Point2* q, Triangle2*& pT, int& edgeIdx);
    /// Turns edge i of pT around without any test. What stood at index i of pT then stands at index 0 of both
    /// triangles.
    void flip(Triangle2* pT, int i);
    /// Whether the edge has a neighbour and the two triangles form a strictly convex quadrilateral.
    bool canBeFlipped(const Triangle2* pT, int i);
    /// Restores the Delaunay property around a vertex by flips that spread from its link.
    void legalizeAround(Point2* pVtx);

    // --- Dt2_removal.cpp ----------------------------------------------------------------------------------

    /// Takes a vertex of the hull out of the mesh, and out of the vault with bDeactivate.
    void remove(Point2* pVtx, bool bDeactivate);

    // --- Dt2_output.cpp -----------------------------------------------------------------------------------

    void writeObj(const std::string& filename) const;

private:
    // --- Dt2.cpp ------------------------------------------------------------------------------------------

    bool startTriangulation(std::size_t numPreExistingVtx);
    void followBoxGrowth();
    Triangle2* createTriangle(Point2* a, Point2* b, Point2* c);
    void recycleTriangle(Triangle2* pT);

    // --- Dt2_bulk.cpp -------------------------------------------------------------------------------------

    template <class AddVertices>
    void insertBulk(const char* label, std::size_t numPoints, std::vector<Point2*>* pvHandles,
                    const AddVertices& addVertices);
    void insertRange(VertexVault::EntryIterator first, VertexVault::EntryIterator last, Triangle2* pHint);
    void insertRangeSequential(VertexVault::EntryIterator first, VertexVault::EntryIterator last,
                               Triangle2* pHint);
    bool createFakeBox();
    void removeFakeBox();

    // --- Dt2_location.cpp ---------------------------------------------------------------------------------

    Triangle2* splitTriangle(Triangle2* pT, Point2* q);
    Triangle2* splitEdge(Triangle2* pT, Point2* q, int edgeIdx);
    Triangle2* splitHullEdge(Triangle2* pT, Point2* q, int edgeIdx);
    Triangle2* extendHull(Point2* q, Triangle2* pT, int edgeIdx);
    Triangle2* triangulateCoplanarOrDuplicate(Point2* q, Triangle2* pT, int result);
    void collectHullBackward(const Point2* q, Edge2 edge);
    void collectHullForward(const Point2* q, Edge2 edge);
    void legalizeFlipStack(const Point2* q);
    void legalizePasses(const Point2* q);
    bool isInsideCircle(const Triangle2* pT, const Point2* q);

    // --- Dt2_removal.cpp ----------------------------------------------------------------------------------

    void cutEarsOff(Point2* pVtx, std::vector<Triangle2*>& vFlipped);
    void dissolveFan(Point2* pVtx);
    void repairDelaunay(std::vector<Triangle2*>& vPass);

    int numCPU = 1;                                             // workers of bulk operations
    std::map<std::string, std::pair<int, double>> mDevSettings; // written by setDev, read by nothing
    std::vector<Point2*> vRemovedVertices;                      // their storage stays in the pool
    HC2 hilbert;                                                // over the doubled box
    QuorTest quorTest;                                          // its range covers every vertex
    SimplePool<Triangle2> trianglePool;
    SimplePool<Point2> vertexPool;
    VertexVault vertexVault;
    Bbox2 bbox; // of all points ever inserted, doubled on growth; wired to quorTest
    std::vector<Triangle2*>
        vDeadTriangles; // cleared triangles ready for reuse; all others of the pool are in use
    std::string name;
    ProgressPublisher progress;

    // Scratch of the inner loop, empty between calls.
    std::vector<Triangle2*> vFlipStack;
    std::vector<Triangle2*> vPass, vNextPass;
    std::vector<Edge2> vHullEdges;
};

} // namespace QUOR_KELM25D
