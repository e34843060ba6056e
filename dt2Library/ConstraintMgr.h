// The owner of all constraint segments and graphs of a triangulation, and the driver of their insertion.
// How one segment enters the mesh is in SegmentInserter.cpp, how one is divided in segmentTree.cpp;
// whether an edge is constrained is asked of the mesh's SegmentTable, which is filled here.
//
// Every pair of vertices has at most one segment, so graphs that use the same edge share it. Segments are
// never deleted before the manager; the constrained edges of the mesh are the alive ones.
#pragma once

#include "InnerVtxMgr.h"
#include "Mesh2.h"
#include "MeshListener.h"
#include "SegmentInserter.h"

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

class ConstraintMgr : private MeshListener {
public:
    using Pairs = std::vector<std::pair<Point2*, Point2*>>;
    using Segments = std::vector<ConstraintSegment2*>;

    /// The mesh, which has no other manager, is borrowed, and so is the triangulation that graphs name as
    /// theirs; that may be null.
    explicit ConstraintMgr(Mesh2& mesh_, Dt2* pDt_ = nullptr);
    ConstraintMgr(const ConstraintMgr&) = delete;
    ConstraintMgr& operator=(const ConstraintMgr&) = delete;
    ~ConstraintMgr() override;

    Mesh2& getMesh() noexcept { return mesh; }
    InnerVtxMgr& getInnerVtxMgr() noexcept { return innerVtxMgr; }
    Dt2* getDt2() const noexcept { return pDt; }

    // --- the registry -------------------------------------------------------------------------------------

    std::size_t getNumberOfGraphs() const noexcept { return vConstraintGraphs.size(); }
    /// The segment of the pair. Made if it is new; if not, the strategy has no effect.
    ConstraintSegment2* getSegment(Point2* a, Point2* b, ConstraintInsertionStrategy cis);
    /// To be told of segments that were divided without a change of the mesh: their edges may still be there.
    void addLeftInMesh(const ConstraintSegment2* pSegment) { vLeftInMesh.push_back(pSegment); }
    /// To be told of every division of a segment.
    void countDivision() noexcept { ++numDivisions; }
    /// To be told when a segment can't be made an edge: from then on all are tried again by each apply().
    void countFailure() noexcept { bFailed = true; }
    /// The segment of the pair, alive or dead, or null.
    ConstraintSegment2* findSegment(const Point2* a, const Point2* b) const noexcept {
        return segmentTable.find(a, b);
    }
    /// The same if it is alive, else null.
    ConstraintSegment2* getAliveSegment(const Point2* a, const Point2* b) const noexcept {
        return segmentTable.findAlive(a, b);
    }
    /// Append all segments, or the alive ones, by the addresses of their ends.
    void getAllSegments(Segments& vSegmentsOut) const;
    void getAliveSegments(Segments& vSegmentsOut) const;

    // --- creation: null for nothing to create, or if a point can't be inserted ----------------------------

    /// Between points, which become vertices. With words for an empty sequence and a mesh that is broken.
    /// The direction of each segment is kept with bOrientedSegments, else it means nothing.
    ConstraintGraph2* createUserConstraint(const std::vector<Segment2>& vSegments,
                                           ConstraintInsertionStrategy cis, bool bOrientedSegments);
    /// Between existing vertices. Without bApply nothing is inserted into the mesh yet.
    ConstraintGraph2* createConstraint(const Pairs& vPairs, ConstraintInsertionStrategy cis, bool bApply);
    ConstraintGraph2* createConstraint(const std::vector<Edge2>& vEdges, ConstraintInsertionStrategy cis,
                                       bool bApply);
    /// Oriented, on edges of the mesh.
    ConstraintGraph2* createConstraintFromEdges(const std::vector<Edge2>& vEdges,
                                                ConstraintInsertionStrategy cis);

    // --- insertion ----------------------------------------------------------------------------------------

    /// Calls apply(), if there are triangles; a warning if not.
    void applyConstraintsAndZones();
    /// Inserts one segment, or its alive leaves, into a mesh that exists.
    void applyOne(ConstraintSegment2* pSegment);
    /// Inserts everything that is alive, again and again until nothing is divided any more.
    void apply();

    // --- ConstraintMgr_files.cpp: debug files, one per graph -----------------------------------------------

    /// Text, the six coordinates of each alive piece: name, "_c", the graph's number, ".con".
    void writeConstraints(const std::string& name) const;
    /// Binary segment files: name, "_c", the graph's number, "_con.bin".
    void writeConstraintsBIN(const std::string& name) const;

private:
    void onEdgeDivided(ConstraintSegment2* pSegment, Point2* pSplit) override;
    void onRemoval(Point2* pVtx) override { innerVtxMgr.forget(pVtx); }
    void onAllEdgesLost() override { numSettled = 0; }

    bool insertEnds(const std::vector<Segment2>& vSegments2, bool bFirstHeight, Pairs& vPairs);
    ConstraintGraph2* createOriented(const Pairs& vPairs, ConstraintInsertionStrategy cis);
    ConstraintGraph2* keep(ConstraintGraph2* pGraph);
    void applyAll(const Segments& vNew);
    void applyMuted(ConstraintSegment2* pSegment);
    template <class Write>
    void writeGraphs(const std::string& name, const std::string& ending, const char* where,
                     const Write& write) const;

    Mesh2& mesh;
    SegmentTable& segmentTable; // of the mesh
    Dt2* pDt;
    SegmentInserter inserter;
    InnerVtxMgr innerVtxMgr;
    std::size_t numDivisions = 0;
    bool bFailed = false;       // some alive segment may not be an edge and never become one
    std::size_t numSettled = 0; // of the first so many segments, the alive ones are edges
    std::vector<const ConstraintSegment2*> vLeftInMesh;               // since the last apply()
    std::vector<std::unique_ptr<ConstraintSegment2>> vSegments;       // in order of creation
    std::vector<std::unique_ptr<ConstraintGraph2>> vConstraintGraphs; // in order of creation
};

} // namespace QUOR_KELM25D
