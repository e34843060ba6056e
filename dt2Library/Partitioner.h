// The division of a set of triangles into parts whose border is one simple ring each.
// The borders become polygons of constraints in TriangleImport.cpp; nothing in the mesh is changed here.
//
// Sets that are connected over edges come first. A part with holes is cut along a line through one of them,
// one that touches itself in vertices loses the triangles around these vertices, and what comes of that is
// divided again until nothing is left to do.
#pragma once

#include <kelm25d/Edge2.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

/// A set of triangles and its border.
class ConnectedComponent {
public:
    /// bIsolated_: none of the triangles has a neighbour that is not in the set, which saves time.
    ConnectedComponent(std::vector<Triangle2*> vTriangles, bool bIsolated_)
        : vComponentT(std::move(vTriangles)), bIsolated(bIsolated_) {}

    /// Divides the set unless its border is one simple ring. True: the parts, some of which may be empty and
    /// some in several pieces, have been appended, and the set is of no use any more. False: see getBorder.
    bool split(std::vector<std::vector<Triangle2*>>& vPartsOut);
    /// Only whether split would give false. To be called once, and split then no more.
    bool isSimple();
    /// The border in the order of a walk with the triangles on the left, if it is one simple ring.
    const std::vector<Edge2>& getBorder() const noexcept { return vOrderedBorder; }
    std::size_t size() const noexcept { return vComponentT.size(); }

private:
    /// A border edge and where it begins.
    struct Leaving {
        Point2* pSrc;
        Edge2 edge;
    };

    void examineBorder(std::vector<Point2*>& vPinches, std::vector<Point2*>& vOffRing);
    void collectBorder();
    std::vector<Point2*> walkBorder();
    void splitAtPinches(const std::vector<Point2*>& vPinches,
                        std::vector<std::vector<Triangle2*>>& vPartsOut) const;

    std::vector<Triangle2*> vComponentT;
    bool bIsolated;
    std::vector<Leaving> vBorderEdges; // by the address of the source
    std::vector<Edge2> vOrderedBorder; // filled only if the border is one simple ring
};

class Partitioner {
public:
    /// Each triangle once, together with all that are neighbours of one.
    explicit Partitioner(const std::vector<Triangle2*>& vTriangles);

    const ConnectedComponent& getComponent(std::size_t i) const { return vComponents[i]; }
    std::size_t size() const noexcept { return vComponents.size(); }

private:
    std::vector<ConnectedComponent> vComponents;
};

} // namespace QUOR_KELM25D
