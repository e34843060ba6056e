/// @file
/// The whole library.
/// Programs that care for their compile time include the single headers instead; Kelm_2D.h is the chief one.
#pragma once

#include <kelm25d/Bbox2.h>
#include <kelm25d/Circle2.h>
#include <kelm25d/Color.h>
#include <kelm25d/ConstraintGraph2.h>
#include <kelm25d/ConstraintInsertionStrategy.h>
#include <kelm25d/ConstraintSegment2.h>
#include <kelm25d/Edge2.h>
#include <kelm25d/KelmException.h>
#include <kelm25d/Kelm_2D.h>
#include <kelm25d/Label.h>
#include <kelm25d/MsgBase.h>
#include <kelm25d/Orientation2.h>
#include <kelm25d/Plane.h>
#include <kelm25d/Point2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/TriangleAroundVertexIterator.h>
#include <kelm25d/UserPredicateT.h>
#include <kelm25d/Vector2.h>
#include <kelm25d/VertexPair2.h>
#include <kelm25d/Visualizer2.h>
#include <kelm25d/Visualizer3.h>
#include <kelm25d/Zone2.h>
#include <kelm25d/ZoneLocation.h>
#include <kelm25d/dataFiles.h>
#include <kelm25d/export.h>
#include <kelm25d/reconstruct.h>
#include <kelm25d/rings.h>
#include <kelm25d/testDataGenerators.h>
#include <kelm25d/timer.h>
#include <kelm25d/version.h>
#include <kelm25d/webScene.h>
