// The mesh checker of the tests: everything that must hold of a triangulation, decided exactly.
// It answers through gtest-friendly text and knows nothing of how the mesh was made.
#pragma once

#include <kelm25d/ConstraintGraph2.h>
#include <kelm25d/ConstraintSegment2.h>
#include <kelm25d/Kelm_2D.h>

#include <string>
#include <vector>

namespace QUOR_KELM25D {
namespace testing_support {

/// What a triangulation consists of.
std::vector<Triangle2*> allTriangles(const Kelm_2D& dt);
std::vector<Point2*> allVertices(const Kelm_2D& dt);
std::vector<ConstraintSegment2*> aliveSegments(const Kelm_2D& dt);

/// Signs from rationals alone, written independently of the library's predicates: 1, 0, -1.
int exactOrientation(const Point2& a, const Point2& b, const Point2& c);
/// 1 if d is inside the circle through the counterclockwise a, b, c, -1 if outside.
int exactInCircle(const Point2& a, const Point2& b, const Point2& c, const Point2& d);

/// Empty if the triangulation is valid, else what is wrong first. Checked: corners counterclockwise,
/// neighbours symmetric over the same edge, incident triangles of vertices, every vertex in the mesh and no
/// other, distinct places, empty circle over every inner edge that is no alive constraint segment, hull
/// closed and convex, Euler's formula; before is2D() that all points are collinear and distinct; all answers
/// to isConstraint and getConstraintSegment for edges and vertices. Without bEmptyCircles the mesh need not
/// be Delaunay.
std::string findMeshFault(const Kelm_2D& dt, bool bEmptyCircles = true);

/// Empty if the constraints are sound and contain the given segments, else what is wrong first. Checked: both
/// lists in order and without repetition, an owner for every segment, alive segments are edges, dead ones
/// have two children that meet at a vertex close to them, and each given segment, unless its ends are equal,
/// leads to a chain of alive pieces. With the graph made of these segments also that it has just these
/// originals, and that their pieces follow its directions. With bMayWait alive segments need not be edges.
/// Split vertices that a caller has put far off a segment are faults.
std::string findConstraintFault(const Kelm_2D& dt, const std::vector<Segment2>& vSegments,
                                const ConstraintGraph2* pGraph = nullptr, bool bMayWait = false);

} // namespace testing_support
} // namespace QUOR_KELM25D

/// Stops the test at the first fault of a triangulation.
#define ASSERT_VALID_MESH(...) ASSERT_EQ("", QUOR_KELM25D::testing_support::findMeshFault(__VA_ARGS__))
/// The same for its constraints; the arguments of findConstraintFault.
#define ASSERT_VALID_CONSTRAINTS(...)                                                                        \
    ASSERT_EQ("", QUOR_KELM25D::testing_support::findConstraintFault(__VA_ARGS__))
