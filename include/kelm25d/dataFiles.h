/// @file
/// Points and segments in files: text with two or three numbers a point, and binary forms that keep every
/// bit. Whole triangulations are written and read by Kelm_2D::save and Kelm_2D::load, whose format stands
/// here too; drawings and meshes by other functions.
///
/// All functions report by their result and print one line to standard output when they fail; none throws,
/// short of running out of memory. Readers append to the given vector, and what they have read before a
/// failure stays in it. Points that were read have custom index -1. Everything is linear in the size of the
/// file. File names are never null.
///
/// The binary forms are little-endian on every machine and have no padding. Points:
///
/// | offset | type            | content                                  |
/// |--------|-----------------|------------------------------------------|
/// | 0      | 32-bit integer  | 30 with heights, 20 without              |
/// | 4      | 32-bit integer  | N, the number of points                  |
/// | 8      | 32-bit integer  | 0, not looked at when reading            |
/// | 12     | N x 2 or 3 x 64-bit float | x, y and with type 30 z        |
///
/// Segments:
///
/// | offset | type            | content                                  |
/// |--------|-----------------|------------------------------------------|
/// | 0      | 32-bit integer  | 31 with heights, 21 without              |
/// | 4      | 32-bit integer  | N, the number of segments                |
/// | 8      | 32-bit integer  | 0, not looked at when reading            |
/// | 12     | N x 4 or 6 x 64-bit float | x, y and with type 31 z of the source, then of the target |
///
/// Triangulations:
///
/// | offset   | type            | content                                |
/// |----------|-----------------|----------------------------------------|
/// | 0        | 32-bit integer  | 301                                    |
/// | 4        | 32-bit integer  | P, the number of vertices              |
/// | 8        | P x 3 x 64-bit float | x, y, z                           |
/// | 8 + 24P  | 32-bit integer  | S, the number of alive constraint segments |
/// | 12 + 24P | S x 6 x 64-bit float | x, y, z of the source, then of the target |
#pragma once

#include <kelm25d/export.h>

#include <vector>

namespace QUOR_KELM25D {

class Point2;
class Segment2;

/// Reads text, two numbers a point, separated by white space; heights become 0.0.
///
/// Numbers have the C locale's form whatever the program's locale is. Reading ends at the end of the file or
/// at the first thing that is not a number or lies beyond the range of double; neither that nor an incomplete
/// last point is a failure.
/// @return false, with the line "FILENAME is unreadable", if the file can't be read
KELM25D_API bool readXY(const char* filename, std::vector<Point2>& vPoints);

/// The same as readXY with three numbers a point: x, y, z.
KELM25D_API bool readXYZ(const char* filename, std::vector<Point2>& vPoints);

/// Writes text, one point a line: x, y, z with 18 significant digits, enough to read the same values back.
/// An existing file is replaced.
/// @return false, with the line "FILENAME can't be written", if the file can't be opened or written
/// completely
KELM25D_API bool writePointsASCII(const char* filename, const std::vector<Point2>& vPoints);

/// The same for points that are held by pointer, for example vertices; none may be null. Only borrows them.
KELM25D_API bool writePointsASCII(const char* filename, const std::vector<Point2*>& vPoints);

/// Reads a binary point file. Heights become 0.0 if the file has none.
///
/// A file that is shorter than its own count gives the complete points that are there, and true. A negative
/// count reads nothing. No memory is taken for points that are not there.
/// @return false if the file can't be read ("FILENAME can't be read") or its type is neither 30 nor 20
/// ("FILENAME has wrong filetype TYPE, expected: 30 or 20")
KELM25D_API bool readPointsBIN(const char* filename, std::vector<Point2>& vPoints);

/// Writes a binary point file with heights. An existing file is replaced.
/// @return false, with the line "FILENAME can't be written", if the file can't be opened or written
/// completely, or if there are more points than the count can hold, which is 2147483647
KELM25D_API bool writePointsBIN(const char* filename, const std::vector<Point2>& vPoints);

/// The same for points that are held by pointer, for example vertices; none may be null. Only borrows them.
KELM25D_API bool writePointsBIN(const char* filename, const std::vector<Point2*>& vPoints);

/// Reads a binary segment file. Heights become 0.0 if the file has none. Short files and negative counts are
/// read as by readPointsBIN.
/// @return false if the file can't be read ("FILENAME can't be read") or its type is neither 31 nor 21
/// ("FILENAME has wrong file type: TYPE instead of 31 or 21")
KELM25D_API bool readSegmentsBIN(const char* filename, std::vector<Segment2>& vSegments);

/// Writes a binary segment file with heights. An existing file is replaced.
/// @return false, with the line "FILENAME can't be written", if the file can't be opened or written
/// completely, or if there are more segments than the count can hold, which is 2147483647
KELM25D_API bool writeSegmentsBIN(const char* filename, const std::vector<Segment2>& vSegments);

} // namespace QUOR_KELM25D
