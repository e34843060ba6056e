// Zones beside their rules, which are evaluated by brute force over the whole mesh.
// How zones are created is up to the tests and to the fuzz target of operations.
#pragma once

#include <kelm25d/ConstraintGraph2.h>
#include <kelm25d/Kelm_2D.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/VertexPair2.h>
#include <kelm25d/Zone2.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace QUOR_KELM25D {
namespace testing_support {

using Triangles = std::vector<Triangle2*>;
using TriangleMultiset = std::multiset<Triangle2*>;

/// The closed ring through the points, in their order.
std::vector<Segment2> ringOf(const std::vector<Point2>& vCorners);
/// The triangles of a zone now.
Triangles trianglesOf(const Zone2& zone);
/// Those without a neighbour in the set, or outside of it, as edges.
std::set<Edge2> borderOf(const Triangles& vTriangles);
/// The connected parts of a set, which the given edges divide: numbers from 0 in order of address.
std::map<Triangle2*, std::size_t> partsOf(const Triangles& vTriangles, const std::set<VertexPair2>& sBlocked);

struct ZoneModel {
    Zone2* pZone = nullptr;
    ZoneLocation location = ZL_GLOBAL;
    std::vector<const ConstraintGraph2*> vGraphs = {};
    std::vector<Point2> vStartPoints = {};
    const ZoneModel* pOperand0 = nullptr;
    const ZoneModel* pOperand1 = nullptr;

    /// From the parts into which the edges of the graphs divide all triangles.
    TriangleMultiset getTriangles(Kelm_2D& dt) const;
};

/// Empty if the zone has the triangles of the model, in order, and everything that is derived from them
/// agrees, else what is wrong first.
std::string findZoneFault(Kelm_2D& dt, const ZoneModel& model);

} // namespace testing_support
} // namespace QUOR_KELM25D
