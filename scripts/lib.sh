# What the scripts share: the way to the source tree, and the packages that a bare Debian 12 lacks.
# To be sourced; starts nothing by itself.

cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Whether a header can be included.
hasHeader() {
    echo "#include <$1>" | c++ -E -x c++ - >/dev/null 2>&1
}

# Whether Clang can build fuzz targets.
hasFuzzer() {
    echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' |
        clang++ -fsanitize=fuzzer -x c++ - -o /dev/null
}

# Adds a package to the list of missing ones unless the test command behind it succeeds.
missing=()
need() {
    local package=$1
    shift
    "$@" >/dev/null 2>&1 || missing+=("$package")
}

needForBuild() {
    need build-essential c++ --version
    need cmake cmake --version
    need ninja-build ninja --version
    need libgmp-dev hasHeader gmp.h
}

needForTests() {
    needForBuild
    need pkg-config pkg-config --version
    need libgtest-dev hasHeader gtest/gtest.h
    need ghostscript gs --version
}

# Installs what need() has found missing; touches nothing if that is nothing.
installMissing() {
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    if ! command -v apt-get >/dev/null; then
        echo "Please install first: ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}"
    local asRoot=()
    if [ "$(id -u)" -ne 0 ]; then
        asRoot=(sudo)
    fi
    "${asRoot[@]}" apt-get update -qq </dev/null &&
        "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
            "${missing[@]}" </dev/null || return 1
    missing=()
}

# Configures and builds a preset: its name, the targets as one word list, and options for the configuration.
buildPreset() {
    local preset=$1 targets=$2
    shift 2
    cmake --preset "$preset" "$@"
    # shellcheck disable=SC2086
    cmake --build --preset "$preset" --parallel "$(nproc)" --target $targets
}
