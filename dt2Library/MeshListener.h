// What a mesh tells those who build on it: the events that the kernel can't settle by itself.
// The mesh knows nothing else of constraints, zones and drawings; listeners register with Mesh2::addListener.
#pragma once

namespace QUOR_KELM25D {

class ConstraintSegment2;
class Point2;

/// Every event is rare: none is told on the way of an ordinary point.
class MeshListener {
public:
    virtual ~MeshListener() = default;
    /// A vertex has entered the mesh on the edge that this segment is, and divided it.
    virtual void onEdgeDivided(ConstraintSegment2*, Point2*) {}
    /// A vertex is about to be removed at the user's wish.
    virtual void onRemoval(Point2*) {}
    /// The last triangle has gone, and with it all edges.
    virtual void onAllEdgesLost() {}
    /// The removal of a vertex has come to no end. A failed check follows.
    virtual void onRemovalStuck(const Point2*) {}
};

} // namespace QUOR_KELM25D
