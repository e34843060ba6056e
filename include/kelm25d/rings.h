/// @file
/// Rings out of unordered segments and edges, and the borders and edges of a set of triangles.
/// Nothing here changes a triangulation; constraints that form a ring are sorted by ConstraintGraph2.h.
#pragma once

#include <kelm25d/Edge2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/export.h>

#include <vector>

namespace QUOR_KELM25D {

/// Sorts segments into a ring that begins with the first segment, as it is, and runs in its direction.
///
/// Segments meet where their ends have the same x and y; those that stand against the direction are turned
/// round. Heights play no part and are kept as they are, also where two ends of different height meet. Along
/// the ring every place must be the end of exactly two segments. Segments of other rings are dropped without
/// a word; a first segment with equal ends is a ring by itself.
///
/// True if vRing now holds the ring. False, and vRing as it was, for an empty vRing without a message;
/// otherwise with a warning, which for a place of another number of segments follows a line with that number
/// on standard output, and which for a coordinate x or y that is not finite is "Not a ring3".
///
/// Cost: n log n in the number of segments.
KELM25D_API bool sortRing(std::vector<Segment2>& vRing);

/// Sorts segments into a counterclockwise ring that begins at the lowest of the leftmost places.
///
/// Segments meet and are turned as in sortRing, but a ring may touch itself: where several segments go on,
/// the walk takes the sharpest right turn, and so follows the outer side. It ends where no unused segment
/// goes on. What it does not reach, such as a second ring, is dropped without a word. A segment with equal
/// ends on the way is taken along.
///
/// True if vRing now holds the ring. False, and vRing as it was, for an empty vRing without a message;
/// otherwise with a warning: "not a ring 0" if two segments leave the first place in the same direction, "not
/// a ring 1" if the walk ends elsewhere than at the first place, "Not a ring3" if a coordinate x or y is not
/// finite.
///
/// For one thread at a time, as getOrientation2. Cost: n log n in the number of segments, and for a place
/// with many of them the square of their number.
KELM25D_API bool sortRingCCW(std::vector<Segment2>& vRing);

/// Divides directed edges of one triangulation into closed chains and a rest.
///
/// Edges meet in a vertex, not at a place. Each chain begins at the leftmost vertex of the edges that are
/// still there, of those the lowest, with the most clockwise edge that leaves it. From there it takes the
/// sharpest right turn at each vertex until it is back or can't go on, so a ring that touches itself
/// elsewhere than at its first vertex stays in one piece. The walk reads the neighbours of the triangles: the
/// triangulation must be unchanged since the edges were made, and no edge may be empty.
///
/// Closed chains are appended to vvPolygonsOut in this order, each with at least two edges. The edges of the
/// others are appended to vRemainingOut. Both stay as they were if a check fails.
///
/// KelmException is thrown if an edge is given twice, or if at some stage the leftmost vertex is only the
/// target of edges, which open chains may lead to. For one thread at a time, as getOrientation2.
///
/// Cost: n log n in the number of edges, and the rotations around their vertices.
KELM25D_API void edgesToPolygons(const std::vector<Edge2>& vEdges,
                                 std::vector<std::vector<Edge2>>& vvPolygonsOut,
                                 std::vector<Edge2>& vRemainingOut);

/// Whether segments, in any order and direction, are closed and do not cross.
///
/// Closed means that every place is the end of an even number of segments. That no segment crosses another or
/// runs through an end of another is found by inserting them as constraints into a triangulation of their
/// own. Several rings apart from one another, or with a common vertex, are simple, too, and so is one that is
/// given twice. Of segments that all lie on one line, which span no triangulation, only closedness is tested.
/// Segments with equal x and y at both ends are left out. Heights play no part.
///
/// False, without a message, if nothing is left and if a coordinate x or y is not finite. Cost: that of
/// Kelm_2D::createConstraint.
KELM25D_API bool isSimplePolygon(const std::vector<Segment2>& vSegments);

/// Appends the border of a set of triangles: of each triangle in turn the edges 0, 1 and 2 behind which there
/// is no triangle of the set, as copies of their ends, with the triangle on the left.
///
/// They are in no order along the border; sortRingCCW makes a ring of them. An empty set has no border.
/// Pointers are not null; a triangle that is given twice gives its part twice. Linear.
KELM25D_API void getBorders(const std::vector<Triangle2*>& vT, std::vector<Segment2>& vBorderSegmentsOut);

/// Appends the edges 0, 1 and 2 of each triangle in turn. Linear; pointers are not null.
KELM25D_API void getDirectedEdges(const std::vector<Triangle2*>& vT, std::vector<Edge2>& vEdgesOut);

/// Appends the edges of the triangles as getDirectedEdges does, and then sorts the whole of vEdgesOut, what
/// was in it before included, by the lower and then the higher address of the two ends.
///
/// Both halves of an inner edge stay, next to each other; that is deliberate, whatever the name says. Only an
/// edge that is there twice from the same side is reduced to one. Edges in vEdgesOut must not be empty.
/// Cost: n log n.
KELM25D_API void getUndirectedEdges(const std::vector<Triangle2*>& vT, std::vector<Edge2>& vEdgesOut);

} // namespace QUOR_KELM25D
