/// @file
/// The point of the library: two coordinates, a height, and what a stored vertex needs besides.
/// Orientation and distance are no members: see Orientation2.h for the one and Segment2.h for the other.
#pragma once

#include <kelm25d/export.h>

#include <cmath>
#include <iosfwd>
#include <limits>

namespace QUOR_KELM25D {

class Triangle2;

/// A point with a height, and at the same time the stored vertex of a triangulation.
///
/// Coordinates are the caller's own; all topology is made from x and y, and z is carried along. Equality and
/// order look at x and y only. A copy is never a vertex: it keeps coordinates and custom index and forgets
/// the incident triangle. Coordinates must be finite wherever a point enters a triangulation; this class
/// itself accepts every value. Nothing here throws, and everything is constant time.
class KELM25D_API Point2 {
public:
    /// An unset point: all coordinates are the lowest finite double, no triangle, custom index -1.
    Point2() noexcept
        : dX(std::numeric_limits<double>::lowest()), dY(std::numeric_limits<double>::lowest()),
          dZ(std::numeric_limits<double>::lowest()), pIncidentTriangle(nullptr), customIndex(-1) {}

    /// A point at (x, y) with height z, no triangle and custom index -1.
    Point2(double x, double y, double z) noexcept
        : dX(x), dY(y), dZ(z), pIncidentTriangle(nullptr), customIndex(-1) {}

    /// Copies coordinates and custom index; the copy has no incident triangle.
    Point2(const Point2& other) noexcept
        : dX(other.dX), dY(other.dY), dZ(other.dZ), pIncidentTriangle(nullptr),
          customIndex(other.customIndex) {}

    /// Copies coordinates and custom index; the target's incident triangle becomes null, also when a vertex
    /// is assigned to itself.
    Point2& operator=(const Point2& other) noexcept {
        dX = other.dX;
        dY = other.dY;
        dZ = other.dZ;
        pIncidentTriangle = nullptr;
        customIndex = other.customIndex;
        return *this;
    }

    ~Point2() = default;

    /// The x coordinate.
    double x() const noexcept { return dX; }
    /// The y coordinate.
    double y() const noexcept { return dY; }
    /// The height.
    double z() const noexcept { return dZ; }

    /// Reads x and y in one call.
    void xy(double& x, double& y) const noexcept {
        x = dX;
        y = dY;
    }

    /// Reads x, y and z in one call.
    void xyz(double& x, double& y, double& z) const noexcept {
        x = dX;
        y = dY;
        z = dZ;
    }

    /// Sets the height. Safe on a vertex of a triangulation, since no topology depends on z.
    void setZ(double z) noexcept { dZ = z; }
    /// The same as setZ.
    void setHeight(double z) noexcept { dZ = z; }

    /// The number that the user attached, -1 if none.
    int getCustomIndex() const noexcept { return customIndex; }
    /// Attaches a number of the user's choice; the library never reads it to decide anything.
    void setCustomIndex(int index) noexcept { customIndex = index; }

    /// One of the triangles around this vertex, null for a point that is not a vertex of a triangulation.
    /// The triangle belongs to the triangulation; which one it is changes with every insertion and removal.
    Triangle2* getIncidentTriangle() const noexcept { return pIncidentTriangle; }

    /// Exact comparison of x and y; heights are ignored. Not equal if a coordinate is not a number.
    bool operator==(const Point2& other) const noexcept { return dX == other.dX && dY == other.dY; }
    /// The negation of operator==.
    bool operator!=(const Point2& other) const noexcept { return !(*this == other); }

    /// Exact comparison of x, y and z.
    bool samePoint(const Point2& other) const noexcept {
        return dX == other.dX && dY == other.dY && dZ == other.dZ;
    }

    /// Order by x, then y; heights are ignored, so points above one another are equivalent.
    bool operator<(const Point2& other) const noexcept {
        return dX < other.dX || (dX == other.dX && dY < other.dY);
    }

    /// The mirror image of operator<.
    bool operator>(const Point2& other) const noexcept { return other < *this; }

    /// The larger of |x| and |y|; the height is ignored.
    double getMaxAbs() const noexcept {
        const double absX = std::fabs(dX);
        const double absY = std::fabs(dY);
        return absX < absY ? absY : absX;
    }

private:
    friend class Triangle2;
    friend class Mesh2;
    friend class VertexVault;
    friend class SegmentTable;

    void setIncidentTriangle(Triangle2* pTriangle) noexcept { pIncidentTriangle = pTriangle; }

    double dX;
    double dY;
    double dZ;
    Triangle2* pIncidentTriangle; // null, or a triangle that has this point as a corner
    int customIndex;
    unsigned constraintFilter = 0; // see SegmentTable; stands in what would be padding
};

static_assert(sizeof(void*) != 8 || sizeof(Point2) == 40,
              "every vertex is a Point2: nothing may be added to it");

/// Writes "Point2 (address,customIndex): x, y, z" in the stream's current number format.
KELM25D_API std::ostream& operator<<(std::ostream& stream, const Point2& point);

/// Order of points by x, then y, then z: for ordered containers that keep points apart which differ only in
/// height. Coordinates must be numbers.
struct KELM25D_API Func_ltPointXYZ {
    /// True if a comes before b.
    bool operator()(const Point2& a, const Point2& b) const noexcept {
        if (a.x() != b.x()) return a.x() < b.x();
        if (a.y() != b.y()) return a.y() < b.y();
        return a.z() < b.z();
    }
};

} // namespace QUOR_KELM25D
