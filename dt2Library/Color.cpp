// The colours by name, their cycle, comparison and stream output.
// Colours are written to a picture in Visualizer2.cpp.
#include <kelm25d/Color.h>

#include "messages.h"

#include <ostream>
#include <tuple>

namespace QUOR_KELM25D {

namespace {

constexpr float aNamed[][3] = {
    {1.0F, 0.0F, 0.0F},       // CRED
    {0.0F, 1.0F, 0.0F},       // CGREEN
    {0.0F, 0.0F, 1.0F},       // CBLUE
    {0.0F, 0.0F, 0.0F},       // CBLACK
    {1.0F, 0.4F, 0.7F},       // CPINK
    {0.3F, 0.3F, 0.3F},       // CGRAY
    {1.0F, 0.627F, 0.0F},     // CORANGE
    {0.0F, 0.749F, 1.0F},     // CLIGHTBLUE
    {0.823F, 0.705F, 0.549F}, // CLIGHTBROWN
    {0.545F, 0.271F, 0.074F}, // CDARKBROWN
    {0.627F, 0.125F, 0.941F}, // CPURPLE
    {0.5F, 0.5F, 0.0F},       // COLIVE
    {0.49F, 0.99F, 0.0F},     // CLAWNGREEN
    {0.6F, 0.98F, 0.6F},      // CPALEGREEN
    {0.0F, 1.0F, 1.0F},       // CCYAN
    {1.0F, 1.0F, 0.0F},       // CYELLOW
    {1.0F, 1.0F, 1.0F},       // CWHITE
};
static_assert(sizeof aNamed / sizeof aNamed[0] == CWHITE + 1, "one row for each name");

auto fieldsOf(const Color& color) {
    return std::tie(color.r, color.g, color.b, color.width, color.bFill);
}

} // namespace

unsigned Color::currentColorName = 0;

Color::Color(Colorname name, float lineWidth, bool bFilled)
    : r(0.0F), g(0.0F), b(0.0F), width(lineWidth), bFill(bFilled) {
    if (name < CRED || name > CWHITE) {
        printWarning("Color::Color", "Colorname unknown, returning black");
        return;
    }
    r = aNamed[name][0];
    g = aNamed[name][1];
    b = aNamed[name][2];
}

Colorname Color::getNextColorName() {
    currentColorName = (currentColorName + 1) % CYELLOW;
    return static_cast<Colorname>(currentColorName);
}

bool Color::operator==(const Color& other) const noexcept {
    return fieldsOf(*this) == fieldsOf(other);
}

bool Color::operator<(const Color& other) const noexcept {
    return fieldsOf(*this) < fieldsOf(other);
}

std::ostream& operator<<(std::ostream& stream, const Color& color) {
    return stream << "Color: " << color.r << ", " << color.g << ", " << color.b << ", width=" << color.width
                  << ", bFill=" << color.bFill;
}

} // namespace QUOR_KELM25D
