// Catches what goes to std::cout, or to another stream, while an object of this class lives.
// What the C library prints passes by it.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

class CoutCapture {
public:
    explicit CoutCapture(std::ostream& captured = std::cout)
        : stream(captured), pSaved(captured.rdbuf(text.rdbuf())) {}
    ~CoutCapture() { stream.rdbuf(pSaved); }
    CoutCapture(const CoutCapture&) = delete;
    CoutCapture& operator=(const CoutCapture&) = delete;

    /// What has been printed since the last call.
    std::string take() {
        std::string taken = text.str();
        text.str("");
        return taken;
    }
    /// Whether that contains a text. Takes it as well.
    bool printed(const std::string& part) { return take().find(part) != std::string::npos; }

private:
    std::ostringstream text;
    std::ostream& stream;
    std::streambuf* pSaved;
};
