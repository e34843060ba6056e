// Registration of constraint segments, the making of graphs, and the rounds in which segments are inserted.
// The geometry of all that is in SegmentInserter.cpp.

#include "ConstraintMgr.h"

#include "LeafWalk.h"
#include "messages.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <limits>
#include <numeric>

namespace QUOR_KELM25D {

namespace {

// Bounds of apply() on segments that keep dividing one another: rounds, and pieces altogether, since
// conforming segments that nearly coincide may double theirs in every round.
constexpr int maxRounds = 499;
constexpr std::size_t maxPieces = 100000;
constexpr std::size_t maxPiecesPerSegment = 100;
constexpr int stepsPerSegment = 3; // of progress: ends, graph, insertion

void sortByEnds(ConstraintMgr::Segments::iterator first, ConstraintMgr::Segments::iterator last) {
    std::sort(first, last, [](const ConstraintSegment2* a, const ConstraintSegment2* b) { return *a < *b; });
}

int toSteps(std::size_t n) {
    return static_cast<int>(std::min<std::size_t>(n, std::numeric_limits<int>::max()));
}

bool isHigher(const Point2* a, const Point2* b) {
    return std::less<const Point2*>()(b, a);
}

} // namespace

ConstraintMgr::ConstraintMgr(Mesh2& mesh_, Dt2* pDt_)
    : mesh(mesh_), segmentTable(mesh_.getSegmentTable()), pDt(pDt_), inserter(mesh_, *this) {
    mesh.addListener(this);
}

ConstraintMgr::~ConstraintMgr() = default;

void ConstraintMgr::onEdgeDivided(ConstraintSegment2* pSegment, Point2* pSplit) {
    pSegment->divide(pSplit);
}

// --- the registry -----------------------------------------------------------------------------------------

ConstraintSegment2* ConstraintMgr::getSegment(Point2* a, Point2* b, ConstraintInsertionStrategy cis) {
    if (ConstraintSegment2* pExisting = segmentTable.find(a, b)) return pExisting;
    Point2* p0 = isHigher(a, b) ? b : a;
    Point2* p1 = isHigher(a, b) ? a : b;
    vSegments.emplace_back(new ConstraintSegment2(p0, p1, cis));
    segmentTable.insert(vSegments.back().get());
    return vSegments.back().get();
}

void ConstraintMgr::getAllSegments(Segments& vSegmentsOut) const {
    const auto numBefore = static_cast<std::ptrdiff_t>(vSegmentsOut.size());
    for (const auto& pSegment : vSegments) {
        vSegmentsOut.push_back(pSegment.get());
    }
    sortByEnds(vSegmentsOut.begin() + numBefore, vSegmentsOut.end());
}

void ConstraintMgr::getAliveSegments(Segments& vSegmentsOut) const {
    const auto numBefore = static_cast<std::ptrdiff_t>(vSegmentsOut.size());
    for (const auto& pSegment : vSegments) {
        if (pSegment->isAlive()) vSegmentsOut.push_back(pSegment.get());
    }
    sortByEnds(vSegmentsOut.begin() + numBefore, vSegmentsOut.end());
}

// --- creation ---------------------------------------------------------------------------------------------

ConstraintGraph2* ConstraintMgr::keep(ConstraintGraph2* pGraph) {
    vConstraintGraphs.emplace_back(pGraph);
    return pGraph;
}

ConstraintGraph2* ConstraintMgr::createConstraint(const Pairs& vPairs, ConstraintInsertionStrategy cis,
                                                  bool bApply) {
    ProgressPublisher& progress = mesh.getProgress();
    progress.begin("establish constraints", toSteps(stepsPerSegment * vPairs.size()));
    Segments vNew;
    vNew.reserve(vPairs.size());
    segmentTable.reserve(vPairs.size());
    for (const auto& pair : vPairs) {
        progress.advance(1);
        if (pair.first == pair.second) {
            printWarning("ConstraingMgr::createConstraint", // misspelled deliberately
                         "(0) Identical source and endpoint, a constraint segment has been skipped.");
            std::cout << *pair.first << " <-> " << *pair.second << std::endl;
            continue;
        }
        vNew.push_back(getSegment(pair.first, pair.second, cis));
    }
    ConstraintGraph2* pGraph = keep(new ConstraintGraph2(*this, vNew, cis));
    progress.advanceSteps(vNew.size());
    if (bApply) applyAll(vNew);
    progress.finish();
    return pGraph;
}

ConstraintGraph2* ConstraintMgr::createConstraint(const std::vector<Edge2>& vEdges,
                                                  ConstraintInsertionStrategy cis, bool bApply) {
    if (vEdges.empty()) return nullptr;
    Pairs vPairs;
    for (const Edge2& edge : vEdges) {
        vPairs.emplace_back(edge.getSrc(), edge.getTrg());
    }
    return createConstraint(vPairs, cis, bApply);
}

/// Inserts the ends of all segments and gives the vertices, segment by segment. Of ends at one place any may
/// give the height, or with bFirstHeight the first. False, and nothing changed, if a coordinate is not
/// finite.
bool ConstraintMgr::insertEnds(const std::vector<Segment2>& vSegments2, bool bFirstHeight, Pairs& vPairs) {
    // Segments mostly follow one another: then the end is the start of the next one and enters once.
    std::vector<Point2> vEnds;
    std::vector<std::size_t> vPosition; // in vEnds, of source and target in turn
    vEnds.reserve(vSegments2.size() + 1);
    vPosition.reserve(2 * vSegments2.size());
    for (const Segment2& segment : vSegments2) {
        for (const Point2& end : {segment.getSrc(), segment.getTrg()}) {
            if (vEnds.empty() || end != vEnds.back()) vEnds.push_back(end);
            vPosition.push_back(vEnds.size() - 1);
        }
    }
    if (bFirstHeight) {
        std::vector<std::size_t> vOrder(vEnds.size());
        std::iota(vOrder.begin(), vOrder.end(), std::size_t(0));
        std::stable_sort(vOrder.begin(), vOrder.end(),
                         [&](std::size_t i, std::size_t j) { return vEnds[i] < vEnds[j]; });
        for (std::size_t i = 1; i < vOrder.size(); ++i) {
            const Point2& before = vEnds[vOrder[i - 1]];
            if (vEnds[vOrder[i]] == before) vEnds[vOrder[i]] = before; // height and custom index
        }
    }
    std::vector<Point2*> vHandles;
    {
        const MuteProgress mute(mesh.getProgress());
        // Several threads would go by the vertices that wait for the third point off their line.
        const int numCPU = mesh.getNumCPU();
        if (!mesh.is2D()) mesh.setNumCPU(1);
        mesh.insertVector(vEnds, &vHandles);
        mesh.setNumCPU(numCPU);
    }
    if (vHandles.front() == nullptr) return false;
    vPairs.reserve(vSegments2.size());
    for (std::size_t i = 0; i < vPosition.size(); i += 2) {
        vPairs.emplace_back(vHandles[vPosition[i]], vHandles[vPosition[i + 1]]);
    }
    return true;
}

ConstraintGraph2* ConstraintMgr::createUserConstraint(const std::vector<Segment2>& vSegments,
                                                      ConstraintInsertionStrategy cis,
                                                      bool bOrientedSegments) {
    if (vSegments.empty()) {
        printWarning("Dt2::createConstraint(..)", "vSegments is empty, returning NULL");
        return nullptr;
    }
    if (mesh.isBroken("Dt2::createConstraint(..)")) return nullptr;
    Pairs vPairs;
    if (!insertEnds(vSegments, bOrientedSegments, vPairs)) return nullptr;
    return bOrientedSegments ? createOriented(vPairs, cis) : createConstraint(vPairs, cis, true);
}

ConstraintGraph2* ConstraintMgr::createConstraintFromEdges(const std::vector<Edge2>& vEdges,
                                                           ConstraintInsertionStrategy cis) {
    Pairs vPairs;
    for (const Edge2& edge : vEdges) {
        vPairs.emplace_back(edge.getSrc(), edge.getTrg());
    }
    return createOriented(vPairs, cis);
}

ConstraintGraph2* ConstraintMgr::createOriented(const Pairs& vPairs, ConstraintInsertionStrategy cis) {
    Segments vNew;
    std::vector<bool> vReverse;
    for (const auto& pair : vPairs) {
        if (pair.first == pair.second) continue;
        vNew.push_back(getSegment(pair.first, pair.second, cis));
        vReverse.push_back(isHigher(pair.first, pair.second));
    }
    ConstraintGraph2* pGraph = keep(new ConstraintGraph2(*this, vNew, vReverse, cis));
    applyAll(vNew);
    return pGraph;
}

// --- insertion --------------------------------------------------------------------------------------------

void ConstraintMgr::applyConstraintsAndZones() {
    if (!mesh.is2D()) {
        printWarning("Dt2::applyConstraintsAndZones()",
                     "The triangulation is not full dimensional yet. Nothing to do");
        return;
    }
    if (!mesh.isBroken("Dt2::applyConstraintsAndZones()")) apply();
}

void ConstraintMgr::applyMuted(ConstraintSegment2* pSegment) {
    const MuteProgress mute(mesh.getProgress());
    applyOne(pSegment);
}

void ConstraintMgr::applyAll(const Segments& vNew) {
    for (ConstraintSegment2* pSegment : vNew) {
        applyMuted(pSegment);
        mesh.getProgress().advance(1);
    }
}

void ConstraintMgr::applyOne(ConstraintSegment2* pSegment) {
    if (!mesh.is2D()) return;
    LeafWalk walk({pSegment});
    while (ConstraintSegment2* pCSeg = walk.next()) {
        if (pCSeg->getCIS() == CIS_CONSTRAINED_DELAUNAY) {
            inserter.applyOneCS(pCSeg);
        } else if (pCSeg->getCIS() == CIS_CONFORMING_SURFACE_HEIGHT ||
                   pCSeg->getCIS() == CIS_CONFORMING_LINEAR_HEIGHT) {
            inserter.insertSegmentConformingDelaunay(pCSeg);
        } else {
            printError("ConstraintMgr::apply()", "Unknown CIS");
        }
    }
}

void ConstraintMgr::apply() {
    for (const ConstraintSegment2* pDivided : vLeftInMesh) {
        mesh.legalizeEdge(pDivided->getSrc(), pDivided->getTrg());
    }
    vLeftInMesh.clear();
    ProgressPublisher& progress = mesh.getProgress();
    progress.begin("apply", toSteps(vSegments.size()));
    // What one insertion settles a later one may divide.
    const std::size_t limit = maxPieces + maxPiecesPerSegment * vSegments.size();
    bool bSettled = false;
    std::size_t first = bFailed ? 0 : numSettled; // an edge that is constrained stays one
    for (int round = 0; round < maxRounds && vSegments.size() <= limit && !bSettled; ++round) {
        const std::size_t numBefore = vSegments.size(), divisionsBefore = numDivisions;
        for (std::size_t i = first; i < numBefore; ++i) {
            progress.advance(1);
            if (vSegments[i]->isAlive()) applyMuted(vSegments[i].get());
        }
        bSettled = numDivisions == divisionsBefore;
        first = 0;
    }
    numSettled = bSettled ? vSegments.size() : 0;
    if (!bSettled) {
        printWarning("ConstraintMgr::apply()", "insufficient numeric accuracy, need to skip last insertions");
    }
    progress.finish();
}

} // namespace QUOR_KELM25D
