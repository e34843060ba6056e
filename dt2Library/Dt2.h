// One triangulation: the owner of all its vertices and triangles, and every operation on them.
// The public face is Kelm_2D; vertices by place are found in VertexVault, signs are decided in QuorTest.
//
// The triangles cover exactly the convex hull of the inserted points. There is no bounding triangle and no
// ghost triangle: an edge on the hull has a null neighbour, and nothing is triangulated until three points
// that are not collinear exist. All decisions are made in the xy plane.
//
// Members are grouped under the file that defines them.
#pragma once

#include "ConstraintMgr.h"
#include "HC2.h"
#include "InnerVtxMgr.h"
#include "MeshInserter.h"
#include "ProgressPublisher.h"
#include "QuorTest.h"
#include "SegmentTable.h"
#include "SimplePool.h"
#include "VertexVault.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/Edge2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/TriangleAroundVertexIterator.h>
#include <kelm25d/ZoneLocation.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class LeafWalk;
class Visualizer2;
class Visualizer3;
class Zone2;

/// Name prefix of a debug drawing: a process-wide count in five columns, so that the files of a run stay
/// apart and in order.
std::string nextDebugPrefix();

class Dt2 {
public:
    // --- Dt2.cpp: construction, single points, reading, settings ------------------------------------------

    /// numExpectedVertices sizes the first blocks of the pools and is no limit.
    explicit Dt2(unsigned numExpectedVertices);
    ~Dt2();
    Dt2(const Dt2&) = delete;
    Dt2& operator=(const Dt2&) = delete;

    /// pNear, if known, is a triangle near p.
    Point2* insertPoint(const Point2& p, Triangle2* pNear = nullptr);
    /// After an import that failed, with an error line: the triangles are no triangulation, and nothing that
    /// would walk through them or change them may be done.
    bool isBroken(const char* where) const;
    /// To be told when triangles were made with no regard to circles: several threads rely on those.
    void setNotDelaunay() noexcept { bMayBeDelaunay = false; }
    bool is2D() const noexcept { return vertexVault.isFullDimensional(); }
    unsigned numberOfPoints() const noexcept { return static_cast<unsigned>(vertexVault.numberOfPoints()); }
    unsigned numberOfTriangles() const;
    void getTrianglePointers(std::vector<Triangle2*>& vTriangles) const;
    void getVertexPointers(std::vector<Point2*>& vVertices) const;
    int setNumCPU(int numCPU_);
    int getNumCPU() const noexcept { return numCPU; }
    void setDev(const std::string& key, int iValue, double dValue);
    const std::string& getName() const noexcept { return name; }
    void setName(const std::string& name_) { name = name_; }
    void subscribe(MsgType msgType, MsgBase* pReceiver) { progress.subscribe(msgType, pReceiver); }
    void unsubscribe(MsgType msgType, MsgBase* pReceiver) { progress.unsubscribe(msgType, pReceiver); }

    ProgressPublisher& getProgress() noexcept { return progress; }
    QuorTest& getQuorTest() noexcept { return quorTest; }
    ConstraintMgr& getConstraintMgr() noexcept { return constraintMgr; }
    InnerVtxMgr& getInnerVtxMgr() noexcept { return innerVtxMgr; }

    // --- Dt2_bulk.cpp: many points at once ----------------------------------------------------------------

    void insertVector(const std::vector<Point2>& v, std::vector<Point2*>* pvHandles = nullptr);
    void insertArray(int numPoints, const double* aCoordinates, Point2** aHandles);
    /// From how many vertices on a bulk insertion uses several threads; at least 1000.
    void setMinParallelInsertion(std::size_t n) { minParallelInsertion = n; }
    double measureTriangulationTime(const std::vector<Point2>& v) const;

    // --- Dt2_location.cpp: how a vertex enters the mesh ---------------------------------------------------

    /// Puts a stored vertex into the mesh; the result is a triangle near it, the start for the next one.
    Triangle2* insertVertex(Point2* q, Triangle2* pStart);
    /// See MeshInserter::locateFrom.
    int locateFrom(const Point2* q, Triangle2*& pT, int& edgeIdx) {
        return inserter.locateFrom(q, pT, edgeIdx);
    }
    /// See MeshInserter::flip.
    static void flip(Triangle2* pT, int i) { MeshInserter::flip(pT, i); }
    /// Whether the edge is no constraint and has a neighbour and the two triangles form a strictly convex
    /// quadrilateral.
    bool canBeFlipped(const Triangle2* pT, int i);
    /// Restores the Delaunay property around a vertex by flips that spread from its link.
    void legalizeAround(Point2* pVtx);

    // --- Dt2_constraints.cpp: edges by order --------------------------------------------------------------

    ConstraintGraph2* createConstraint(const std::vector<Segment2>& vSegments,
                                       ConstraintInsertionStrategy cis, bool bOrientedSegments);
    void applyConstraintsAndZones();
    bool isConstraint(const Point2* p0, const Point2* p1) const;
    bool isConstraint(const Triangle2* pT, int ith) const;
    bool isConstraint(const Point2* pVtx) const;
    ConstraintSegment2* getConstraintSegment(const Point2* p0, const Point2* p1) const;
    void getAliveConstraintSegments(std::vector<ConstraintSegment2*>& vSegments) const {
        constraintMgr.getAliveSegments(vSegments);
    }
    void getAliveAndDeadConstraintSegments(std::vector<ConstraintSegment2*>& vSegments) const {
        constraintMgr.getAllSegments(vSegments);
    }
    static Edge2 findEdge(const Point2* a, const Point2* b);
    /// Inserts an alive segment by force, and all pieces into which that divides it and others.
    void newCDT_applyOneCS(ConstraintSegment2* pInitialCSeg);
    void newCDT_legalizeEdge(const Point2* a, const Point2* b);
    /// One step of conforming insertion: nothing if the segment is an edge, else one division.
    void insertSegmentConformingDelaunay(ConstraintSegment2* pCSeg);

    // --- Dt2_removal.cpp: vertices leave ------------------------------------------------------------------

    /// Takes a vertex out of the triangulation. Misuse is met with a warning.
    void remove(Point2* pVtx);
    /// Takes a vertex of the hull out of the mesh, and out of the vault with bDeactivate.
    void remove(Point2* pVtx, bool bDeactivate);

    // --- Dt2_queries.cpp: questions -----------------------------------------------------------------------

    Triangle2* locate(const Point2& p);
    Triangle2* getAdjacentTriangle(Point2* p0, Point2* p1) const;
    void getIncidentTriangles(Point2* pVtx, std::vector<Triangle2*>& vTriangles) const;
    void getIncidentVertices(Point2* pVtx, std::vector<Point2*>& vVertices) const;
    Bbox2 computeBoundingBox() const { return vertexVault.computeBoundingBox(); }
    void getConvexHull(bool bAllVertices, std::vector<Point2*>& vHull);
    bool getHeight(double x, double y, double& height, Triangle2* pApproxT, double tolerance);

    // --- Dt2_drape.cpp: lines over the surface -------------------------------------------------------------

    bool drape(const std::vector<Segment2>& vIn, std::vector<Segment2>& vOut, double zTolerance);

    // --- Dt2_validity.cpp: the check of the whole ----------------------------------------------------------

    bool checkValidity(bool bCheckEmptyCircleProperty, const std::string& msg);
    void statistics(const std::string& s) const;

    // --- Dt2_zones.cpp: sets of triangles ------------------------------------------------------------------

    /// The forms of Kelm_2D. All zones belong to this triangulation.
    Zone2* createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc);
    Zone2* createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc,
                      const Point2& startPoint);
    Zone2* createZone(const std::vector<Triangle2*>& vTriangles);
    Zone2* createZone_cookieCutter(const std::vector<Segment2>& vSegments, bool bWithConstraints);
    /// ZL_INSIDE or ZL_OUTSIDE of several graphs.
    Zone2* createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc);
    /// ZL_BOUNDED, of the edges of a border, counterclockwise around the zone.
    Zone2* createZone(const std::vector<Edge2>& vEdges, ZoneLocation zoneLoc);
    void deleteZone(Zone2* pZone);
    /// Appends for each point in turn the triangles that are reached from the one there without crossing
    /// edges of the graphs, by address. One region of two points is appended twice.
    void growZoneArea(const std::vector<ConstraintGraph2*>& vConstraintGraphs,
                      const std::vector<Point2>& vPoints, std::vector<Triangle2*>& vTriangles);
    /// The triangle at a point, of several that meet there always the same; null outside the hull.
    Triangle2* getStartTriangle(const Point2& point);
    /// Any triangle; null before is2D().
    Triangle2* getOneTriangle() const noexcept { return vertexVault.getOneValidTriangle(); }
    const SegmentTable& getSegmentTable() const noexcept { return segmentTable; }

    // --- Dt2_import.cpp: a given mesh ----------------------------------------------------------------------

    /// Makes given triangles, three points each, the mesh, and fills everything around them.
    Zone2* CAT_importTriangles(std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                               bool bCreateExtendedBoundingBox);

    // --- Dt2_cutting.cpp: knives ---------------------------------------------------------------------------

    /// Cuts the triangles along segments; the pieces of each are appended to vCSegsOut.
    void CUTT_cutTriangles(const std::vector<Segment2>& vSegments, bool bWithConstraints,
                           std::vector<ConstraintSegment2*>& vCSegsOut);
    /// Makes pA to pB a chain of constraint segments through vertices, which the result has in order.
    void CUTT_insertConstraintSegments(Point2* pA, Point2* pB, const std::vector<Point2*>& vSplitPoints,
                                       std::vector<Point2*>& vSortedPoints);

    // --- Dt2_output.cpp, Dt2_drawing.cpp, Dt2_geomview.cpp, Dt2_files.cpp: files ---------------------------

    /// With a zone its triangles only, here and in writeWebScene.
    void writeObj(const std::string& filename, const Zone2* pZone) const;
    void show(Visualizer2* pVisualizer, bool bWithConstraints) const;
    void showGeomview(const std::string& filename, const std::string& color) const;
    void showGeomview(Visualizer3* pVisualizer) const;
    void writeWebScene(const char* path, const Zone2* pZone) const;
    bool save(const char* filename) const;
    bool load(const char* filename);

private:
    friend class Chunk;
    friend class FreshTriangles;
    friend class InserterMT;
    class Cut;
    class ImportMode;
    class Trace;

    // --- Dt2.cpp ------------------------------------------------------------------------------------------

    bool startTriangulation(std::size_t numPreExistingVtx);
    void coverBox(const Bbox2& added);
    Triangle2* takeTriangle();
    Triangle2* createTriangle(Point2* a, Point2* b, Point2* c);
    void recycleTriangle(Triangle2* pT);

    // --- Dt2_bulk.cpp -------------------------------------------------------------------------------------

    template <class AddVertices>
    void insertBulk(const char* label, std::size_t numPoints, std::vector<Point2*>* pvHandles,
                    const AddVertices& addVertices);
    void insertRange(VertexVault::EntryIterator first, VertexVault::EntryIterator last, Triangle2* pHint);
    void insertRangeSequential(VertexVault::EntryIterator first, VertexVault::EntryIterator last,
                               Triangle2* pHint);
    int createTriangles(int wanted, Triangle2*& pFirst);
    void releaseTriangles(Triangle2* pFirst, int count);
    void addDuplicate(Point2* pDup, Point2* pExisting) { vertexVault.addDuplicate(pDup, pExisting); }
    const Point2* getFakeCorner() const { return vertexVault.getFakeCorner(0); }
    bool extendBox(const std::vector<Point2>& v);
    bool needsFrame(std::size_t n) const noexcept;
    bool createFakeBox();
    void removeFakeBox();

    // --- Dt2_location.cpp ---------------------------------------------------------------------------------

    Triangle2* findStart(const Point2& q) const;
    Triangle2* splitHullEdge(Triangle2* pT, Point2* q, int edgeIdx);
    Triangle2* extendHull(Point2* q, Triangle2* pT, int edgeIdx);
    Triangle2* triangulateCoplanarOrDuplicate(Point2* q, Triangle2* pT, int result);
    void collectVisibleHull(const Point2* q, Edge2 edge);
    void collectHullBackward(const Point2* q, Edge2 edge);
    void collectHullForward(const Point2* q, Edge2 edge);
    void legalizePasses(const Point2* q);
    bool violatesCircle(const Triangle2* pT, int i);
    void legalizeEdges(std::vector<Edge2>& vStack);

    // --- Dt2_constraints.cpp ------------------------------------------------------------------------------

    /// Where a segment that is being inserted crosses another one.
    struct Crossing {
        Point2 splitPoint;
        ConstraintSegment2* pCrossingCSeg = nullptr; // alive; null: no crossing
        Edge2 edge;                                  // of the mesh, which is that segment
    };
    /// An edge of a polygon that is to be triangulated, from pSrc to where the next one begins.
    struct ChainEdge {
        Point2* pSrc;
        Triangle2* pHolder; // one of the triangles being removed: its neighbour idx is the one outside
        int idx;
    };
    Point2* newCDT_insertCrossing(const Crossing& crossing);
    bool newCDT_divide(ConstraintSegment2* pCSeg, Point2* pSplit);
    bool newCDT_divideAtCrossing(ConstraintSegment2* pCSeg, const Crossing& crossing);
    void newCDT_treatOneCS(ConstraintSegment2* pCSeg, LeafWalk& walk);
    Point2* newCDT_traverseCZ(const ConstraintSegment2* pCSeg, Crossing& crossing);
    Point2* newCDT_walk(const ConstraintSegment2* pCSeg, Crossing& crossing);
    static bool newCDT_isEdge(Point2*& pStart, Point2*& pStop);
    Point2* newCDT_leaveStart(const Point2* pStart, const Point2* pStop, Triangle2*& pT);
    void newCDT_replaceCorridor(Point2* pStart, Point2* pStop);
    Triangle2* newCDT_triangulateSide(std::vector<ChainEdge>& vChain, Point2* pEnd,
                                      std::vector<Triangle2*>& vNew);

    // --- Dt2_removal.cpp ----------------------------------------------------------------------------------

    Triangle2* flipEar(const Point2* pVtx, Triangle2* pT);
    void reduceDegree(const Point2* pVtx, int degree, std::vector<Triangle2*>& vFlipped);
    void reportWatchDog(const Point2* pVtx, int degree) const;
    void closeHole(const Point2* pVtx, std::vector<Triangle2*>& vFlipped);
    void cutEarsOff(Point2* pVtx, std::vector<Triangle2*>& vFlipped);
    void dissolveFan(Point2* pVtx);
    void repairDelaunay(std::vector<Triangle2*>& vPass);

    // --- Dt2_queries.cpp ----------------------------------------------------------------------------------

    void getHullEdges(std::vector<Edge2>& vEdges);
    double heightInTriangle(const Triangle2& t, double x, double y);
    bool getHeightNearHull(const Point2& query, double& height, double tolerance);

    // --- Dt2_validity.cpp ---------------------------------------------------------------------------------

    bool checkConstraints(const std::string& msg) const;

    // --- Dt2_zones.cpp ------------------------------------------------------------------------------------

    Zone2* keep(Zone2* pZone);
    bool findStartPoint(const std::vector<Triangle2*>& vComponent, Point2& startPoint);
    ConstraintGraph2* freezeHull();
    void keepInsideHull(ConstraintGraph2* pHullGraph, std::vector<Triangle2*>& vTriangles);

    // --- Dt2_import.cpp -----------------------------------------------------------------------------------

    struct TriangleImport;
    bool CAT_checkInput(const std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                        TriangleImport& import) const;
    void CAT_createVertices(TriangleImport& import);
    bool CAT_reorient(std::vector<Point2>& vPoints, TriangleImport& import);
    void CAT_createInnerTriangles(TriangleImport& import);
    static void CAT_connect(const TriangleImport& import, std::uint32_t id0, std::uint32_t id1);
    bool CAT_createBorders(const TriangleImport& import, std::vector<ConstraintGraph2*>& vGraphs,
                           std::vector<Segment2>& vBorderSegments);
    std::vector<Point2*> CAT_addBoxCorners(Dt2& temporary, TriangleImport& import);
    bool CAT_createOuterTrianglesAndConnect(const Dt2& temporary, TriangleImport& import);
    void CAT_createOuterTriangle(TriangleImport& import, const std::uint32_t* aNumber);
    std::pair<std::size_t, std::size_t> CAT_countNotCCW(const std::vector<Point2>& vPoints);
    bool CAT_checkClosed(const TriangleImport& import, bool bAllCCW) const;
    static void CAT_reportAdditionalVertex(const std::vector<Triangle2*>& vTriangles, const Point2& vertex,
                                           const Bbox2& frame);
    static void CAT_reportOpenEdges(const std::vector<Triangle2*>& vTriangles,
                                    const std::vector<Segment2>& vSuspects);

    // --- Dt2_output.cpp -----------------------------------------------------------------------------------

    bool canBeShown() const;

    int numCPU = 1; // workers of bulk operations
    std::size_t minParallelInsertion = VertexVault::minParallel;
    std::map<std::string, std::pair<int, double>> mDevSettings; // written by setDev, read by nothing
    std::vector<Point2*> vRemovedVertices;                      // their storage stays in the pool
    HC2 hilbert;                                                // over the doubled box
    QuorTest quorTest;                                          // its range covers every vertex
    SegmentTable segmentTable;                                  // of the segments of constraintMgr
    MeshInserter inserter{quorTest, segmentTable};
    SimplePool<Triangle2> trianglePool;
    SimplePool<Point2> vertexPool;
    VertexVault vertexVault;
    Bbox2 bbox;                      // of all points ever inserted, doubled on growth; wired to quorTest
    Bbox2 extent;                    // the same, not doubled
    Triangle2* pLastFound = nullptr; // by the last search; may be dead or far off by now
    std::vector<Triangle2*> vDeadTriangles; // cleared, ready for reuse; all others of the pool are in use
    std::mutex mtxFreshTriangles;           // guards the pool in createTriangles
    std::string name;
    ProgressPublisher progress;
    ConstraintMgr constraintMgr{this, segmentTable};
    InnerVtxMgr innerVtxMgr;
    std::set<Zone2*> sZones;    // owned
    bool bImportMode = false;   // vertices enter without flips, while triangles are being cut
    bool bImportFailed = false; // imported triangles are no triangulation: nothing may walk through them
    bool bMayBeDelaunay = true; // no triangle was ever made with no regard to circles

    // Scratch of the inner loop, empty between calls.
    std::vector<Triangle2*> vPass, vNextPass;
    std::vector<Edge2> vHullEdges;

    // What a segment crosses on its way in, made anew for each.
    std::vector<Triangle2*> vCorridor;
    std::vector<ChainEdge> vLeftChain, vRightChain;
};

} // namespace QUOR_KELM25D
