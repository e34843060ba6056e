// The influence box of a chunk, and the insertion of its vertices on a worker thread.
// The header tells why this is safe.

#include "Chunk.h"

#include "Flood.h"
#include "Mesh2.h"
#include "measures.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace QUOR_KELM25D {

namespace {

constexpr double circleEnlargement = 1.05; // of the radius, when asking what reaches the chunk's box
constexpr double boxMargin = 0.01;         // of the extents, around the circles

/// A circle that surely holds the corners of a triangle and very nearly is its circumcircle; infinite where
/// the circumcircle can't be told.
struct Circle {
    double x = 0.0, y = 0.0, radius = std::numeric_limits<double>::infinity();

    bool isFinite() const noexcept { return radius < std::numeric_limits<double>::infinity(); }
};

Circle circleThrough(const Triangle2& t, double centerX, double centerY) noexcept {
    if (!std::isfinite(centerX) || !std::isfinite(centerY)) return Circle();
    double least = std::numeric_limits<double>::infinity(), most = 0.0; // squared distances
    for (const Point2* pCorner : t.getCorners()) {
        const double dx = pCorner->x() - centerX, dy = pCorner->y() - centerY;
        const double distance = dx * dx + dy * dy;
        least = std::min(least, distance);
        most = std::max(most, distance);
    }
    if (!(most - least <= 0.001 * most)) return Circle();
    return {centerX, centerY, std::sqrt(most)};
}

/// By the formula relative to a corner; slivers for which rounding spoils it get the infinite circle.
Circle circumcircle(const Triangle2& t) noexcept {
    const Point2 &a = *t.getCorner(0), &b = *t.getCorner(1), &c = *t.getCorner(2);
    const double bx = b.x() - a.x(), by = b.y() - a.y(), cx = c.x() - a.x(), cy = c.y() - a.y();
    const double area = 2.0 * soundCrossProduct(bx, by, cx, cy);
    if (area == 0.0) return Circle();
    const double sqB = bx * bx + by * by, sqC = cx * cx + cy * cy;
    return circleThrough(t, a.x() + (cy * sqB - by * sqC) / area, a.y() + (bx * sqC - cx * sqB) / area);
}

/// Whether a circle comes as close to the border of the box as distance.
bool reachesBorder(const Bbox2& box, const Circle& circle, double distance) noexcept {
    const double dx = std::max(box.get_minX() - circle.x, circle.x - box.get_maxX());
    const double dy = std::max(box.get_minY() - circle.y, circle.y - box.get_maxY());
    if (dx <= 0.0 && dy <= 0.0) return -std::max(dx, dy) <= distance; // the centre is inside
    const double outX = std::max(dx, 0.0), outY = std::max(dy, 0.0);
    return outX * outX + outY * outY <= distance * distance;
}

void widen(Bbox2& box, const Circle& circle, const Bbox2& frame) {
    if (!circle.isFinite()) {
        box.add(frame.getMinPoint());
        box.add(frame.getMaxPoint());
        return;
    }
    box.add(Point2(circle.x - circle.radius, circle.y - circle.radius, 0.0));
    box.add(Point2(circle.x + circle.radius, circle.y + circle.radius, 0.0));
}

} // namespace

Triangle2* FreshTriangles::take() {
    if (count == 0) count = mesh.createTriangles(refill, pFirst);
    --count;
    return pFirst++;
}

void FreshTriangles::giveBack() {
    mesh.releaseTriangles(pFirst, count);
    count = 0;
}

Chunk::Chunk(Mesh2& mesh_, const Bbox2& frame_, const DenseVertices& denseVertices_, std::size_t firstIdx_,
             std::size_t lastIdx_, const Point2* pNear_)
    : mesh(mesh_), frame(frame_), denseVertices(denseVertices_), firstIdx(firstIdx_),
      lastIdx(lastIdx_), aNear{pNear_, pNear_, pNear_}, inserter(quorTest, mesh_.getSegmentTable()) {
    // The two maxima go in with their sign, deliberately; what they do not cover widens the filter.
    const double asWritten = 1.01 * std::max(frame.get_maxX(), frame.get_maxY());
    quorTest.setRange(
        std::max({asWritten, frame.getMinPoint().getMaxAbs(), frame.getMaxPoint().getMaxAbs()}));
}

void Chunk::prepare() {
    for (std::size_t i = firstIdx; i < lastIdx; ++i) {
        ownBox.add(*denseVertices[i]);
    }
    const Point2 corner = ownBox.getMinPoint();
    Triangle2* pStartT = aNear[0]->getIncidentTriangle();
    pStartT = inserter.locateFrom(&corner, pStartT).pT;
    std::copy_n(pStartT->getCorners(), 3, aNear);

    // All triangles whose circle reaches the border of the box are connected: a flood from the one at a
    // corner finds them, and those around them, whose circles count as well, but lead no farther.
    Bbox2 extremes = ownBox;
    Flood flood({pStartT});
    while (const Triangle2* pT = flood.next()) {
        const Circle circle = circumcircle(*pT);
        widen(extremes, circle, frame);
        const bool bReaches = pT == pStartT || !circle.isFinite() ||
                              reachesBorder(ownBox, circle, circleEnlargement * circle.radius);
        if (!bReaches) continue;
        for (Triangle2* pN : pT->getOppositeTriangles()) {
            if (pN != nullptr) flood.reach(pN);
        }
    }

    // All vertices lie in the frame, so nothing beyond it is touched.
    const double dx = boxMargin * extremes.getRangeX(), dy = boxMargin * extremes.getRangeY();
    influenceBox = ownBox;
    influenceBox.add(Point2(std::max(extremes.get_minX() - dx, frame.get_minX()),
                            std::max(extremes.get_minY() - dy, frame.get_minY()), 0.0));
    influenceBox.add(Point2(std::min(extremes.get_maxX() + dx, frame.get_maxX()),
                            std::min(extremes.get_maxY() + dy, frame.get_maxY()), 0.0));
}

/// A triangle to start walks from. What stands around the three corners may have changed since prepare, but
/// one of them mostly still has a triangle over the box.
Triangle2* Chunk::getStart() const noexcept {
    for (const Point2* pNear : aNear) {
        Triangle2* pT = pNear->getIncidentTriangle();
        int numInBox = 0;
        for (const Point2* pCorner : pT->getCorners()) {
            if (influenceBox.isInBox(*pCorner)) ++numInBox;
        }
        if (numInBox >= 2) return pT;
    }
    return aNear[0]->getIncidentTriangle();
}

void Chunk::run(FreshTriangles& fresh) {
    insertBisecting(
        firstIdx, lastIdx, getStart(), [&](std::size_t i) { return denseVertices[i]; },
        [&](Point2* p, Triangle2* pHint) { return insert(p, pHint, fresh); });
}

Triangle2* Chunk::insert(Point2* p, Triangle2* pHint, FreshTriangles& fresh) {
    const Location location = inserter.locateFrom(p, pHint, &influenceBox);
    if (location.kind == Location::AT_CORNER) {
        mesh.addDuplicate(p, location.pT->getCorner(location.idx));
        return location.pT;
    }
    if (location.kind != Location::INSIDE && location.kind != Location::ON_EDGE) {
        vPostponed.push_back(p);
        return pHint;
    }
    Triangle2* pNew0 = fresh.take();
    Triangle2* pNew1 = fresh.take();
    return inserter.insertInside(location, p, pNew0, pNew1);
}

void Chunk::insertPostponed() {
    for (Point2* p : vPostponed) {
        mesh.insertVertex(p, getStart());
    }
    vPostponed.clear();
}

} // namespace QUOR_KELM25D
