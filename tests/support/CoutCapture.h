// Catches what goes to std::cout while an object of this class lives.
// What the C library prints passes by it.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

class CoutCapture {
public:
    CoutCapture() : pSaved(std::cout.rdbuf(text.rdbuf())) {}
    ~CoutCapture() { std::cout.rdbuf(pSaved); }
    CoutCapture(const CoutCapture&) = delete;
    CoutCapture& operator=(const CoutCapture&) = delete;

    /// What has been printed since the last call.
    std::string take() {
        std::string taken = text.str();
        text.str("");
        return taken;
    }

private:
    std::ostringstream text;
    std::streambuf* pSaved;
};
