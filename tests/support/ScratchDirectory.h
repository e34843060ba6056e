// A new empty directory that is the current one while an object of this class lives, and is deleted after
// that. Tests that write files use it, so that they do not meet each other when they run at the same time.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

class ScratchDirectory {
public:
    ScratchDirectory() : previous(std::filesystem::current_path()) {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelm25d_XXXXXX").string();
        if (::mkdtemp(&pattern[0]) == nullptr) throw std::runtime_error("no scratch directory");
        path = pattern;
        std::filesystem::current_path(path);
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(previous, ignored);
        std::filesystem::remove_all(path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

private:
    std::filesystem::path previous, path;
};

/// The bytes of a file, none if it can't be read.
inline std::string readFile(const std::string& filename) {
    std::ifstream file(filename, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}
