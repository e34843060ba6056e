# The compiler options that library, tests, examples and benchmarks share, as the target kelm25d_options.
# Nothing of it reaches programs that use the installed library.
add_library(kelm25d_options INTERFACE)
target_compile_features(kelm25d_options INTERFACE cxx_std_17)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(kelm25d_options INTERFACE
        -Wall -Wextra
        # One multiply and one add are two roundings, on every machine: the filters are derived for that.
        -ffp-contract=off
        # Failed checks print the source file; readers of the line do not have this source tree.
        "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
    if(KELM25D_SANITIZE)
        target_compile_options(kelm25d_options INTERFACE
            "-fsanitize=${KELM25D_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(kelm25d_options INTERFACE "-fsanitize=${KELM25D_SANITIZE}")
    endif()
endif()
