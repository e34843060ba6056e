/// @file
/// A caller's test on triangles.
/// It is used by peelOffIf, see Zone2.h.
#pragma once

#include <kelm25d/export.h>

namespace QUOR_KELM25D {

class Triangle2;

/// A test on a triangle, to be derived from.
class KELM25D_API UserPredicateT {
public:
    UserPredicateT() = default;
    /// Nothing is there to be copied.
    UserPredicateT(const UserPredicateT&) = default;
    /// Nothing is there to be copied.
    UserPredicateT& operator=(const UserPredicateT&) = default;
    virtual ~UserPredicateT();

    /// The answer for one triangle, which is not null and belongs to its triangulation. Not const, so that a
    /// test may count or remember. What it throws reaches the caller.
    virtual bool operator()(const Triangle2* pT) = 0;
};

} // namespace QUOR_KELM25D
