// The public face of a triangulation: every call goes on to Dt2.
// The words said to the user before a call goes on stand here too.

#include <kelm25d/Kelm_2D.h>

#include "Dt2.h"

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
    return pImpl->insertPoint(p);
}

void Kelm_2D::insert(const std::vector<Point2>& v) {
    pImpl->insertVector(v);
}

void Kelm_2D::insert(const std::vector<Point2>& v, std::vector<Point2*>& handles) {
    pImpl->insertVector(v, &handles);
}

void Kelm_2D::insert(int numPoints, double* aCoordinates, Point2** aHandles) {
    pImpl->insertArray(numPoints, aCoordinates, aHandles);
}

bool Kelm_2D::is2D() const {
    return pImpl->is2D();
}

unsigned Kelm_2D::numberOfPoints() const {
    return pImpl->numberOfPoints();
}

unsigned Kelm_2D::numberOfTriangles() const {
    return pImpl->numberOfTriangles();
}

void Kelm_2D::getTrianglePointers(std::vector<Triangle2*>& vTriangles) const {
    pImpl->getTrianglePointers(vTriangles);
}

void Kelm_2D::getVertexPointers(std::vector<Point2*>& vVertices) const {
    pImpl->getVertexPointers(vVertices);
}

int Kelm_2D::setNumCPU(int numCPU) {
    return pImpl->setNumCPU(numCPU);
}

void Kelm_2D::enableMultithreading() {
    pImpl->setNumCPU(0);
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

Orientation2 Kelm_2D::getOrientation(const Point2& p0, const Point2& p1, const Point2& p2) const {
    return getOrientation2_mt(&p0, &p1, &p2);
}

double Kelm_2D::measureTriangulationTime(std::vector<Point2>& v) const {
    return pImpl->measureTriangulationTime(v);
}

void Kelm_2D::subscribe(MsgType msgType, MsgBase* pReceiver) {
    pImpl->subscribe(msgType, pReceiver);
}

void Kelm_2D::unsubscribe(MsgType msgType, MsgBase* pReceiver) {
    pImpl->unsubscribe(msgType, pReceiver);
}

void Kelm_2D::writeObj(const std::string& filename) const {
    pImpl->writeObj(filename);
}

} // namespace QUOR_KELM25D
