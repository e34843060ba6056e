/// @file
/// The parts of a web scene: its directory, and the page and scripts that the library holds as texts.
/// The scene of a triangulation is written as a whole by Kelm_2D::writeWebScene.
#pragma once

#include <kelm25d/export.h>

namespace QUOR_KELM25D {

/// Makes a directory, and the directories above it that are missing.
///
/// The part of a path above a name ends at the last slash, or in a path without any at the last backslash.
/// @return true if the directory is there now, also if it was there before; false for null, an empty path, if
/// something else has the name, or if the system refuses
KELM25D_API bool createDirectory(const char* path);

/// Writes one of the held texts to the file of its name in a directory, replacing an existing one.
///
/// | name                                               | text                                            |
/// |----------------------------------------------------|-------------------------------------------------|
/// | index.html                                         | the page that shows 3d.obj                      |
/// | jsc3d.js                                           | the viewer jsc3d, if the build could fetch it   |
/// | jsc3d.touch.js                                     | rotating, zooming and moving by fingers         |
/// | jsc3d.ctm.js                                       | says for OpenCTM files that they are not loaded |
/// | jsc3d.console.js                                   | the viewer's messages on the browser's console  |
/// | jsc3d.3ds.js, jsc3d.ie.js, jsc3d.webgl.js          | not held                                        |
///
/// A name of the table whose text is not held, and any other name, give an error line, and nothing is
/// written. A file that can't be written gives a warning line.
///
/// Browsers let no page read a mesh from a file address: serve the directory, for example by
/// `python3 -m http.server` in it, and open the address that is printed.
/// @param name,path not null; path is a directory that is there
KELM25D_API void fileReplicate(const char* name, const char* path);

} // namespace QUOR_KELM25D
