// Points in the form that CGAL takes, for the comparisons with it.
// The points themselves are made in benchPoints.h.
#pragma once

#include <kelm25d/Point2.h>

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include <vector>

namespace bench {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using CgalPoints = std::vector<Kernel::Point_2>;

inline CgalPoints toCgal(const std::vector<QUOR_KELM25D::Point2>& vPoints) {
    CgalPoints vCgal;
    vCgal.reserve(vPoints.size());
    for (const QUOR_KELM25D::Point2& p : vPoints) {
        vCgal.emplace_back(p.x(), p.y());
    }
    return vCgal;
}

} // namespace bench
