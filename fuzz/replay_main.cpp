// Runs a target over every file in the named folders, without a fuzzer: seeds and regressions must stay
// sound.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "input.h"
#include "support/file_content.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> files_in(const fs::path& folder) {
    std::vector<fs::path> files;
    if (fs::is_directory(folder)) {
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file() && entry.path().filename() != "README.md") {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void replay(const fs::path& path) {
    const std::string bytes = content_of(path);
    // The last line of a log names the input that ended the process.
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

int run(const std::vector<std::string>& folders) {
    std::size_t count = 0;
    for (const std::string& folder : folders) {
        for (const fs::path& path : files_in(folder)) {
            replay(path);
            ++count;
        }
    }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "error: %s\n", failure.what());
        return 1;
    }
}
