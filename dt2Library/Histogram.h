// Counts of values in bins, for the statistics that are printed.
// Nothing is drawn here; the headings of statistics stand where they are asked for.
#pragma once

#include <limits>
#include <map>
#include <string>
#include <vector>

namespace QUOR_KELM25D {

class Triangle2;

class Histogram {
public:
    explicit Histogram(const std::string& title_) : title(title_) {}

    /// A bin up to and including the bound; the count of a bound that exists starts anew.
    void addBin(double upperBound) { bins[upperBound] = 0; }
    void add(double value);
    void print() const;

private:
    std::string title;
    double minValue = std::numeric_limits<double>::max();
    double maxValue = std::numeric_limits<double>::lowest();
    double sum = 0.0;
    unsigned count = 0;
    std::map<double, unsigned> bins{{std::numeric_limits<double>::max(), 0}}; // by upper bound
};

/// Prints the number of triangles and a histogram of their interior angles in space.
void printAngles(const std::vector<Triangle2*>& vTriangles);

} // namespace QUOR_KELM25D
