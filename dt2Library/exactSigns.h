// Signs of the orientation and in-circle determinants in integer arithmetic of fixed width.
// They answer only when all coordinates are multiples of one power of two within 61 bits; the predicates
// fall back to rationals otherwise.
#pragma once

namespace QUOR_KELM25D {

/// Sign (-1, 0, 1) of the orientation determinant of three points given as x0, y0, x1, y1, x2, y2.
/// False when the coordinates do not fit; the sign is untouched then.
bool orientationSignInIntegers(const double (&coordinates)[6], int& sign) noexcept;

/// Sign (1 inside, -1 outside, 0 cocircular) of the in-circle determinant of a counterclockwise triangle a,
/// b, c and a point q given as ax, ay, bx, by, cx, cy, qx, qy. False when the coordinates do not fit.
bool inCircleSignInIntegers(const double (&coordinates)[8], int& sign) noexcept;

} // namespace QUOR_KELM25D
