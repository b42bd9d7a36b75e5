#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace binary_file {

enum class ByteOrder { little, big };

/// A file does not contain what its own numbers say. ByteView throws it, and the reader of the format catches
/// it.
class Damage : public std::runtime_error {
  public:
    Damage(std::uint64_t offset_bytes, const std::string& reason)
        : std::runtime_error(reason), offset_bytes_(offset_bytes) {}
    /// The item in question, from the start of the file.
    [[nodiscard]] std::uint64_t offset_bytes() const { return offset_bytes_; }

  private:
    std::uint64_t offset_bytes_;
};

/// The bytes of a file, or a part of them. Readers of formats access them through this class only: every
/// access is checked and throws Damage when it is out of range. Offsets are 64-bit and never wrap. Owns
/// nothing.
class ByteView {
  public:
    /// `start_bytes` is where the view begins in the file, for Damage.
    explicit ByteView(std::string_view bytes, ByteOrder order = ByteOrder::little,
                      std::uint64_t start_bytes = 0)
        : bytes_(bytes), order_(order), start_bytes_(start_bytes) {}

    [[nodiscard]] std::uint64_t size() const { return bytes_.size(); }
    [[nodiscard]] std::uint64_t start_bytes() const { return start_bytes_; }
    [[nodiscard]] std::string_view all() const { return bytes_; }
    [[nodiscard]] ByteOrder order() const { return order_; }

    [[nodiscard]] std::uint8_t u8(std::uint64_t at) const;
    [[nodiscard]] std::uint16_t u16(std::uint64_t at) const;
    [[nodiscard]] std::uint32_t u32(std::uint64_t at) const;
    [[nodiscard]] std::uint64_t u64(std::uint64_t at) const;

    [[nodiscard]] std::string_view bytes(std::uint64_t at, std::uint64_t count) const;
    /// The text before the next NUL. Throws Damage when there is no NUL within kLongestText bytes.
    [[nodiscard]] std::string_view text(std::uint64_t at) const;
    [[nodiscard]] ByteView part(std::uint64_t at, std::uint64_t count) const;
    /// Everything from `at` to the end.
    [[nodiscard]] ByteView from(std::uint64_t at) const;

    /// No real name is longer. Without a limit, overlapping names would take time quadratic in the length of
    /// the file.
    static constexpr std::uint64_t kLongestText = 4096;

  private:
    [[nodiscard]] std::uint64_t number(std::uint64_t at, unsigned width) const;

    std::string_view bytes_;
    ByteOrder order_;
    std::uint64_t start_bytes_;
};

}  // namespace binary_file
