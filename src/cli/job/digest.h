#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace cli {

/// The SHA-256 of bytes that come in parts. digest_<library>.cpp implements it: with Nettle, or with Windows.
class Sha256 {
  public:
    /// Throws std::runtime_error in a build that has no library for it.
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void add(std::string_view bytes);
    /// 64 lower-case digits. The last call.
    [[nodiscard]] std::string hexadecimal();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The SHA-256 of a regular file; nothing if it cannot be read.
[[nodiscard]] std::optional<std::string> sha256_of_file(const std::string& path);

}  // namespace cli
