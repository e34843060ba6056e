// The stages of an
// How the borders are divided into polygons is in Partitioner.cpp.
//
// The corners are numbered by place, and triangles meet where the one has an edge from s to e and the other
// one from e to s. What is left open are the borders. Around them, in a box of twice the size, a second
// triangulation is made with the borders as constraints. Its triangles are taken over one after the other if
// they close an open edge, so that they grow outward from the borders and into the holes: inside the import
// none does, since all edges there run the same way as the open ones.
//
// In the end the four sides of the box must be the only open edges, and none may have been met twice in one
// direction. If all triangles are counterclockwise that is a proof: then they cover every place of the box
// exactly once, and no overlap goes unnoticed. If some are not, which is the caller's choice, the mesh must
// at least be one piece without handles, in which the triangles around each vertex are one fan.
//
// Cost: linear in the triangles but for the vertex index, and n log n in the border.

#include "TriangleImport.h"

#include "Fan.h"
#include "Flood.h"
#include "Partitioner.h"
#include "ZoneMgr.h"
#include "measures.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iostream>
#include <limits>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t numBoxSides = 4;
constexpr int firstRoundWithText = 2;
// A triangle outside with no border edge of its own is that far from one that has: their number at least
// doubles with each step, so that sound input never comes near.
constexpr int maxRounds = 30;
constexpr std::size_t prefetchDistance = 32; // corners, or pairs of triangles

const char* const inputPlace = "Dt2::createArbitraryTriangles(..)";

/// Twice the box, and in any case larger: the coordinates may be too coarse for their range.
Bbox2 frameAround(const Bbox2& box) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    Bbox2 frame(box);
    frame.doubleTheBox();
    frame.setMinX(std::min(frame.get_minX(), std::nextafter(box.get_minX(), -infinity)));
    frame.setMinY(std::min(frame.get_minY(), std::nextafter(box.get_minY(), -infinity)));
    frame.setMaxX(std::max(frame.get_maxX(), std::nextafter(box.get_maxX(), infinity)));
    frame.setMaxY(std::max(frame.get_maxY(), std::nextafter(box.get_maxY(), infinity)));
    return frame;
}

/// Says in the end that the triangles are no triangulation, unless all went well.
class FailureMark {
public:
    explicit FailureMark(Mesh2& mesh_) : mesh(mesh_) {}
    ~FailureMark() { mesh.setBroken(!bSuccess); }
    FailureMark(const FailureMark&) = delete;
    FailureMark& operator=(const FailureMark&) = delete;

    void setSuccess() noexcept { bSuccess = true; }

private:
    Mesh2& mesh;
    bool bSuccess = false;
};

} // namespace

TriangleImport::TriangleImport(ZoneMgr& zoneMgr_, std::vector<Point2>& vPoints_)
    : zoneMgr(zoneMgr_), mesh(zoneMgr_.getMesh()), constraintMgr(zoneMgr_.getConstraintMgr()),
      vPoints(vPoints_), places(std::max<std::size_t>(16, vPoints_.size() / 6 + vPoints_.size() / 48)) {
}

// --- what an import knows of its mesh ---------------------------------------------------------------------

/// Ordered by the addresses of the ends.
std::vector<Segment2> TriangleImport::getOpenSegments() const {
    constexpr std::less<const Point2*> isLower;
    std::vector<OpenEdges::Edge> vEdges = mKeyMCH.getEdges();
    std::sort(vEdges.begin(), vEdges.end(), [&](const OpenEdges::Edge& a, const OpenEdges::Edge& b) {
        if (a.source != b.source) return isLower(vVertices[a.source], vVertices[b.source]);
        return isLower(vVertices[a.target], vVertices[b.target]);
    });
    std::vector<Segment2> vSegments;
    for (const OpenEdges::Edge& edge : vEdges) {
        vSegments.push_back(getSegment(edge));
    }
    return vSegments;
}

bool TriangleImport::isDisc() const {
    std::size_t numInFans = 0;
    for (const Point2* pVtx : vVertices) {
        for (Fan fan(pVtx); fan.getTriangle() != nullptr; fan.advance()) {
            ++numInFans;
        }
    }
    Flood flood({vTriangles.front()});
    while (const Triangle2* pT = flood.next()) {
        const auto& aN = pT->getOppositeTriangles();
        for (int i = 0; i < 3; ++i) {
            if (aN[i] == nullptr) continue;
            if (aN[i] == aN[next(i)]) return false; // they share two edges, folded onto each other
            flood.reach(aN[i]);
        }
    }
    // Each corner is in the fan of its vertex, one piece, and Euler's formula for a disc with four sides.
    const std::size_t n = vTriangles.size();
    return numInFans == 3 * n && flood.getSequence().size() == n &&
           2 * vVertices.size() == n + 2 + numBoxSides;
}

// --- the import -------------------------------------------------------------------------------------------

Zone2* TriangleImport::run(bool bReorientIfNeeded, bool bCreateExtendedBoundingBox) {
    if (!checkInput(bReorientIfNeeded)) return nullptr;
    FailureMark mark(mesh);
    mesh.addVertices(places.getPlaces(), vVertices);
    if (bReorientIfNeeded && !reorient()) return nullptr;
    createInnerTriangles();
    std::vector<ConstraintGraph2*> vGraphs;
    std::vector<Segment2> vBorderSegments;
    if (!createBorders(vGraphs, vBorderSegments)) return nullptr;
    Zone2* pZone = zoneMgr.createZone(vGraphs, ZL_INSIDE);

    Mesh2 temporary(3);
    ConstraintMgr temporaryConstraints(temporary);
    const Bbox2 extentOfPoints(mesh.getExtent());
    const std::vector<Point2*> vBoxCorners = addBoxCorners(temporary);
    temporaryConstraints.createUserConstraint(vBorderSegments, CIS_CONSTRAINED_DELAUNAY, false);
    temporaryConstraints.applyConstraintsAndZones();
    if (!createOuterTrianglesAndConnect(temporary)) return nullptr;
    const auto [numCW, numCollinear] = countNotCCW();
    if (!checkClosed(numCW + numCollinear == 0)) return nullptr;

    mesh.setNotDelaunay();
    if (!bCreateExtendedBoundingBox) {
        for (Point2* pCorner : vBoxCorners) {
            mesh.remove(pCorner);
        }
        mesh.setExtent(extentOfPoints);
    }
    mesh.finishVertices();
    constraintMgr.applyConstraintsAndZones();
    if (numCW == 0) {
        mark.setSuccess();
    } else {
        // Walks go in circles there. Beside collinear ones they end, if not always where they should.
        const std::string text = "clockwise triangles: " + std::to_string(numCW);
        printWarning("Dt2::CAT_importTriangles()",
                     text + ", the triangulation can only be read, drawn and saved");
    }
    return pZone;
}

// --- what is given ----------------------------------------------------------------------------------------

/// Whether the points can be the corners of triangles. Fills places, box and corners on the way; nothing else
/// is changed.
bool TriangleImport::checkInput(bool bReorientIfNeeded) {
    const auto refuse = [](const std::string& text) {
        printError(inputPlace, text);
        return false;
    };
    if (mesh.numberOfPoints() != 0) return refuse("This method requires an empty triangulation");
    if (vPoints.empty() || vPoints.size() % 3 != 0) return refuse("3 points per triangle please!");
    if (vPoints.size() / 3 > OpenEdges::maxTriangles) return refuse("too many triangles");
    if (!std::all_of(vPoints.begin(), vPoints.end(), isFinite)) {
        return refuse("a coordinate is not finite, nothing is imported");
    }
    places.add(vPoints, vCorners);
    const std::vector<Point2>& vPlaces = places.getPlaces();
    box.add(vPlaces.begin(), vPlaces.end());
    const Bbox2 frame = frameAround(box);
    if (!isFinite(frame.getMinPoint()) || !isFinite(frame.getMaxPoint())) {
        return refuse("the coordinates are too large for a box around them, nothing is imported");
    }
    if (bReorientIfNeeded) return true; // that reports such a triangle as collinear
    for (std::size_t i = 0; i < vPoints.size(); i += 3) {
        const std::uint32_t a = vCorners[i], b = vCorners[i + 1], c = vCorners[i + 2];
        if (a == b || b == c || c == a) {
            return refuse("triangle no. " + std::to_string(i / 3) + " has two equal corners");
        }
    }
    return true;
}

/// Turns clockwise triangles around, in the caller's sequence as well. False, after a warning, at the first
/// collinear one.
bool TriangleImport::reorient() {
    for (std::size_t i = 0; i < vPoints.size(); i += 3) {
        const Orientation2 orientation =
            mesh.getQuorTest().getOrientation2Filtered(&vPoints[i], &vPoints[i + 1], &vPoints[i + 2]);
        if (orientation == ORIENTATION2_CCW) continue;
        if (orientation == ORIENTATION2_COLLINEAR) {
            printWarning("Dt2::CAT_reorient()", "collinear triangle no. " + std::to_string(i / 3));
            return false;
        }
        std::swap(vPoints[i + 1], vPoints[i + 2]);
        std::swap(vCorners[i + 1], vCorners[i + 2]);
    }
    return true;
}

// --- the triangles inside ---------------------------------------------------------------------------------

void TriangleImport::createInnerTriangles() {
    vTriangles.reserve(vCorners.size() / 3);
    for (std::size_t k = 0; k < vCorners.size(); k += 3) {
        for (std::size_t ahead = k; ahead < k + 3 && ahead + prefetchDistance < vCorners.size(); ++ahead) {
            prefetch(vVertices[vCorners[ahead + prefetchDistance]]);
        }
        vTriangles.push_back(mesh.createTriangle(vVertices[vCorners[k]], vVertices[vCorners[k + 1]],
                                                 vVertices[vCorners[k + 2]]));
    }
    const OpenEdges::Pairs vClosed = mKeyMCH.closeOrEnterAll(vCorners, vVertices.size());
    for (std::size_t k = 0; k < vClosed.size(); ++k) {
        if (k + prefetchDistance < vClosed.size()) {
            prefetch(getTriangle(vClosed[k + prefetchDistance].first));
            prefetch(getTriangle(vClosed[k + prefetchDistance].second));
        }
        connect(vClosed[k].first, vClosed[k].second);
    }
    mesh.beginFullDimensional();
}

/// Makes the triangles of two edges neighbours across these.
void TriangleImport::connect(std::uint32_t id0, std::uint32_t id1) {
    Triangle2 *pT0 = getTriangle(id0), *pT1 = getTriangle(id1);
    pT0->setOppTriangle(OpenEdges::indexOf(id0), pT1);
    pT1->setOppTriangle(OpenEdges::indexOf(id1), pT0);
}

/// Makes the borders of all parts polygons of constraints. vBorderSegments receives what has no triangle on
/// its other side. False, after an error, if a part has no such border.
bool TriangleImport::createBorders(std::vector<ConstraintGraph2*>& vGraphs,
                                   std::vector<Segment2>& vBorderSegments) {
    const Partitioner partitioner(vTriangles);
    for (std::size_t k = 0; k < partitioner.size(); ++k) {
        const std::vector<Edge2>& vEdges = partitioner.getComponent(k).getBorder();
        ConstraintGraph2* pCG = constraintMgr.createConstraint(vEdges, CIS_CONSTRAINED_DELAUNAY, false);
        vGraphs.push_back(pCG);
        if (!pCG->isPolygon()) {
            printError("CAT_importTriangles()", "BUG: Not a simple polygon! Returning NULL");
            return false;
        }
        for (const Edge2& edge : vEdges) {
            // From outside the cuts between two parts can't be seen.
            if (edge.getTriangle()->getOppositeTriangle(edge.getIndex()) != nullptr) continue;
            vBorderSegments.emplace_back(*edge.getSrc(), *edge.getTrg());
        }
    }
    return true;
}

// --- the triangles outside --------------------------------------------------------------------------------

/// Puts the corners of the box into both triangulations; the result is the vertices of this one.
std::vector<Point2*> TriangleImport::addBoxCorners(Mesh2& temporary) {
    const Bbox2 frame = frameAround(box);
    std::vector<Point2> vCorners;
    for (const double x : {frame.get_minX(), frame.get_maxX()}) {
        for (const double y : {frame.get_minY(), frame.get_maxY()}) {
            vCorners.emplace_back(x, y, 0.0);
            temporary.insertPoint(vCorners.back());
            places.add(vCorners.back());
        }
    }
    std::vector<Point2*> vBoxCorners;
    mesh.addVertices(vCorners, vBoxCorners);
    vVertices.insert(vVertices.end(), vBoxCorners.begin(), vBoxCorners.end());
    return vBoxCorners;
}

/// Takes over the triangles of the temporary triangulation that close an open edge, in rounds until there is
/// none. False, after an error, if that leads to nothing.
bool TriangleImport::createOuterTrianglesAndConnect(const Mesh2& temporary) {
    std::vector<Triangle2*> vOuter;
    temporary.getTrianglePointers(vOuter);
    std::vector<std::uint32_t> vNumbers; // of their corners
    for (const Triangle2* pT : vOuter) {
        for (const Point2* pCorner : pT->getCorners()) {
            vNumbers.push_back(places.find(*pCorner));
            if (vNumbers.back() != PlaceTable::none) continue;
            reportAdditionalVertex(vOuter, *pCorner, frameAround(box).getMaxRange());
            return false;
        }
    }
    std::vector<Segment2> vSuspects;
    bool bCreated = true;
    for (int round = 0; bCreated; ++round) {
        if (round == firstRoundWithText && mKeyMCH.size() > numBoxSides) {
            vSuspects = getOpenSegments();
        }
        if (round == maxRounds) {
            reportOpenEdges(vOuter, vSuspects);
            return false;
        }
        bCreated = false;
        for (std::size_t first = 0; first < vNumbers.size(); first += 3) {
            const std::uint32_t a = vNumbers[first], b = vNumbers[first + 1], c = vNumbers[first + 2];
            if (!mKeyMCH.isClosing(b, c) && !mKeyMCH.isClosing(c, a) && !mKeyMCH.isClosing(a, b)) continue;
            createOuterTriangle(&vNumbers[first]);
            bCreated = true;
        }
    }
    return true;
}

/// Creates one more triangle and joins it to those at its edges that are open.
void TriangleImport::createOuterTriangle(const std::uint32_t* aNumber) {
    const std::size_t number = vTriangles.size();
    vTriangles.push_back(
        mesh.createTriangle(vVertices[aNumber[0]], vVertices[aNumber[1]], vVertices[aNumber[2]]));
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t id = OpenEdges::idOf(number, i);
        const std::uint32_t closed = mKeyMCH.closeOrEnter({aNumber[next(i)], aNumber[prev(i)], id});
        if (closed != OpenEdges::none) connect(closed, id);
    }
}

// --- the whole --------------------------------------------------------------------------------------------

/// How many triangles are clockwise, and how many are collinear.
std::pair<std::size_t, std::size_t> TriangleImport::countNotCCW() const {
    std::pair<std::size_t, std::size_t> count(0, 0);
    for (std::size_t i = 0; i < vPoints.size(); i += 3) {
        const Orientation2 orientation =
            mesh.getQuorTest().getOrientation2Filtered(&vPoints[i], &vPoints[i + 1], &vPoints[i + 2]);
        count.first += orientation == ORIENTATION2_CW ? 1 : 0;
        count.second += orientation == ORIENTATION2_COLLINEAR ? 1 : 0;
    }
    return count;
}

/// Whether the triangles are a triangulation of the box. If not, an error tells so.
bool TriangleImport::checkClosed(bool bAllCCW) const {
    const std::vector<OpenEdges::Edge> vOpen = mKeyMCH.getEdges();
    const std::size_t numOpen = vOpen.size() + mKeyMCH.getNumDropped();
    const std::size_t firstBoxCorner = vVertices.size() - 4;
    const auto isBoxSide = [&](const OpenEdges::Edge& edge) {
        return edge.source >= firstBoxCorner && edge.target >= firstBoxCorner;
    };
    if (numOpen == numBoxSides && std::all_of(vOpen.begin(), vOpen.end(), isBoxSide) &&
        (bAllCCW || isDisc())) {
        return true;
    }
    std::cout << "mKeyMCH.size()=" << numOpen << std::endl;
    if (numOpen == numBoxSides) std::cout << "The triangles are folded over one another" << std::endl;
    printError("Dt2::CAT_importTriangles()", "size!=4, sorry, invalid input data or bug. If your data is "
                                             "clean, please report this incident");
    drawOpenEdges();
    return false;
}

} // namespace QUOR_KELM25D
