# Installs the library from BUILD_DIR into a fresh prefix there, and builds and runs the consumer against it:
# once by find_package, once by pkg-config. The prefix is moved after the installation, because that must work too.
cmake_minimum_required(VERSION 3.25)

set(work "${BUILD_DIR}/consumer")
set(prefix "${work}/moved prefix")
file(REMOVE_RECURSE "${work}")
file(MAKE_DIRECTORY "${work}")

function(run)
    execute_process(COMMAND ${ARGV} WORKING_DIRECTORY "${work}" COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --config "${CONFIG}" --prefix "${work}/prefix")
file(RENAME "${work}/prefix" "${prefix}")

run("${CMAKE_COMMAND}" -S "${CMAKE_CURRENT_LIST_DIR}" -B "${work}/find_package" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_BUILD_TYPE=Release" "-DCMAKE_PREFIX_PATH=${prefix}")
run("${CMAKE_COMMAND}" --build "${work}/find_package" --config Release)
run("${work}/find_package/consumer" "${VERSION}")

find_program(PKG_CONFIG NAMES pkg-config pkgconf REQUIRED)
set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
run("${PKG_CONFIG}" --exact-version "${VERSION}" kelm25d)
execute_process(COMMAND "${PKG_CONFIG}" --cflags --libs kelm25d
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run("${CXX_COMPILER}" -std=c++17 "${CMAKE_CURRENT_LIST_DIR}/main.cpp" -o "${work}/by_pkg_config"
    ${flags} "-Wl,-rpath,${prefix}/${LIBDIR}")
run("${work}/by_pkg_config" "${VERSION}")
