// The owner of all constraint segments and graphs of a triangulation, and the driver of their insertion.
// How one segment enters the mesh is in Dt2_constraints.cpp, how one is divided in ConstraintSegment2.cpp;
// whether an edge is constrained is asked of SegmentTable.
//
// Every pair of vertices has at most one segment, so graphs that use the same edge share it. Segments are
// never deleted before the manager; the constrained edges of the mesh are the alive ones.
#pragma once

#include "SegmentTable.h"

#include <kelm25d/ConstraintGraph2.h>
#include <kelm25d/ConstraintSegment2.h>
#include <kelm25d/Edge2.h>
#include <kelm25d/Segment2.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class Dt2;

class ConstraintMgr {
public:
    using Pairs = std::vector<std::pair<Point2*, Point2*>>;
    using Segments = std::vector<ConstraintSegment2*>;

    /// pDt_ and segmentTable_ outlive the manager.
    ConstraintMgr(Dt2* pDt_, SegmentTable& segmentTable_) : pDt(pDt_), segmentTable(segmentTable_) {}
    ConstraintMgr(const ConstraintMgr&) = delete;
    ConstraintMgr& operator=(const ConstraintMgr&) = delete;
    ~ConstraintMgr();

    // --- the registry -------------------------------------------------------------------------------------

    std::size_t getNumberOfGraphs() const noexcept { return vConstraintGraphs.size(); }
    bool hasConstraints() const noexcept { return !vSegments.empty(); }
    /// The segment of the pair. Made if it is new; if not, the strategy has no effect.
    ConstraintSegment2* getSegment(Point2* a, Point2* b, ConstraintInsertionStrategy cis);
    /// To be told of segments that were divided without a change of the mesh: their edges may still be there.
    void addLeftInMesh(const ConstraintSegment2* pSegment) { vLeftInMesh.push_back(pSegment); }
    /// To be told of every division of a segment.
    void countDivision() noexcept { ++numDivisions; }
    /// To be told when a segment can't be made an edge: from then on all are tried again by each apply().
    void countFailure() noexcept { bFailed = true; }
    /// To be told when the mesh is gone, and with it all edges.
    void loseEdges() noexcept { numSettled = 0; }
    /// The segment of the pair, alive or dead, or null.
    ConstraintSegment2* findSegment(const Point2* a, const Point2* b) const noexcept {
        return segmentTable.find(a, b);
    }
    /// The same if it is alive, else null.
    ConstraintSegment2* getAliveSegment(const Point2* a, const Point2* b) const noexcept {
        return segmentTable.findAlive(a, b);
    }
    bool isConstraintEdge(const Point2* a, const Point2* b) const noexcept {
        return segmentTable.isConstraintEdge(a, b);
    }
    bool isConstraintVertex(const Point2* pVtx) const noexcept {
        return segmentTable.isConstraintVertex(pVtx);
    }
    /// Append all segments, or the alive ones, by the addresses of their ends.
    void getAllSegments(Segments& vSegmentsOut) const;
    void getAliveSegments(Segments& vSegmentsOut) const;

    // --- creation: null for nothing to create, or if a point can't be inserted ----------------------------

    /// Between existing vertices. Without bApply nothing is inserted into the mesh yet.
    ConstraintGraph2* createConstraint(const Pairs& vPairs, ConstraintInsertionStrategy cis, bool bApply);
    ConstraintGraph2* createConstraint(const std::vector<Edge2>& vEdges, ConstraintInsertionStrategy cis,
                                       bool bApply);
    /// Directions mean nothing.
    ConstraintGraph2* createConstraint(const std::vector<Segment2>& vSegments2,
                                       ConstraintInsertionStrategy cis);
    /// The direction of each segment is kept.
    ConstraintGraph2* createOrientedConstraint(const std::vector<Segment2>& vSegments2,
                                               ConstraintInsertionStrategy cis);
    /// Oriented, on edges of the mesh.
    ConstraintGraph2* createConstraintFromEdges(const std::vector<Edge2>& vEdges,
                                                ConstraintInsertionStrategy cis);

    // --- insertion ----------------------------------------------------------------------------------------

    /// Inserts one segment, or its alive leaves, into a mesh that exists.
    void applyOne(ConstraintSegment2* pSegment);
    /// Inserts everything that is alive, again and again until nothing is divided any more.
    void apply();

    // --- debug files: one per graph -----------------------------------------------------------------------

    /// Text, the six coordinates of each alive piece: name, "_c", the graph's number, ".con".
    void writeConstraints(const std::string& name) const;
    /// Binary segment files: name, "_c", the graph's number, "_con.bin".
    void writeConstraintsBIN(const std::string& name) const;

private:
    bool insertEnds(const std::vector<Segment2>& vSegments2, bool bFirstHeight, Pairs& vPairs);
    ConstraintGraph2* createOriented(const Pairs& vPairs, ConstraintInsertionStrategy cis);
    ConstraintGraph2* keep(ConstraintGraph2* pGraph);
    void applyAll(const Segments& vNew);
    void applyMuted(ConstraintSegment2* pSegment);
    template <class Write>
    void writeGraphs(const std::string& name, const std::string& ending, const char* where,
                     const Write& write) const;

    Dt2* pDt;
    SegmentTable& segmentTable;
    std::size_t numDivisions = 0;
    bool bFailed = false;       // some alive segment may not be an edge and never become one
    std::size_t numSettled = 0; // of the first so many segments, the alive ones are edges
    std::vector<const ConstraintSegment2*> vLeftInMesh;               // since the last apply()
    std::vector<std::unique_ptr<ConstraintSegment2>> vSegments;       // in order of creation
    std::vector<std::unique_ptr<ConstraintGraph2>> vConstraintGraphs; // in order of creation
};

} // namespace QUOR_KELM25D
