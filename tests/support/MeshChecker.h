// The mesh checker of the tests: everything that must hold of a triangulation, decided exactly.
// It answers through gtest-friendly text and knows nothing of how the mesh was made.
#pragma once

#include <kelm25d/Kelm_2D.h>

#include <string>

namespace QUOR_KELM25D {
namespace testing_support {

/// Signs from rationals alone, written independently of the library's predicates: 1, 0, -1.
int exactOrientation(const Point2& a, const Point2& b, const Point2& c);
/// 1 if d is inside the circle through the counterclockwise a, b, c, -1 if outside.
int exactInCircle(const Point2& a, const Point2& b, const Point2& c, const Point2& d);

/// Empty if the triangulation is valid, else what is wrong first. Checked: corners counterclockwise,
/// neighbours symmetric over the same edge, incident triangles of vertices, every vertex in the mesh and no
/// other, distinct places, empty circle over every inner edge, hull closed and convex, Euler's formula;
/// before is2D() that all points are collinear and distinct.
std::string findMeshFault(const Kelm_2D& dt);

} // namespace testing_support
} // namespace QUOR_KELM25D

/// Stops the test at the first fault of a triangulation.
#define ASSERT_VALID_MESH(dt) ASSERT_EQ("", QUOR_KELM25D::testing_support::findMeshFault(dt))
