/// @file
/// Colour, line width and fill of what is drawn.
/// The picture itself is a Visualizer2.
#pragma once

#include <kelm25d/export.h>

#include <iosfwd>

namespace QUOR_KELM25D {

/// The colours with a name. The values are fixed.
enum Colorname : int {
    CRED = 0,
    CGREEN = 1,
    CBLUE = 2,
    CBLACK = 3,
    CPINK = 4,
    CGRAY = 5,
    CORANGE = 6,
    CLIGHTBLUE = 7,
    CLIGHTBROWN = 8,
    CDARKBROWN = 9,
    CPURPLE = 10,
    COLIVE = 11,
    CLAWNGREEN = 12,
    CPALEGREEN = 13,
    CCYAN = 14,
    CYELLOW = 15,
    CWHITE = 16
};

/// A pen: colour, line width and whether areas are filled.
///
/// Red, green and blue go from 0 to 1, the width is in points of the page (1/72 inch). Nothing is checked.
/// What bFill does depends on the object drawn, see Visualizer2.
class KELM25D_API Color {
public:
    /// Black, width 0.1, not filled.
    Color() noexcept : r(0.0F), g(0.0F), b(0.0F), width(0.1F), bFill(false) {}

    /// A colour by its parts, each rounded to a 32-bit float.
    Color(double red, double green, double blue, double lineWidth, bool bFilled) noexcept
        : r(static_cast<float>(red)), g(static_cast<float>(green)), b(static_cast<float>(blue)),
          width(static_cast<float>(lineWidth)), bFill(bFilled) {}

    /// A colour by its name. A value without a name gives black, after a warning line.
    Color(Colorname name, float lineWidth, bool bFilled);

    /// The next name of the cycle from CRED up to CCYAN, for drawing several things apart; after CCYAN comes
    /// CRED. Yellow and white are left out, they are poor on paper. The first call of a program gives CGREEN.
    /// The position is shared by the whole process: for one thread at a time.
    static Colorname getNextColorName();

    /// All five fields are equal, exactly.
    bool operator==(const Color& other) const noexcept;
    /// The negation of operator==.
    bool operator!=(const Color& other) const noexcept { return !(*this == other); }
    /// Order by r, g, b, width, then bFill.
    bool operator<(const Color& other) const noexcept;

    float r;     ///< red
    float g;     ///< green
    float b;     ///< blue
    float width; ///< of lines, in points of the page
    bool bFill;  ///< whether areas are filled

    /// Where the cycle of getNextColorName stands, 0 at first. May be set.
    static unsigned currentColorName;
};

/// Writes "Color: r, g, b, width=width, bFill=0 or 1".
KELM25D_API std::ostream& operator<<(std::ostream& stream, const Color& color);

} // namespace QUOR_KELM25D
