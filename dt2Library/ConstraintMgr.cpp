// Registration of constraint segments, the making of graphs, and the rounds in which segments are inserted.
// The geometry of all that is in Dt2_constraints.cpp.

#include "ConstraintMgr.h"

#include "Dt2.h"
#include "LeafWalk.h"
#include "messages.h"

#include <kelm25d/dataFiles.h>

#include <algorithm>
#include <fstream>
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
constexpr int debugDigits = 70;    // enough for every double to come out exactly in the usual range
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

ConstraintMgr::~ConstraintMgr() = default;

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
    ProgressPublisher& progress = pDt->getProgress();
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
    ConstraintGraph2* pGraph = keep(new ConstraintGraph2(pDt, vNew, cis));
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
        const MuteProgress mute(pDt->getProgress());
        // Several threads would go by the vertices that wait for the third point off their line.
        const int numCPU = pDt->getNumCPU();
        if (!pDt->is2D()) pDt->setNumCPU(1);
        pDt->insertVector(vEnds, &vHandles);
        pDt->setNumCPU(numCPU);
    }
    if (vHandles.front() == nullptr) return false;
    vPairs.reserve(vSegments2.size());
    for (std::size_t i = 0; i < vPosition.size(); i += 2) {
        vPairs.emplace_back(vHandles[vPosition[i]], vHandles[vPosition[i + 1]]);
    }
    return true;
}

ConstraintGraph2* ConstraintMgr::createConstraint(const std::vector<Segment2>& vSegments2,
                                                  ConstraintInsertionStrategy cis) {
    Pairs vPairs;
    if (vSegments2.empty() || !insertEnds(vSegments2, false, vPairs)) return nullptr;
    return createConstraint(vPairs, cis, true);
}

ConstraintGraph2* ConstraintMgr::createOrientedConstraint(const std::vector<Segment2>& vSegments2,
                                                          ConstraintInsertionStrategy cis) {
    Pairs vPairs;
    if (vSegments2.empty() || !insertEnds(vSegments2, true, vPairs)) return nullptr;
    return createOriented(vPairs, cis);
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
    ConstraintGraph2* pGraph = keep(new ConstraintGraph2(pDt, vNew, vReverse, cis));
    applyAll(vNew);
    return pGraph;
}

// --- insertion --------------------------------------------------------------------------------------------

void ConstraintMgr::applyMuted(ConstraintSegment2* pSegment) {
    const MuteProgress mute(pDt->getProgress());
    applyOne(pSegment);
}

void ConstraintMgr::applyAll(const Segments& vNew) {
    for (ConstraintSegment2* pSegment : vNew) {
        applyMuted(pSegment);
        pDt->getProgress().advance(1);
    }
}

void ConstraintMgr::applyOne(ConstraintSegment2* pSegment) {
    if (!pDt->is2D()) return;
    LeafWalk walk({pSegment});
    while (ConstraintSegment2* pCSeg = walk.next()) {
        if (pCSeg->getCIS() == CIS_CONSTRAINED_DELAUNAY) {
            pDt->newCDT_applyOneCS(pCSeg);
        } else if (pCSeg->getCIS() == CIS_CONFORMING_SURFACE_HEIGHT ||
                   pCSeg->getCIS() == CIS_CONFORMING_LINEAR_HEIGHT) {
            pDt->insertSegmentConformingDelaunay(pCSeg);
        } else {
            printError("ConstraintMgr::apply()", "Unknown CIS");
        }
    }
}

void ConstraintMgr::apply() {
    for (const ConstraintSegment2* pDivided : vLeftInMesh) {
        pDt->newCDT_legalizeEdge(pDivided->getSrc(), pDivided->getTrg());
    }
    vLeftInMesh.clear();
    ProgressPublisher& progress = pDt->getProgress();
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

// --- debug files ------------------------------------------------------------------------------------------

template <class Write>
void ConstraintMgr::writeGraphs(const std::string& name, const std::string& ending, const char* where,
                                const Write& write) const {
    for (std::size_t i = 0; i < vConstraintGraphs.size(); ++i) {
        Segments vOriginal, vLeaves;
        vConstraintGraphs[i]->getOriginalConstraintSegments(vOriginal);
        LeafWalk walk({vOriginal.rbegin(), vOriginal.rend()});
        while (ConstraintSegment2* pLeaf = walk.next()) {
            vLeaves.push_back(pLeaf);
        }
        std::vector<Segment2> vPieces;
        for (const ConstraintSegment2* pLeaf : vLeaves) {
            vPieces.emplace_back(*pLeaf->getSrc(), *pLeaf->getTrg());
        }
        const std::string filename = name + "_c" + std::to_string(i) + ending;
        printInfo(where, "writes" + std::to_string(vPieces.size()) + " child segments to " + filename);
        write(filename, vPieces);
    }
}

void ConstraintMgr::writeConstraints(const std::string& name) const {
    const auto writeText = [](const std::string& filename, const std::vector<Segment2>& vPieces) {
        std::ofstream file(filename);
        file.precision(debugDigits);
        for (const Segment2& piece : vPieces) {
            const Point2 src = piece.getSrc(), trg = piece.getTrg();
            file << src.x() << '\t' << src.y() << '\t' << src.z() << '\t' << trg.x() << '\t' << trg.y()
                 << '\t' << trg.z() << '\n';
        }
    };
    writeGraphs(name, ".con", "ConstraintMgr::writeConstraints()", writeText);
}

void ConstraintMgr::writeConstraintsBIN(const std::string& name) const {
    writeGraphs(name, "_con.bin", "ConstraintMgr::writeConstraintsBIN()",
                [](const std::string& filename, const std::vector<Segment2>& vPieces) {
                    writeSegmentsBIN(filename.c_str(), vPieces);
                });
}

} // namespace QUOR_KELM25D
