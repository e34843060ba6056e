// The check of a whole mesh with its constraints, and the statistics of its angles.
// Both report and never throw for what they find; the drawings that go with a report are PostScript files.
#pragma once

#include <string>

namespace QUOR_KELM25D {

class ConstraintMgr;
class Mesh2;

/// The work of Kelm_2D::checkValidity and Kelm_2D::statistics.
bool checkValidity(ConstraintMgr& constraintMgr, bool bCheckEmptyCircleProperty, const std::string& msg);
void printStatistics(const Mesh2& mesh, const std::string& title);

} // namespace QUOR_KELM25D
