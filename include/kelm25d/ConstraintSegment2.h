/// @file
/// One straight piece of a constraint, between two vertices of a triangulation.
/// Which way a user runs along it, and what it belongs to, is told by ConstraintGraph2.h.
#pragma once

#include <kelm25d/ConstraintInsertionStrategy.h>
#include <kelm25d/Point2.h>
#include <kelm25d/export.h>

#include <functional>
#include <iosfwd>
#include <limits>
#include <vector>

namespace QUOR_KELM25D {

class ConstraintGraph2;
class ConstraintMgr;

/// A constraint segment between two vertices, a node of a binary tree of splits.
///
/// A segment that has to be divided, because another constraint crosses it or a vertex lies on it, is never
/// changed or deleted: it goes dead and gets two children, which may be divided again. The alive segments are
/// the leaves of these trees, and the constrained edges of the mesh are exactly the alive segments, apart
/// from those that still wait for Kelm_2D::applyConstraintsAndZones.
///
/// There is one segment for each pair of vertices, whatever the number of graphs that use it. Its ends are
/// ordered by address, so source and target say nothing about the direction of the input; see
/// ConstraintGraph2::isReverse. A segment belongs to its triangulation and is valid as long as that. For one
/// thread at a time, like the triangulation.
class KELM25D_API ConstraintSegment2 {
public:
    ConstraintSegment2(const ConstraintSegment2&) = delete;
    ConstraintSegment2& operator=(const ConstraintSegment2&) = delete;

    /// The end with the lower address.
    Point2* getSrc() const noexcept { return p0; }
    /// The end with the higher address.
    Point2* getTrg() const noexcept { return p1; }
    /// Whether this is a leaf in force: it has no children, and no insertion has it switched off.
    bool isAlive() const noexcept { return bAlive && aChild[0] == nullptr; }
    /// The number of graphs that contain this segment or one it is a piece of.
    unsigned getNumberOfOwners() const noexcept { return static_cast<unsigned>(sOwners.size()); }
    /// Order by the lower end, then by the higher end, both by address; valid within one run of the program.
    bool operator<(const ConstraintSegment2& other) const noexcept {
        const std::less<const Point2*> isLower;
        return p0 != other.p0 ? isLower(p0, other.p0) : isLower(p1, other.p1);
    }

    /// Appends the alive leaves below this segment, those of the first child first. An alive segment fails a
    /// check and throws KelmException. Linear in the size of the tree below.
    void getChildrenRec(std::vector<ConstraintSegment2*>& vChildrenOut) const;
    /// Reads the two children and the vertex where they meet, which is null if they share none. An alive
    /// segment gives a warning, and the arguments stay as they are.
    void getChildrenAndSplitPoint(ConstraintSegment2*& pKid0, ConstraintSegment2*& pKid1,
                                  Point2*& pSplit) const;

    /// Inserts a point into the triangulation and divides this segment there.
    ///
    /// A point off the segment bends the constraint: the children are the two pieces to the new vertex. A
    /// piece that meets vertices or other constraints is divided in its turn. A point at an end, or beyond it
    /// by no more than rounding, changes nothing. For a constrained segment (CIS_CONSTRAINED_DELAUNAY) the
    /// pieces are edges of the mesh when this returns; a conforming one may leave work to
    /// Kelm_2D::applyConstraintsAndZones. A piece of a bent constraint that would have to run over a segment
    /// it came from stays without an edge, after a warning. A segment that is not alive fails a check and
    /// throws KelmException.
    /// @return the vertex at the point's place, an existing one if there is one, or that end; null, after an
    /// error line and with the segment as before, if a coordinate is not finite, if the point lies on the
    /// segment's line beyond an end, or if a piece would contain this segment
    Point2* insertAndSplit(const Point2& point);
    /// The same, and then removes the vertices that the mesh generator has put inside the domain closer to
    /// the new vertex than getSrc() is, unless a constraint uses them.
    /// @return false if insertAndSplit gives null
    bool splitAndRemovePrev(const Point2& point);
    /// Divides this segment at a vertex of the mesh and leaves the mesh alone: the caller knows that both
    /// pieces are edges, or calls Kelm_2D::applyConstraintsAndZones afterwards. Null, one of the ends, and a
    /// segment that is not alive fail a check and throw KelmException.
    /// @return true; false, after an error line and with nothing changed, if the vertex is not part of the
    /// mesh, if it lies on the segment's line beyond an end, or if a piece would contain this segment
    bool split_combinatorialOnly(Point2* pSplit);

    /// A number of the caller's, the largest double at first; the library does not read it.
    double getAdjacentArea() const noexcept { return adjacentArea; }
    /// Sets that number.
    void setAdjacentArea(double area) noexcept { adjacentArea = area; }

private:
    friend class ConstraintGraph2;
    friend class ConstraintMgr;
    friend class SegmentInserter;
    friend class FloodBarrier;
    friend class LeafWalk;
    friend class SegmentTable;
    friend KELM25D_API std::ostream& operator<<(std::ostream& stream, const ConstraintSegment2& segment);

    /// A graph and the way it runs along the segment.
    struct Owner {
        ConstraintGraph2* pGraph;
        bool bReverse;  // from p1 to p0
        bool bDirected; // bReverse has been set
    };

    ConstraintSegment2(Point2* p0_, Point2* p1_, ConstraintInsertionStrategy cis_);

    static void skipLabel() noexcept;
    ConstraintInsertionStrategy getCIS() const noexcept { return cis; }
    void markDead() noexcept { bAlive = false; }
    void markAlive() noexcept { bAlive = true; }
    bool hasEnd(const Point2* pVtx) const noexcept { return p0 == pVtx || p1 == pVtx; }
    /// Whether a child has its ends in the same order along this segment: the lower one at the lower one.
    bool isParallelTo(const ConstraintSegment2* pChild) const noexcept {
        return pChild->p0 == p0 || pChild->p1 == p1;
    }
    ConstraintMgr& getMgr() const noexcept;
    bool divide(Point2* pSplit);
    bool isBelow(const ConstraintSegment2* pRoot) const;
    void addOwnerRec(ConstraintGraph2* pGraph);
    const Owner* findOwner(const ConstraintGraph2* pGraph) const noexcept;

    int label; // a running number through all triangulations
    ConstraintInsertionStrategy cis;
    bool bAlive = true;
    Point2 *p0, *p1;                                    // p0 < p1
    ConstraintSegment2* aChild[2] = {nullptr, nullptr}; // both or none
    std::vector<Owner> sOwners; // a set, as a sequence in order of creation of the graphs
    double adjacentArea = std::numeric_limits<double>::max();
};

/// Writes the label, addresses, state, both ends and the length in the plane, in five lines without a last
/// line end.
KELM25D_API std::ostream& operator<<(std::ostream& stream, const ConstraintSegment2& segment);

} // namespace QUOR_KELM25D
