// Length in space of a pair of vertices.
// The rest of VertexPair2 is inline in the header.
#include <kelm25d/VertexPair2.h>

#include "sqDistance25D.h"

namespace QUOR_KELM25D {

double VertexPair2::getSqLen25D() const {
    return sqDistance25D(*pVtx0, *pVtx1);
}

} // namespace QUOR_KELM25D
