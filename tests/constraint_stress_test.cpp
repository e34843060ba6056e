// Difficult constraint sets of every family, checked exactly after each step.
// What single calls do is in constraint_insertion_test.cpp; the families are in support/segmentSets.h.
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
    for (unsigned seed = 1; seed <= 400 / fraction; ++seed)
        for (const SegmentSet& set : makeAllFamilies(seed))
            ASSERT_EQ("", insertAndCheck(set, seed % numVariants)) << set.name << ", seed " << seed;
}

TEST(ConstraintStress, LargeSetsLeaveValidMeshAndConstraints) {
    for (unsigned variant = 0; variant < numVariants; variant += 5)
        ASSERT_EQ("", insertAndCheck(makeManySegments(2000 / fraction, variant), variant)) << variant;
}

TEST(ConstraintStress, TheCheckerSeesAConstraintThatIsFlippedAway) {
    Kelm_2D dt;
    const Point2 a(0, 0, 0), b(4, 0, 0), c(4, 4, 0), d(0, 4, 0);
    const std::vector<Segment2> vSquare{{a, b}, {b, c}, {a, d}, {d, c}, {a, c}};
    const ConstraintGraph2* pGraph = dt.createConstraint(vSquare, CIS_CONSTRAINED_DELAUNAY);
    ASSERT_VALID_MESH(dt);
    ASSERT_VALID_CONSTRAINTS(dt, vSquare, pGraph);
    Triangle2* pT = allTriangles(dt)[0];
    Mesh2::flip(pT, pT->getMaxIndex()); // the diagonal
    EXPECT_NE("", findConstraintFault(dt, vSquare, pGraph));
    EXPECT_EQ("", findConstraintFault(dt, vSquare, pGraph, true)); // as if it waited
}
