// Cuts the triangles of a mesh along segments, the knives.
// A polygon that cuts out a zone is CookieCutter.
#pragma once

#include "AddressSet.h"
#include "VertexPairHash.h"

#include <kelm25d/Edge2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/VertexPair2.h>

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class ConstraintMgr;
class ConstraintSegment2;
class Mesh2;

/// One cut: the knives, the edges that they meet, and the vertices at the crossings.
class Cut {
public:
    /// The constraints' mesh and the segments are borrowed.
    Cut(ConstraintMgr& constraintMgr_, const std::vector<Segment2>& vSegments_);
    Cut(const Cut&) = delete;
    Cut& operator=(const Cut&) = delete;

    /// To be called once. With bWithConstraints all that is not cut stays as it is. The pieces of each knife
    /// are appended, in order along it.
    void run(bool bWithConstraints, std::vector<ConstraintSegment2*>& vCSegsOut);

private:
    struct Knife {
        Point2 src, trg;
        std::vector<Point2> vCutPoints;  // crossings with edges
        std::vector<Point2*> vOnSegment; // vertices strictly inside
    };
    struct CutEdge {
        Point2 *p, *q;               // p has the lower address
        std::vector<Point2> vPoints; // where it is to be divided; it may be merely touched
    };
    struct Piece {
        ConstraintSegment2* pCSeg; // dead if another knife has divided it
        const Point2* pFrom;
    };

    /// Finds all crossings. The mesh must not change until the vertices are inserted.
    void trace();
    /// Makes the edges constraints that are to stay.
    void protect();
    void insertVertices();
    /// Divides the constraints that the edges are at the vertices on them.
    void divideEdges();
    /// Makes the knives chains of constraints.
    void insertKnives();
    /// Appends the pieces of the knives as they are now.
    void getPieces(std::vector<ConstraintSegment2*>& vCSegsOut) const;

    void traceKnife(Knife& knife);
    bool treatEdge(Knife& knife, const Point2& a, const Point2& b, Triangle2* pT, int i);
    void treatCollinear(Knife& knife, const Point2& a, const Point2& b, CutEdge& edge);
    bool treatCrossing(Knife& knife, const Point2& a, const Point2& b, CutEdge& edge);
    CutEdge& getCutEdge(Point2* p, Point2* q);
    void constrainEdges(const TriangleSet& sTriangles, bool bWithHull);
    bool addConflictTriangles(const Point2& point, TriangleSet& sTriangles);
    Point2* makeVertex(const Point2& point);
    Point2* vertexAt(const Point2& point) const;

    Mesh2& mesh;
    ConstraintMgr& constraintMgr;
    const std::vector<Segment2>& vSegments;
    std::vector<Knife> vKnives;
    std::vector<Edge2> vHull; // before anything is inserted, if a knife begins outside
    std::vector<CutEdge> vCutEdges;
    std::unordered_map<VertexPair2, std::size_t, VertexPairHash> mCutEdge; // positions in vCutEdges
    std::vector<std::pair<Point2, Point2*>> vVertices; // the vertex for each crossing, by place
    std::vector<Piece> vPieces;
};

/// Makes pA to pB a chain of constraint segments through vertices, which vSortedPoints receives in order.
void insertChain(ConstraintMgr& constraintMgr, Point2* pA, Point2* pB,
                 const std::vector<Point2*>& vSplitPoints, std::vector<Point2*>& vSortedPoints);

} // namespace QUOR_KELM25D
