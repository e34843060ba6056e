/// @file
/// The one exception type of the library.
/// What went wrong is not in the object: it has been printed and logged before the throw.
#pragma once

#include <kelm25d/export.h>

#include <exception>

namespace QUOR_KELM25D {

/// Thrown when a condition that must hold does not: a fault in the library, or a call that breaks its rules.
///
/// Before the throw the condition and its place in the source have gone to standard output, and the condition
/// to the file "KELM_LOG.txt" in the current directory, which holds the last failure only. The object that
/// was at work stays as it was at that moment: it can be destroyed safely, and should not be used for
/// anything else.
///
/// Bad input is not reported this way: it gets a warning line and a neutral result.
class KELM25D_API KelmException : public std::exception {
public:
    ~KelmException() override;

    /// Always the same text, owned by the library and valid for the life of the process.
    const char* what() const noexcept override;
};

} // namespace QUOR_KELM25D
