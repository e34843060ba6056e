// Making a directory together with those above it.
// What a web scene puts there is written in fileReplicate.cpp and meshGeomview.cpp.
#include <kelm25d/webScene.h>

#include <filesystem>
#include <string>

namespace QUOR_KELM25D {

namespace {

std::string getParent(const std::string& path) {
    std::size_t end = path.rfind('/');
    if (end == std::string::npos) end = path.rfind('\\');
    return end == std::string::npos ? std::string() : path.substr(0, end);
}

} // namespace

bool createDirectory(const char* path) {
    if (path == nullptr) return false;
    std::error_code error;
    if (std::filesystem::create_directory(path, error)) return true;
    if (error == std::errc::no_such_file_or_directory) {
        const std::string parent = getParent(path);
        if (!parent.empty() && createDirectory(parent.c_str()))
            std::filesystem::create_directory(path, error);
    }
    return std::filesystem::is_directory(path, error);
}

} // namespace QUOR_KELM25D
