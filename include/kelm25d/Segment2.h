/// @file
/// A segment as two points by value, and an order for containers of segments.
/// A segment of a triangulation is an Edge2 or a VertexPair2.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/export.h>

#include <iosfwd>

namespace QUOR_KELM25D {

/// A directed segment from source to target. It holds copies: neither end is a vertex of a triangulation.
/// Everything is constant time, and nothing throws.
class KELM25D_API Segment2 {
public:
    /// A segment between two unset points.
    Segment2() noexcept = default;

    /// The segment from src to trg; the two may be equal.
    Segment2(const Point2& src, const Point2& trg) noexcept : source(src), target(trg) {}

    /// A copy of the source.
    Point2 getSrc() const noexcept { return source; }
    /// A copy of the target.
    Point2 getTrg() const noexcept { return target; }

    /// Reverses the direction.
    void swapSrcTrg() noexcept {
        const Point2 former = source;
        source = target;
        target = former;
    }

    /// Equal ends in x and y, in the same or in opposite direction; heights are ignored.
    bool operator==(const Segment2& other) const noexcept {
        return (source == other.source && target == other.target) ||
               (source == other.target && target == other.source);
    }

    /// The squared length in the xy plane.
    double getSqLen2D() const noexcept {
        const double dx = source.x() - target.x();
        const double dy = source.y() - target.y();
        return dx * dx + dy * dy;
    }

    /// The squared length in space. A result that is not a number is reported on the error stream and
    /// returned.
    double getSqLen25D() const;

private:
    friend struct Func_compareSegment;
    friend KELM25D_API std::ostream& operator<<(std::ostream& stream, const Segment2& segment);

    Point2 source;
    Point2 target;
};

/// Writes "Segment2 (address): source,target", the ends as Point2.
KELM25D_API std::ostream& operator<<(std::ostream& stream, const Segment2& segment);

/// Order of segments by source, then target, each by x, then y; heights are ignored. It looks at the segments
/// behind the pointers, which must not be null, and tells a segment from its reverse.
struct KELM25D_API Func_compareSegment {
    /// True if *pA comes before *pB.
    bool operator()(const Segment2* pA, const Segment2* pB) const noexcept {
        if (pA->source != pB->source) return pA->source < pB->source;
        return pA->target < pB->target;
    }
};

} // namespace QUOR_KELM25D
