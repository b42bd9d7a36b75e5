#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace cli {

/// All bytes of a regular file; nothing if it cannot be read, or has more than `most_bytes`.
[[nodiscard]] std::optional<std::string> content_of(const std::string& path, std::uint64_t most_bytes);

}  // namespace cli
