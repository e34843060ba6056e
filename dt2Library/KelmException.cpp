// The fixed text of KelmException.
// The checks that throw it stand in messages.h.
#include <kelm25d/KelmException.h>

namespace QUOR_KELM25D {

KelmException::~KelmException() = default;

const char* KelmException::what() const noexcept {
    return "\n  KELM EXCEPTION due to a bug _or_ wrong usage of Kelm. If you think it is a \n  bug then "
           "please "
           "report this incident to the maintainers of the library.\n";
}

} // namespace QUOR_KELM25D
