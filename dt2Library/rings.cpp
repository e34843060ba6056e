// Rings of segments, which meet where their ends have the same x and y.
// Rings of edges, which meet in a vertex, are in ringEdges.cpp, the test of a polygon in simplePolygon.cpp.
//
// Both sorts walk from segment to segment. The ends of all segments are sorted by place once, so that a step
// needs no search. sortRing insists on two ends at each place it comes to. sortRingCCW starts at the lowest
// of the leftmost places, where the ring's most clockwise segment has the ring on its left, and then turns
// right as sharply as it can: so it stays on the outer side where the ring touches itself.
#include <kelm25d/rings.h>

#include <kelm25d/Orientation2.h>
#include <kelm25d/Vector2.h>

#include "measures.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <numeric>
#include <string>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

bool isFinite(const std::vector<Segment2>& vSegments) {
    return std::all_of(vSegments.begin(), vSegments.end(), [&](const Segment2& segment) {
        return isFinite(segment.getSrc()) && isFinite(segment.getTrg());
    });
}

/// The ends of segments by place. End 2 i is the source of segment i, end 2 i + 1 its target; so the end
/// across is e ^ 1. Places are numbered by x, then y; at each place the ends stand in this order.
class EndsByPlace {
public:
    using Iterator = std::vector<std::size_t>::iterator;

    explicit EndsByPlace(const std::vector<Segment2>& vSegments) {
        struct End {
            Point2 point;
            std::size_t end;
        };
        std::vector<End> vSorted;
        vSorted.reserve(2 * vSegments.size());
        for (const Segment2& segment : vSegments) {
            vSorted.push_back({segment.getSrc(), vSorted.size()});
            vSorted.push_back({segment.getTrg(), vSorted.size()});
        }
        std::sort(vSorted.begin(), vSorted.end(), [](const End& a, const End& b) {
            return a.point < b.point || (a.point == b.point && a.end < b.end);
        });
        vEnds.reserve(vSorted.size());
        vPlaces.resize(vSorted.size());
        for (std::size_t i = 0; i < vSorted.size(); ++i) {
            if (i == 0 || vSorted[i].point != vSorted[i - 1].point) vRanges.push_back({i, i});
            vRanges.back().last = i + 1;
            vEnds.push_back(vSorted[i].end);
            vPlaces[vSorted[i].end] = vRanges.size() - 1;
        }
    }

    std::size_t placeOf(std::size_t end) const { return vPlaces[end]; }
    Iterator begin(std::size_t place) { return iteratorAt(vRanges[place].first); }
    Iterator end(std::size_t place) { return iteratorAt(vRanges[place].last); }

    /// Takes the ends of segments that are done out of a place, so that later visits do not see them again.
    void dropDone(std::size_t place, const std::vector<bool>& vDone) {
        const Iterator newEnd =
            std::remove_if(begin(place), end(place), [&](std::size_t e) { return vDone[e / 2]; });
        vRanges[place].last = static_cast<std::size_t>(newEnd - vEnds.begin());
    }

private:
    struct Range {
        std::size_t first, last;
    };

    Iterator iteratorAt(std::size_t i) { return vEnds.begin() + static_cast<std::ptrdiff_t>(i); }

    std::vector<std::size_t> vEnds;   // by place
    std::vector<std::size_t> vPlaces; // of each end
    std::vector<Range> vRanges;       // of each place, in vEnds
};

Segment2 startingAt(const Point2& start, Segment2 segment) {
    if (segment.getSrc() != start) segment.swapSrcTrg();
    return segment;
}

/// The point that is one of the ends.
Point2 pointAt(const std::vector<Segment2>& vSegments, std::size_t end) {
    return end % 2 == 0 ? vSegments[end / 2].getSrc() : vSegments[end / 2].getTrg();
}

/// Of the rays from the lowest of the leftmost points, the one that has all others on its left. None if two
/// rays are collinear of which one comes before that one in the list, or is it; a ray to minPoint itself is
/// collinear with all.
std::size_t findMostClockwise(const Point2& minPoint, const std::vector<Point2>& vOtherEndPoints) {
    for (const Point2& other : vOtherEndPoints)
        if (other == minPoint) return none;
    std::vector<std::size_t> vOrder(vOtherEndPoints.size());
    std::iota(vOrder.begin(), vOrder.end(), std::size_t(0));
    const auto orientation = [&](std::size_t i, std::size_t j) {
        return getOrientation2(&minPoint, &vOtherEndPoints[i], &vOtherEndPoints[j]);
    };
    // No two rays are opposite, since none points to the left or straight down: orientation is an order.
    std::stable_sort(vOrder.begin(), vOrder.end(),
                     [&](std::size_t i, std::size_t j) { return orientation(i, j) == ORIENTATION2_CCW; });
    for (std::size_t k = 1; k < vOrder.size(); ++k)
        if (vOrder[k - 1] <= vOrder[0] && orientation(vOrder[k - 1], vOrder[k]) == ORIENTATION2_COLLINEAR)
            return none;
    return vOrder[0];
}

/// The end with which the ring begins, at the lowest of the leftmost places; none if that is not decided.
std::size_t findFirstEnd(const std::vector<Segment2>& vRing, EndsByPlace& ends) {
    const Point2 minPoint = pointAt(vRing, *ends.begin(0));
    std::vector<const Segment2*> vSegmentPtrs;
    std::vector<Point2> vOtherEndPoints;
    for (auto it = ends.begin(0); it != ends.end(0); ++it) {
        const Segment2* pSeg = &vRing[*it / 2];
        vSegmentPtrs.push_back(pSeg);
        if (pSeg->getSrc() == minPoint) {
            vOtherEndPoints.push_back(pSeg->getTrg());
        } else {
            KELM_CHECK(pSeg->getTrg()==minPoint);
            vOtherEndPoints.push_back(pSeg->getSrc());
        }
    }
    KELM_CHECK(vOtherEndPoints.size()==vSegmentPtrs.size());
    const std::size_t first = findMostClockwise(minPoint, vOtherEndPoints);
    return first == none ? none : *(ends.begin(0) + static_cast<std::ptrdiff_t>(first));
}

/// The end among candidates at connector that goes on with the sharpest right turn, of equal ones the first.
std::size_t findSharpestRightTurn(const std::vector<Segment2>& vRing, const std::vector<Segment2>& vResult,
                                  const Point2& connector, EndsByPlace::Iterator begin,
                                  EndsByPlace::Iterator end) {
    KELM_CHECK(!vResult.empty());
    const Point2 lastFrom = vResult.back().getSrc(), lastTo = vResult.back().getTrg();
    KELM_CHECK(lastTo==connector);
    const auto unitVector2D = [](const Point2& from, const Point2& to) {
        return normalize(Vector2(to.x() - from.x(), to.y() - from.y(), 0.0));
    };
    const Vector2 back = unitVector2D(lastTo, lastFrom);
    double best = std::numeric_limits<double>::max();
    std::size_t bestEnd = *begin;
    for (EndsByPlace::Iterator it = begin; it != end; ++it) {
        const Segment2 candidate = startingAt(connector, vRing[*it / 2]);
        const Point2 src = candidate.getSrc(), trg = candidate.getTrg();
        KELM_CHECK(src==connector);
        double angle = angleOfCosine(back * unitVector2D(src, trg));
        // Not 360 - angle, the true turn: this order of the candidates on the other side is deliberate.
        if (getOrientation2_mt(&lastTo, &lastFrom, &trg) == ORIENTATION2_CW) angle += 180.0;
        if (angle < best) {
            best = angle;
            bestEnd = *it;
        }
    }
    return bestEnd;
}

/// Says that the segments are no ring, in the function that sorts them counterclockwise.
bool refuseRingCCW(const std::string& text, int line) {
    printWarning("bool QUOR_KELM25D::sortRingCCW(std::vector<Segment2>&) " + std::to_string(line), text);
    return false;
}

} // namespace

bool sortRing(std::vector<Segment2>& vRing) {
    const auto refuse = [](const char* text) {
        printWarning("sortRing()", text);
        return false;
    };
    if (vRing.empty()) return false;
    if (!isFinite(vRing)) return refuse("Not a ring3");
    EndsByPlace ends(vRing);
    std::vector<bool> vVisited(vRing.size(), false);
    vVisited[0] = true;
    std::vector<Segment2> vResult{vRing[0]};
    vResult.reserve(vRing.size());
    std::size_t place = ends.placeOf(1);
    while (place != ends.placeOf(0)) {
        const auto count = ends.end(place) - ends.begin(place);
        if (count != 2) {
            std::cout << "Distance=" << count << std::endl;
            return refuse("Not a ring1");
        }
        std::size_t end = *ends.begin(place);
        if (vVisited[end / 2]) end = *(ends.begin(place) + 1);
        if (vVisited[end / 2]) return refuse("Not a ring2");
        vVisited[end / 2] = true;
        vResult.push_back(startingAt(vResult.back().getTrg(), vRing[end / 2]));
        place = ends.placeOf(end ^ 1);
    }
    vRing.swap(vResult);
    return true;
}

bool sortRingCCW(std::vector<Segment2>& vRing) {
    if (vRing.empty()) return false;
    if (!isFinite(vRing)) {
        printWarning("sortRingCCW()", "Not a ring3");
        return false;
    }
    EndsByPlace ends(vRing);
    std::size_t end = findFirstEnd(vRing, ends);
    if (end == none) return refuseRingCCW("not a ring 0", __LINE__);
    std::vector<bool> vDone(vRing.size(), false);
    std::vector<Segment2> vResult;
    vResult.reserve(vRing.size());
    std::size_t place = 0;
    for (;;) {
        vResult.push_back(startingAt(pointAt(vRing, end), vRing[end / 2]));
        vDone[end / 2] = true;
        place = ends.placeOf(end ^ 1);
        ends.dropDone(place, vDone);
        const auto numCandidates = ends.end(place) - ends.begin(place);
        if (numCandidates == 0) break;
        end = *ends.begin(place);
        if (numCandidates > 1) {
            end = findSharpestRightTurn(vRing, vResult, pointAt(vRing, end), ends.begin(place),
                                        ends.end(place));
        }
    }
    if (place != 0) return refuseRingCCW("not a ring 1", __LINE__);
    vRing.swap(vResult);
    return true;
}

} // namespace QUOR_KELM25D
