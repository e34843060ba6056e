// A triangulation in a file: its vertices and the constraint segments that are alive, and nothing else.
// Triangles are made anew by reading. Files of points or segments alone are dataFiles.cpp.
#include "Dt2.h"

#include "binaryFile.h"
#include "measures.h"
#include "messages.h"

#include <kelm25d/ConstraintSegment2.h>

#include <algorithm>

namespace QUOR_KELM25D {

namespace {

constexpr std::int32_t typeTriangulation = 301;

} // namespace

bool Dt2::save(const char* filename) const {
    std::vector<Point2*> vVertices;
    getVertexPointers(vVertices);
    std::vector<ConstraintSegment2*> vSegments;
    getAliveConstraintSegments(vSegments);

    FileWriter writer(filename, std::ios::binary);
    writer.writeInt32(typeTriangulation);
    writer.writeCount(vVertices.size());
    for (const Point2* pVtx : vVertices)
        writer.writePoint(*pVtx);
    writer.writeCount(vSegments.size());
    for (const ConstraintSegment2* pSegment : vSegments) {
        writer.writePoint(*pSegment->getSrc());
        writer.writePoint(*pSegment->getTrg());
    }
    return writer.close();
}

bool Dt2::load(const char* filename) {
    if (isBroken("Dt2::load()")) return false;
    BinaryReader reader;
    std::int32_t type;
    if (!reader.open(filename, type)) return false;
    if (type != typeTriangulation)
        return failWith(filename, " should have type 301 but has " + std::to_string(type));
    std::vector<Point2> vPoints;
    std::vector<Segment2> vSegments;
    bool bFinite = true;
    const auto takePoint = [&](const char* pRecord) {
        const Point2 point = getPoint(pRecord, true);
        bFinite = bFinite && isFinite(point);
        return point;
    };
    reader.readRecords(reader.readInt32(), 24,
                       [&](const char* pRecord) { vPoints.push_back(takePoint(pRecord)); });
    reader.readRecords(reader.readInt32(), 48, [&](const char* pRecord) {
        vSegments.emplace_back(takePoint(pRecord), takePoint(pRecord + 24));
    });
    if (!reader.close()) return false;
    if (!bFinite) { // asked before anything is inserted: a file enters as a whole or not at all
        printError("Dt2::load()", "a coordinate is not finite, nothing is loaded");
        return false;
    }
    insertVector(vPoints);
    return vSegments.empty() || createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY, false) != nullptr;
}

} // namespace QUOR_KELM25D
