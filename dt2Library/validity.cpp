// What is checked of a mesh, one property after the other.
// The exact arithmetic behind it is QuorTest's.

#include "validity.h"

#include "ConstraintMgr.h"
#include "Histogram.h"
#include "cornerIndex.h"
#include "meshOutput.h"
#include "messages.h"

#include <kelm25d/Circle2.h>
#include <kelm25d/Visualizer2.h>

#include <cmath>
#include <iostream>

namespace QUOR_KELM25D {

namespace {

/// What is wrong between a triangle and its neighbour i, null if nothing: the neighbour must hold the
/// triangle in a slot whose edge has the same ends the other way round.
const char* neighbourFault(const Triangle2* pT, int i) {
    const Triangle2* pN = pT->getOppositeTriangle(i);
    bool bSlot = false;
    for (int j = 0; j < 3; ++j) {
        if (pN->getOppositeTriangle(j) != pT) continue;
        bSlot = true;
        if (pN->getCorner(next(j)) == pT->getCorner(prev(i)) &&
            pN->getCorner(prev(j)) == pT->getCorner(next(i))) {
            return nullptr;
        }
    }
    return bSlot ? "Neighbor found but inconsistent intra triangle indices:" : "Inconsistent neighborships:";
}

bool checkTopology(const std::vector<Triangle2*>& vTriangles, const std::string& where) {
    bool bOK = true;
    const auto report = [&](const char* text, const Triangle2* pT) {
        printError(where, text);
        std::cout << *pT << std::endl;
        bOK = false;
    };
    for (const Triangle2* pT : vTriangles) {
        const Point2 *a = pT->getCorner(0), *b = pT->getCorner(1), *c = pT->getCorner(2);
        if (a == b || b == c || c == a) report("Less than three different corners", pT);
        for (int i = 0; i < 3; ++i) {
            if (pT->getOppositeTriangle(i) == nullptr) continue;
            if (const char* fault = neighbourFault(pT, i)) {
                report(fault, pT);
                const Triangle2* pN = pT->getOppositeTriangle(i);
                if (pN->getCorner(0) != nullptr) std::cout << *pN << std::endl; // else one that is out of use
            }
        }
    }
    return bOK;
}

/// Draws the points that lie inside circles of triangles they do not belong to, and these circles.
void drawFailures(const std::vector<std::pair<const Triangle2*, const Point2*>>& vFailures) {
    Visualizer2 visualizer(nextDebugPrefix() + "badEmptyCircle.ps");
    for (const auto& failure : vFailures) {
        const Point2 center = failure.first->getDual().first;
        const double dx = center.x() - failure.first->getCorner(0)->x();
        const double dy = center.y() - failure.first->getCorner(0)->y();
        visualizer.addObject(*failure.first, Color(CBLACK, 0.1F, false));
        visualizer.addObject(Circle2(center, dx * dx + dy * dy), Color(CBLUE, 0.1F, false));
        visualizer.addObject(*failure.second, Color(CRED, 1.0F, false));
    }
    visualizer.writeFile();
}

/// Whether all alive constraint segments are edges of the mesh.
bool checkConstraints(ConstraintMgr& constraintMgr, const std::string& msg) {
    const Mesh2& mesh = constraintMgr.getMesh();
    std::vector<ConstraintSegment2*> vAlive, vMissing;
    constraintMgr.getAliveSegments(vAlive);
    for (ConstraintSegment2* pCSeg : vAlive) {
        if (Mesh2::findEdge(pCSeg->getSrc(), pCSeg->getTrg()).getTriangle() == nullptr)
            vMissing.push_back(pCSeg);
    }
    if (vMissing.empty()) return true;
    std::cout << "\n* ConstraintSegments (alive): " << vAlive.size()
              << ", contained: " << vAlive.size() - vMissing.size() << ", missing: " << vMissing.size()
              << std::endl;
    Visualizer2 visualizer(nextDebugPrefix() + "checkValidityFail_" + msg + ".ps");
    showMesh(mesh, &visualizer, true);
    visualizer.addObject(vMissing, Color(CBLUE, 0.5F, false));
    visualizer.writeFile();
    for (const ConstraintSegment2* pCSeg : vMissing) {
        std::cout << "Not contained: " << *pCSeg << std::endl;
    }
    return false;
}

} // namespace

bool checkValidity(ConstraintMgr& constraintMgr, bool bCheckEmptyCircleProperty, const std::string& msg) {
    Mesh2& mesh = constraintMgr.getMesh();
    printInfo("Kelm_2D::CheckValidity(" + msg + ")", "has been started");
    if (!mesh.is2D()) {
        printWarning("checkValidity(" + msg + ")",
                     "not fulldimensional yet (empty or all points collinear), Returning true");
        return true;
    }
    if (!checkConstraints(constraintMgr, msg)) return false;
    std::vector<Triangle2*> vTriangles;
    mesh.getTrianglePointers(vTriangles);
    const std::string where = "Kelm_2D::CheckValidity(" + msg + ")";
    bool bOK = checkTopology(vTriangles, where);
    if (!bCheckEmptyCircleProperty) return bOK;

    std::vector<std::pair<const Triangle2*, const Point2*>> vFailures;
    for (const Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            const Triangle2* pN = pT->getOppositeTriangle(i);
            if (pN == nullptr) continue;
            const Point2* d = pN->getCorner(pN->getIntraTriangleIndex(pT));
            if (d == nullptr) continue; // out of use, and reported above
            if (mesh.getQuorTest().circleIncFiltered(pT, d) != InCircle::INSIDE ||
                mesh.getSegmentTable().isConstraintEdge(pT, i))
                continue;
            printError(where, "Sphere inclusion test failed ");
            std::cout << *pT << std::endl << *d << std::endl;
            vFailures.emplace_back(pT, d);
        }
    }
    if (!vFailures.empty()) {
        std::cout << "\ncheckValidity, bug, name=" << msg << std::endl;
        Visualizer2 visualizer(nextDebugPrefix() + "currentState.ps");
        showMesh(mesh, &visualizer, true);
        visualizer.writeFile();
        drawFailures(vFailures);
        bOK = false;
    }
    return bOK;
}

void printStatistics(const Mesh2& mesh, const std::string& title) {
    std::cout << "\n\n\n********* MESH STATISTICS (" << title << ") **********\n\n";
    std::vector<Triangle2*> vTriangles;
    mesh.getTrianglePointers(vTriangles);
    printAngles(vTriangles);
}

} // namespace QUOR_KELM25D
