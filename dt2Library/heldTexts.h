// The texts that fileReplicate writes: the page of the web scene and the scripts around it.
// Their definition is generated in the build tree by cmake/Kelm25dViewer.cmake; the sources stand in web/.
#pragma once

namespace QUOR_KELM25D {

struct HeldText {
    const char* name; // null in the last entry
    const char* text; // null if the name is known and the text is not held
};

extern const HeldText aHeldTexts[];

} // namespace QUOR_KELM25D
