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
    std::string name;                           // of its family
    std::vector<Point2> points;                 // vertices besides the ends
    std::vector<std::vector<Segment2>> batches; // each for one createConstraint call
    ConstraintInsertionStrategy strategy = CIS_CONSTRAINED_DELAUNAY;
};

/// Some 5 to 60 segments of each family: one kind of difficulty alone, in another scale, or mixed with
/// another.
std::vector<SegmentSet> makeAllFamilies(std::uint64_t seed);

/// n short segments in the unit square.
SegmentSet makeManySegments(std::size_t n, std::uint64_t seed);

/// Inserts a set in one of numVariants ways: points before, after or between the segments, in bulk or one by
/// one, segments with or without directions, and with or without splits and removals at the end. Mesh and
/// constraints are checked after each step.
/// @return empty if all is well, else what is wrong first
std::string insertAndCheck(const SegmentSet& set, unsigned variant);
constexpr unsigned numVariants = 24;

} // namespace testing_support
} // namespace QUOR_KELM25D
