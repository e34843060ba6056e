// Stream output of points.
// Everything else of Point2 is inline, since every vertex of every triangulation is one.
#include <kelm25d/Point2.h>

#include <ostream>

namespace QUOR_KELM25D {

std::ostream& operator<<(std::ostream& stream, const Point2& point) {
    return stream << "Point2 (" << static_cast<const void*>(&point) << ',' << point.getCustomIndex()
                  << "): " << point.x() << ", " << point.y() << ", " << point.z();
}

} // namespace QUOR_KELM25D
