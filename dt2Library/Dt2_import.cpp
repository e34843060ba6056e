// Import of triangles: a given mesh becomes the content of an empty triangulation, whatever its shape.
// How its borders are divided into polygons is in Partitioner.cpp; the cutting of meshes has its own file.
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

#include "Dt2.h"

#include "AddressSet.h"
#include "Fan.h"
#include "OpenEdges.h"
#include "Partitioner.h"
#include "PlaceTable.h"
#include "measures.h"
#include "messages.h"
#include "prefetch.h"

#include <kelm25d/Visualizer2.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iostream>
#include <limits>
#include <sstream>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t numBoxSides = 4;
constexpr int firstRoundWithText = 2;
// A triangle outside with no border edge of its own is that far from one that has: their number at least
// doubles with each step, so that sound input never comes near.
constexpr int maxRounds = 30;
constexpr std::size_t prefetchDistance = 32; // corners, or pairs of triangles
constexpr double circleShare = 0.01;         // radius of a mark in a drawing, in ranges of the box

const char* const inputPlace = "Dt2::createArbitraryTriangles(..)";
const char* const outerPlace = "CAT_createOuterTrianglesAndConnect()";
const char* const drawingHint = "You may want to use the postscript visualization file to debug the data";

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
    explicit FailureMark(bool& bFailed_) : bFailed(bFailed_) {}
    ~FailureMark() { bFailed = !bSuccess; }
    FailureMark(const FailureMark&) = delete;
    FailureMark& operator=(const FailureMark&) = delete;

    void setSuccess() noexcept { bSuccess = true; }

private:
    bool& bFailed;
    bool bSuccess = false;
};

} // namespace

/// What one import knows of its mesh.
struct Dt2::TriangleImport {
    explicit TriangleImport(std::size_t numTriangles)
        : places(std::max<std::size_t>(16, numTriangles / 2 + numTriangles / 16)) {}

    /// By the id of one of its edges.
    Triangle2* getTriangle(std::uint32_t id) const { return vTriangles[OpenEdges::triangleOf(id)]; }
    Segment2 getSegment(const OpenEdges::Edge& edge) const {
        return Segment2(*vVertices[edge.source], *vVertices[edge.target]);
    }
    /// By the addresses of the ends.
    std::vector<Segment2> getOpenSegments() const;
    /// Whether the triangles, of which four edges are open, are a disc by their neighbours.
    bool isDisc() const;

    PlaceTable places;
    Bbox2 box;                           // of the places given
    std::vector<std::uint32_t> vCorners; // places, three for each triangle given
    std::vector<Point2*> vVertices;      // by place
    std::vector<Triangle2*> vTriangles;  // in order of creation
    OpenEdges mKeyMCH;                   // with the positions in vTriangles
};

std::vector<Segment2> Dt2::TriangleImport::getOpenSegments() const {
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

bool Dt2::TriangleImport::isDisc() const {
    std::size_t numInFans = 0;
    for (const Point2* pVtx : vVertices) {
        for (Fan fan(pVtx); fan.getTriangle() != nullptr; fan.advance()) {
            ++numInFans;
        }
    }
    TriangleSet sReached;
    std::vector<const Triangle2*> vStack{vTriangles.front()};
    sReached.insert(vStack.front());
    while (!vStack.empty()) {
        const Triangle2* pT = vStack.back();
        vStack.pop_back();
        const Triangle2* aN[] = {pT->aOppTriangle[0], pT->aOppTriangle[1], pT->aOppTriangle[2]};
        for (int i = 0; i < 3; ++i) {
            if (aN[i] == nullptr) continue;
            if (aN[i] == aN[incIndexBy1(i)]) return false; // they share two edges, folded onto each other
            if (sReached.insert(aN[i])) vStack.push_back(aN[i]);
        }
    }
    // Each corner is in the fan of its vertex, one piece, and Euler's formula for a disc with four sides.
    const std::size_t n = vTriangles.size();
    return numInFans == 3 * n && sReached.size() == n && 2 * vVertices.size() == n + 2 + numBoxSides;
}

Zone2* Dt2::CAT_importTriangles(std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                                bool bCreateExtendedBoundingBox) {
    TriangleImport import(vPoints.size() / 3);
    if (!CAT_checkInput(vPoints, bReorientIfNeeded, import)) return nullptr;
    FailureMark mark(bImportFailed);
    CAT_createVertices(import);
    if (bReorientIfNeeded && !CAT_reorient(vPoints, import)) return nullptr;
    CAT_createInnerTriangles(import);
    std::vector<ConstraintGraph2*> vGraphs;
    std::vector<Segment2> vBorderSegments;
    if (!CAT_createBorders(import, vGraphs, vBorderSegments)) return nullptr;
    Zone2* pZone = createZone(vGraphs, ZL_INSIDE);

    Dt2 temporary(3);
    const Bbox2 extentOfPoints(extent);
    const std::vector<Point2*> vBoxCorners = CAT_addBoxCorners(temporary, import);
    temporary.createConstraint(vBorderSegments, CIS_CONSTRAINED_DELAUNAY, false);
    temporary.applyConstraintsAndZones();
    if (!CAT_createOuterTrianglesAndConnect(temporary, import)) return nullptr;
    const auto [numCW, numCollinear] = CAT_countNotCCW(vPoints);
    if (!CAT_checkClosed(import, numCW + numCollinear == 0)) return nullptr;

    setNotDelaunay();
    if (!bCreateExtendedBoundingBox) {
        for (Point2* pCorner : vBoxCorners) {
            remove(pCorner);
        }
        extent = extentOfPoints;
    }
    vertexVault.sortIfNeeded(false);
    applyConstraintsAndZones();
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
bool Dt2::CAT_checkInput(const std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                         TriangleImport& import) const {
    const auto refuse = [](const std::string& text) {
        printError(inputPlace, text);
        return false;
    };
    if (numberOfPoints() != 0) return refuse("This method requires an empty triangulation");
    if (vPoints.empty() || vPoints.size() % 3 != 0) return refuse("3 points per triangle please!");
    if (vPoints.size() / 3 > OpenEdges::maxTriangles) return refuse("too many triangles");
    if (!std::all_of(vPoints.begin(), vPoints.end(), isFinite)) {
        return refuse("a coordinate is not finite, nothing is imported");
    }
    import.places.add(vPoints, import.vCorners);
    const std::vector<Point2>& vPlaces = import.places.getPlaces();
    import.box.add(vPlaces.begin(), vPlaces.end());
    const Bbox2 frame = frameAround(import.box);
    if (!isFinite(frame.getMinPoint()) || !isFinite(frame.getMaxPoint())) {
        return refuse("the coordinates are too large for a box around them, nothing is imported");
    }
    if (bReorientIfNeeded) return true; // that reports such a triangle as collinear
    for (std::size_t i = 0; i < vPoints.size(); i += 3) {
        const std::uint32_t a = import.vCorners[i], b = import.vCorners[i + 1], c = import.vCorners[i + 2];
        if (a == b || b == c || c == a) {
            return refuse("triangle no. " + std::to_string(i / 3) + " has two equal corners");
        }
    }
    return true;
}

void Dt2::CAT_createVertices(TriangleImport& import) {
    coverBox(import.box);
    vertexVault.dropInactive();
    std::size_t firstIdx = 0;
    vertexVault.addVertices(import.places.getPlaces(), &import.vVertices, firstIdx);
}

/// Turns clockwise triangles around, in the caller's sequence as well. False, after a warning, at the first
/// collinear one.
bool Dt2::CAT_reorient(std::vector<Point2>& vPoints, TriangleImport& import) {
    for (std::size_t i = 0; i < vPoints.size(); i += 3) {
        const Orientation2 orientation =
            quorTest.getOrientation2Filtered(&vPoints[i], &vPoints[i + 1], &vPoints[i + 2]);
        if (orientation == ORIENTATION2_CCW) continue;
        if (orientation == ORIENTATION2_COLLINEAR) {
            printWarning("Dt2::CAT_reorient()", "collinear triangle no. " + std::to_string(i / 3));
            return false;
        }
        std::swap(vPoints[i + 1], vPoints[i + 2]);
        std::swap(import.vCorners[i + 1], import.vCorners[i + 2]);
    }
    return true;
}

// --- the triangles inside ---------------------------------------------------------------------------------

void Dt2::CAT_createInnerTriangles(TriangleImport& import) {
    const std::vector<std::uint32_t>& vCorners = import.vCorners;
    import.vTriangles.reserve(vCorners.size() / 3);
    for (std::size_t k = 0; k < vCorners.size(); k += 3) {
        for (std::size_t ahead = k; ahead < k + 3 && ahead + prefetchDistance < vCorners.size(); ++ahead) {
            prefetch(import.vVertices[vCorners[ahead + prefetchDistance]]);
        }
        import.vTriangles.push_back(createTriangle(import.vVertices[vCorners[k]],
                                                   import.vVertices[vCorners[k + 1]],
                                                   import.vVertices[vCorners[k + 2]]));
    }
    const OpenEdges::Pairs vClosed = import.mKeyMCH.closeOrEnterAll(vCorners, import.vVertices.size());
    for (std::size_t k = 0; k < vClosed.size(); ++k) {
        if (k + prefetchDistance < vClosed.size()) {
            prefetch(import.getTriangle(vClosed[k + prefetchDistance].first));
            prefetch(import.getTriangle(vClosed[k + prefetchDistance].second));
        }
        CAT_connect(import, vClosed[k].first, vClosed[k].second);
    }
    vertexVault.setFullDimensional(true);
}

/// Makes the triangles of two edges neighbours across these.
void Dt2::CAT_connect(const TriangleImport& import, std::uint32_t id0, std::uint32_t id1) {
    Triangle2 *pT0 = import.getTriangle(id0), *pT1 = import.getTriangle(id1);
    pT0->aOppTriangle[OpenEdges::indexOf(id0)] = pT1;
    pT1->aOppTriangle[OpenEdges::indexOf(id1)] = pT0;
}

/// Makes the borders of all parts polygons of constraints. vBorderSegments receives what has no triangle on
/// its other side. False, after an error, if a part has no such border.
bool Dt2::CAT_createBorders(const TriangleImport& import, std::vector<ConstraintGraph2*>& vGraphs,
                            std::vector<Segment2>& vBorderSegments) {
    const Partitioner partitioner(import.vTriangles);
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
std::vector<Point2*> Dt2::CAT_addBoxCorners(Dt2& temporary, TriangleImport& import) {
    const Bbox2 frame = frameAround(import.box);
    coverBox(frame);
    std::vector<Point2*> vBoxCorners;
    for (const double x : {frame.get_minX(), frame.get_maxX()}) {
        for (const double y : {frame.get_minY(), frame.get_maxY()}) {
            const Point2 corner(x, y, 0.0);
            temporary.insertPoint(corner);
            Point2* pVtx = vertexVault.makeVertex(corner);
            vertexVault.addVertex(hilbert.getIdx(corner), pVtx);
            import.places.add(corner);
            import.vVertices.push_back(pVtx);
            vBoxCorners.push_back(pVtx);
        }
    }
    return vBoxCorners;
}

/// Takes over the triangles of the temporary triangulation that close an open edge, in rounds until there is
/// none. False, after an error, if that leads to nothing.
bool Dt2::CAT_createOuterTrianglesAndConnect(const Dt2& temporary, TriangleImport& import) {
    std::vector<Triangle2*> vTriangles;
    temporary.getTrianglePointers(vTriangles);
    std::vector<std::uint32_t> vNumbers; // of their corners
    for (const Triangle2* pT : vTriangles) {
        for (const Point2* pCorner : pT->aCorner) {
            vNumbers.push_back(import.places.find(*pCorner));
            if (vNumbers.back() != PlaceTable::none) continue;
            CAT_reportAdditionalVertex(vTriangles, *pCorner, frameAround(import.box));
            return false;
        }
    }
    std::vector<Segment2> vSuspects;
    bool bCreated = true;
    for (int round = 0; bCreated; ++round) {
        if (round == firstRoundWithText && import.mKeyMCH.size() > numBoxSides) {
            vSuspects = import.getOpenSegments();
        }
        if (round == maxRounds) {
            CAT_reportOpenEdges(vTriangles, vSuspects);
            return false;
        }
        bCreated = false;
        for (std::size_t first = 0; first < vNumbers.size(); first += 3) {
            const std::uint32_t a = vNumbers[first], b = vNumbers[first + 1], c = vNumbers[first + 2];
            const OpenEdges& mKeyMCH = import.mKeyMCH;
            if (!mKeyMCH.isClosing(b, c) && !mKeyMCH.isClosing(c, a) && !mKeyMCH.isClosing(a, b)) continue;
            CAT_createOuterTriangle(import, &vNumbers[first]);
            bCreated = true;
        }
    }
    return true;
}

/// Creates one more triangle and joins it to those at its edges that are open.
void Dt2::CAT_createOuterTriangle(TriangleImport& import, const std::uint32_t* aNumber) {
    const std::size_t number = import.vTriangles.size();
    import.vTriangles.push_back(createTriangle(import.vVertices[aNumber[0]], import.vVertices[aNumber[1]],
                                               import.vVertices[aNumber[2]]));
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t id = OpenEdges::idOf(number, i);
        const std::uint32_t closed =
            import.mKeyMCH.closeOrEnter({aNumber[incIndexBy1(i)], aNumber[incIndexBy2(i)], id});
        if (closed != OpenEdges::none) CAT_connect(import, closed, id);
    }
}

// --- the whole --------------------------------------------------------------------------------------------

/// How many triangles are clockwise, and how many are collinear.
std::pair<std::size_t, std::size_t> Dt2::CAT_countNotCCW(const std::vector<Point2>& vPoints) {
    std::pair<std::size_t, std::size_t> count(0, 0);
    for (std::size_t i = 0; i < vPoints.size(); i += 3) {
        const Orientation2 orientation =
            quorTest.getOrientation2Filtered(&vPoints[i], &vPoints[i + 1], &vPoints[i + 2]);
        count.first += orientation == ORIENTATION2_CW ? 1 : 0;
        count.second += orientation == ORIENTATION2_COLLINEAR ? 1 : 0;
    }
    return count;
}

/// Whether the triangles are a triangulation of the box. If not, an error tells so.
bool Dt2::CAT_checkClosed(const TriangleImport& import, bool bAllCCW) const {
    const std::vector<OpenEdges::Edge> vOpen = import.mKeyMCH.getEdges();
    const std::size_t numOpen = vOpen.size() + import.mKeyMCH.getNumDropped();
    const std::size_t firstBoxCorner = import.vVertices.size() - 4;
    const auto isBoxSide = [&](const OpenEdges::Edge& edge) {
        return edge.source >= firstBoxCorner && edge.target >= firstBoxCorner;
    };
    if (numOpen == numBoxSides && std::all_of(vOpen.begin(), vOpen.end(), isBoxSide) &&
        (bAllCCW || import.isDisc())) {
        return true;
    }
    std::cout << "mKeyMCH.size()=" << numOpen << std::endl;
    if (numOpen == numBoxSides) std::cout << "The triangles are folded over one another" << std::endl;
    printError("Dt2::CAT_importTriangles()", "size!=4, sorry, invalid input data or bug. If your data is "
                                             "clean, please report this incident");
    Visualizer2 visualizer("bug.ps");
    show(&visualizer, false);
    visualizer.addObject(import.getOpenSegments(), Color(CRED, 0.5F, false));
    visualizer.writeFile();
    return false;
}

// --- reports ----------------------------------------------------------------------------------------------

void Dt2::CAT_reportAdditionalVertex(const std::vector<Triangle2*>& vTriangles, const Point2& vertex,
                                     const Bbox2& frame) {
    printError(outerPlace, "Additional vertex (possibly due to a selfintersection)");
    std::cout << vertex << '\n' << drawingHint << std::endl;
    const double radius = circleShare * frame.getMaxRange();
    Visualizer2 visualizer("invalidInput.ps");
    visualizer.addObject(vTriangles, Color(CBLACK, 0.1F, false));
    visualizer.addObject(Circle2(vertex, radius * radius), Color(CRED, 0.5F, false));
    visualizer.writeFile();
}

void Dt2::CAT_reportOpenEdges(const std::vector<Triangle2*>& vTriangles,
                              const std::vector<Segment2>& vSuspects) {
    printError(outerPlace, "Invalid input data detected");
    std::ostringstream text;
    text << "Open edges (_possibly_ causing the problem) are\n";
    for (const Segment2& segment : vSuspects) {
        text << "Edge(" << segment.getSrc() << ", " << segment.getTrg() << ")\n";
    }
    if (!vSuspects.empty()) std::cout << text.str();
    std::cout << '\n' << drawingHint << std::endl;
    Visualizer2 visualizer("openEdges.ps");
    visualizer.addObject(vTriangles, Color(CBLACK, 0.1F, false));
    visualizer.addObject(vSuspects, Color(CRED, 0.5F, false));
    visualizer.writeFile();
}

} // namespace QUOR_KELM25D
