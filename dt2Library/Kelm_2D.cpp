// The public face of a triangulation: every call goes on to the mesh, to its constraints or zones, or to a
// door of Dt2. The words said to the user before a call goes on stand here too.

#include <kelm25d/Kelm_2D.h>

#include "Dt2.h"
#include "meshOutput.h"
#include "messages.h"
#include "triangulationFile.h"
#include "validity.h"

#include <kelm25d/Visualizer2.h>

#include <iostream>

namespace QUOR_KELM25D {

Kelm_2D::Kelm_2D(unsigned int numExpectedVertices) {
    initKelm(numExpectedVertices);
}

Kelm_2D::~Kelm_2D() {
    delete pImpl;
}

void Kelm_2D::initKelm(unsigned int numExpectedVertices) {
    pImpl = new Dt2(numExpectedVertices);
}

Point2* Kelm_2D::insert(const Point2& p) {
    return pImpl->getMesh().insertPoint(p);
}

void Kelm_2D::insert(const std::vector<Point2>& v) {
    pImpl->getMesh().insertVector(v);
}

void Kelm_2D::insert(const std::vector<Point2>& v, std::vector<Point2*>& handles) {
    pImpl->getMesh().insertVector(v, &handles);
}

void Kelm_2D::insert(int numPoints, double* aCoordinates, Point2** aHandles) {
    pImpl->getMesh().insertArray(numPoints, aCoordinates, aHandles);
}

void Kelm_2D::remove(Point2* pVertex) {
    pImpl->getMesh().remove(pVertex);
}

Triangle2* Kelm_2D::locate(const Point2& p) {
    return pImpl->getMesh().locate(p);
}

Triangle2* Kelm_2D::getAdjacentTriangle(Point2* p0, Point2* p1) {
    return pImpl->getMesh().getAdjacentTriangle(p0, p1);
}

void Kelm_2D::getIncidentTriangles(Point2* pVtx, std::vector<Triangle2*>& vTriangles) {
    pImpl->getMesh().getIncidentTriangles(pVtx, vTriangles);
}

void Kelm_2D::getIncidentVertices(Point2* pVtx, std::vector<Point2*>& vVertices) {
    pImpl->getMesh().getIncidentVertices(pVtx, vVertices);
}

Bbox2 Kelm_2D::computeBoundingBox() {
    return pImpl->getMesh().computeBoundingBox();
}

void Kelm_2D::getConvexHull(bool bAllVertices, std::vector<Point2*>& vHull) {
    pImpl->getMesh().getConvexHull(bAllVertices, vHull);
}

bool Kelm_2D::getHeight(double x, double y, double& height, Triangle2* pApproxT, double tolerance) {
    return pImpl->getMesh().getHeight(x, y, height, pApproxT, tolerance);
}

bool Kelm_2D::drape(std::vector<Segment2>& vIn, std::vector<Segment2>& vOut, double zTolerance) {
    return pImpl->drape(vIn, vOut, zTolerance);
}

bool Kelm_2D::checkValidity(bool bCheckEmptyCircleProperty, const std::string& msg) {
    return QUOR_KELM25D::checkValidity(pImpl->getConstraintMgr(), bCheckEmptyCircleProperty, msg);
}

void Kelm_2D::statistics(const std::string& s) {
    printStatistics(pImpl->getMesh(), s);
}

bool Kelm_2D::is2D() const {
    return pImpl->getMesh().is2D();
}

unsigned Kelm_2D::numberOfPoints() const {
    return pImpl->getMesh().numberOfPoints();
}

unsigned Kelm_2D::numberOfTriangles() const {
    return pImpl->getMesh().numberOfTriangles();
}

void Kelm_2D::getTrianglePointers(std::vector<Triangle2*>& vTriangles) const {
    pImpl->getMesh().getTrianglePointers(vTriangles);
}

void Kelm_2D::getVertexPointers(std::vector<Point2*>& vVertices) const {
    pImpl->getMesh().getVertexPointers(vVertices);
}

int Kelm_2D::setNumCPU(int numCPU) {
    return pImpl->getMesh().setNumCPU(numCPU);
}

void Kelm_2D::enableMultithreading() {
    pImpl->getMesh().setNumCPU(0);
}

std::string Kelm_2D::getName() const {
    return pImpl->getName();
}

void Kelm_2D::setName(const std::string& name) {
    pImpl->setName(name);
}

void Kelm_2D::setDev(const std::string& key, int iValue, double dValue) {
    pImpl->setDev(key, iValue, dValue);
}

void Kelm_2D::internal(int a, int b, std::string) {
    if (a == -7 && (b == -2000 || b == -1000)) {
        std::cout << "internal debug is disbled in your version" << std::endl; // spelled so deliberately
    }
}

ConstraintGraph2* Kelm_2D::createConstraint(const std::vector<Segment2>& vSegments,
                                            ConstraintInsertionStrategy cis, bool bOrientedSegments) {
    if (vSegments.empty()) {
        printWarning("Kelm_2D::createConstraint()", "You have not supplied any segments. Returning NULL!");
        return nullptr;
    }
    return pImpl->getConstraintMgr().createUserConstraint(vSegments, cis, bOrientedSegments);
}

void Kelm_2D::applyConstraintsAndZones() {
    if (!is2D()) {
        printWarning("Kelm2D::applyConstraintsAndZones()",
                     "The triangulation is not 2D yet, can't apply the constraints");
        return;
    }
    pImpl->getConstraintMgr().applyConstraintsAndZones();
}

bool Kelm_2D::isConstraint(Point2* p0, Point2* p1) const {
    return p0 != nullptr && p1 != nullptr && pImpl->getMesh().getSegmentTable().isConstraintEdge(p0, p1);
}

bool Kelm_2D::isConstraint(Triangle2* pT, int ith) const {
    return pT != nullptr && ith >= 0 && ith <= 2 &&
           pImpl->getMesh().getSegmentTable().isConstraintEdge(pT, ith);
}

bool Kelm_2D::isConstraint(Point2* pVtx) const {
    return pVtx != nullptr && SegmentTable::isConstraintVertex(pVtx);
}

ConstraintSegment2* Kelm_2D::getConstraintSegment(Point2* p0, Point2* p1) const {
    return p0 != nullptr && p1 != nullptr ? pImpl->getConstraintMgr().getAliveSegment(p0, p1) : nullptr;
}

void Kelm_2D::getAliveConstraintSegments(std::vector<ConstraintSegment2*>& vSegments) const {
    pImpl->getConstraintMgr().getAliveSegments(vSegments);
}

void Kelm_2D::getAliveAndDeadConstraintSegments(std::vector<ConstraintSegment2*>& vSegments) const {
    pImpl->getConstraintMgr().getAllSegments(vSegments);
}

namespace {

Zone2* reportNull(Zone2* pZone, bool bVerbose) {
    if (pZone == nullptr && bVerbose) {
        printWarning("Kelm_2D::createZone(..)", "No zone created, returning NULL (bVerbose==true)");
    }
    return pZone;
}

} // namespace

Zone2* Kelm_2D::createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc, bool bVerbose) {
    return reportNull(pImpl->getZoneMgr().createZone(pConstraintGraph, zoneLoc), bVerbose);
}

Zone2* Kelm_2D::createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc, const Point2& startPoint,
                           bool bVerbose) {
    return createZone(std::vector<ConstraintGraph2*>{pConstraintGraph}, zoneLoc, startPoint, bVerbose);
}

Zone2* Kelm_2D::createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc,
                           const Point2& startPoint, bool bVerbose) {
    return reportNull(pImpl->getZoneMgr().createZone(vConstraintGraphs, zoneLoc, startPoint), bVerbose);
}

Zone2* Kelm_2D::createZone(const std::vector<Triangle2*>& vTriangles, bool bVerbose) {
    return reportNull(pImpl->getZoneMgr().createZone(vTriangles), bVerbose);
}

Zone2* Kelm_2D::createZone_cookieCutter(const std::vector<Segment2>& vSegments, bool bWithConstraints) {
    return pImpl->createZone_cookieCutter(vSegments, bWithConstraints);
}

void Kelm_2D::deleteZone(Zone2* pZone) {
    pImpl->getZoneMgr().deleteZone(pZone);
}

Zone2* Kelm_2D::importTriangles(std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                                bool bCreateExtendedBoundingBox) {
    return pImpl->CAT_importTriangles(vPoints, bReorientIfNeeded, bCreateExtendedBoundingBox);
}

void Kelm_2D::cutTriangles(const std::vector<Segment2>& vSegments, bool bWithConstraints) {
    std::vector<ConstraintSegment2*> vPieces;
    pImpl->CUTT_cutTriangles(vSegments, bWithConstraints, vPieces);
}

void Kelm_2D::cutTriangles(const Point2& knifeStart, const Point2& knifeEnd, bool bWithConstraints) {
    cutTriangles({Segment2(knifeStart, knifeEnd)}, bWithConstraints);
}

Orientation2 Kelm_2D::getOrientation(const Point2& p0, const Point2& p1, const Point2& p2) const {
    return getOrientation2_mt(&p0, &p1, &p2);
}

double Kelm_2D::measureTriangulationTime(std::vector<Point2>& v) const {
    return pImpl->getMesh().measureTriangulationTime(v);
}

void Kelm_2D::subscribe(MsgType msgType, MsgBase* pReceiver) {
    pImpl->getMesh().getProgress().subscribe(msgType, pReceiver);
}

void Kelm_2D::unsubscribe(MsgType msgType, MsgBase* pReceiver) {
    pImpl->getMesh().getProgress().unsubscribe(msgType, pReceiver);
}

void Kelm_2D::writeObj(const std::string& filename, const Zone2* pZone) const {
    QUOR_KELM25D::writeObj(pImpl->getMesh(), filename, pZone);
}

void Kelm_2D::show(const std::string& postscriptFilename, bool bWithConstraints) const {
    Visualizer2 visualizer(postscriptFilename);
    showMesh(pImpl->getMesh(), &visualizer, bWithConstraints);
    visualizer.writeFile();
}

void Kelm_2D::show(Visualizer2* pVisualizer, bool bWithConstraints) const {
    showMesh(pImpl->getMesh(), pVisualizer, bWithConstraints);
}

void Kelm_2D::showGeomview(const std::string& filename, const std::string& color) const {
    QUOR_KELM25D::showGeomview(pImpl->getMesh(), filename, color);
}

void Kelm_2D::showGeomview(Visualizer3* pVisualizer) const {
    QUOR_KELM25D::showGeomview(pImpl->getMesh(), pVisualizer);
}

void Kelm_2D::writeWebScene(const char* path, const Zone2* pZone) const {
    QUOR_KELM25D::writeWebScene(pImpl->getMesh(), path, pZone);
}

bool Kelm_2D::save(const char* filename) const {
    return saveTriangulation(pImpl->getConstraintMgr(), filename);
}

bool Kelm_2D::load(const char* filename) {
    return loadTriangulation(pImpl->getConstraintMgr(), filename);
}

} // namespace QUOR_KELM25D
