/// @file
/// A text at a place of a drawing.
/// Its colour is given when it is added to a Visualizer2.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/export.h>

#include <string>

namespace QUOR_KELM25D {

/// A text, of one or more lines, at a point of the world. It holds copies; nothing is checked.
class KELM25D_API Label {
public:
    /// A label with its text to the right of position. Lines are separated by "\n", and each goes above the
    /// one before it, which is deliberate. With bMark a cross marks the position. The size of the font is in
    /// points of the page; at size 0 only the mark is drawn.
    Label(const Point2& position, const std::string& labelText, bool bMark, int sizeOfFont)
        : pos(position), text(labelText), bWithMark(bMark), fontSize(sizeOfFont) {}

    Point2 pos;       ///< where the text begins, in the coordinates of the objects drawn
    std::string text; ///< what is written
    bool bWithMark;   ///< whether a cross marks the position
    int fontSize;     ///< in points of the page
};

} // namespace QUOR_KELM25D
