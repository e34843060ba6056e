// The deprecated reconstruction entries: a line for the user, and false.
// There is nothing else to look for.

#include <kelm25d/reconstruct.h>

#include <iostream>

namespace QUOR_KELM25D {

namespace {

bool sayMoved() {
    std::cout << "reconstruct(..) is deprecated: point cloud reconstruction has moved to a separate library. "
                 "Returning false."
              << std::endl;
    return false;
}

} // namespace

bool reconstruct(std::vector<Point2>&, std::vector<int>&) {
    return sayMoved();
}

bool reconstruct(std::vector<Point2>&, std::vector<Point2>&) {
    return sayMoved();
}

bool reconstruct(const std::string&, const std::string&) {
    return sayMoved();
}

} // namespace QUOR_KELM25D
