/// @file
/// The rule by which a zone chooses its triangles.
/// What is done with zones is in Zone2.h, their creation in Kelm_2D.h.
#pragma once

namespace QUOR_KELM25D {

/// Which triangles belong to a zone. The values are fixed; 4 to 7 are made by zoneUnion and its kin only.
enum ZoneLocation : int {
    ZL_GLOBAL = 0,              ///< all triangles
    ZL_INSIDE = 1,              ///< left of the directed edges of constraint graphs, up to such edges
    ZL_OUTSIDE = 2,             ///< right of the directed edges of constraint graphs, up to such edges
    ZL_GROW = 3,                ///< around start points, up to the edges of constraint graphs
    ZL_RESULT_UNION = 4,        ///< in one of two zones or in both
    ZL_RESULT_INTERSECTION = 5, ///< in both of two zones
    ZL_RESULT_DIFFERENCE = 6,   ///< in the first of two zones and not in the second
    ZL_RESULT_SYMMETRIC_DIFFERENCE = 7, ///< in exactly one of two zones
    ZL_BOUNDED = 8                      ///< as ZL_INSIDE, of a graph made of a zone's own border
};

} // namespace QUOR_KELM25D
