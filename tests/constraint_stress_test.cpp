// Difficult constraint sets of every family, checked exactly after each step.
// What single calls do is in constraints_test.cpp; the families are in support/segmentSets.h.
#include "testing.h"

#include "segmentSets.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned fraction = 10;
#else
constexpr unsigned fraction = 1;
#endif

} // namespace

TEST(ConstraintStress, EveryFamilyLeavesValidMeshAndConstraints) {
    for (const SegmentFamily& family : segmentFamilies()) {
        for (unsigned seed = 1; seed <= 240 / fraction; ++seed) {
            ASSERT_EQ("", insertAndCheck(family.make(seed), seed % numVariants))
                << family.name << ", seed " << seed;
        }
    }
}

TEST(ConstraintStress, LargeSetsLeaveValidMeshAndConstraints) {
    const std::size_t n = 2000 / fraction;
    for (unsigned variant = 0; variant < numVariants; variant += 5) {
        ASSERT_EQ("", insertAndCheck(makeCrossingSegments(n, 0.05, variant), variant)) << variant;
        ASSERT_EQ("", insertAndCheck(makeLatticeSegments(n / 10, 40, variant), variant)) << variant;
    }
}

TEST(ConstraintStress, TheCheckerSeesAConstraintThatIsFlippedAway) {
    Kelm_2D dt;
    const std::vector<Segment2> vSquare{{{0, 0, 0}, {4, 0, 0}},
                                        {{4, 0, 0}, {4, 4, 0}},
                                        {{0, 0, 0}, {0, 4, 0}},
                                        {{0, 4, 0}, {4, 4, 0}},
                                        {{0, 0, 0}, {4, 4, 0}}};
    const ConstraintGraph2* pGraph = dt.createConstraint(vSquare, CIS_CONSTRAINED_DELAUNAY);
    ASSERT_VALID_MESH(dt);
    ASSERT_VALID_CONSTRAINTS(dt, vSquare, pGraph);
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    int diagonal = 0;
    while (vTriangles[0]->getOppositeTriangle(diagonal) == nullptr) {
        ++diagonal;
    }
    Dt2::flip(vTriangles[0], diagonal);
    EXPECT_NE("", findConstraintFault(dt, vSquare, pGraph));
    EXPECT_EQ("", findConstraintFault(dt, vSquare, pGraph, true)); // as if it waited
}
