// Bounding boxes: union, corners, growth and the wiring to a predicate filter.
// The adding of points is inline in the header, since bulk insertion adds every point.
#include <kelm25d/Bbox2.h>

#include "QuorTest.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace QUOR_KELM25D {

namespace {

const double unsetMin = std::numeric_limits<double>::max();
const double unsetMax = std::numeric_limits<double>::lowest();

} // namespace

Bbox2::Bbox2(QuorTest* pFilter) noexcept
    : minX(unsetMin), minY(unsetMin), maxX(unsetMax), maxY(unsetMax), bValid(false), pQuorTest(pFilter) {
}

// Deliberate: a box built from a range is open upwards.
void Bbox2::leaveMaxYOpen() noexcept {
    maxY = std::numeric_limits<double>::max();
}

bool Bbox2::treatPointForInvalidBox(const Point2& point) noexcept {
    if (minX == unsetMin) minX = point.x();
    if (minY == unsetMin) minY = point.y();
    if (maxX == unsetMax) maxX = point.x();
    if (maxY == unsetMax) maxY = point.y();
    bValid = true;
    return true;
}

bool Bbox2::add(unsigned n, const double* xyz) noexcept {
    if (n == 0) return false;
    const bool bFirstChanged = add(Point2(xyz[0], xyz[1], xyz[2]));
    Extent extent{minX, minY, maxX, maxY};
    for (const double* pCoord = xyz + 3; --n > 0; pCoord += 3)
        extent.include(pCoord[0], pCoord[1]);
    return take(extent) || bFirstChanged;
}

// Deliberate: bValid is not asked, so a box with nothing but minX set counts as valid here.
bool Bbox2::isValid() const noexcept {
    return minX < unsetMin;
}

bool Bbox2::doIntersect(const Bbox2& other) const {
    if (!isValid() || !other.isValid()) {
        printWarning("Bbox2::doIntersect()", "bbox invalid");
        return false;
    }
    return minX <= other.maxX && other.minX <= maxX && minY <= other.maxY && other.minY <= maxY;
}

Point2 Bbox2::computeCenter() const {
    if (!isValid()) printWarning("Bbox2::computeCenter()", "Bbox2 is invalid");
    return Point2((minX + maxX) * 0.5, (minY + maxY) * 0.5, 0.0);
}

Bbox2 Bbox2::operator+(const Bbox2& other) {
    if (!other.isValid()) {
        printWarning("Box2::operator+()", "trying to add an invalid Bbox2");
        return *this;
    }
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
    updateValidity();
    return *this;
}

void Bbox2::getBounds(double& xMin, double& xMax, double& yMin, double& yMax) const noexcept {
    xMin = minX;
    xMax = maxX;
    yMin = minY;
    yMax = maxY;
}

void Bbox2::updateValidity() noexcept {
    if (minX <= maxX && minY <= maxY) bValid = true;
}

void Bbox2::setMinX(double value) noexcept {
    minX = value;
    updateValidity();
}

void Bbox2::setMinY(double value) noexcept {
    minY = value;
    updateValidity();
}

void Bbox2::setMaxX(double value) noexcept {
    maxX = value;
    updateValidity();
}

void Bbox2::setMaxY(double value) noexcept {
    maxY = value;
    updateValidity();
}

void Bbox2::getCorners(std::vector<Point2>& vCorners) const {
    getOffsetCorners(0.0, vCorners);
}

void Bbox2::getOffsetCorners(double offset, std::vector<Point2>& vCorners) const {
    vCorners.emplace_back(minX - offset, minY - offset, 0.0);
    vCorners.emplace_back(maxX + offset, minY - offset, 0.0);
    vCorners.emplace_back(maxX + offset, maxY + offset, 0.0);
    vCorners.emplace_back(minX - offset, maxY + offset, 0.0);
}

void Bbox2::doubleTheBox() {
    if (!isValid()) return;
    const double rangeX = getRangeX();
    const double rangeY = getRangeY();
    minX -= 0.5 * rangeX;
    maxX += 0.5 * rangeX;
    minY -= 0.5 * rangeY;
    maxY += 0.5 * rangeY;
    // Deliberate: unlike in enlargeRanges the two maxima go in with their sign.
    if (pQuorTest) pQuorTest->setRange(std::max({std::fabs(minX), maxX, std::fabs(minY), maxY}));
}

void Bbox2::enlargeRanges(double factor) {
    if (!isValid()) return;
    const double rangeX = getRangeX();
    const double rangeY = getRangeY();
    const double dx = 0.5 * (rangeX * factor - rangeX);
    const double dy = 0.5 * (rangeY * factor - rangeY);
    minX -= dx;
    maxX += dx;
    minY -= dy;
    maxY += dy;
    if (pQuorTest)
        pQuorTest->setRange(std::max({std::fabs(minX), std::fabs(maxX), std::fabs(minY), std::fabs(maxY)}));
}

void Bbox2::inflateIfDegenerate(double d) noexcept {
    if (!isValid()) return;
    if (minX == maxX) maxX += d;
    if (minY == maxY) maxY += d;
}

} // namespace QUOR_KELM25D
