# Every file of the library, by layer, low to high: a file includes files of its own and of lower layers only.
# This is the one list of sources; checkLayers.cmake holds the include lines against it. What the layers are
# for is told in docs/architecture.md.

set(KELM25D_LAYERS values containers stores kernel rings constraints zones features output facade)

set(KELM25D_LAYER_values
    include/kelm25d/Bbox2.h
    include/kelm25d/Circle2.h
    include/kelm25d/Color.h
    include/kelm25d/ConstraintInsertionStrategy.h
    include/kelm25d/ConstraintSegment2.h
    include/kelm25d/Edge2.h
    include/kelm25d/KelmException.h
    include/kelm25d/Label.h
    include/kelm25d/MsgBase.h
    include/kelm25d/Orientation2.h
    include/kelm25d/Plane.h
    include/kelm25d/Point2.h
    include/kelm25d/Segment2.h
    include/kelm25d/Triangle2.h
    include/kelm25d/UserPredicateT.h
    include/kelm25d/Vector2.h
    include/kelm25d/VertexPair2.h
    include/kelm25d/ZoneLocation.h
    include/kelm25d/export.h
    include/kelm25d/timer.h
    include/kelm25d/version.h
    dt2Library/Bbox2.cpp
    dt2Library/Circle2.cpp
    dt2Library/Color.cpp
    dt2Library/KelmException.cpp
    dt2Library/Plane.cpp
    dt2Library/Point2.cpp
    dt2Library/ProgressPublisher.cpp
    dt2Library/ProgressPublisher.h
    dt2Library/QuorTest.cpp
    dt2Library/QuorTest.h
    dt2Library/Segment2.cpp
    dt2Library/Triangle2.cpp
    dt2Library/Vector2.cpp
    dt2Library/VertexPair2.cpp
    dt2Library/centerWithShift.cpp
    dt2Library/centerWithShift.h
    dt2Library/cornerIndex.h
    dt2Library/exactSigns.cpp
    dt2Library/exactSigns.h
    dt2Library/footPoint.cpp
    dt2Library/footPoint.h
    dt2Library/intersection2D.cpp
    dt2Library/measures.h
    dt2Library/messages.cpp
    dt2Library/messages.h
    dt2Library/random.cpp
    dt2Library/random.h
    dt2Library/sqDistance25D.cpp
    dt2Library/sqDistance25D.h
    dt2Library/timer.cpp
    dt2Library/version.cpp)

set(KELM25D_LAYER_containers
    dt2Library/AddressSet.h
    dt2Library/HashTable.h
    dt2Library/Histogram.cpp
    dt2Library/Histogram.h
    dt2Library/MTCtrl.h
    dt2Library/OpenEdges.cpp
    dt2Library/OpenEdges.h
    dt2Library/PlaceTable.h
    dt2Library/SimplePool.h
    dt2Library/VertexPairHash.h
    dt2Library/prefetch.h
    dt2Library/uninitialized.h)

set(KELM25D_LAYER_stores
    dt2Library/HC2.cpp
    dt2Library/HC2.h
    dt2Library/SegmentTable.cpp
    dt2Library/SegmentTable.h
    dt2Library/VertexDuplicates.cpp
    dt2Library/VertexDuplicates.h
    dt2Library/VertexVault.cpp
    dt2Library/VertexVault.h
    dt2Library/WaitingVertices.cpp
    dt2Library/WaitingVertices.h
    dt2Library/hilbertSort.cpp
    dt2Library/hilbertSort.h)

set(KELM25D_LAYER_kernel
    include/kelm25d/TriangleAroundVertexIterator.h
    dt2Library/Chunk.cpp
    dt2Library/Chunk.h
    dt2Library/Fan.h
    dt2Library/Flood.h
    dt2Library/InserterMT.cpp
    dt2Library/InserterMT.h
    dt2Library/Mesh2.cpp
    dt2Library/Mesh2.h
    dt2Library/Mesh2_bulk.cpp
    dt2Library/Mesh2_location.cpp
    dt2Library/Mesh2_queries.cpp
    dt2Library/Mesh2_removal.cpp
    dt2Library/MeshInserter.cpp
    dt2Library/MeshInserter.h
    dt2Library/MeshListener.h
    dt2Library/TriangleAroundVertexIterator.cpp)

set(KELM25D_LAYER_rings
    include/kelm25d/rings.h
    dt2Library/ringEdges.cpp
    dt2Library/ringTools.h
    dt2Library/rings.cpp)

set(KELM25D_LAYER_constraints
    include/kelm25d/ConstraintGraph2.h
    dt2Library/ConstraintGraph2.cpp
    dt2Library/ConstraintMgr.cpp
    dt2Library/ConstraintMgr.h
    dt2Library/InnerVtxMgr.cpp
    dt2Library/InnerVtxMgr.h
    dt2Library/LeafWalk.h
    dt2Library/SegmentInserter.cpp
    dt2Library/SegmentInserter.h
    dt2Library/segmentTree.cpp)

set(KELM25D_LAYER_zones
    include/kelm25d/Zone2.h
    dt2Library/FloodBarrier.cpp
    dt2Library/FloodBarrier.h
    dt2Library/Zone2.cpp
    dt2Library/Zone2_operations.cpp
    dt2Library/Zone2_optimization.cpp
    dt2Library/ZoneMgr.cpp
    dt2Library/ZoneMgr.h)

set(KELM25D_LAYER_features
    include/kelm25d/reconstruct.h
    include/kelm25d/testDataGenerators.h
    dt2Library/CookieCutter.cpp
    dt2Library/CookieCutter.h
    dt2Library/Cut.cpp
    dt2Library/Cut.h
    dt2Library/Drape.cpp
    dt2Library/Drape.h
    dt2Library/Partitioner.cpp
    dt2Library/Partitioner.h
    dt2Library/TriangleImport.cpp
    dt2Library/TriangleImport.h
    dt2Library/reconstruct.cpp
    dt2Library/simplePolygon.cpp
    dt2Library/testDataGenerators.cpp)

set(KELM25D_LAYER_output
    include/kelm25d/Visualizer2.h
    include/kelm25d/Visualizer3.h
    include/kelm25d/dataFiles.h
    include/kelm25d/webScene.h
    dt2Library/ConstraintGraph2_drawing.cpp
    dt2Library/ConstraintMgr_files.cpp
    dt2Library/TriangleImport_drawing.cpp
    dt2Library/Visualizer2.cpp
    dt2Library/Visualizer3.cpp
    dt2Library/Zone2_drawing.cpp
    dt2Library/binaryFile.cpp
    dt2Library/binaryFile.h
    dt2Library/createDirectory.cpp
    dt2Library/dataFiles.cpp
    dt2Library/fileReplicate.cpp
    dt2Library/heldTexts.h
    dt2Library/meshDrawing.cpp
    dt2Library/meshGeomview.cpp
    dt2Library/meshObj.cpp
    dt2Library/meshOutput.h
    dt2Library/triangulationFile.cpp
    dt2Library/triangulationFile.h
    dt2Library/validity.cpp
    dt2Library/validity.h)

set(KELM25D_LAYER_facade
    include/kelm25d/Kelm_2D.h
    include/kelm25d/kelm25d.h
    dt2Library/Dt2.cpp
    dt2Library/Dt2.h
    dt2Library/Kelm_2D.cpp)

set(KELM25D_FILES "")
foreach(layer IN LISTS KELM25D_LAYERS)
    list(APPEND KELM25D_FILES ${KELM25D_LAYER_${layer}})
endforeach()
set(KELM25D_SOURCES ${KELM25D_FILES})
list(FILTER KELM25D_SOURCES INCLUDE REGEX "\\.cpp$")
set(KELM25D_PUBLIC_HEADERS ${KELM25D_FILES})
list(FILTER KELM25D_PUBLIC_HEADERS INCLUDE REGEX "^include/")
