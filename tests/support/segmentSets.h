// Sets of constraint segments that are hard to insert, from seeds, and one way to put such a set through
// everything that may be done with constraints. What must hold afterwards is in MeshChecker.
#pragma once

#include <kelm25d/ConstraintInsertionStrategy.h>
#include <kelm25d/Segment2.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace QUOR_KELM25D {
namespace testing_support {

struct SegmentSet {
    std::vector<Point2> points;                 // vertices besides the ends
    std::vector<std::vector<Segment2>> batches; // each for one createConstraint call
    ConstraintInsertionStrategy strategy = CIS_CONSTRAINED_DELAUNAY;
};

/// One kind of difficulty, as sets of some 5 to 60 segments.
struct SegmentFamily {
    const char* name;
    SegmentSet (*make)(std::uint64_t seed);
};
const std::vector<SegmentFamily>& segmentFamilies();

/// n segments of about the given length in the unit square.
SegmentSet makeCrossingSegments(std::size_t n, double length, std::uint64_t seed);
/// n segments with integer ends from 0 to side, so that most crossings are degenerate.
SegmentSet makeLatticeSegments(std::size_t n, int side, std::uint64_t seed);

/// Inserts a set in one of numVariants ways: points before, after or between the segments, in bulk or one by
/// one, segments with or without directions, and with or without splits and removals at the end. Mesh and
/// constraints are checked after each step.
/// @return empty if all is well, else what is wrong first
std::string insertAndCheck(const SegmentSet& set, unsigned variant);
constexpr unsigned numVariants = 24;

} // namespace testing_support
} // namespace QUOR_KELM25D
