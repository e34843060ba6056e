/// @file
/// Drawings of points, segments, triangles, circles and texts as a PostScript page.
/// Pictures in space are made elsewhere, see Visualizer3.h.
#pragma once

#include <kelm25d/Circle2.h>
#include <kelm25d/Color.h>
#include <kelm25d/Edge2.h>
#include <kelm25d/Label.h>
#include <kelm25d/Point2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/export.h>

#include <array>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class ConstraintSegment2;

/// One page of A4 with a picture of everything that was added, seen from above.
///
/// Objects are added in any order, and writeFile draws them: triangles first, then segments, the end marks of
/// segments, circles, points and labels. What is drawn later covers what is below it. The picture is scaled
/// to all objects, with one scale for x and y, into a square of 480 points; above it stand the file name, the
/// ranges of the coordinates and the header lines. Objects without extent go to the middle of the square.
///
/// Objects are copied when they are added: what they came from may change or die before the file is written.
/// An object with a coordinate or a radius that is unset, infinite or not a number, or beyond 1e300, is left
/// out of the picture, and a warning line tells how many were.
///
/// The object is the open file itself. A file that can't be opened is told by the state of the stream alone:
/// everything then goes without effect. One object is for one thread at a time.
class KELM25D_API Visualizer2 : public std::ofstream {
public:
    /// Opens the file, replacing a former one, and says so on standard output.
    explicit Visualizer2(const std::string& filename_);

    /// Writes the file, after a line on standard output, if that has not been done.
    ~Visualizer2() override;

    Visualizer2(const Visualizer2&) = delete;
    Visualizer2& operator=(const Visualizer2&) = delete;

    /// Adds a line to the header, at most 10 of them; a further one is refused with a warning line. Of each
    /// the first 120 characters are shown; the longest line decides the size of the font, so that a few short
    /// ones become large. Throws
    /// KelmException after writeFile.
    void addHeaderLine(const std::string& line);

    /// Adds a point, drawn as a diagonal cross that reaches color.width points to each side.
    ///
    /// This and all other forms throw KelmException after writeFile, and take constant time an object.
    void addObject(const Point2& point, const Color& color);
    /// Adds a segment. If color.bFill is set its ends are marked by crosses, each place once a colour.
    void addObject(const Segment2& segment, const Color& color);
    /// Adds the segment between the ends of an edge. Null as its triangle or as a corner of it, or an index
    /// that is not 0, 1 or 2, fails a check and throws.
    void addObject(const Edge2& edge, const Color& color);
    /// Adds the segment between the ends of a constraint segment. Null fails a check and throws.
    void addObject(const ConstraintSegment2* pSegment, const Color& color);
    /// Adds a triangle, filled and with a gray outline if color.bFill is set. The corners are copied; a null
    /// corner fails a check and throws.
    void addObject(const Triangle2& triangle, const Color& color);
    /// Adds a text. The picture leaves room for 0.5 units of the world a character, at most 20 of them, at
    /// any scale; this is deliberately crude.
    void addObject(const Label& label, const Color& color);
    /// Adds a circle, filled if color.bFill is set.
    void addObject(const Circle2& circle, const Color& color);

    /// Adds each element, in order; an empty sequence adds nothing.
    void addObject(const std::vector<Point2>& vPoints_, const Color& color);
    /// Adds each element, in order. A null pointer fails a check and throws; those before it are added then.
    void addObject(const std::vector<Point2*>& vPointers, const Color& color);
    /// Adds each element, in order; an empty sequence adds nothing.
    void addObject(const std::vector<Segment2>& vSegments_, const Color& color);
    /// Adds each element, in order. A null pointer fails a check and throws; those before it are added then.
    void addObject(const std::vector<ConstraintSegment2*>& vPointers, const Color& color);
    /// Adds each element, in order; an empty sequence adds nothing.
    void addObject(const std::vector<Edge2>& vEdges, const Color& color);
    /// Adds each element, in order; an empty sequence adds nothing.
    void addObject(const std::vector<Triangle2>& vTriangles_, const Color& color);
    /// Adds each element, in order. A null pointer fails a check and throws; those before it are added then.
    void addObject(const std::vector<Triangle2*>& vPointers, const Color& color);

    /// Draws everything and closes the file. Without objects the page has a header and nothing else. A
    /// second call prints a warning line and does nothing. Linear, apart from the sorting of end marks.
    void writeFile();

private:
    using Corners = std::array<Point2, 3>;
    template <class Object>
    using Colored = std::pair<Object, Color>;

    template <class Element>
    void addEach(const std::vector<Element>& vElements, const Color& color);
    template <class Object>
    std::size_t takeIntoBounds(std::vector<Colored<Object>>& vObjects);
    void computeBounds();

    void writeHeader();
    void writeUserLines();
    void writeTriangles();
    void writeSegments();
    void writeEndMarks(std::vector<Colored<Point2>>& vMarks);
    void writeCircles();
    void writePoints();
    void writeLabels();
    void writeText(const Label& label);

    void setPen(const Color& color);
    void beginObject(const Color& color);
    void endObject();
    void drawMark(const Point2& point, double size);
    double getRange() const;
    double pageX(double x) const;
    double pageY(double y) const;

    template <class... Parts>
    void emit(const Parts&... parts);
    void emitCommand(double x, double y, const char* command);
    void emitRest();

    // All in the order of addition.
    std::vector<Colored<Segment2>> vSegments;
    std::vector<Colored<Circle2>> vCircles;
    std::vector<Colored<Point2>> vPoints;
    std::vector<Colored<Corners>> vTriangles; // the corners by value: meshes change
    std::vector<Colored<Label>> vLabels;

    int updateCtr = 0;             // objects since this last made a stroke
    double minX, minY, maxX, maxY; // of all objects, while the file is written
    bool bBoundsValid = false;     // some object is in the bounds
    bool bFill = false;            // of the pen
    Color lastColor;               // the pen; no object's colour at first
    std::string filename;
    std::vector<std::string> vHeaderLines; // at most 10
    bool bFileClosed = false;              // writeFile is done
    std::string pageText;                  // written, but not yet handed to the stream
};

} // namespace QUOR_KELM25D
