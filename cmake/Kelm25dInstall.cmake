# Install rules: library, headers, and what find_package and pkg-config need to find them.
# The test tests/consumer builds a program against the result in both ways.
include(CMakePackageConfigHelpers)

install(TARGETS kelm25d
    EXPORT kelm25dTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT kelm25d_runtime
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT kelm25d_runtime
        NAMELINK_COMPONENT kelm25d_development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT kelm25d_development
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT kelm25d_development)

set(kelm25d_config_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kelm25d")
install(EXPORT kelm25dTargets
    NAMESPACE kelm25d::
    DESTINATION "${kelm25d_config_dir}"
    COMPONENT kelm25d_development)
configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/kelm25dConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/kelm25dConfig.cmake"
    INSTALL_DESTINATION "${kelm25d_config_dir}")
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/kelm25dConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/kelm25dConfig.cmake"
    "${PROJECT_BINARY_DIR}/kelm25dConfigVersion.cmake"
    DESTINATION "${kelm25d_config_dir}"
    COMPONENT kelm25d_development)

# The prefix is told relative to the file, so that the installed tree can be moved.
set(kelm25d_pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
cmake_path(ABSOLUTE_PATH kelm25d_pkgconfig_dir BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}"
    OUTPUT_VARIABLE kelm25d_absolute_pkgconfig_dir)
file(RELATIVE_PATH KELM25D_PKGCONFIG_TO_PREFIX "${kelm25d_absolute_pkgconfig_dir}" "${CMAKE_INSTALL_PREFIX}")
foreach(dir IN ITEMS LIBDIR INCLUDEDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${dir}}")
        set(KELM25D_PC_${dir} "${CMAKE_INSTALL_${dir}}")
    else()
        set(KELM25D_PC_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
    endif()
endforeach()
configure_file("${CMAKE_CURRENT_LIST_DIR}/kelm25d.pc.in" "${PROJECT_BINARY_DIR}/kelm25d.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kelm25d.pc"
    DESTINATION "${kelm25d_pkgconfig_dir}"
    COMPONENT kelm25d_development)
