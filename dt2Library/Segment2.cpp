// Length in space and stream output of segments.
// The rest of Segment2 is inline in the header.
#include <kelm25d/Segment2.h>

#include "sqDistance25D.h"

#include <ostream>

namespace QUOR_KELM25D {

double Segment2::getSqLen25D() const {
    return sqDistance25D(source, target);
}

std::ostream& operator<<(std::ostream& stream, const Segment2& segment) {
    return stream << "Segment2 (" << static_cast<const void*>(&segment) << "): " << segment.source << ','
                  << segment.target;
}

} // namespace QUOR_KELM25D
