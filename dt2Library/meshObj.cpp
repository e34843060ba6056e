// The mesh as a Wavefront OBJ file.
// Reading and writing of plain points is in dataFiles.cpp.

#include "meshOutput.h"

#include "Mesh2.h"
#include "messages.h"

#include <kelm25d/Zone2.h>

#include <charconv>
#include <cmath>
#include <fstream>
#include <unordered_map>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t flushSize = 1 << 16;

template <class Number>
void append(std::string& text, Number number) {
    char aDigits[32]; // the shortest text that reads back as the same number
    const auto end = std::to_chars(aDigits, aDigits + sizeof aDigits, number);
    text.append(aDigits, end.ptr);
}

} // namespace

bool canBeShown(const Mesh2& mesh) {
    if (mesh.is2D()) return true;
    printError("Dt2::show()", "The triangulation is not full dimensional yet, no visualization");
    return false;
}

void writeObj(const Mesh2& mesh, const std::string& filename, const Zone2* pZone) {
    if (!canBeShown(mesh)) return;
    std::vector<Triangle2*> vTriangles;
    if (pZone != nullptr) {
        pZone->getTriangles(vTriangles);
    } else {
        mesh.getTrianglePointers(vTriangles);
    }
    std::ofstream file(filename);
    std::string text;
    const auto flush = [&](std::size_t limit) {
        if (text.size() <= limit) return;
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        text.clear();
    };

    std::unordered_map<const Point2*, std::size_t> mNumber;
    mNumber.reserve(vTriangles.size() / 2 + 2); // as many as there are vertices in most meshes
    std::size_t numNotFinite = 0;
    for (const Triangle2* pT : vTriangles) {
        for (const Point2* pCorner : pT->getCorners()) {
            if (!mNumber.emplace(pCorner, mNumber.size() + 1).second) continue;
            text += 'v';
            const bool bFinite = std::isfinite(pCorner->z()); // x and y always are
            if (!bFinite) ++numNotFinite;
            for (double coordinate : {pCorner->x(), pCorner->y(), bFinite ? pCorner->z() : 0.0}) {
                text += ' ';
                append(text, coordinate);
            }
            text += '\n';
            flush(flushSize);
        }
    }
    for (const Triangle2* pT : vTriangles) {
        text += 'f';
        for (const Point2* pCorner : pT->getCorners()) {
            text += ' ';
            append(text, mNumber[pCorner]);
        }
        text += '\n';
        flush(flushSize);
    }
    flush(0);
    if (numNotFinite > 0) {
        printWarning("Dt2::writeObj()",
                     std::to_string(numNotFinite) + " heights are not finite, 0 is written for each");
    }
}

} // namespace QUOR_KELM25D
