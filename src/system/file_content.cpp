#include "system/file_content.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "system/open_regular_file.h"

namespace os {

std::optional<std::string> read_all(std::FILE* file, std::uint64_t most_bytes) {
    constexpr std::size_t kBlock_bytes = std::size_t{1} << 16U;
    std::string bytes;
    std::vector<char> block(kBlock_bytes);
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file)) {
        bytes.append(block.data(), count);
        if (bytes.size() > most_bytes) {
            return std::nullopt;
        }
    }
    return std::ferror(file) == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<std::string> content_of(const std::string& path, std::uint64_t most_bytes) {
    const InputFile file = open_input_file(path);
    return file == nullptr ? std::nullopt : read_all(file.get(), most_bytes);
}

}  // namespace os
