/// @file
/// The axis-parallel bounding box of points in the xy plane.
/// Heights take no part in it.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/export.h>

#include <vector>

namespace QUOR_KELM25D {

class QuorTest;

/// A box that grows with the points added to it.
///
/// A fresh box is invalid: it holds the empty range until it receives a point. Functions that read the range
/// of an invalid box see the largest double as minima and the lowest as maxima, unless they say otherwise.
/// Nothing throws; misuse is met with a warning line on standard output. Constant time but for the ranges.
///
/// A box may be wired to a predicate filter, which it widens when the box is doubled or enlarged. The filter
/// is not owned, must outlive the box and all its copies, and is for one thread at a time.
class KELM25D_API Bbox2 {
public:
    /// An invalid box; pFilter is the filter to widen, or null.
    Bbox2(QuorTest* pFilter = nullptr) noexcept;

    /// The box of a range of Point2. Its maxY is and stays the largest double; that is deliberate. For the
    /// exact box of a range use a fresh box and add.
    template <class Iterator>
    Bbox2(Iterator first, Iterator last, QuorTest* pFilter);

    /// Extends the box to a point; coordinates must be numbers.
    /// @return true if the box changed, which the first point always achieves
    bool add(const Point2& point) noexcept {
        return bValid ? treatPointForValidBox(point) : treatPointForInvalidBox(point);
    }

    /// Extends the box to all points of a range, whose elements are Point2 or pointers to Point2, not null.
    /// @return true if the box changed; false for an empty range. Linear time.
    template <class Iterator>
    bool add(Iterator first, Iterator last);

    /// Extends the box to n points that stand as x, y, z one after the other; z is ignored.
    /// @return true if the box changed; false for n = 0, and then xyz is not read. Linear time.
    bool add(unsigned n, const double* xyz) noexcept;

    /// True if minX has been set, by a point or by setMinX.
    bool isValid() const noexcept;

    /// True if the point lies inside or on the border; false for an invalid box.
    bool isInBox(const Point2& point) const noexcept {
        return minX <= point.x() && point.x() <= maxX && minY <= point.y() && point.y() <= maxY;
    }

    /// True if the two boxes share a point, borders included. With an invalid box on either side a warning
    /// and false.
    bool doIntersect(const Bbox2& other) const;

    /// The midpoint, height 0. For an invalid box a warning, and a result without meaning.
    Point2 computeCenter() const;

    /// The union. It is written into this box and returned by value as well; that is deliberate. An invalid
    /// right side gives a warning and leaves the box as it was.
    Bbox2 operator+(const Bbox2& other);

    /// Reads the box: the range in x first, then the range in y.
    void getBounds(double& xMin, double& xMax, double& yMin, double& yMax) const noexcept;

    /// The lower bound in x.
    double get_minX() const noexcept { return minX; }
    /// The lower bound in y.
    double get_minY() const noexcept { return minY; }
    /// The upper bound in x.
    double get_maxX() const noexcept { return maxX; }
    /// The upper bound in y.
    double get_maxY() const noexcept { return maxY; }
    /// The lower left corner, height 0.
    Point2 getMinPoint() const noexcept { return Point2(minX, minY, 0.0); }
    /// The upper right corner, height 0.
    Point2 getMaxPoint() const noexcept { return Point2(maxX, maxY, 0.0); }
    /// The smaller of minX and minY.
    double getMinCoord() const noexcept { return minY < minX ? minY : minX; }
    /// The larger of maxX and maxY.
    double getMaxCoord() const noexcept { return maxX < maxY ? maxY : maxX; }
    /// The extent in x.
    double getRangeX() const noexcept { return maxX - minX; }
    /// The extent in y.
    double getRangeY() const noexcept { return maxY - minY; }
    /// The larger of the two extents.
    double getMaxRange() const noexcept { return getRangeX() < getRangeY() ? getRangeY() : getRangeX(); }

    /// Sets the lower bound in x. As with the other three, the box counts as filled once neither range is
    /// reversed; bounds set before that are kept when the first point arrives.
    void setMinX(double value) noexcept;
    /// Sets the lower bound in y, see setMinX.
    void setMinY(double value) noexcept;
    /// Sets the upper bound in x, see setMinX.
    void setMaxX(double value) noexcept;
    /// Sets the upper bound in y, see setMinX.
    void setMaxY(double value) noexcept;

    /// Appends the four corners, counterclockwise from (minX, minY), heights 0.
    void getCorners(std::vector<Point2>& vCorners) const;

    /// Appends the four corners in the order of getCorners, moved outward by offset in x and in y.
    void getOffsetCorners(double offset, std::vector<Point2>& vCorners) const;

    /// Doubles both extents about the centre and sets the filter for the new box. Nothing happens to an
    /// invalid box.
    void doubleTheBox();

    /// Multiplies both extents by the factor about the centre and sets the filter for the new box. Nothing
    /// happens to an invalid box.
    void enlargeRanges(double factor);

    /// Moves maxX by d if the box is valid and has no extent in x, and maxY likewise in y.
    void inflateIfDegenerate(double d) noexcept;

protected:
    /// The first step of add: bounds that nobody has set take the point's coordinates. Returns true.
    bool treatPointForInvalidBox(const Point2& point) noexcept;

    /// The later steps of add: returns true if a bound moved.
    bool treatPointForValidBox(const Point2& point) noexcept {
        Extent extent{minX, minY, maxX, maxY};
        extent.include(point.x(), point.y());
        return take(extent);
    }

private:
    // A running box on the stack, which the compiler keeps in registers over a whole range. It looks at the
    // maximum even if the minimum has moved: boxes that setters have reversed come out right as well.
    struct Extent {
        double minX, minY, maxX, maxY;

        void include(double x, double y) noexcept {
            minX = x < minX ? x : minX;
            minY = y < minY ? y : minY;
            maxX = maxX < x ? x : maxX;
            maxY = maxY < y ? y : maxY;
        }
    };

    static const Point2& dereference(const Point2& point) noexcept { return point; }
    static const Point2& dereference(const Point2* pPoint) noexcept { return *pPoint; }

    // Makes the extent the box, and tells whether that changed it.
    bool take(const Extent& extent) noexcept {
        const bool bChanged =
            extent.minX != minX || extent.minY != minY || extent.maxX != maxX || extent.maxY != maxY;
        minX = extent.minX;
        minY = extent.minY;
        maxX = extent.maxX;
        maxY = extent.maxY;
        return bChanged;
    }

    void leaveMaxYOpen() noexcept;
    void updateValidity() noexcept;

    double minX;
    double minY;
    double maxX;
    double maxY;
    bool bValid;         // a point has come in, or setters have given a range in x and in y
    QuorTest* pQuorTest; // not owned, null if nobody's filter depends on this box
};

template <class Iterator>
Bbox2::Bbox2(Iterator first, Iterator last, QuorTest* pFilter) : Bbox2(pFilter) {
    leaveMaxYOpen();
    add(first, last);
}

template <class Iterator>
bool Bbox2::add(Iterator first, Iterator last) {
    if (first == last) return false;
    const bool bFirstChanged = add(dereference(*first));
    Extent extent{minX, minY, maxX, maxY};
    for (++first; first != last; ++first) {
        const Point2& point = dereference(*first);
        extent.include(point.x(), point.y());
    }
    return take(extent) || bFirstChanged;
}

} // namespace QUOR_KELM25D
