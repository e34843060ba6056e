// Measures of one triangle: lengths, areas, angles, and the circumcentre.
// The mesh operations that change triangles belong to the triangulation.
//
// The circumcentre serves mesh refinement, so it has to be good for slivers too and honest about itself. The
// determinant formula comes first, in coordinates shifted to where the triangle is. For a sliver its
// denominator is mostly rounding error; then a bisection along the perpendicular bisector of the longest edge
// looks for the point as far from one end as from the opposite corner. It uses up double precision: about a
// hundred steps, in the worst case a thousand. Both results are measured the same way before they are
// trusted.
#include <kelm25d/Triangle2.h>

#include "measures.h"
#include "messages.h"
#include "sqDistance25D.h"

#include <kelm25d/Orientation2.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace QUOR_KELM25D {

namespace {

double sqDistance2D(const Point2& a, const Point2& b) noexcept {
    const double dx = a.x() - b.x();
    const double dy = a.y() - b.y();
    return dx * dx + dy * dy;
}

Point2 shifted(const Point2& p, double ox, double oy) noexcept {
    return Point2(p.x() - ox, p.y() - oy, p.z());
}

double angleInDegrees(const Vector2& a, const Vector2& b) noexcept {
    return angleOfCosine(normalize(a) * normalize(b));
}

Vector2 flat(const Vector2& v) noexcept {
    return Vector2(v.x(), v.y(), 0.0);
}

// The mean of the entries of smallest and of largest magnitude.
double meanOfExtremes(double a, double b, double c) noexcept {
    const auto lessMagnitude = [](double l, double r) { return std::fabs(l) < std::fabs(r); };
    return 0.5 * std::min({a, b, c}, lessMagnitude) + 0.5 * std::max({a, b, c}, lessMagnitude);
}

} // namespace

void Triangle2::reportMissingEdge(const Point2* pA, const Point2* pB) const {
    std::cout << "BUG: Triangle2::getIntraTriangleIndex failed for\n"
              << *pA << '\n'
              << *pB << '\n'
              << *this << std::endl;
}

bool Triangle2::hasOnEdge(int i, const Point2& point) const {
    const Point2* pA = aCorner[i];
    const Point2* pB = aCorner[incIndexBy1(i)];
    const Point2* pC = aCorner[incIndexBy2(i)];
    return getOrientation2(pB, pC, &point) == ORIENTATION2_COLLINEAR &&
           getOrientation2(pA, pB, &point) != ORIENTATION2_CW &&
           getOrientation2(pC, pA, &point) != ORIENTATION2_CW;
}

Point2 Triangle2::getBarycenter() const noexcept {
    const Point2 &a = *aCorner[0], &b = *aCorner[1], &c = *aCorner[2];
    return Point2((a.x() + b.x() + c.x()) / 3.0, (a.y() + b.y() + c.y()) / 3.0,
                  (a.z() + b.z() + c.z()) / 3.0);
}

double Triangle2::getArea2D() const {
    return computeArea(std::sqrt(getSquaredEdgeLength2D(0)), std::sqrt(getSquaredEdgeLength2D(1)),
                       std::sqrt(getSquaredEdgeLength2D(2)));
}

double Triangle2::getArea25D() const {
    return computeArea(std::sqrt(getSquaredEdgeLength25D(0)), std::sqrt(getSquaredEdgeLength25D(1)),
                       std::sqrt(getSquaredEdgeLength25D(2)));
}

double Triangle2::computeArea(double l0, double l1, double l2) const {
    const double s = (l0 + l1 + l2) * 0.5;
    const double v = (s - l0) * s * (s - l1) * (s - l2);
    if (std::isnan(v)) {
        printWarning("Triangle2::computeArea()", "invalid value, no area for this triangle");
        std::cout << "ownHalfCircf=" << s << "\nCorners are: \n"
                  << *aCorner[0] << '\n'
                  << *aCorner[1] << '\n'
                  << *aCorner[2] << '\n'
                  << "len0=" << l0 << "\nlen1=" << l1 << "\nlen2=" << l2 << std::endl;
        KELM_CHECK(false);
    }
    return v > 0.0 ? std::sqrt(v) : 0.0;
}

double Triangle2::getInteriorAngle2D(int i) const noexcept {
    const Point2& corner = *aCorner[i];
    return angleInDegrees(flat(*aCorner[incIndexBy1(i)] - corner), flat(*aCorner[incIndexBy2(i)] - corner));
}

double Triangle2::getInteriorAngle25D(int i) const noexcept {
    const Point2& corner = *aCorner[i];
    return angleInDegrees(*aCorner[incIndexBy1(i)] - corner, *aCorner[incIndexBy2(i)] - corner);
}

double Triangle2::getSquaredEdgeLength25D(int i) const {
    return sqDistance25D(*aCorner[incIndexBy1(i)], *aCorner[incIndexBy2(i)]);
}

int Triangle2::getMaxIndex() const noexcept {
    const double aLen[3] = {getSquaredEdgeLength(0), getSquaredEdgeLength(1), getSquaredEdgeLength(2)};
    return static_cast<int>(std::max_element(aLen, aLen + 3) - aLen);
}

int Triangle2::getMinIndex() const noexcept {
    const double aLen[3] = {getSquaredEdgeLength(0), getSquaredEdgeLength(1), getSquaredEdgeLength(2)};
    return static_cast<int>(std::min_element(aLen, aLen + 3) - aLen);
}

Vector2 Triangle2::getNormalVector() const noexcept {
    return normalize(crossProduct(*aCorner[1] - *aCorner[0], *aCorner[2] - *aCorner[0]));
}

std::pair<Point2, bool> Triangle2::getDual() const {
    double ox = 0.0, oy = 0.0;
    getCommonOffset(ox, oy);
    const int longestEdge = getMaxIndex();
    Point2 cc;
    if (getCC_strategy1(ox, oy, cc) && isAccurateCC(longestEdge, cc)) return {cc, true};
    getCC_strategy2(longestEdge, ox, oy, cc);
    return {cc, isAccurateCC(longestEdge, cc)};
}

void Triangle2::getCommonOffset(double& ox, double& oy) const noexcept {
    ox = meanOfExtremes(aCorner[0]->x(), aCorner[1]->x(), aCorner[2]->x());
    oy = meanOfExtremes(aCorner[0]->y(), aCorner[1]->y(), aCorner[2]->y());
}

bool Triangle2::getCC_strategy1(double ox, double oy, Point2& cc) const noexcept {
    const Point2 a = shifted(*aCorner[0], ox, oy);
    const Point2 b = shifted(*aCorner[1], ox, oy);
    const Point2 c = shifted(*aCorner[2], ox, oy);
    const double sqA = a.x() * a.x() + a.y() * a.y();
    const double sqB = b.x() * b.x() + b.y() * b.y();
    const double sqC = c.x() * c.x() + c.y() * c.y();

    const double doubleArea =
        c.y() * b.x() + b.y() * a.x() + c.x() * a.y() - (c.y() * a.x() + b.x() * a.y() + c.x() * b.y());
    const double den = 2.0 * doubleArea;
    if (den == 0.0) return false;

    const double x = ((b.y() - c.y()) * sqA + (c.y() - a.y()) * sqB + (a.y() - b.y()) * sqC) / den;
    const double y = ((a.x() - c.x()) * sqB + (c.x() - b.x()) * sqA + (b.x() - a.x()) * sqC) / den;
    cc = Point2(x + ox, y + oy, 0.0);
    return true;
}

void Triangle2::getCC_strategy2(int ici, double ox, double oy, Point2& cc) const {
    const Point2 apex = shifted(*aCorner[ici], ox, oy);
    const Point2 end = shifted(*aCorner[incIndexBy1(ici)], ox, oy);
    const Point2 otherEnd = shifted(*aCorner[incIndexBy2(ici)], ox, oy);
    const Point2 middle((end.x() + otherEnd.x()) * 0.5, (end.y() + otherEnd.y()) * 0.5,
                        (end.z() + otherEnd.z()) * 0.5);
    const Vector2 edge = end - otherEnd;
    if (!std::isfinite(edge.x()) || !std::isfinite(edge.y()))
        return; // beyond doubles: cc is found inaccurate
    const Vector2 outward = edge.orthogonalVector();

    // Seen from the middle of the longest edge, the centre of an acute triangle lies on the apex's side and
    // not beyond the apex's distance; that of an obtuse one on the other side, as far as it likes.
    const double sqApex = sqDistance2D(apex, middle);
    const bool bAcute = sqApex > sqDistance2D(end, middle);
    const double sign = bAcute ? 1.0 : -1.0;
    const double reach = (bAcute ? std::sqrt(sqApex) : 1e13) / outward.length();
    const Vector2 ray = (bAcute ? -outward : outward) * reach;

    double lo = 0.0, hi = 1.0, t = 0.5;
    // Ending only when t meets an end of the interval is deliberate: double precision is used up.
    while (t != hi) {
        const Point2 candidate = middle + ray * t;
        const double difference = sqDistance2D(apex, candidate) - sqDistance2D(end, candidate);
        if (std::fabs(difference) < 1e-16) break;
        if (sign * difference < 0.0)
            hi = t;
        else
            lo = t;
        t = (lo + hi) * 0.5;
        if (t == lo) break;
    }
    const Point2 center = middle + ray * t;
    cc = Point2(center.x() + ox, center.y() + oy, center.z());
}

bool Triangle2::isAccurateCC(int ici, const Point2& cc) const {
    const Point2* pCorner = aCorner[ici];
    const Point2* pNext = aCorner[incIndexBy1(ici)];
    const Point2* pPrev = aCorner[incIndexBy2(ici)];
    const double r0 = std::sqrt(sqDistance2D(cc, *pCorner));
    const double r1 = std::sqrt(sqDistance2D(cc, *pNext));
    const double r2 = std::sqrt(sqDistance2D(cc, *pPrev));
    // Distances first: a centre that is not finite must not reach the exact predicate.
    if (!(std::fabs(r0 - r1) < 1e-6 && std::fabs(r1 - r2) < 1e-6 && std::fabs(r2 - r0) < 1e-6)) return false;
    // The thread-safe form: circles are computed on several threads during bulk insertion.
    return getOrientation2_mt(pPrev, pCorner, &cc) != ORIENTATION2_CW &&
           getOrientation2_mt(pCorner, pNext, &cc) != ORIENTATION2_CW;
}

std::ostream& operator<<(std::ostream& stream, const Triangle2& triangle) {
    stream << "Triangle(" << static_cast<const void*>(&triangle) << "): area2D=" << triangle.getArea2D()
           << ", area2.5D=" << triangle.getArea25D() << ", ";
    switch (getOrientation2(triangle.getCorner(0), triangle.getCorner(1), triangle.getCorner(2))) {
    case ORIENTATION2_CCW:
        stream << "CCW";
        break;
    case ORIENTATION2_CW:
        stream << "ATTENTION, CLOCKWISE CORNERS!";
        break;
    case ORIENTATION2_COLLINEAR:
        stream << "ATTENTION, COLLINEAR CORNERS";
        break;
    }
    for (int i = 0; i < 3; ++i)
        stream << '\n'
               << i << ": " << *triangle.getCorner(i)
               << "\t oppTriangle: " << static_cast<const void*>(triangle.getOppositeTriangle(i));
    return stream << '\n';
}

} // namespace QUOR_KELM25D
