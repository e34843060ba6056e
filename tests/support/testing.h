// What nearly every test file uses: GoogleTest, the whole library, its inner triangulation, and the helpers
// of this folder. What only some files need they include themselves.
#pragma once

#include "CoutCapture.h"
#include "Dt2.h"
#include "MeshChecker.h"
#include "ScratchDirectory.h"
#include "pointSets.h"

#include <kelm25d/kelm25d.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <vector>

using namespace QUOR_KELM25D;
using namespace QUOR_KELM25D::testing_support;
