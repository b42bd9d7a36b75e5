#include "cli/footage/file_content.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "system/open_regular_file.h"

namespace cli {

std::optional<std::string> content_of(const std::string& path, std::uint64_t most_bytes) {
    const os::InputFile file = os::open_input_file(path);
    if (file == nullptr) {
        return std::nullopt;
    }
    std::string bytes;
    std::array<char, std::size_t{1} << 16U> block{};
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        bytes.append(block.data(), count);
        if (bytes.size() > most_bytes) {
            return std::nullopt;
        }
    }
    return std::ferror(file.get()) == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace cli
