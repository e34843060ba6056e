/// @file
/// Made data for demonstrations, benchmarks and tests: random numbers, points, polygons and segments, a
/// smooth surface, circles, sine curves. Real points come from files, see dataFiles.h.
///
/// All points made here have custom index -1. A seed of 0 means a new sequence at each call, also within one
/// second; any other seed gives the same output each time. Random values are multiples of 1/32768 of the
/// range.
///
/// Not thread safe: the generator is one for the whole process, and so is what the functions remember from
/// one call to the next. Failed checks throw KelmException; a min that is not below max is one, and so is a
/// limit that is not a number. A range so wide that max - min is not finite gives values that are no numbers.
#pragma once

#include <kelm25d/export.h>

#include <vector>

namespace QUOR_KELM25D {

class Point2;
class Segment2;

/// Replaces vRandomNumbersOut by num random numbers, evenly distributed from min on and below max; in a range
/// of few representable numbers rounding may reach max.
///
/// Seeds the generator even if num is 0. If min is not below max a check fails, after the output has got its
/// size and the generator its seed. Linear.
KELM25D_API void generateRandomNumbers(unsigned int num, double min, double max,
                                       std::vector<double>& vRandomNumbersOut, unsigned int seed);

/// Replaces vRandomPointsOut by random points of the square from min to max in x and in y, with height 0.
///
/// The numbers are those of generateRandomNumbers: first all x, then all y. Points may coincide. If min is
/// not below max a check fails and the output stays as it was. Linear.
KELM25D_API void generateRandomPoints(unsigned int numRandomPoints, double min, double max,
                                      std::vector<Point2>& vRandomPointsOut, unsigned int seed);

/// The same as generateRandomPoints with random heights between min and max, drawn behind all x and all y.
///
/// Prints to standard output: the line "after generate", and a line "i=INDEX, siz=SIZE" for each point, where
/// SIZE is the number of all coordinates.
KELM25D_API void generateRandomPoints3D(unsigned int numRandomPoints, double min, double max,
                                        std::vector<Point2>& vRandomPointsOut, unsigned int seed);

/// Makes a random simple polygon of exactly numSegments segments, as a counterclockwise ring: each segment
/// starts where the one before it ends, heights are 0.
///
/// The polygon is the border of a region that grows triangle by triangle in a random triangulation; its first
/// triangle may reach beyond the range by 2 percent of its width on each side. The limits in y are those in x
/// times 0.98, so that other corners lie in x from min to max, in y from 0.98 min to 0.98 max.
///
/// Pass an empty vPolygonOut. Segments in it are lost if the first attempt fails; otherwise they take part in
/// the sorting to a ring as in sortRing, which keeps the ring through the first segment and drops others.
///
/// A failed attempt is repeated with seed + 1, and with 50 points more than the one before it, as often as it
/// takes. After a seed of 0 that is 1, so that such calls now and then give the same polygon. Where the
/// limits leave only a narrow strip of the range it takes long.
///
/// Checks fail for fewer than three segments, if min is not below max, and if no attempt could ever succeed:
/// if no points can be drawn that differ and are finite, or, with more than three segments, if the limits in
/// y lie out of reach, as those of a range from 1000 to 1001 do.
///
/// Cost of an attempt: a triangulation of 4 numSegments points.
KELM25D_API void generateRandomPolygon(unsigned int numSegments, double min, double max,
                                       std::vector<Segment2>& vPolygonOut, unsigned int seed);

/// Appends random segments until vSegmentsOut holds numSegments, so none if it already does. Heights are 0.
///
/// Segments have the length maxLen, 0.8 maxLen or 0.5 maxLen in the xy plane, short of rounding, and may
/// intersect and overlap. They start at random points of the square from min to max, or at ends of earlier
/// segments. Ends may lie outside the square.
///
/// Checks fail if min is not below max, if maxLen is not above 0, and after a million attempts in a row
/// without a segment, which happens where maxLen vanishes beside the coordinates or where all points
/// coincide; the segments up to there remain in the output then. Linear.
KELM25D_API void generateRandomSegments(unsigned int numSegments, double min, double max, double maxLen,
                                        std::vector<Segment2>& vSegmentsOut, unsigned int seed);

/// Appends the points of a grid over the rectangle (xmin, ymin) to (xmax, ymax), with the heights of a smooth
/// surface that reaches from exactly zmin to exactly zmax.
///
/// There are numX times numY points, those with the same x behind one another. The surface is a sum of
/// numCenters bumps, up and down in turn. Points that vSurfacePointsOut already holds keep their place and
/// get new heights with the others. Should all heights be equal before they are scaled, all become zmin.
///
/// A range that is not above 0 in x, y or z, and less than two points in x or in y, print an error line and
/// change nothing, the generator included. A numCenters of 0 is taken as 1, with a warning line.
/// Cost: the number of points times numCenters.
KELM25D_API void generateRandomSurfacePoints(unsigned int numX, unsigned int numY, unsigned int numCenters,
                                             double xmin, double ymin, double zmin, double xmax, double ymax,
                                             double zmax, std::vector<Point2>& vSurfacePointsOut,
                                             unsigned int seed);

/// Appends numPoints points of the ellipse around (x, y) with the given radii, all at height z,
/// counterclockwise for positive radii, starting in direction of positive x.
///
/// The gap between the last point and the first is wider than the others by 5.3e-6 radians. With 0 points
/// there is a warning line and no output, with a negative number no output. Linear.
KELM25D_API void generateCircle(int numPoints, double x, double y, double z, double radiusX, double radiusY,
                                std::vector<Point2>& vCirclePointsOut);

/// Appends a chain of numSegments segments along a sine curve, at height 0.
///
/// The curve has numPeriods periods, which take 2 pi times xFactor each along the x axis, and the amplitude
/// yFactor. It starts at (xOffset, yOffset). A yFactor of exactly 0 gives the absolute value of the sine
/// instead. An ordinate below 1e-13 in absolute value becomes 0. With bSwapXY x and y change places. If
/// numSegments is not above 0 a check fails. Linear.
KELM25D_API void generateSineSegments(int numSegments, int numPeriods, double xOffset, double yOffset,
                                      double xFactor, double yFactor, bool bSwapXY,
                                      std::vector<Segment2>& vSineSegmentsOut);

/// Moves each point (x, y) to (x + y shearX, y + x shearY). Heights stay; custom indices become -1, also
/// where nothing moves. Linear.
KELM25D_API void shear(std::vector<Point2>& vPointsInOut, double shearX, double shearY);

} // namespace QUOR_KELM25D
