// Geomview files: OFF meshes, VECT points and lines, spheres, in one LIST.
// What of a triangulation is shown is decided in meshGeomview.cpp.
#include <kelm25d/Visualizer3.h>

#include "messages.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <iostream>
#include <locale>

namespace QUOR_KELM25D {

namespace {

constexpr int numDigits = 15;
constexpr unsigned lineWidth = 1;
constexpr unsigned endPointSize = 5;
const char* const normalColor = "0 0 1 1";

/// Gathers text for a stream, until finish. Numbers look as a stream with precision 15 and the C locale
/// writes them; no viewer reads one that is not finite, so it becomes 0.
class Text {
public:
    explicit Text(std::ostream& stream_) noexcept : stream(stream_) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    Text& operator<<(const char* text) { return append(text, std::strlen(text)); }
    Text& operator<<(const std::string& text) { return append(text.data(), text.size()); }
    Text& operator<<(double number) {
        makeRoom();
        if (!std::isfinite(number)) {
            ++numNotFinite;
            number = 0.0;
        }
        length = static_cast<std::size_t>(
            std::to_chars(end(), aText + sizeof aText, number, std::chars_format::general, numDigits).ptr -
            aText);
        return *this;
    }
    Text& operator<<(std::size_t number) {
        makeRoom();
        length = static_cast<std::size_t>(std::to_chars(end(), aText + sizeof aText, number).ptr - aText);
        return *this;
    }
    Text& operator<<(const Point2& point) {
        return *this << point.x() << " " << point.y() << " " << point.z() << "\n";
    }
    void finish() {
        flush();
        if (numNotFinite > 0) {
            printWarning("Visualizer3",
                         std::to_string(numNotFinite) + " numbers are not finite, 0 is written for each");
        }
    }

private:
    char* end() noexcept { return aText + length; }
    void makeRoom() {
        if (sizeof aText - length < maxNumberLength) flush();
    }
    Text& append(const char* text, std::size_t size) {
        if (sizeof aText - length < size) flush();
        if (sizeof aText < size) {
            stream.write(text, static_cast<std::streamsize>(size));
        } else {
            std::memcpy(end(), text, size);
            length += size;
        }
        return *this;
    }
    void flush() {
        stream.write(aText, static_cast<std::streamsize>(length));
        length = 0;
    }

    static constexpr std::size_t maxNumberLength = 32;
    std::ostream& stream;
    std::size_t length = 0;
    std::size_t numNotFinite = 0;
    char aText[4096];
};

struct Line {
    Point2 source;
    Point2 target;
};

void writeOffHead(Text& text, std::size_t numVertices, std::size_t numFaces, bool bBackfaces) {
    text << "\n{\nappearance { +edge " << (bBackfaces ? "material { backdiffuse .151 .0 .2 }" : "")
         << " }\nOFF\n"
         << numVertices << " " << numFaces << " 0\n";
}

/// The head of numLines polylines with numEnds vertices each. Only the first has a colour; the others take it
/// from there.
void writeVectHead(Text& text, std::size_t width, std::size_t numLines, std::size_t numEnds) {
    text << "\n{\nappearance{linewidth " << width << "}\nVECT\n"
         << numLines << " " << numLines * numEnds << " 1\n";
    for (std::size_t i = 0; i < numLines; ++i)
        text << numEnds << " ";
    text << "\n1 ";
    for (std::size_t i = 1; i < numLines; ++i)
        text << "0 ";
    text << "\n";
}

/// getCorner(i, j) is corner j of triangle i.
template <class GetCorner>
void writeMesh(std::ostream& stream, std::size_t numTriangles, const std::string& color, bool bBackfaces,
               const GetCorner& getCorner) {
    Text text(stream);
    writeOffHead(text, 3 * numTriangles, numTriangles, bBackfaces);
    for (std::size_t i = 0; i < numTriangles; ++i) {
        for (int j = 0; j < 3; ++j)
            text << getCorner(i, j);
    }
    for (std::size_t i = 0; i < numTriangles; ++i)
        text << "3 " << 3 * i << " " << 3 * i + 1 << " " << 3 * i + 2 << " " << color << "\n";
    text << "}\n";
    text.finish();
}

/// getPoint(i) is point i; there is at least one.
template <class GetPoint>
void writeDots(std::ostream& stream, std::size_t numPoints, unsigned size, const std::string& color,
               const GetPoint& getPoint) {
    Text text(stream);
    writeVectHead(text, size, numPoints, 1);
    for (std::size_t i = 0; i < numPoints; ++i)
        text << getPoint(i);
    text << color << "\n}\n";
    text.finish();
}

/// getLine(i) is line i.
template <class GetLine>
void writeLines(std::ostream& stream, std::size_t numLines, const std::string& color, bool bWithEndPoints,
                const GetLine& getLine) {
    if (numLines == 0) return;
    Text text(stream);
    writeVectHead(text, lineWidth, numLines, 2);
    for (std::size_t i = 0; i < numLines; ++i) {
        const Line line = getLine(i);
        text << line.source << line.target;
    }
    text << color << "\n}\n";
    text.finish();
    if (bWithEndPoints) {
        writeDots(stream, 2 * numLines, endPointSize, color,
                  [&](std::size_t i) { return i % 2 == 0 ? getLine(i / 2).source : getLine(i / 2).target; });
    }
}

/// The line on a triangle that shows its normal, as long as the triangle's edges are on average.
Line getNormalLine(const Point2& a, const Point2& b, const Point2& c) {
    const Point2 center((a.x() + b.x() + c.x()) / 3, (a.y() + b.y() + c.y()) / 3,
                        (a.z() + b.z() + c.z()) / 3);
    const double length = ((b - a).length() + (c - b).length() + (a - c).length()) / 3;
    return {center, center + length * normalize(crossProduct(b - a, c - a))};
}

bool checkNotEmpty(std::size_t numPoints) {
    if (numPoints > 0) return true;
    printWarning("Visualizer3::writePoints()", "Visualizer3::writePoints: no points");
    return false;
}

bool checkMultiple(const char* where, std::size_t size, std::size_t divisor, int line) {
    if (size % divisor == 0) return true;
    printWarning(where, "vPoints.size() must be a multiple of " + std::to_string(divisor) + ", it is " +
                            std::to_string(size) + ", line " + std::to_string(line));
    return false;
}

} // namespace

Visualizer3::Visualizer3(const std::string& filename) {
    std::cout << "Visualizer3: Writing " << filename << std::endl;
    imbue(std::locale::classic());
    openFile(filename);
    precision(numDigits);
    *this << "LIST\n{\n";
}

Visualizer3::~Visualizer3() {
    exceptions(std::ios::goodbit); // the owner may have asked for exceptions; none may leave from here
    closeFile();
}

void Visualizer3::openFile(const std::string& filename) {
    closeFile();
    open(filename);
    if (!is_open()) printWarning("Visualizer3::openFile()", filename + " not writeable");
}

void Visualizer3::closeFile() {
    if (!is_open()) return;
    *this << "}" << std::endl;
    close();
}

void Visualizer3::writeBall(const Point2& center, double radius) {
    Text text(*this);
    text << "{appearance { +transparent material {alpha 0.6 diffuse 0.2 0.4 0 } } {SPHERE " << radius << " "
         << center.x() << " " << center.y() << " " << center.z() << "}}\n";
    text.finish();
}

void Visualizer3::writePoint(const Point2& point, unsigned pointSize, const std::string& color) {
    writeDots(*this, 1, pointSize, color, [&](std::size_t) -> const Point2& { return point; });
}

void Visualizer3::writePoints(const std::vector<Point2>& vPoints, unsigned pointSize,
                              const std::string& color) {
    if (checkNotEmpty(vPoints.size())) {
        writeDots(*this, vPoints.size(), pointSize, color,
                  [&](std::size_t i) -> const Point2& { return vPoints[i]; });
    }
}

void Visualizer3::writePoints(const std::vector<Point2*>& vPoints, unsigned pointSize,
                              const std::string& color) {
    if (checkNotEmpty(vPoints.size())) {
        writeDots(*this, vPoints.size(), pointSize, color,
                  [&](std::size_t i) -> const Point2& { return *vPoints[i]; });
    }
}

void Visualizer3::writeSegment(const Point2& a, const Point2& b, const std::string& color,
                               bool bWithEndPoints) {
    writeLines(*this, 1, color, bWithEndPoints, [&](std::size_t) { return Line{a, b}; });
}

void Visualizer3::writeSegments(const std::vector<Segment2>& vSegments, const std::string& color,
                                bool bWithEndPoints) {
    writeLines(*this, vSegments.size(), color, bWithEndPoints, [&](std::size_t i) {
        return Line{vSegments[i].getSrc(), vSegments[i].getTrg()};
    });
}

void Visualizer3::writeSegments(const std::vector<Edge2>& vEdges, const std::string& color,
                                bool bWithEndPoints) {
    writeLines(*this, vEdges.size(), color, bWithEndPoints, [&](std::size_t i) {
        return Line{*vEdges[i].getSrc(), *vEdges[i].getTrg()};
    });
}

void Visualizer3::writeVertexPairs(const std::vector<VertexPair2>& vPairs, const std::string& color) {
    writeLines(*this, vPairs.size(), color, false, [&](std::size_t i) {
        return Line{*vPairs[i].getVertex0(), *vPairs[i].getVertex1()};
    });
}

void Visualizer3::writeTriangle(const Point2& a, const Point2& b, const Point2& c, const std::string& color) {
    const Point2* const aCorner[] = {&a, &b, &c};
    writeMesh(*this, 1, color, bBackfaces, [&](std::size_t, int j) -> const Point2& { return *aCorner[j]; });
}

void Visualizer3::writeTriangle(const Triangle2& triangle, const std::string& color) {
    writeTriangle(*triangle.getCorner(0), *triangle.getCorner(1), *triangle.getCorner(2), color);
}

void Visualizer3::writeTriangles(const std::vector<Triangle2*>& vT, const std::string& color,
                                 bool bWithNormals) {
    if (vT.empty()) return;
    writeMesh(*this, vT.size(), color, bBackfaces,
              [&](std::size_t i, int j) -> const Point2& { return *vT[i]->getCorner(j); });
    if (!bWithNormals) return;
    writeLines(*this, vT.size(), color, false, [&](std::size_t i) {
        return getNormalLine(*vT[i]->getCorner(0), *vT[i]->getCorner(1), *vT[i]->getCorner(2));
    });
}

void Visualizer3::writeTriangles(const std::vector<Point2>& vPoints, const std::string& color,
                                 bool bWithNormals) {
    if (vPoints.empty() || !checkMultiple("Visualizer3::writeTriangles()", vPoints.size(), 3, __LINE__))
        return;
    const std::size_t numTriangles = vPoints.size() / 3;
    writeMesh(*this, numTriangles, color, bBackfaces, [&](std::size_t i, int j) -> const Point2& {
        return vPoints[3 * i + static_cast<std::size_t>(j)];
    });
    if (!bWithNormals) return;
    writeLines(*this, numTriangles, color, false, [&](std::size_t i) {
        return getNormalLine(vPoints[3 * i], vPoints[3 * i + 1], vPoints[3 * i + 2]);
    });
}

void Visualizer3::writeCubes(const std::vector<Point2>& vPoints, const std::string& color) {
    if (vPoints.empty() || !checkMultiple("Visualizer3::writeCubes()", vPoints.size(), 8, __LINE__)) return;
    static constexpr std::size_t aFaces[6][4] = {{3, 2, 1, 0}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                                 {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
    Text text(*this);
    writeOffHead(text, vPoints.size(), vPoints.size() / 8 * 6, true);
    for (const Point2& corner : vPoints)
        text << corner;
    for (std::size_t first = 0; first < vPoints.size(); first += 8) {
        for (const auto& aFace : aFaces) {
            text << "4 ";
            for (std::size_t corner : aFace)
                text << first + corner << " ";
            text << color << "\n";
        }
    }
    text << "}\n";
    text.finish();
}

void Visualizer3::writeNormals(const std::vector<Triangle2*>& vT, double scale) {
    writeLines(*this, vT.size(), normalColor, false, [&](std::size_t i) {
        const Point2 center = vT[i]->getBarycenter();
        return Line{center, center + scale * vT[i]->getNormalVector()};
    });
}

} // namespace QUOR_KELM25D
