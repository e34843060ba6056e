// Point sets that a triangulation has to survive, by name, and what their meshes are compared by.
// All are made from a fixed seed. Whether a mesh is valid is decided by MeshChecker.
#pragma once

#include "MeshChecker.h"

#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {
namespace testing_support {

struct PointSet {
    std::string name;
    bool bGeneral; // almost surely no three points on a line or four on a circle: a unique triangulation
    std::vector<Point2> points;
};

/// Every kind of data with n points each; each height is the point's position in its set.
std::vector<PointSet> makeAllKinds(std::size_t n);
/// The number of different (x, y).
std::size_t countPlaces(const std::vector<Point2>& v);
/// The triangles by the places of their corners: equal for equal meshes.
using Places = std::set<std::pair<double, double>>;
std::set<Places> triangleSet(const Kelm_2D& dt);
/// The vertices on the hull, each once; none before is2D().
std::vector<Point2*> hullVertices(const Kelm_2D& dt);

} // namespace testing_support
} // namespace QUOR_KELM25D
