// Writing the held texts of the web scene to files.
// Where the texts come from is told in heldTexts.h.
#include <kelm25d/webScene.h>

#include "heldTexts.h"
#include "messages.h"

#include <cstring>
#include <fstream>
#include <string>

namespace QUOR_KELM25D {

void fileReplicate(const char* name, const char* path) {
    const HeldText* pHeld = aHeldTexts;
    while (pHeld->name && std::strcmp(pHeld->name, name) != 0)
        ++pHeld;
    if (!pHeld->name) {
        printError("fileReplicate", std::string("unknown file ") + name);
        return;
    }
    if (!pHeld->text) {
        printError("fileReplicate", std::string(name) + " is not held by this build of the library");
        return;
    }
    const std::string filename = std::string(path) + "/" + name;
    std::ofstream file(filename);
    file << pHeld->text << std::flush;
    if (!file) printWarning("fileReplicate", filename + " not writeable");
}

} // namespace QUOR_KELM25D
