// Lays segments over the surface of a mesh: clipped to the hull, cut at every edge they cross, thinned by
// height.
// The way of one segment is followed in Drape.cpp.
#pragma once

#include <kelm25d/Segment2.h>

#include <vector>

namespace QUOR_KELM25D {

class Mesh2;

class Drape {
public:
    /// The mesh is borrowed. zTolerance_ is the largest error in height of the result; with a negative one
    /// nothing is thinned.
    Drape(Mesh2& mesh_, double zTolerance_);

    /// Appends the pieces over the hull, segment by segment; both arguments may be the same. True if every
    /// segment lies over the hull as a whole.
    bool run(const std::vector<Segment2>& vIn, std::vector<Segment2>& vOut);

private:
    Mesh2& mesh;
    double zTolerance;
};

} // namespace QUOR_KELM25D
