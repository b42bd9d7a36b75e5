#pragma once

#include <string>
#include <string_view>

namespace text {

/// Base64 of `bytes` in the usual letters (RFC 4648), with padding.
[[nodiscard]] std::string base64_of(std::string_view bytes);

}  // namespace text
