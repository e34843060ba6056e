// The constraint segments as they are now, in files for debugging.
// What the files of a whole triangulation hold is in triangulationFile.cpp.

#include "ConstraintMgr.h"
#include "LeafWalk.h"
#include "messages.h"

#include <kelm25d/dataFiles.h>

#include <fstream>

namespace QUOR_KELM25D {

namespace {

constexpr int debugDigits = 70; // enough for every double to come out exactly in the usual range

} // namespace

template <class Write>
void ConstraintMgr::writeGraphs(const std::string& name, const std::string& ending, const char* where,
                                const Write& write) const {
    for (std::size_t i = 0; i < vConstraintGraphs.size(); ++i) {
        Segments vOriginal, vLeaves;
        vConstraintGraphs[i]->getOriginalConstraintSegments(vOriginal);
        LeafWalk walk({vOriginal.rbegin(), vOriginal.rend()});
        while (ConstraintSegment2* pLeaf = walk.next()) {
            vLeaves.push_back(pLeaf);
        }
        std::vector<Segment2> vPieces;
        for (const ConstraintSegment2* pLeaf : vLeaves) {
            vPieces.emplace_back(*pLeaf->getSrc(), *pLeaf->getTrg());
        }
        const std::string filename = name + "_c" + std::to_string(i) + ending;
        printInfo(where, "writes" + std::to_string(vPieces.size()) + " child segments to " + filename);
        write(filename, vPieces);
    }
}

void ConstraintMgr::writeConstraints(const std::string& name) const {
    const auto writeText = [](const std::string& filename, const std::vector<Segment2>& vPieces) {
        std::ofstream file(filename);
        file.precision(debugDigits);
        for (const Segment2& piece : vPieces) {
            const Point2 src = piece.getSrc(), trg = piece.getTrg();
            file << src.x() << '\t' << src.y() << '\t' << src.z() << '\t' << trg.x() << '\t' << trg.y()
                 << '\t' << trg.z() << '\n';
        }
    };
    writeGraphs(name, ".con", "ConstraintMgr::writeConstraints()", writeText);
}

void ConstraintMgr::writeConstraintsBIN(const std::string& name) const {
    writeGraphs(name, "_con.bin", "ConstraintMgr::writeConstraintsBIN()",
                [](const std::string& filename, const std::vector<Segment2>& vPieces) {
                    writeSegmentsBIN(filename.c_str(), vPieces);
                });
}

} // namespace QUOR_KELM25D
