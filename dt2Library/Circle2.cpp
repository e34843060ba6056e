// Stream output of circles.
// The rest of Circle2 is inline in the header.
#include <kelm25d/Circle2.h>

#include <ostream>

namespace QUOR_KELM25D {

std::ostream& operator<<(std::ostream& stream, const Circle2& circle) {
    return stream << "Circle2: " << circle.center << ", r=" << circle.getRadius();
}

} // namespace QUOR_KELM25D
