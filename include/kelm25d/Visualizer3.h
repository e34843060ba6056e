/// @file
/// Surfaces, points and lines in space as a file for the viewer Geomview.
/// A whole triangulation goes there by Kelm_2D::showGeomview. A page for the browser is made in webScene.h.
#pragma once

#include <kelm25d/Edge2.h>
#include <kelm25d/Point2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/VertexPair2.h>
#include <kelm25d/export.h>

#include <fstream>
#include <string>
#include <vector>

namespace QUOR_KELM25D {

/// A Geomview file that is being written: one LIST, to which every write operation adds an object.
///
/// Coordinates are the caller's own, in space, and have 15 significant digits in the file whatever the
/// stream's format and locale are; for one that is not finite 0 is written, and a warning tells how many
/// there were. A colour is a text of four numbers from 0 to 1, red, green, blue and alpha, separated by
/// blanks, for example "0 1 1 1"; it is written as it is. The arguments are only borrowed, and pointers in
/// them, and to the corners of triangles, are never null. An empty sequence adds nothing. Everything is
/// linear in the size of its argument.
///
/// A file that can't be opened is reported once, and writing to it has no effect. Nothing throws, short of
/// running out of memory, unless the stream is told to by exceptions(). The object is a stream, so own
/// Geomview text may be put between the objects.
class KELM25D_API Visualizer3 : public std::ofstream {
public:
    /// Says on standard output that it writes the file, opens it, replacing an existing one, and begins the
    /// LIST.
    explicit Visualizer3(const std::string& filename);
    /// Ends the LIST and closes the file.
    ~Visualizer3() override;
    Visualizer3(const Visualizer3&) = delete;
    Visualizer3& operator=(const Visualizer3&) = delete;

    /// Opens a file for writing, replacing an existing one; a file that is open is ended first by closeFile.
    /// A failure gives the warning "FILENAME not writeable". The beginning of the LIST is the constructor's:
    /// who opens another file writes "LIST\n{\n" to it.
    void openFile(const std::string& filename);

    /// Ends the LIST and closes the file. Nothing happens if none is open.
    void closeFile();

    /// Whether the meshes that follow show their back faces in a colour of their own; at first they do not.
    void setBackfaces(bool bBackfaces_) noexcept { bBackfaces = bBackfaces_; }

    /// A transparent sphere; the radius is in units of the coordinates.
    void writeBall(const Point2& center, double radius);

    /// One point; pointSize is its width on the screen in pixels.
    void writePoint(const Point2& point, unsigned pointSize, const std::string& color);

    /// Points of pointSize pixels as one object. An empty sequence gives the warning
    /// "Visualizer3::writePoints: no points" and writes nothing.
    void writePoints(const std::vector<Point2>& vPoints, unsigned pointSize, const std::string& color);
    /// The same for points that are held by pointer, for example vertices.
    void writePoints(const std::vector<Point2*>& vPoints, unsigned pointSize, const std::string& color);

    /// One line from a to b, with bWithEndPoints also its ends as an object of points.
    void writeSegment(const Point2& a, const Point2& b, const std::string& color, bool bWithEndPoints);

    /// Lines as one object, with bWithEndPoints also all their ends as an object of points.
    void writeSegments(const std::vector<Segment2>& vSegments, const std::string& color, bool bWithEndPoints);
    /// The same for edges of triangles; each needs its triangle.
    void writeSegments(const std::vector<Edge2>& vEdges, const std::string& color, bool bWithEndPoints);

    /// Lines between the vertices of each pair, as one object.
    void writeVertexPairs(const std::vector<VertexPair2>& vPairs, const std::string& color);

    /// One triangle with its edges, corners in the order given.
    void writeTriangle(const Point2& a, const Point2& b, const Point2& c, const std::string& color);
    /// The same for a triangle of a triangulation.
    void writeTriangle(const Triangle2& triangle, const std::string& color);

    /// Triangles with their edges as one mesh, three vertices to each. With bWithNormals there is also an
    /// object of lines, one for each triangle: from its barycentre along its normal, as long as its edges are
    /// on average. A triangle without a normal gets a line of length 0.
    void writeTriangles(const std::vector<Triangle2*>& vT, const std::string& color, bool bWithNormals);
    /// The same for corners, three in a row to each triangle. A number that is no multiple of 3 gives a
    /// warning and writes nothing.
    void writeTriangles(const std::vector<Point2>& vPoints, const std::string& color, bool bWithNormals);

    /// Boxes of eight corners each: the bottom face one after the other around, then the top face in the same
    /// order above it. A number that is no multiple of 8 gives a warning and writes nothing. Back faces are
    /// always in a colour of their own.
    void writeCubes(const std::vector<Point2>& vPoints, const std::string& color);

    /// Blue lines, one for each triangle, from its barycentre along its upward normal; scale is their length
    /// in units of the coordinates.
    void writeNormals(const std::vector<Triangle2*>& vT, double scale);

private:
    bool bBackfaces = false;
};

} // namespace QUOR_KELM25D
