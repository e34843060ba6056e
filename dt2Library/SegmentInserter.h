// How one constraint segment enters the mesh: by force, or by new vertices.
// Which segments there are, and when each is inserted, is decided in ConstraintMgr.cpp; how they are divided
// in segmentTree.cpp.
#pragma once

#include <kelm25d/Edge2.h>
#include <kelm25d/Point2.h>

#include <vector>

namespace QUOR_KELM25D {

class ConstraintMgr;
class ConstraintSegment2;
class LeafWalk;
class Mesh2;
class QuorTest;
class SegmentTable;

class SegmentInserter {
public:
    /// Both are borrowed.
    SegmentInserter(Mesh2& mesh_, ConstraintMgr& mgr_);
    SegmentInserter(const SegmentInserter&) = delete;
    SegmentInserter& operator=(const SegmentInserter&) = delete;

    /// Constrained: makes an alive segment an edge, or all pieces into which that divides it and others.
    void applyOneCS(ConstraintSegment2* pInitialCSeg);
    /// Conforming, one step: nothing if the segment is an edge, else one division.
    void insertSegmentConformingDelaunay(ConstraintSegment2* pCSeg);

private:
    /// Where a segment that is being inserted crosses another one.
    struct Crossing {
        Point2 splitPoint;
        ConstraintSegment2* pCrossingCSeg = nullptr; // alive; null: no crossing
        Edge2 edge;                                  // of the mesh, which is that segment
    };
    /// What the walk along a segment meets first: a vertex on it, another constraint, or else nothing.
    struct Obstacle {
        Point2* pVertex = nullptr;
        Crossing crossing = {};
    };
    /// An edge of a polygon that is to be triangulated, from pSrc to where the next one begins.
    struct ChainEdge {
        Point2* pSrc;
        Triangle2* pHolder; // one of the triangles being removed: its neighbour idx is the one outside
        int idx;
    };

    void treatOneCS(ConstraintSegment2* pCSeg, LeafWalk& walk);
    bool divide(ConstraintSegment2* pCSeg, Point2* pSplit);
    bool divideAtCrossing(ConstraintSegment2* pCSeg, const Crossing& crossing);
    Point2* insertCrossing(const Crossing& crossing);
    Obstacle traverseCZ(const ConstraintSegment2* pCSeg);
    Point2* leaveStart(const Point2* pStart, const Point2* pStop, Triangle2*& pT);
    void replaceCorridor(Point2* pStart, Point2* pStop);
    Triangle2* triangulateSide(std::vector<ChainEdge>& vChain, Point2* pEnd, std::vector<Triangle2*>& vNew);
    bool cutEar(const ChainEdge& edge, const ChainEdge& next, Point2* c, std::vector<Triangle2*>& vNew);

    Mesh2& mesh;
    ConstraintMgr& mgr;
    QuorTest& quorTest;
    const SegmentTable& segmentTable;

    // What the segment crosses on its way, made anew by each walk.
    std::vector<Triangle2*> vCorridor;
    std::vector<ChainEdge> vLeftChain, vRightChain;
};

} // namespace QUOR_KELM25D
