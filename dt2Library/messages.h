// Message lines on standard output, the failure log, and the check for conditions that must hold.
// Nothing here takes a lock: lines that several threads print at once may mix.
#pragma once

#include <string>

#if defined(__GNUC__)
#define KELM_COLD __attribute__((cold, noinline))
#else
#define KELM_COLD
#endif

/// The check of a condition that must hold, in every build: it prints, logs and throws KelmException.
/// KELM_CHECK(false) is the unconditional failure.
#define KELM_CHECK(condition)                                                                                \
    (static_cast<bool>(condition) ? void(0) : ::QUOR_KELM25D::checkFailed(#condition, __FILE__, __LINE__))

namespace QUOR_KELM25D {

KELM_COLD void printWarning(const std::string& where, const std::string& text);
KELM_COLD void printError(const std::string& where, const std::string& text);

/// With a non-empty where-text the line goes without the "[Kelm2D-Message]" prefix; that is deliberate.
void printInfo(const std::string& where, const std::string& text);

/// Prints the text and makes it the only content of "KELM_LOG.txt" in the current directory. A file that
/// can't be written is ignored: this is the failure path, it must not fail itself.
KELM_COLD void logFailure(const std::string& text);

/// The failing half of KELM_CHECK; always throws KelmException.
[[noreturn]] KELM_COLD void checkFailed(const char* condition, const char* file, int line);

} // namespace QUOR_KELM25D
