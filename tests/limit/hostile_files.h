#pragma once

#include <string>
#include <vector>

/// A file that claims more than it contains, or costs as much as its bytes allow.
struct HostileFile {
    std::string name;
    std::string extension;  ///< ".aec" or ".txl"
    std::string bytes;
};

/// Files made in code: some of at most 100 bytes, some larger.
std::vector<HostileFile> hostile_files();

/// The regressions of the fuzzers in `folder`, each as a composition file and as a texture.
std::vector<HostileFile> former_finds(const std::string& folder);
