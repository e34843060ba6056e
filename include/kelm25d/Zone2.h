/// @file
/// A set of triangles of one triangulation, as a rule that is evaluated anew at each question.
/// Zones are created by Kelm_2D::createZone and its kin, and by the set operations here.
#pragma once

#include <kelm25d/Bbox2.h>
#include <kelm25d/Edge2.h>
#include <kelm25d/Point2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/ZoneLocation.h>
#include <kelm25d/export.h>

#include <string>
#include <vector>

namespace QUOR_KELM25D {

class ConstraintGraph2;
class Dt2;
class Triangle2;
class UserPredicateT;
class Visualizer2;
class Visualizer3;
class ZoneMgr;

/// A set of triangles that is described and never stored: by a location, constraint graphs, start points or
/// two other zones.
///
/// Every question computes the triangles again from the present mesh, so a zone stays right while points,
/// constraints and vertices come and go. Callers that need several answers get the triangles once. A zone
/// belongs to its triangulation, which deletes it, unless Kelm_2D::deleteZone did so before. The graphs, and
/// the operands of a set operation, are not owned: an operand must not be deleted before the result.
///
/// Zones have no locks. Reading a zone is reading its triangulation, for one thread at a time. Everything is
/// linear in the triangles of the zone (for a result, of its operands) unless another cost is given.
class KELM25D_API Zone2 {
public:
    /// For the library's own use: a zone without graphs, which nobody owns but who made it. Nothing is
    /// checked.
    Zone2(Dt2* pDt, ZoneLocation zoneLoc);
    /// The same with graphs and start points.
    Zone2(Dt2* pDt, const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc,
          const std::vector<Point2>& vStartPoints);
    /// The same with graphs; an empty sequence and graphs that are null or not oriented give an error line.
    /// Throws KelmException, after an error line, unless zoneLoc is ZL_INSIDE or ZL_OUTSIDE.
    Zone2(Dt2* pDt, ZoneLocation zoneLoc, const std::vector<ConstraintGraph2*>& vConstraintGraphs);
    /// The same with one graph; here ZL_BOUNDED is accepted, too.
    Zone2(Dt2* pDt, ZoneLocation zoneLoc, ConstraintGraph2* pConstraintGraph);

    /// The rule.
    ZoneLocation getZoneLocation() const noexcept { return zoneLoc; }
    /// The triangulation's implementation, for the library's own classes.
    Dt2* getDelaunayTriangulation() const noexcept { return pDt; }
    /// The number of boundary graphs.
    unsigned numberOfConstraintGraphs() const noexcept {
        return static_cast<unsigned>(vConstraintGraphs.size());
    }
    /// Appends all boundary graphs. A zone made from an empty set of triangles has one that is null.
    void getConstraintGraphs(std::vector<ConstraintGraph2*>& vConstraintGraphsOut) const;
    /// The boundary graph, if there is exactly one; null if there is none, or, after a warning, if there are
    /// several.
    ConstraintGraph2* getConstraintGraph() const;

    /// The number of triangles that getTriangles yields.
    std::size_t getNumberOfTriangles() const;
    /// Appends the triangles, by address. A ZL_GROW zone gives those around each start point by themselves:
    /// two start points in one region yield it twice. Before is2D() a warning, and nothing is appended. A
    /// vertex of a graph that is not part of the mesh throws KelmException.
    void getTriangles(std::vector<Triangle2*>& vTriangles) const;
    /// Appends the corners of all triangles, each once, by address.
    void getVertices(std::vector<Point2*>& vVertices) const;
    /// Makes the zone's border constraints of the mesh, so that no later change of the mesh moves it.
    /// An edge of the border that once was a constraint and was bent elsewhere can't be one again: the zone
    /// then follows the bent one.
    /// @return a new ZL_BOUNDED zone of the same triangles; a ZL_INSIDE zone itself, which has such a border;
    /// null, after a warning, if there are no triangles
    Zone2* convertToBoundedZone();

    /// Appends the edges with a triangle of the zone on their left and none on their right, triangle by
    /// triangle, these by address. Only for ZL_GROW zones and several start points is that another order than
    /// getBoundaryEdges gives.
    void getBorderEdges(std::vector<Edge2>& vBorderEdgesOut) const;
    /// The same in the order of getTriangles.
    void getBoundaryEdges(std::vector<Edge2>& vBoundaryEdgesOut) const;
    /// The same as copies of the ends, counterclockwise around the zone.
    void getBoundarySegments(std::vector<Segment2>& vBoundarySegmentsOut) const;

    /// The area in the xy plane, in squared units of the coordinates. See Triangle2::getArea2D.
    double getArea2D() const;
    /// The area of the surface in space. See Triangle2::getArea25D.
    double getArea25D() const;
    /// The box of all triangles, wired to nothing; invalid if there are none.
    Bbox2 getBoundingBox() const;
    /// Prints the number of triangles and a histogram of their angles in space, titled with name.
    void statistics(const std::string& name) const;
    /// Prints averages of the angles, in degrees, between triangles that are neighbours: over all edges with
    /// a triangle of the zone at one side and any triangle at the other, and over those above 10 degrees.
    /// Edges within the zone count once from each side. Of nothing the averages are not numbers. Cost: n log
    /// n.
    void analyzeAngles();

    /// Draws the zone to an A4 PostScript file, replacing it: its triangles filled in yellow, with bShowFull
    /// the edges of the whole triangulation as Kelm_2D::show does, else those of the zone as hairlines, where
    /// bWithConstraints makes constraints thick and red.
    void show(const std::string& postscriptFilename, bool bShowFull, bool bWithConstraints) const;
    /// Adds the same to a drawing, which stays the caller's. Null gives a warning.
    void show(Visualizer2* pVisualizer, bool bShowFull, bool bWithConstraints) const;
    /// Writes the triangles as a Geomview file, replacing it, in one colour; see Kelm_2D::showGeomview.
    void showGeomview(const std::string& filename, const std::string& color) const;
    /// Adds the triangles to an open Geomview file, which stays the caller's. Null gives a warning.
    void showGeomview(Visualizer3* pVisualizer, const std::string& color) const;
    /// Draws triangles and constraint segments to a PostScript file, "debug.ps" if name is empty.
    void debug(std::string name);

    /// Makes valleys and ridges smoother by flips of edges: in up to three passes edges are turned where that
    /// lowers the angles between the triangles around, or where all stay well shaped and diagonals come to
    /// run one way. Constraints, vertices and heights stay; the mesh is no longer Delaunay afterwards.
    /// Triangles next to the zone may change, too. Edges with a height that is not a number beside them stay.
    /// Prints analyzeAngles before and after. Angles at infinite heights, or at ones whose squares are, fail
    /// a check, which throws KelmException and leaves the flips made by then.
    void slopeValleyRidgeOptimization();
    /// Turns diagonals of quadrilaterals whose corners all but lie on one circle, so that the one stays that
    /// is shorter in space, as it runs along a valley or ridge; where both have nearly the same length, so
    /// that it rises to the right, in the plane. Only edges that are the longest of a triangle are looked at,
    /// the longest first, only within the zone, and never a constraint. Cost: n log n.
    /// @param planarTolerance largest difference of the lengths of both diagonals in the plane,
    /// relative to the larger; 0 or less demands exactly one circle, and the mesh stays Delaunay. If it is
    /// not a number nothing is turned
    /// @param spatialThreshold difference of the lengths in space, relative to the larger, up to which they
    /// count as the same; they always do if it, or a length, is not a number (a length is then reported on
    /// the error stream)
    void optimizeValleysAndRidges(double planarTolerance, double spatialThreshold);
    /// Turns diagonals of quadrilaterals whose corners all but lie on one circle so that they rise to the
    /// right: those that fall or are vertical are turned, once. Otherwise as optimizeValleysAndRidges.
    void unifyGrid(double planarTolerance);

protected:
    /// Appends the triangles at the boundary graphs, on their left or on their right.
    void initWorkspace(bool bInside, std::vector<Triangle2*>& vWorkspace) const;
    /// Appends all triangles that are reached from those in the workspace over edges that are no boundary, by
    /// address, and empties the workspace.
    void bfsFromWorkspace(std::vector<Triangle2*>& vWorkspace, std::vector<Triangle2*>& vTriangles) const;
    /// Appends the triangles of a set operation, by address.
    void getTriangles_RESULT(std::vector<Triangle2*>& vTriangles) const;
    /// One pass of slopeValleyRidgeOptimization over vT; vChangedT, which has to come empty, receives the
    /// triangles that were changed, by address.
    void optimize(std::vector<Triangle2*>& vT, std::vector<Triangle2*>& vChangedT);

private:
    friend KELM25D_API Zone2* peelOffIf(Zone2* pZone, UserPredicateT* pPredicate, bool bVerbose);
    friend KELM25D_API Zone2* zoneUnion(Zone2* pZone0, Zone2* pZone1);
    friend KELM25D_API Zone2* zoneIntersection(Zone2* pZone0, Zone2* pZone1);
    friend KELM25D_API Zone2* zoneDifference(Zone2* pZone0, Zone2* pZone1);
    friend KELM25D_API Zone2* zoneSymmetricDifference(Zone2* pZone0, Zone2* pZone1);

    class Evaluation;

    static Zone2* combine(Zone2* pZone0, Zone2* pZone1, ZoneLocation zoneLoc, const char* where);
    static ZoneMgr* managerOf(Dt2* pDt) noexcept;
    void growFromStartPoints(std::vector<Triangle2*>& vTriangles) const;
    void checkLocation(bool bAccepted, const char* text) const;

    Dt2* pDt;
    ZoneMgr* pMgr; // its manager
    ZoneLocation zoneLoc;
    std::vector<ConstraintGraph2*> vConstraintGraphs; // owned by the ConstraintMgr
    std::vector<Point2> vStartPoints;                 // of a ZL_GROW zone
    std::vector<Zone2*> vInputZones;                  // the two operands of a set operation
};

/// A zone of the triangles of either zone. Nothing is computed yet: the result reads its operands, which must
/// live as long, at each question. Both must belong to one triangulation, else, or if one is null, there is
/// an error line and the result is null. The result belongs to the triangulation; the same holds for the next
/// three.
KELM25D_API Zone2* zoneUnion(Zone2* pZone0, Zone2* pZone1);
/// A zone of the triangles that both zones have; see zoneUnion.
KELM25D_API Zone2* zoneIntersection(Zone2* pZone0, Zone2* pZone1);
/// A zone of the triangles of the first zone that the second does not have; see zoneUnion.
KELM25D_API Zone2* zoneDifference(Zone2* pZone0, Zone2* pZone1);
/// A zone of the triangles that exactly one of the zones has; see zoneUnion.
KELM25D_API Zone2* zoneSymmetricDifference(Zone2* pZone0, Zone2* pZone1);

/// Removes triangles of a zone from the outside inwards, as long as a test agrees.
///
/// A triangle is tested when it lies at the border of what is left; one that passes is taken off, and its
/// neighbours come next. What passes but is shielded by triangles that do not pass stays. A triangle may be
/// tested more than once. The border of the rest becomes constraints of the mesh; the zone itself is left as
/// it is.
/// @param pZone the zone, of any location
/// @param pPredicate the test, the caller's; null gives a warning and a null result
/// @param bVerbose print counts and areas before and after
/// @return a new ZL_GROW zone of what is left; null if nothing is left, and, after a warning, if the zone is
/// null or empty
///
/// Cost: linear in the tests, and the creation of the constraints.
KELM25D_API Zone2* peelOffIf(Zone2* pZone, UserPredicateT* pPredicate, bool bVerbose = false);

} // namespace QUOR_KELM25D
