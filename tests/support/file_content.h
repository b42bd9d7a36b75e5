#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

/// All bytes of a file. Throws if it cannot be read.
inline std::string content_of(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) {
        throw std::runtime_error("cannot read " + path.string());
    }
    // In blocks: a byte at a time takes a minute for a program with debug information.
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return std::move(bytes).str();
}
