// What a zone is made of and which triangles it has at the moment.
// Areas, borders, set operations and drawings are in Zone2_operations.cpp and Zone2_drawing.cpp, flips in
// Zone2_optimization.cpp; who creates zones is ZoneMgr.
//
// The rules come down to floods. Inside and outside begin at the triangles along the directed edges of the
// graphs, on their left or on their right, and go on up to edges of these graphs, whatever other constraints
// lie in the way. Pieces of divided segments are found through the graphs, so a zone follows its boundary.

#include <kelm25d/Zone2.h>

#include "AddressSet.h"
#include "FloodBarrier.h"
#include "ZoneMgr.h"
#include "messages.h"
#include "ringTools.h"

#include <kelm25d/ConstraintGraph2.h>
#include <kelm25d/VertexPair2.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <unordered_map>
#include <utility>

namespace QUOR_KELM25D {

namespace {

/// The segments of a graph, flat as getPolygonVertices has them, without those that it runs along more than
/// once: a spike that is walked in both directions has its inner side on neither.
void dropRepeatedSegments(std::vector<Point2*>& vVertices) {
    std::vector<VertexPair2> vPairs;
    for (std::size_t i = 0; i < vVertices.size(); i += 2) {
        vPairs.emplace_back(vVertices[i], vVertices[i + 1]);
    }
    std::vector<VertexPair2> vSorted(vPairs), vRepeated;
    std::sort(vSorted.begin(), vSorted.end());
    for (std::size_t i = 1; i < vSorted.size(); ++i) {
        if (vSorted[i] == vSorted[i - 1]) vRepeated.push_back(vSorted[i]);
    }
    if (vRepeated.empty()) return;
    std::size_t numKept = 0;
    for (std::size_t i = 0; i < vPairs.size(); ++i) {
        if (std::binary_search(vRepeated.begin(), vRepeated.end(), vPairs[i])) continue;
        vVertices[numKept++] = vVertices[2 * i];
        vVertices[numKept++] = vVertices[2 * i + 1];
    }
    vVertices.resize(numKept);
}

void sortByAddress(std::vector<Triangle2*>& vTriangles) {
    const std::less<Triangle2*> isLower;
    if (std::is_sorted(vTriangles.begin(), vTriangles.end(), isLower)) return;
    std::sort(vTriangles.begin(), vTriangles.end(), isLower);
}

/// Of sequences with repetitions, each repetition counts by itself.
std::vector<Triangle2*> mergeSorted(const std::vector<Triangle2*>& v0, const std::vector<Triangle2*>& v1,
                                    ZoneLocation zoneLoc) {
    std::vector<Triangle2*> vResult(v0.size() + v1.size());
    const auto first = vResult.begin();
    auto last = first;
    const std::less<Triangle2*> isLower;
    switch (zoneLoc) {
    case ZL_RESULT_UNION:
        last = std::set_union(v0.begin(), v0.end(), v1.begin(), v1.end(), first, isLower);
        break;
    case ZL_RESULT_INTERSECTION:
        last = std::set_intersection(v0.begin(), v0.end(), v1.begin(), v1.end(), first, isLower);
        break;
    case ZL_RESULT_DIFFERENCE:
        last = std::set_difference(v0.begin(), v0.end(), v1.begin(), v1.end(), first, isLower);
        break;
    case ZL_RESULT_SYMMETRIC_DIFFERENCE:
        last = std::set_symmetric_difference(v0.begin(), v0.end(), v1.begin(), v1.end(), first, isLower);
        break;
    default:
        printError("Zone2::getTriangles_RESULT", "Unexpected value");
        KELM_CHECK(false);
    }
    vResult.erase(last, vResult.end());
    return vResult;
}

} // namespace

// --- construction -----------------------------------------------------------------------------------------

Zone2::Zone2(Dt2* pDt_, ZoneLocation zoneLoc_) : pDt(pDt_), pMgr(managerOf(pDt_)), zoneLoc(zoneLoc_) {
}

Zone2::Zone2(Dt2* pDt_, const std::vector<ConstraintGraph2*>& vConstraintGraphs_, ZoneLocation zoneLoc_,
             const std::vector<Point2>& vStartPoints_)
    : pDt(pDt_), pMgr(managerOf(pDt_)), zoneLoc(zoneLoc_), vConstraintGraphs(vConstraintGraphs_),
      vStartPoints(vStartPoints_) {
}

Zone2::Zone2(Dt2* pDt_, ZoneLocation zoneLoc_, const std::vector<ConstraintGraph2*>& vConstraintGraphs_)
    : pDt(pDt_), pMgr(managerOf(pDt_)), zoneLoc(zoneLoc_), vConstraintGraphs(vConstraintGraphs_) {
    checkLocation(zoneLoc == ZL_INSIDE || zoneLoc == ZL_OUTSIDE,
                  "ZoneLocation for this constructor must be ZL_INSIDE or ZL_OUTSIDE!");
    if (vConstraintGraphs.empty()) printError("Zone2::Zone2(..)", "vConstraintGraphs is empty");
    for (const ConstraintGraph2* pGraph : vConstraintGraphs) {
        if (pGraph == nullptr) {
            printError("Zone2::Zone2(..)", "The ConstraintGraph is NULL");
        } else if (!pGraph->isOriented()) {
            printError("Zone2::Zone2(..)", "One of the ConstraintGraphs is not oriented!");
        }
    }
}

Zone2::Zone2(Dt2* pDt_, ZoneLocation zoneLoc_, ConstraintGraph2* pConstraintGraph)
    : pDt(pDt_), pMgr(managerOf(pDt_)), zoneLoc(zoneLoc_), vConstraintGraphs{pConstraintGraph} {
    if (pConstraintGraph == nullptr) {
        printError("Zone2::Zone2(..)", "The ConstraintGraph is NULL");
    } else if (!pConstraintGraph->isOriented()) {
        printError("Zone2::Zone2(..)", "The ConstraintGraph is not oriented");
    }
    checkLocation(zoneLoc == ZL_INSIDE || zoneLoc == ZL_OUTSIDE || zoneLoc == ZL_BOUNDED,
                  "The ZoneLocation for this constructor can only be one of ZL_INSIDE, ZL_OUTSIDE, "
                  "ZL_BOUNDED");
}

void Zone2::checkLocation(bool bAccepted, const char* text) const {
    if (bAccepted) return;
    std::cout << "zoneLoc=" << zoneLoc << std::endl;
    printError("Zone2::Zone2(..)", text);
    KELM_CHECK(false);
}

// --- reading ----------------------------------------------------------------------------------------------

void Zone2::getConstraintGraphs(std::vector<ConstraintGraph2*>& vConstraintGraphsOut) const {
    vConstraintGraphsOut.insert(vConstraintGraphsOut.end(), vConstraintGraphs.begin(),
                                vConstraintGraphs.end());
}

ConstraintGraph2* Zone2::getConstraintGraph() const {
    if (vConstraintGraphs.size() == 1) return vConstraintGraphs.front();
    if (!vConstraintGraphs.empty()) {
        printWarning("Zone2::getConstraintGraph()",
                     "There is more than one constraint graph, use Zone2::getConstraintGraphs() instead. "
                     "Returning NULL");
    }
    return nullptr;
}

std::size_t Zone2::getNumberOfTriangles() const {
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    return vTriangles.size();
}

void Zone2::getVertices(std::vector<Point2*>& vVertices) const {
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    VertexSet sVertices;
    for (const Triangle2* pT : vTriangles) {
        for (const Point2* pCorner : pT->getCorners()) {
            sVertices.insert(pCorner);
        }
    }
    sVertices.appendTo(vVertices);
}

// --- triangles --------------------------------------------------------------------------------------------

void Zone2::getTriangles(std::vector<Triangle2*>& vTriangles) const {
    if (!pMgr->getMesh().is2D()) {
        printWarning("Zone2::getTriangles()", "is2D() is false, nothing to return");
        return;
    }
    std::vector<Triangle2*> vWorkspace;
    switch (zoneLoc) {
    case ZL_GLOBAL:
        vWorkspace.push_back(pMgr->getMesh().getOneTriangle());
        bfsFromWorkspace(vWorkspace, vTriangles);
        break;
    case ZL_INSIDE:
    case ZL_BOUNDED:
    case ZL_OUTSIDE:
        initWorkspace(zoneLoc != ZL_OUTSIDE, vWorkspace);
        bfsFromWorkspace(vWorkspace, vTriangles);
        break;
    case ZL_GROW:
        // Two start points in one region yield it twice, deliberately.
        growFromStartPoints(vTriangles);
        break;
    case ZL_RESULT_UNION:
    case ZL_RESULT_INTERSECTION:
    case ZL_RESULT_DIFFERENCE:
    case ZL_RESULT_SYMMETRIC_DIFFERENCE:
        getTriangles_RESULT(vTriangles);
        break;
    default:
        printError("Zone2::getTriangles()", "unknown zoneLoc value");
    }
}

void Zone2::initWorkspace(bool bInside, std::vector<Triangle2*>& vWorkspace) const {
    if (zoneLoc != ZL_INSIDE && zoneLoc != ZL_OUTSIDE && zoneLoc != ZL_BOUNDED) {
        printError("Zone2::initWorkspace", "Wrong zoneLocation");
    }
    for (const ConstraintGraph2* pGraph : vConstraintGraphs) {
        if (pGraph == nullptr) continue;
        std::vector<Point2*> vVertices;
        pGraph->getPolygonVertices(vVertices);
        if (bInside) dropRepeatedSegments(vVertices);
        for (std::size_t i = 0; i < vVertices.size(); i += 2) {
            const Point2 *a = vVertices[i], *b = vVertices[i + 1];
            KELM_CHECK(a->getIncidentTriangle()!=NULL);
            const Edge2 edge = bInside ? Mesh2::findEdge(a, b) : Mesh2::findEdge(b, a);
            // On the hull, with the outside on the wanted side, it runs the other way.
            if (edge.getTriangle() == nullptr || edge.getSrc() != (bInside ? a : b)) continue;
            vWorkspace.push_back(edge.getTriangle());
        }
    }
}

void Zone2::bfsFromWorkspace(std::vector<Triangle2*>& vWorkspace, std::vector<Triangle2*>& vTriangles) const {
    KELM_CHECK(zoneLoc==ZL_GLOBAL || zoneLoc==ZL_INSIDE || zoneLoc==ZL_OUTSIDE || zoneLoc==ZL_BOUNDED);
    FloodBarrier(pMgr->getMesh().getSegmentTable(), vConstraintGraphs).flood(vWorkspace, vTriangles);
}

/// Appends for each point in turn the triangles that are reached from the one there without crossing edges
/// of the graphs, by address. One region of two points is appended twice.
void Zone2::growFromStartPoints(std::vector<Triangle2*>& vTriangles) const {
    Mesh2& mesh = pMgr->getMesh();
    FloodBarrier barrier(mesh.getSegmentTable(), vConstraintGraphs);
    for (const Point2& point : vStartPoints) {
        Triangle2* pStartT = mesh.locateUniquely(point);
        if (pStartT == nullptr) continue; // outside the hull
        std::vector<Triangle2*> vWorkspace = {pStartT};
        barrier.flood(vWorkspace, vTriangles);
    }
}

/// The evaluation of a set operation whose operands may be such operations themselves. Each zone is evaluated
/// once, whatever the number of ways to it, of two operands first the one with more below it, and the
/// triangles are kept until they have been used: so chains of unions need little memory, and no recursion.
class Zone2::Evaluation {
public:
    explicit Evaluation(const Zone2& root_) : root(root_) { examine(); }
    const std::vector<Triangle2*>& run();

private:
    struct Node {
        std::size_t depth = 0;
        unsigned numUses = 0; // as an operand, yet to come
        bool bDone = false;
        std::vector<Triangle2*> vTriangles; // by address
    };
    struct Task {
        const Zone2* pZone;
        bool bOperandsDone;
    };

    void examine();
    void combineOperands(const Zone2& zone);

    const Zone2& root;
    std::unordered_map<const Zone2*, Node> mNode;
};

/// Finds all zones below, how deep they are, and how often they are used.
void Zone2::Evaluation::examine() {
    std::vector<Task> vTasks = {{&root, false}};
    while (!vTasks.empty()) {
        const Task task = vTasks.back();
        vTasks.pop_back();
        const std::vector<Zone2*>& vInputs = task.pZone->vInputZones;
        if (task.bOperandsDone) {
            for (const Zone2* pInput : vInputs) {
                mNode[task.pZone].depth = std::max(mNode[task.pZone].depth, mNode[pInput].depth + 1);
            }
            continue;
        }
        if (!mNode.emplace(task.pZone, Node()).second || vInputs.empty()) continue;
        vTasks.push_back({task.pZone, true});
        for (const Zone2* pInput : vInputs) {
            vTasks.push_back({pInput, false});
        }
    }
    for (const auto& entry : mNode) {
        for (const Zone2* pInput : entry.first->vInputZones) {
            ++mNode[pInput].numUses;
        }
    }
}

const std::vector<Triangle2*>& Zone2::Evaluation::run() {
    std::vector<Task> vTasks = {{&root, false}};
    while (!vTasks.empty()) {
        const Task task = vTasks.back();
        vTasks.pop_back();
        const Zone2& zone = *task.pZone;
        Node& node = mNode[&zone];
        if (node.bDone) continue;
        if (!task.bOperandsDone && zone.vInputZones.size() == 2) {
            Zone2 *pFirst = zone.vInputZones[0], *pSecond = zone.vInputZones[1];
            if (mNode[pFirst].depth < mNode[pSecond].depth) std::swap(pFirst, pSecond);
            vTasks.push_back({&zone, true});
            vTasks.push_back({pSecond, false});
            vTasks.push_back({pFirst, false});
            continue;
        }
        if (task.bOperandsDone) {
            combineOperands(zone);
        } else if (!isResult(zone.zoneLoc)) { // a result without operands stays empty
            zone.getTriangles(node.vTriangles);
            sortByAddress(node.vTriangles);
        }
        node.bDone = true;
    }
    return mNode[&root].vTriangles;
}

void Zone2::Evaluation::combineOperands(const Zone2& zone) {
    Node &first = mNode[zone.vInputZones[0]], &second = mNode[zone.vInputZones[1]];
    mNode[&zone].vTriangles = mergeSorted(first.vTriangles, second.vTriangles, zone.zoneLoc);
    for (Node* pNode : {&first, &second}) {
        if (--pNode->numUses == 0) std::vector<Triangle2*>().swap(pNode->vTriangles);
    }
}

void Zone2::getTriangles_RESULT(std::vector<Triangle2*>& vTriangles) const {
    Evaluation evaluation(*this);
    const std::vector<Triangle2*>& vResult = evaluation.run();
    vTriangles.insert(vTriangles.end(), vResult.begin(), vResult.end());
}

// --- borders ----------------------------------------------------------------------------------------------

Zone2* Zone2::convertToBoundedZone() {
    if (zoneLoc == ZL_INSIDE) return this;
    pMgr->getConstraintMgr().applyConstraintsAndZones();
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    if (vTriangles.empty()) {
        printWarning("Zone2::convertToBoundedZone()", "No triangles available, returning NULL");
        return nullptr;
    }
    std::vector<Edge2> vEdges;
    appendBorderEdges(vTriangles, vEdges);
    return pMgr->createZone(vEdges, ZL_BOUNDED);
}

void Zone2::getBorderEdges(std::vector<Edge2>& vBorderEdgesOut) const {
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    sortByAddress(vTriangles);
    appendBorderEdges(vTriangles, vBorderEdgesOut);
}

void Zone2::getBoundaryEdges(std::vector<Edge2>& vBoundaryEdgesOut) const {
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    appendBorderEdges(vTriangles, vBoundaryEdgesOut);
}

void Zone2::getBoundarySegments(std::vector<Segment2>& vBoundarySegmentsOut) const {
    std::vector<Edge2> vEdges;
    getBoundaryEdges(vEdges);
    for (const Edge2& edge : vEdges) {
        vBoundarySegmentsOut.emplace_back(*edge.getSrc(), *edge.getTrg());
    }
}

} // namespace QUOR_KELM25D
