/// @file
/// The triangulation: the class that callers work with.
/// Points are in Point2.h, triangles in Triangle2.h, reading of point files in dataFiles.h.
#pragma once

#include <kelm25d/MsgBase.h>
#include <kelm25d/Orientation2.h>
#include <kelm25d/Point2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/export.h>

#include <string>
#include <vector>

namespace QUOR_KELM25D {

class Dt2;

/// A Delaunay triangulation of points in the xy plane that carries a height on each vertex.
///
/// The triangles cover exactly the convex hull of the points; an edge on the hull has a null opposite
/// triangle. All decisions in the plane are exact. Until three points are known that are not collinear there
/// are no triangles: the points wait, and is2D() is false. Points with the x and y of a vertex are
/// duplicates: the vertex that is there stays, with its height. Where four or more points lie on one circle
/// the triangulation is not unique, and any of the Delaunay ones may result.
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

    /// Writes all triangles as a Wavefront OBJ mesh, replacing the file: each vertex once, numbers from 1,
    /// corners counterclockwise as seen from above. Coordinates read back as the same doubles. Before is2D()
    /// an error line is printed and no file is written; a file that can't be opened is not reported.
    void writeObj(const std::string& filename) const;

    /// The implementation, for the library's own classes.
    Dt2* getImpl() const noexcept { return pImpl; }

protected:
    /// Allocates the implementation; called once, by the constructor.
    void initKelm(unsigned int numExpectedVertices);

private:
    Dt2* pImpl = nullptr; // owned
};

} // namespace QUOR_KELM25D
