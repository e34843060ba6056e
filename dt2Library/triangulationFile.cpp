// Saving and loading of triangulations.
// Triangles are made anew by reading; the records are those of binaryFile.h.

#include "triangulationFile.h"

#include "ConstraintMgr.h"
#include "binaryFile.h"
#include "measures.h"
#include "messages.h"

#include <kelm25d/ConstraintSegment2.h>

#include <algorithm>

namespace QUOR_KELM25D {

namespace {

constexpr std::int32_t typeTriangulation = 301;

} // namespace

bool saveTriangulation(ConstraintMgr& constraintMgr, const char* filename) {
    std::vector<Point2*> vVertices;
    constraintMgr.getMesh().getVertexPointers(vVertices);
    std::vector<ConstraintSegment2*> vSegments;
    constraintMgr.getAliveSegments(vSegments);

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

bool loadTriangulation(ConstraintMgr& constraintMgr, const char* filename) {
    Mesh2& mesh = constraintMgr.getMesh();
    if (mesh.isBroken("Dt2::load()")) return false;
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
    mesh.insertVector(vPoints);
    return vSegments.empty() ||
           constraintMgr.createUserConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY, false) != nullptr;
}

} // namespace QUOR_KELM25D
