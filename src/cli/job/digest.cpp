#include "cli/job/digest.h"

#include <cstddef>
#include <cstdio>
#include <vector>

#include "system/open_regular_file.h"

namespace cli {

std::optional<std::string> sha256_of_file(const std::string& path) {
    const os::InputFile file = os::open_input_file(path);
    if (file == nullptr) {
        return std::nullopt;
    }
    Sha256 digest;
    std::vector<char> block(std::size_t{1} << 18U);
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        digest.add({block.data(), count});
    }
    return std::ferror(file.get()) == 0 ? std::optional(digest.hexadecimal()) : std::nullopt;
}

}  // namespace cli
