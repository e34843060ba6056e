// The version functions.
// The numbers are those of the CMake project, handed in as definitions for this file.
#include <kelm25d/version.h>

namespace QUOR_KELM25D {

int getMajorVersionNumber() {
    return KELM25D_VERSION_MAJOR;
}

int getMinorVersionNumber() {
    return KELM25D_VERSION_MINOR;
}

int getRevisionNumber() {
    return KELM25D_VERSION_PATCH;
}

bool isRelease() {
    return true;
}

std::string getKelm2DVersion() {
    static const std::string version =
        std::string("Kelm ") + "2.5D" + ", " + (isRelease() ? "RELEASE" : "DEBUG") + ", v" +
        std::to_string(getMajorVersionNumber()) + "." + std::to_string(getMinorVersionNumber()) + "." +
        std::to_string(getRevisionNumber());
    return version;
}

} // namespace QUOR_KELM25D
