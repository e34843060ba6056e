/// @file
/// The triangulation: the class that callers work with.
/// Points are in Point2.h, triangles in Triangle2.h, reading of point files in dataFiles.h.
#pragma once

#include <kelm25d/Bbox2.h>
#include <kelm25d/ConstraintInsertionStrategy.h>
#include <kelm25d/MsgBase.h>
#include <kelm25d/Orientation2.h>
#include <kelm25d/Point2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/ZoneLocation.h>
#include <kelm25d/export.h>

#include <string>
#include <vector>

namespace QUOR_KELM25D {

class ConstraintGraph2;
class ConstraintSegment2;
class Dt2;
class Visualizer2;
class Visualizer3;
class Zone2;

/// A Delaunay triangulation of points in the xy plane that carries a height on each vertex.
///
/// The triangles cover exactly the convex hull of the points; an edge on the hull has a null opposite
/// triangle. All decisions in the plane are exact. Until three points are known that are not collinear there
/// are no triangles: the points wait, and is2D() is false. Points with the x and y of a vertex are
/// duplicates: the vertex that is there stays, with its height. Points that wait when a bulk insertion with
/// several threads comes go on waiting, can't be removed and are not compared with its points, until the
/// triangulation starts anew; insert them with one thread, or in bulk, if that matters. Where four or more
/// points lie on one circle the triangulation is not unique, and any of the Delaunay ones may result.
///
/// Vertices and triangles belong to the triangulation. Their pointers stay valid until it is destroyed; a
/// triangle may come to stand for other corners whenever points are inserted.
///
/// One object is for one thread at a time; different objects are independent. A broken internal condition
/// throws KelmException; the object can then only be destroyed.
class KELM25D_API Kelm_2D {
public:
    /// An empty triangulation. numExpectedVertices sizes the first blocks of storage and is no limit.
    explicit Kelm_2D(unsigned int numExpectedVertices = 3);
    /// Frees all vertices and triangles.
    ~Kelm_2D();
    Kelm_2D(const Kelm_2D&) = delete;
    Kelm_2D& operator=(const Kelm_2D&) = delete;

    /// Inserts one point.
    /// @return the vertex, an existing one if p has its x and y; null, after an error line, if x or y is not
    /// finite
    ///
    /// Expected cost: logarithmic search plus constant work; a line of points waits at constant cost each.
    /// Location by walking: Devillers, Pion, Teillaud (2002); flips: Lawson (1977).
    Point2* insert(const Point2& p);

    /// Inserts many points at once, much faster than one by one: sorted along a Hilbert curve, on numCPU
    /// threads where that pays. An empty sequence does nothing. If any x or y is not finite nothing is
    /// inserted and an error line is printed. Of duplicates within v any height may survive.
    /// Expected cost: close to linear in the number of points.
    void insert(const std::vector<Point2>& v);

    /// The same; handles receives, in input order, the vertex of each point, for a duplicate the surviving
    /// vertex. Its former content is replaced. All null if nothing was inserted.
    void insert(const std::vector<Point2>& v, std::vector<Point2*>& handles);

    /// The same from numPoints triples x, y, z at aCoordinates. aHandles has room for numPoints vertices, in
    /// input order. A numPoints of 0 or less does nothing, nor, after an error line, a null array. Custom
    /// indices are -1.
    void insert(int numPoints, double* aCoordinates, Point2** aHandles);

    /// Takes a vertex out. Its storage stays readable until this object dies, its incident triangle becomes
    /// null. With fewer than three non-collinear vertices left there are no triangles any more and the others
    /// wait. A null pointer, or a vertex that is not part of the triangulation, gives a warning and changes
    /// nothing. Cost: linear in the number of the vertex's neighbours, and a search.
    void remove(Point2* pVertex);

    /// The triangle that p lies in; on an edge or at a vertex, one of those that meet there. Null if p lies
    /// outside the hull, if a coordinate is not finite, and before is2D(). Heights are ignored. Logarithmic
    /// search.
    Triangle2* locate(const Point2& p);

    /// The triangle that has the directed edge from p0 to p1 on its counterclockwise boundary, so that it
    /// lies on the left; null if p1 is no neighbour of p0 or the hull lies between. A null pointer, or p0 ==
    /// p1, fails a check and throws KelmException. Linear in the number of neighbours, as are the next two.
    Triangle2* getAdjacentTriangle(Point2* p0, Point2* p1);

    /// Appends the triangles around a vertex, counterclockwise from its incident triangle; around a hull
    /// vertex the sequence jumps over the outside. Null and a vertex without triangles throw KelmException.
    void getIncidentTriangles(Point2* pVtx, std::vector<Triangle2*>& vTriangles);

    /// Appends the neighbours of a vertex, each once, by address: in no geometric order. Null and a vertex
    /// without triangles throw KelmException.
    void getIncidentVertices(Point2* pVtx, std::vector<Point2*>& vVertices);

    /// The box of all vertices; invalid if there are none. Linear.
    Bbox2 computeBoundingBox();

    /// Appends the vertices of the convex hull, counterclockwise from the lowest of the leftmost ones: its
    /// corners, or with bAllVertices also those that lie inside its edges. Before is2D() a warning, and
    /// nothing is appended.
    void getConvexHull(bool bAllVertices, std::vector<Point2*>& vHull);

    /// The height of the surface at (x, y), exactly the vertex's z at a vertex and between the heights of the
    /// corners elsewhere. It is written only with the result true. pApproxT is the triangle whose plane is
    /// asked, if the caller knows it; null means search. If (x, y) lies outside it the height is that of its
    /// plane, and a steep one throws KelmException. Where a corner's height is not finite the result is not a
    /// number. Outside the hull, the height of the hull's border at
    /// the nearest place is taken, if that is not farther than tolerance.
    /// @return false outside the hull (and tolerance), before is2D(), and for coordinates that are not finite
    bool getHeight(double x, double y, double& height, Triangle2* pApproxT = nullptr, double tolerance = 0.0);

    /// Lays segments over the surface: each is cut wherever it crosses an edge or runs through a vertex, and
    /// the pieces are appended with the heights of the surface. Heights of the input are ignored. With a
    /// zTolerance that is not negative, neighbouring pieces of a segment are joined as long as no height
    /// changes by more than that; the line in the plane stays.
    /// @return false if a segment was outside the hull, wholly or in part; what lies over the hull is
    /// appended
    bool drape(std::vector<Segment2>& vIn, std::vector<Segment2>& vOut, double zTolerance);

    /// Checks the links between triangles, and on demand that no vertex next to a triangle lies inside its
    /// circumcircle, and reports what is wrong on standard output, where msg tells the calls apart; violated
    /// circles are drawn to files as well.
    /// @return true if nothing was found, also before is2D()
    bool checkValidity(bool bCheckEmptyCircleProperty, const std::string& msg);

    /// Prints the number of triangles and a histogram of their angles in space, titled with s.
    void statistics(const std::string& s);

    /// Whether triangles exist: true from the third non-collinear point on.
    bool is2D() const;

    /// The number of vertices, duplicates not counted. Constant time.
    unsigned numberOfPoints() const;

    /// The number of triangles.
    unsigned numberOfTriangles() const;

    /// Replaces vTriangles by all triangles; empty before is2D(). Linear.
    void getTrianglePointers(std::vector<Triangle2*>& vTriangles) const;

    /// Replaces vVertices by all vertices, waiting ones included, in no order to rely on. Linear.
    void getVertexPointers(std::vector<Point2*>& vVertices) const;

    /// Sets the number of threads of bulk insertion: a positive number as given, 0 for the number of hardware
    /// threads, a negative one for 1, which is the default.
    /// @return the number in force
    int setNumCPU(int numCPU);

    /// The same as setNumCPU(0).
    void enableMultithreading();

    /// A name for the caller's own use, empty at first.
    std::string getName() const;
    /// Sets the name.
    void setName(const std::string& name);

    /// Stores a developer setting under key; a former one is replaced. Nothing depends on it.
    void setDev(const std::string& key, int iValue, double dValue);

    /// A hook for debugging, disabled here: with a == -7 and b == -2000 or -1000 it says so on standard
    /// output.
    void internal(int a, int b, std::string s);

    /// Makes segments part of the triangulation: its edges follow them from now on.
    ///
    /// The ends become vertices. Where a segment runs through a vertex or crosses another constraint, both
    /// are divided, at a new vertex if need be, whose coordinates are rounded; a crossing closer than 1e-6 to
    /// an end takes that end, whatever the scale of the data. Degenerate segments are left out, those between
    /// the same places are one constraint, and segments that were constraints before keep their strategy.
    /// Before is2D() the segments wait, as conforming ones may, for applyConstraintsAndZones. Points that are
    /// inserted later divide the constraints on which they lie, and vertices of constraints can't be removed.
    /// @param vSegments in any order, ends in the frame of the points; empty gives a warning
    /// @param cis the way of insertion
    /// @param bOrientedSegments whether the direction of each segment means something
    /// @return the group of these segments, which belongs to the triangulation; null if vSegments is empty
    /// or, after an error line, if a coordinate is not finite
    ///
    /// Expected cost: insertion of the ends, then linear in the edges that the segments cross. Anglada, "An
    /// improved incremental algorithm for constructing restricted Delaunay triangulations" (1997).
    ConstraintGraph2* createConstraint(const std::vector<Segment2>& vSegments,
                                       ConstraintInsertionStrategy cis, bool bOrientedSegments = false);

    /// Inserts all constraint segments that wait: those made before is2D() and pieces of conforming ones.
    /// Conforming segments are divided until all pieces are edges, which needs up to 499 rounds; where
    /// double precision does not allow that, warnings tell so and the pieces stay alive without being edges.
    /// Before is2D() a warning, and nothing happens.
    void applyConstraintsAndZones();

    /// Whether an alive constraint segment joins two vertices. Constant time, as the next three; null gives
    /// false or null.
    bool isConstraint(Point2* p0, Point2* p1) const;
    /// Whether edge ith of a triangle, opposite its corner ith, is an alive constraint segment. False for an
    /// index that is not 0, 1 or 2.
    bool isConstraint(Triangle2* pT, int ith) const;
    /// Whether a vertex is the end of a constraint segment, alive or dead.
    bool isConstraint(Point2* pVtx) const;
    /// The alive constraint segment that joins two vertices; null if there is none.
    ConstraintSegment2* getConstraintSegment(Point2* p0, Point2* p1) const;
    /// Appends all alive constraint segments, by the addresses of their ends.
    void getAliveConstraintSegments(std::vector<ConstraintSegment2*>& vSegments) const;
    /// Appends all constraint segments that ever were, by the addresses of their ends.
    void getAliveAndDeadConstraintSegments(std::vector<ConstraintSegment2*>& vSegments) const;

    /// Makes a zone of everything (ZL_GLOBAL, whatever the graph, which may be null) or of one side of a
    /// graph's directed edges, ZL_INSIDE the left and ZL_OUTSIDE the right one. From there it reaches up to
    /// the edges of this graph and over other constraints. A polygon runs counterclockwise unless its
    /// segments were given directions.
    ///
    /// Zones belong to the triangulation, see Zone2. With bVerbose a null result is reported as well.
    /// @return null, after a message, before is2D() (where the next two work), for a null graph, and for one
    /// without directions. ZL_GROW throws KelmException
    Zone2* createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc, bool bVerbose = true);
    /// Makes a zone of the triangles around a start point, up to the edges of a graph: zoneLoc must be
    /// ZL_GROW, else there is an error line and the result is null. The point is looked up at each question;
    /// of triangles that meet there it is always the same one, and outside the hull there are none.
    Zone2* createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc, const Point2& startPoint,
                      bool bVerbose = true);
    /// The same up to the edges of several graphs, or of none.
    Zone2* createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc,
                      const Point2& startPoint, bool bVerbose = true);
    /// Makes a zone of given triangles: their border becomes constraints, and in each connected part a start
    /// point is chosen. A part without a triangle that has its own centre inside, as computed, is left out
    /// after messages. A triangle given twice counts once, after a warning. None at all give a warning and a
    /// zone without triangles.
    /// @return null, after an error line, if a pointer is null or a triangle is not in use any more
    Zone2* createZone(const std::vector<Triangle2*>& vTriangles, bool bVerbose = true);
    /// Cuts a simple polygon, segments in any order and direction, out of the triangles, as cutTriangles
    /// does, and makes a bounded zone of what lies within it and within the hull as it was before the call.
    /// Ends outside the hull become vertices all the same.
    /// @return null if the segments are no simple polygon or form several rings, and if nothing is left
    Zone2* createZone_cookieCutter(const std::vector<Segment2>& vSegments, bool bWithConstraints);
    /// Deletes a zone. Its graphs stay. Null, and a pointer that is no zone of this triangulation (any more),
    /// give a warning.
    void deleteZone(Zone2* pZone);

    /// Makes given triangles the mesh of an empty triangulation, whether Delaunay or not, and fills holes and
    /// surroundings with further ones up to a convex whole. Their borders become constraints.
    ///
    /// Corners with the same x and y are one vertex, with the height of the first of them. Triangles are
    /// neighbours where they have an edge in opposite directions. Later insertions flip edges next to new
    /// vertices only.
    /// @param vPoints three corners for each triangle, counterclockwise, in the frame of the points
    /// @param bReorientIfNeeded turn clockwise triples round, in vPoints itself. Without it nothing is looked
    /// at: triples that are clockwise or collinear become such triangles or make the import fail. With
    /// clockwise ones a warning tells that the triangulation can only be read, drawn and saved from then on;
    /// beside collinear ones later constraints and removals may throw KelmException
    /// @param bCreateExtendedBoundingBox keep the corners of a box of twice the extent, heights 0, as
    /// vertices; otherwise the hull of the given points is the border
    /// @return a zone of the given triangles. Null, after messages, if the triangulation is not empty, for a
    /// number of points that is no positive multiple of 3, coordinates x or y that are not finite or too
    /// large for the box and, without bReorientIfNeeded, a triple with two equal corners: nothing is changed
    /// then. Null, too, after messages, for a collinear triple with bReorientIfNeeded and if the triangles
    /// are no part of a triangulation: they overlap, a corner lies on an edge, several meet at one side of an
    /// edge. A drawing in the current directory shows most such cases. What was made by then stays and can
    /// only be read, drawn and saved. Triangles that close without a border throw KelmException, or give null
    /// beside others
    ///
    /// Close to linear in the number of triangles.
    Zone2* importTriangles(std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                           bool bCreateExtendedBoundingBox);

    /// Cuts the triangles along segments, which become constraints: every edge of a triangle that a segment
    /// crosses gets a vertex there, with the height of the edge.
    ///
    /// With bWithConstraints all edges around become constraints, too, so that the surface and the mesh away
    /// from the segments stay as they are; without it new vertices change the triangles around them as
    /// insert does. Ends take the height of the surface; beyond the hull they keep theirs and extend it. A
    /// crossing closer than 1e-5 to a corner of its triangle takes that corner, whatever the scale of the
    /// data. Segments without length are left out.
    /// A warning before is2D() and, once waiting constraints have been applied, if no segment is left; an
    /// error line if a coordinate is not finite. Many segments in one call cost less than a call for each.
    /// Expected cost: linear in the crossings and in the edges around, a search for each segment, a pass over
    /// the hull for each that comes from outside.
    void cutTriangles(const std::vector<Segment2>& vSegments, bool bWithConstraints);
    /// The same along one segment.
    void cutTriangles(const Point2& knifeStart, const Point2& knifeEnd, bool bWithConstraints);

    /// Orientation of three points in the xy plane, exact and safe on several threads; see
    /// getOrientation2_mt.
    Orientation2 getOrientation(const Point2& p0, const Point2& p1, const Point2& p2) const;

    /// Seconds that a bulk insertion of v into a fresh triangulation takes, with this one's number of
    /// threads. This triangulation is not changed.
    double measureTriangulationTime(std::vector<Point2>& v) const;

    /// From now on pReceiver is told of the progress of bulk insertions, on the thread that inserts. It stays
    /// the caller's and must live until it is unsubscribed or this object dies. A second subscription of the
    /// same receiver has no effect.
    void subscribe(MsgType msgType, MsgBase* pReceiver);
    /// Ends a subscription; nothing happens if there is none.
    void unsubscribe(MsgType msgType, MsgBase* pReceiver);

    /// Writes all triangles, or those of a zone, as a Wavefront OBJ mesh, replacing the file: each vertex
    /// once, numbers from 1, corners counterclockwise as seen from above. Coordinates read back as the same
    /// doubles; for a height that is not finite 0 is written, and a warning tells how many there were. Before
    /// is2D() an error line is printed and no file is written; a file that can't be opened is not reported.
    void writeObj(const std::string& filename, const Zone2* pZone = nullptr) const;

    /// Draws all edges to an A4 PostScript file, replacing it. With bWithConstraints constraint edges are
    /// thick and red, else thinner than the others. Before is2D() an error line is printed and the page stays
    /// empty.
    void show(const std::string& postscriptFilename, bool bWithConstraints) const;

    /// Adds the edges to a drawing, which stays the caller's and is not written yet. Null gives a warning,
    /// before is2D() an error line is printed, and nothing is added. A page that has been written fails a
    /// check and throws KelmException.
    void show(Visualizer2* pVisualizer, bool bWithConstraints) const;

    /// Writes all triangles as a Geomview file, replacing it, in one colour: four numbers from 0 to 1 as
    /// text, for example "0 1 1 1". Before is2D() an error line is printed and no file is written. See
    /// Visualizer3.
    void showGeomview(const std::string& filename, const std::string& color) const;

    /// Adds all triangles to an open Geomview file, which stays the caller's, in an ochre. Before is2D() an
    /// error line is printed, for a null pointer a warning, and nothing is added.
    void showGeomview(Visualizer3* pVisualizer) const;

    /// Writes a directory that shows the triangles, or those of a zone, in a browser: index.html, the scripts
    /// of the viewer, and the mesh 3d.obj as by writeObj. Missing directories are made, files of these names
    /// replaced. A directory that can't be made, and null, give a warning and nothing is written; before
    /// is2D() there is an error line instead of the mesh; a viewer that this build does not hold gives an
    /// error line, and page and mesh are written. Browsers read no mesh from a file address: serve the
    /// directory, for example by `python3 -m http.server` in it.
    void writeWebScene(const char* path, const Zone2* pZone = nullptr) const;

    /// Writes vertices and alive constraint segments to a binary file, replacing it; see dataFiles.h for the
    /// format. Triangles, zones, graphs, directions and custom indices are not stored.
    /// @return false, with the line "FILENAME can't be written", if the file can't be written
    bool save(const char* filename) const;

    /// Reads a file that save() has written, into this triangulation: all points are inserted, and the
    /// segments become one group of constraints with CIS_CONSTRAINED_DELAUNAY. What was there stays. Of a
    /// file that is shorter than its own counts the complete records are read.
    /// @return false if the file can't be read ("FILENAME can't be read"), is of another type ("FILENAME
    /// should have type 301 but has TYPE"), or holds an x or y that is not finite (an error line, nothing is
    /// inserted)
    bool load(const char* filename);

    /// The implementation, for the library's own classes.
    Dt2* getImpl() const noexcept { return pImpl; }

protected:
    /// Allocates the implementation; called once, by the constructor.
    void initKelm(unsigned int numExpectedVertices);

private:
    Dt2* pImpl = nullptr; // owned
};

} // namespace QUOR_KELM25D
