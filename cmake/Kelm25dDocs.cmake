# The target docs: the reference of the exported headers as HTML, in docs/html of the build tree.
# Warnings are errors there, so every exported name has its docstring.
find_package(Doxygen REQUIRED)
configure_file("${PROJECT_SOURCE_DIR}/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
add_custom_target(docs
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/docs"
    COMMAND Doxygen::doxygen "${PROJECT_BINARY_DIR}/Doxyfile"
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    COMMENT "Reference documentation"
    VERBATIM)
