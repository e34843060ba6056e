/// @file
/// The ways in which a constraint segment enters a triangulation.
/// The segments themselves are ConstraintSegment2.h, their groups ConstraintGraph2.h.
#pragma once

namespace QUOR_KELM25D {

/// How a constraint segment becomes part of the mesh, and which height its new vertices get.
///
/// Constrained insertion forces the segment into the mesh as one edge, or as several where it meets vertices
/// or other constraints; the edges need not have empty circles. Conforming insertion adds vertices on the
/// segment until every piece is an edge of the Delaunay triangulation by itself. Where two constraints cross,
/// both are divided at a vertex with the height of the one that was there first; of those of one call either
/// may be that.
enum ConstraintInsertionStrategy : int {
    /// Conforming. A new vertex gets the height of the surface at its place; outside the hull the mean of the
    /// two ends of the piece it divides.
    CIS_CONFORMING_SURFACE_HEIGHT = 0,
    /// Constrained. New vertices arise at crossings only.
    CIS_CONSTRAINED_DELAUNAY = 1,
    /// Conforming. A new vertex gets the mean height of the two ends of the piece it divides.
    CIS_CONFORMING_LINEAR_HEIGHT = 2
};

} // namespace QUOR_KELM25D
