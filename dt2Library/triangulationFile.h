// A triangulation in a file: its vertices and the constraint segments that are alive, and nothing else.
// Files of points or segments alone are dataFiles.cpp.
#pragma once

namespace QUOR_KELM25D {

class ConstraintMgr;

/// The work of Kelm_2D::save and Kelm_2D::load, for the manager's mesh.
bool saveTriangulation(ConstraintMgr& constraintMgr, const char* filename);
bool loadTriangulation(ConstraintMgr& constraintMgr, const char* filename);

} // namespace QUOR_KELM25D
