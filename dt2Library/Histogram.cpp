// Filling and printing of a histogram.
// The bins are made by its users, those for angles here.

#include "Histogram.h"

#include <kelm25d/Triangle2.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace QUOR_KELM25D {

void Histogram::add(double value) {
    ++count;
    sum += value;
    const auto it = bins.lower_bound(value);
    if (it != bins.end()) ++it->second;
    minValue = std::min(minValue, value);
    maxValue = std::max(maxValue, value);
}

void Histogram::print() const {
    if (count == 0) {
        std::cout << "Empty histogram [ " << title << " ]" << std::endl;
        return;
    }
    std::ostringstream text;
    text << "   " << title << " (avg=" << sum / count << " , min=" << minValue << ", max=" << maxValue
         << "):\n";
    double lower = 0.0;
    for (const auto& [upper, binCount] : bins) {
        text << std::fixed << std::setprecision(lower < 1.0 ? 3 : 1) << "   " << std::setw(5) << lower
             << " - ";
        if (upper == std::numeric_limits<double>::max()) {
            text << "  max: ";
        } else {
            text << std::setw(5) << upper << ": ";
        }
        text << std::setw(5) << binCount << '\n';
        lower = upper;
    }
    std::cout << text.str() << std::flush;
}

void printAngles(const std::vector<Triangle2*>& vTriangles) {
    Histogram histogram("INTERIOR ANGLES");
    for (int bound = 10; bound <= 180; bound += 10) {
        histogram.addBin(bound);
    }
    std::cout << "Number of triangles: " << vTriangles.size() << std::endl;
    for (const Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            histogram.add(pT->getInteriorAngle25D(i));
        }
    }
    histogram.print();
}

} // namespace QUOR_KELM25D
