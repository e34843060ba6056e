// Message lines, the failure log and the failing half of KELM_CHECK.
// The progress of long operations goes through ProgressPublisher instead.
#include "messages.h"

#include <kelm25d/KelmException.h>

#include <fstream>
#include <iostream>

namespace QUOR_KELM25D {

namespace {

const char* const prefix = "      [Kelm2D-Message] ";
const char* const blanks = "      ";

} // namespace

void printWarning(const std::string& where, const std::string& text) {
    std::cout << '\n' << prefix << where << ", WARNING: " << text << "\n\n" << std::flush;
}

void printError(const std::string& where, const std::string& text) {
    std::cout << '\n' << prefix << where << ", ERROR: " << text << "\n\n" << std::flush;
}

void printInfo(const std::string& where, const std::string& text) {
    if (where.empty())
        std::cout << '\n' << prefix << "INFO: " << text << "\n\n" << std::flush;
    else
        std::cout << '\n' << blanks << where << ", INFO: " << text << "\n\n" << std::flush;
}

void logFailure(const std::string& text) {
    std::cout << text << std::endl;
    std::ofstream log("KELM_LOG.txt", std::ios::trunc);
    log << text << '\n';
}

void checkFailed(const char* condition, const char* file, int line) {
    const std::string text = std::string("Condition [ ") + condition + " failed ]";
    // The where-text ends in a comma, so the line shows ", , ERROR: "; that is deliberate.
    printError("Kelm, ", text);
    logFailure("Kelm, " + text);
    std::cout << blanks << file << ":" << line << std::endl;
    throw KelmException();
}

} // namespace QUOR_KELM25D
