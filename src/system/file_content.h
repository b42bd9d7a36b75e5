#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

namespace os {

/// All bytes from where `file` is to its end; nothing if reading fails, or there are more than `most_bytes`.
[[nodiscard]] std::optional<std::string> read_all(std::FILE* file, std::uint64_t most_bytes);

/// All bytes of a regular file; nothing if it cannot be read, or has more than `most_bytes`.
[[nodiscard]] std::optional<std::string> content_of(const std::string& path, std::uint64_t most_bytes);

}  // namespace os
