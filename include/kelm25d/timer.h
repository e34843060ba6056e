/// @file
/// A stopwatch by name.
/// It measures elapsed time, not processor time.
#pragma once

#include <kelm25d/export.h>

#include <string>

namespace QUOR_KELM25D {

/// Starts the stopwatch of that name, or stops it if it is running.
///
/// Prints a line to standard output for both, unless the first seven characters of the name are "[quiet]".
/// Any name is allowed, the empty one too. Stopwatches are process-wide; call from one thread at a time. The
/// cost is logarithmic in the number of running stopwatches.
/// @return -1.0 when started, the elapsed seconds when stopped
KELM25D_API double timer(const std::string& name);

} // namespace QUOR_KELM25D
