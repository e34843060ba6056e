/// @file
/// A named group of constraint segments: what one call of Kelm_2D::createConstraint has made.
/// The segments, which several graphs may share, are ConstraintSegment2.h.
#pragma once

#include <kelm25d/ConstraintInsertionStrategy.h>
#include <kelm25d/export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace QUOR_KELM25D {

class Color;
class ConstraintMgr;
class ConstraintSegment2;
class Dt2;
class Point2;
class Visualizer2;

/// The segments of one createConstraint call, with their order, their directions and their present pieces.
///
/// Segments are divided when others cross them; the graph leads from the original ones down to the alive
/// pieces that stand in the mesh now. A graph belongs to its triangulation and is valid as long as that. For
/// one thread at a time, like the triangulation.
class KELM25D_API ConstraintGraph2 {
public:
    ConstraintGraph2(const ConstraintGraph2&) = delete;
    ConstraintGraph2& operator=(const ConstraintGraph2&) = delete;

    /// The triangulation's implementation, for the library's own classes.
    Dt2* getDt2() noexcept { return pDt; }
    /// How this graph's segments were to be inserted. A segment that existed before keeps its own strategy.
    ConstraintInsertionStrategy getInsertionStrategy() const noexcept { return cis; }
    /// Whether the original segments, at least three, form one closed ring in which every vertex has two of
    /// them. Crossings are not looked for.
    bool isPolygon() const noexcept { return bIsPolygon; }
    /// Whether the directions mean something: the user's, if they were asked for, else the counterclockwise
    /// ones of a polygon.
    bool isOriented() const noexcept { return bOriented; }
    /// Whether this graph runs along the segment from getTrg() to getSrc(). A segment that is neither an
    /// original one of this graph nor a piece of one fails a check and throws KelmException.
    bool isReverse(ConstraintSegment2* pSegment) const;
    /// Whether the segment is alive and belongs to this graph.
    bool isConstraint(ConstraintSegment2* pSegment) const;
    /// Whether an alive segment of this graph joins the two vertices.
    bool isConstraint(Point2* p0, Point2* p1) const;

    /// Replaces the argument by the original segments: a polygon's in ring order, others in input order; if
    /// one was given twice, each once and by address instead.
    void getOriginalConstraintSegments(std::vector<ConstraintSegment2*>& vSegmentsOut) const;
    /// Appends the alive pieces and sorts the whole by address, each once: in no order along the graph.
    void getChildConstraintSegments(std::vector<ConstraintSegment2*>& vSegmentsOut) const;
    /// The two children of a segment of this graph, the one at which the graph enters it first. Both null for
    /// an alive segment.
    void getDirectChildren(ConstraintSegment2* pParent, ConstraintSegment2*& pChild0,
                           ConstraintSegment2*& pChild1) const;
    /// Appends the two ends of every alive piece in the direction of the graph, so that a
    /// vertex between two pieces stands twice in a row.
    void getPolygonVertices(std::vector<Point2*>& vVerticesOut) const;

    /// Divides the alive pieces until each is an edge of the Delaunay triangulation by itself, not only of
    /// the constrained one. New vertices halve a piece or stand where a near vertex projects on it; heights
    /// are linear between the ends.
    /// @param minLength pieces shorter than this in space are left as they are
    /// @return false if such a piece is no Delaunay edge, and, after a warning, if constraints that all but
    /// coincide divide one another again and again. Pieces that wait for applyConstraintsAndZones, and edges
    /// of the hull, count as Delaunay
    bool makeDelaunay(double minLength);

    /// Draws the alive pieces to a PostScript file, replacing it.
    void show(const std::string& filename) const;
    /// Adds the alive pieces to a drawing, which stays the caller's. Null gives a warning.
    void show(Visualizer2* pVisualizer, const Color& color) const;

    /// Replaces the argument by the alive pieces in the direction of the graph. A bent constraint that runs
    /// over itself may have a piece many times; getChildConstraintSegments gives each once.
    void getChildrenInOrder(std::vector<ConstraintSegment2*>& vSegmentsOut) const;

private:
    friend class ConstraintMgr;
    friend class ConstraintSegment2;
    using Segments = std::vector<ConstraintSegment2*>;

    ConstraintGraph2(ConstraintMgr& mgr_, const Segments& vSegments, ConstraintInsertionStrategy cis_);
    ConstraintGraph2(ConstraintMgr& mgr_, const Segments& vSegments, const std::vector<bool>& vReverse,
                     ConstraintInsertionStrategy cis_);

    void own(const Segments& vSegments);
    bool checkAndSortPolygon(const Segments& vSegments);
    void setReverse(ConstraintSegment2* pSegment, bool bReverse);
    void fillChildFlags(ConstraintSegment2* pParent);
    bool makeDelaunay(ConstraintSegment2* pSegment, double sqMin, Segments& vStack);

    ConstraintMgr& mgr; // the owner
    Dt2* pDt;
    ConstraintInsertionStrategy cis;
    std::size_t number;    // of graphs made before in the triangulation
    Segments vCSegParents; // the original ones; a polygon's in ring order
    bool bIsPolygon = false;
    bool bOriented = false;
};

} // namespace QUOR_KELM25D
