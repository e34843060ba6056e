// The PostScript page: collecting objects, scaling them to the page, and writing.
// What a triangulation adds to a page is in meshDrawing.cpp, colours are in Color.cpp.
//
// Paths are kept short, for interpreters that limit them: areas are painted one by one, and lines are stroked
// when the pen changes and after some tens of objects. Numbers have six significant digits, which is a
// hundredth of a point or better on the page, and never depend on a locale or on the state of the stream.
#include <kelm25d/Visualizer2.h>

#include "messages.h"

#include <kelm25d/ConstraintSegment2.h>

#include <algorithm>
#include <atomic>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <iostream>
#include <locale>
#include <type_traits>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t maxNumHeaderLines = 10;
constexpr std::size_t maxHeaderLineLength = 120;
constexpr std::size_t maxCountedCharacters = 20; // of a label, for the bounds
constexpr int maxObjectsPerStroke = 30;
constexpr double sideLength = 480.0; // of the square that holds the picture
constexpr double pageLeft = 50.0;
constexpr double pageBottom = 200.0;
constexpr std::size_t flushSize = std::size_t(1) << 16;
// Below it no product or difference of the page mapping overflows. It also keeps out unset points.
constexpr double maxCoordinate = 1e300;

// Of the whole process. Only the extra stroke after every fiftieth circle depends on it.
std::atomic<unsigned> numCirclesDrawn{0};

void append(std::string& text, const char* part) {
    text += part;
}

void append(std::string& text, const std::string& part) {
    text += part;
}

// As a stream writes it by default. A page has no word for what is not finite; only a colour or a width can
// still be that.
void append(std::string& text, double number) {
    char aDigits[32];
    const auto end = std::to_chars(aDigits, aDigits + sizeof aDigits, std::isfinite(number) ? number : 0.0,
                                   std::chars_format::general, 6);
    text.append(aDigits, end.ptr);
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

// The text as it has to stand between the parentheses of a string.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (isControl(c)) {
            const char aOctal[] = {'\\', static_cast<char>('0' + c / 64), static_cast<char>('0' + c / 8 % 8),
                                   static_cast<char>('0' + c % 8)};
            result.append(aOctal, sizeof aOctal);
            continue;
        }
        if (c == '(' || c == ')' || c == '\\') result += '\\';
        result += c;
    }
    return result;
}

// A comment ends with its line, so the text must not bring line ends along.
std::string onOneLine(std::string text) {
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

// The points whose bounds are the bounds of an object.
std::array<Point2, 1> boundsOf(const Point2& point) {
    return {point};
}

std::array<Point2, 2> boundsOf(const Segment2& segment) {
    return {segment.getSrc(), segment.getTrg()};
}

std::array<Point2, 3> boundsOf(const std::array<Point2, 3>& corners) {
    return corners;
}

std::array<Point2, 2> boundsOf(const Circle2& circle) {
    const Point2 centre = circle.getCenter();
    const double radius = circle.getRadius();
    return {Point2(centre.x() - radius, centre.y() - radius, 0.0),
            Point2(centre.x() + radius, centre.y() + radius, 0.0)};
}

std::array<Point2, 2> boundsOf(const Label& label) {
    const double length = 0.5 * static_cast<double>(std::min(label.text.size(), maxCountedCharacters));
    return {label.pos, Point2(label.pos.x() + length, label.pos.y(), 0.0)};
}

} // namespace

Visualizer2::Visualizer2(const std::string& filename_)
    : minX(DBL_MAX), minY(DBL_MAX), maxX(-DBL_MAX), maxY(-DBL_MAX), lastColor(-1, -1, 1, -1, false),
      filename(filename_) {
    std::cout << "Visualizer2:: Writing " << filename << std::endl;
    imbue(std::locale::classic());
    open(filename);
}

Visualizer2::~Visualizer2() {
    if (bFileClosed) return;
    exceptions(std::ios::goodbit); // the owner may have asked for exceptions; none may leave from here
    std::cout << "Calling Visualizer2::writeFile() to complete an unfinished visualization [" << filename
              << "]" << std::endl;
    writeFile();
}

void Visualizer2::addHeaderLine(const std::string& line) {
    KELM_CHECK(!bFileClosed);
    if (vHeaderLines.size() >= maxNumHeaderLines) {
        printWarning("Visualizer2::addHeaderLine()",
                     "skipping text [\"" + line + "\"], maximum number of header lines reached");
        return;
    }
    vHeaderLines.push_back(line);
}

void Visualizer2::addObject(const Point2& point, const Color& color) {
    KELM_CHECK(!bFileClosed);
    vPoints.emplace_back(point, color);
}

void Visualizer2::addObject(const Segment2& segment, const Color& color) {
    KELM_CHECK(!bFileClosed);
    vSegments.emplace_back(segment, color);
}

void Visualizer2::addObject(const Edge2& edge, const Color& color) {
    KELM_CHECK(!bFileClosed);
    KELM_CHECK(edge.getTriangle() != nullptr);
    KELM_CHECK(edge.getIndex() >= 0 && edge.getIndex() < 3);
    KELM_CHECK(edge.getSrc() != nullptr && edge.getTrg() != nullptr);
    vSegments.emplace_back(Segment2(*edge.getSrc(), *edge.getTrg()), color);
}

void Visualizer2::addObject(const ConstraintSegment2* pSegment, const Color& color) {
    KELM_CHECK(pSegment != nullptr);
    addObject(Segment2(*pSegment->getSrc(), *pSegment->getTrg()), color);
}

void Visualizer2::addObject(const Triangle2& triangle, const Color& color) {
    KELM_CHECK(!bFileClosed);
    for (int i = 0; i < 3; ++i)
        KELM_CHECK(triangle.getCorner(i) != nullptr);
    vTriangles.emplace_back(Corners{*triangle.getCorner(0), *triangle.getCorner(1), *triangle.getCorner(2)},
                            color);
}

void Visualizer2::addObject(const Label& label, const Color& color) {
    KELM_CHECK(!bFileClosed);
    vLabels.emplace_back(label, color);
}

void Visualizer2::addObject(const Circle2& circle, const Color& color) {
    KELM_CHECK(!bFileClosed);
    vCircles.emplace_back(circle, color);
}

template <class Element>
void Visualizer2::addEach(const std::vector<Element>& vElements, const Color& color) {
    KELM_CHECK(!bFileClosed);
    for (const Element& element : vElements) {
        if constexpr (std::is_pointer_v<Element>) {
            KELM_CHECK(element != nullptr);
            addObject(*element, color);
        } else {
            addObject(element, color);
        }
    }
}

void Visualizer2::addObject(const std::vector<Point2>& vPoints_, const Color& color) {
    addEach(vPoints_, color);
}

void Visualizer2::addObject(const std::vector<Point2*>& vPointers, const Color& color) {
    addEach(vPointers, color);
}

void Visualizer2::addObject(const std::vector<Segment2>& vSegments_, const Color& color) {
    addEach(vSegments_, color);
}

void Visualizer2::addObject(const std::vector<ConstraintSegment2*>& vPointers, const Color& color) {
    KELM_CHECK(!bFileClosed);
    for (const ConstraintSegment2* pSegment : vPointers)
        addObject(pSegment, color);
}

void Visualizer2::addObject(const std::vector<Edge2>& vEdges, const Color& color) {
    addEach(vEdges, color);
}

void Visualizer2::addObject(const std::vector<Triangle2>& vTriangles_, const Color& color) {
    addEach(vTriangles_, color);
}

void Visualizer2::addObject(const std::vector<Triangle2*>& vPointers, const Color& color) {
    addEach(vPointers, color);
}

void Visualizer2::writeFile() {
    if (bFileClosed) {
        printWarning("Visualizer2::writeFile()", "No effect. File has already been closed");
        return;
    }
    computeBounds();
    writeHeader();
    writeTriangles();
    writeSegments();
    writeCircles();
    writePoints();
    writeLabels();
    emit("stroke\nshowpage\n%%Trailer\n");
    emitRest();
    close();
    bFileClosed = true;
}

// Drops the objects that have no place on a page; the result is their number.
template <class Object>
std::size_t Visualizer2::takeIntoBounds(std::vector<Colored<Object>>& vObjects) {
    const auto isUnusable = [](const Colored<Object>& object) {
        for (const Point2& p : boundsOf(object.first)) {
            if (!(std::fabs(p.x()) <= maxCoordinate && std::fabs(p.y()) <= maxCoordinate)) return true;
        }
        return false;
    };
    const auto last = std::remove_if(vObjects.begin(), vObjects.end(), isUnusable);
    const auto numUnusable = static_cast<std::size_t>(vObjects.end() - last);
    vObjects.erase(last, vObjects.end());
    for (const Colored<Object>& object : vObjects) {
        for (const Point2& p : boundsOf(object.first)) {
            minX = std::min(minX, p.x());
            minY = std::min(minY, p.y());
            maxX = std::max(maxX, p.x());
            maxY = std::max(maxY, p.y());
        }
        bBoundsValid = true;
    }
    return numUnusable;
}

void Visualizer2::computeBounds() {
    const std::size_t numUnusable = takeIntoBounds(vSegments) + takeIntoBounds(vCircles) +
                                    takeIntoBounds(vPoints) + takeIntoBounds(vTriangles) +
                                    takeIntoBounds(vLabels);
    if (numUnusable > 0)
        printWarning("Visualizer2::writeFile()",
                     "leaving out objects without finite coordinates: " + std::to_string(numUnusable));
    if (!bBoundsValid) minX = minY = maxX = maxY = 0.0;
}

void Visualizer2::writeHeader() {
    emit("%!PS-Adobe-1.0\n\t%%Creator: QUOR PostscriptWriter\n\t%%Title: ", onOneLine(filename), "\n",
         "\t%%CreationDate: ", "none", "\n",
         "\t%%DocumentMedia: A4 595 842 0 () ()\n\t%%Orientation: Portrait\n\t%%Pages: 1\t%%DocumentFonts: "
         "Times-Roman Helvetica\n\t%%EndComments\n\t%%BeginProlog\n\t%%EndProlog\n\t%%Page: Quor "
         "PostscriptWriter 1\n");
    emit(0.05, "\tsetlinewidth\n\t0\t0\t0\tsetrgbcolor\n\t/Times-Roman findfont 17 scalefont\n\tsetfont\n",
         "40\t740\tmoveto\n\t(", escaped(filename), ")\tshow\n",
         "0.4\t0.4\t0.4\tsetrgbcolor\n\t/Times-Roman findfont 10 scalefont\n\tsetfont\n",
         "40\t725\tmoveto\n(Quor Kelm 2.5D, ", ")\tshow\n",
         "0.0\t0.0\t0.0\tsetrgbcolor\n\t/Times-Roman findfont 10 scalefont\n\tsetfont\n");
    emit("40\t705\tmoveto\n", "(x-Range: [", minX, " - ", maxX, "] =", maxX - minX, ")\tshow\n",
         "40\t695\tmoveto\n", "(y-Range: [", minY, " - ", maxY, "] =", maxY - minY, ")\tshow\n");
    if (!vHeaderLines.empty()) writeUserLines();
}

void Visualizer2::writeUserLines() {
    std::size_t longest = 0;
    for (const std::string& line : vHeaderLines)
        longest = std::max(longest, std::min(line.size(), maxHeaderLineLength));
    const double size = longest > 0 ? 500.0 / static_cast<double>(longest) : 12.0;
    emit("0.0\t0.0\t0.0\tsetrgbcolor\n\t/Times-Roman findfont ", size, " scalefont\n\tsetfont\n");

    double y = static_cast<double>(vHeaderLines.size()) * size + 695.0;
    const double top = y;
    for (const std::string& line : vHeaderLines) {
        y -= size;
        emit("240\t", y, "\tmoveto\n(", escaped(line.substr(0, maxHeaderLineLength)), ")\tshow\n");
    }
    emit("237\t692\tmoveto\n", "237\t", top, "\tlineto\n", "237\t692\tmoveto\n", "570\t692\tlineto\n");
}

void Visualizer2::writeTriangles() {
    for (const Colored<Corners>& triangle : vTriangles) {
        beginObject(triangle.second);
        const char* command = "moveto";
        for (const Point2& corner : triangle.first) {
            emitCommand(pageX(corner.x()), pageY(corner.y()), command);
            command = "lineto";
        }
        emit("closepath\n");
        if (bFill) {
            emit("gsave\n  fill\ngrestore\n  0.3 0.3 .3 setrgbcolor\n", lastColor.width,
                 "\tsetlinewidth\nstroke\n");
            setPen(lastColor);
        } else {
            emit("stroke\n");
        }
        endObject();
    }
}

void Visualizer2::writeSegments() {
    std::vector<Colored<Point2>> vMarks;
    for (const Colored<Segment2>& segment : vSegments) {
        const Point2 source = segment.first.getSrc();
        const Point2 target = segment.first.getTrg();
        beginObject(segment.second);
        emitCommand(pageX(source.x()), pageY(source.y()), "moveto");
        emitCommand(pageX(target.x()), pageY(target.y()), "lineto");
        endObject();
        if (!segment.second.bFill) continue;
        vMarks.emplace_back(source, segment.second);
        vMarks.emplace_back(target, segment.second);
    }
    writeEndMarks(vMarks);
}

// Sorted by colour in the last place, so that equal marks are always neighbours.
void Visualizer2::writeEndMarks(std::vector<Colored<Point2>>& vMarks) {
    std::sort(vMarks.begin(), vMarks.end());
    vMarks.erase(std::unique(vMarks.begin(), vMarks.end()), vMarks.end());
    for (const Colored<Point2>& mark : vMarks) {
        beginObject(mark.second);
        drawMark(mark.first, std::max(1.5, 2.0 * static_cast<double>(mark.second.width)));
        endObject();
    }
}

void Visualizer2::writeCircles() {
    const double range = getRange();
    for (const Colored<Circle2>& circle : vCircles) {
        const double x = pageX(circle.first.getCenter().x());
        const double y = pageY(circle.first.getCenter().y());
        const double radius = range > 0.0 ? circle.first.getRadius() * sideLength / range : 0.0;
        beginObject(circle.second);
        emitCommand(x + radius, y, "moveto");
        emit(x, "\t", y, "\t", radius, "\t0\t360\tarc\n");
        if (bFill) emit("gsave\n  fill\ngrestore\n");
        emit("stroke\n");
        if (++numCirclesDrawn % 50 == 0) emit("stroke\n");
        endObject();
    }
}

void Visualizer2::writePoints() {
    for (const Colored<Point2>& point : vPoints) {
        beginObject(point.second);
        drawMark(point.first, point.second.width);
        endObject();
    }
}

void Visualizer2::writeLabels() {
    for (const Colored<Label>& entry : vLabels) {
        const Label& label = entry.first;
        beginObject(entry.second);
        if (label.fontSize != 0) writeText(label); // interpreters refuse a font of no size
        if (label.bWithMark) drawMark(label.pos, 1.5);
        endObject();
    }
}

void Visualizer2::writeText(const Label& label) {
    emit("/Arial findfont ", static_cast<double>(label.fontSize), " scalefont\n setfont\n");
    double y = pageY(label.pos.y());
    for (std::size_t first = 0, last = 0; last != std::string::npos; first = last + 1) {
        last = label.text.find('\n', first);
        emitCommand(pageX(label.pos.x()), y, "moveto");
        emit("(", escaped(label.text.substr(first, last - first)), ")\tshow\nstroke\n");
        y += label.fontSize; // upwards, which is deliberate
    }
}

void Visualizer2::setPen(const Color& color) {
    lastColor = color;
    bFill = color.bFill;
    emit("stroke\n", color.r, "\t", color.g, "\t", color.b, "\tsetrgbcolor\n", color.width,
         "\tsetlinewidth\n");
}

void Visualizer2::beginObject(const Color& color) {
    if (color != lastColor) setPen(color);
}

void Visualizer2::endObject() {
    if (++updateCtr <= maxObjectsPerStroke) return;
    emit("stroke\n");
    updateCtr = 0;
}

void Visualizer2::drawMark(const Point2& point, double size) {
    const double x = pageX(point.x());
    const double y = pageY(point.y());
    emitCommand(x - size, y - size, "moveto");
    emitCommand(x + size, y + size, "lineto");
    emitCommand(x - size, y + size, "moveto");
    emitCommand(x + size, y - size, "lineto");
}

double Visualizer2::getRange() const {
    return std::max(maxX - minX, maxY - minY);
}

double Visualizer2::pageX(double x) const {
    const double range = getRange();
    return (range > 0.0 ? (x - minX) * sideLength / range : sideLength / 2) + pageLeft;
}

double Visualizer2::pageY(double y) const {
    const double range = getRange();
    return (range > 0.0 ? (y - minY) * sideLength / range : sideLength / 2) + pageBottom;
}

template <class... Parts>
void Visualizer2::emit(const Parts&... parts) {
    (append(pageText, parts), ...);
    if (pageText.size() > flushSize) emitRest();
}

void Visualizer2::emitCommand(double x, double y, const char* command) {
    emit(x, "\t", y, "\t", command, "\n");
}

void Visualizer2::emitRest() {
    write(pageText.data(), static_cast<std::streamsize>(pageText.size()));
    pageText.clear();
}

} // namespace QUOR_KELM25D
