#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace binary_file {

enum class ByteOrder { little, big };

/// A file that does not hold what its own numbers say. Thrown by ByteView, caught by the reader of the
/// format.
class Damage : public std::runtime_error {
  public:
    Damage(std::uint64_t offset_bytes, const std::string& reason)
        : std::runtime_error(reason), offset_bytes_(offset_bytes) {}
    /// Of the item in question, from the start of the file.
    [[nodiscard]] std::uint64_t offset_bytes() const { return offset_bytes_; }

  private:
    std::uint64_t offset_bytes_;
};

/// Bytes of a file: the only thing that readers of formats reach into them with. Every access is checked and
/// throws Damage outside; offsets are 64-bit and never wrap. Owns nothing.
class ByteView {
  public:
    /// `start_bytes`: where the view is in the file, for Damage.
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
    /// Up to the NUL, at most kLongestText bytes; Damage when there is none.
    [[nodiscard]] std::string_view text(std::uint64_t at) const;
    [[nodiscard]] ByteView part(std::uint64_t at, std::uint64_t count) const;
    /// From `at` to the end.
    [[nodiscard]] ByteView from(std::uint64_t at) const;

    /// Longer names are no names; without a limit, overlapping ones would take the square of a file's length.
    static constexpr std::uint64_t kLongestText = 4096;

  private:
    [[nodiscard]] std::uint64_t number(std::uint64_t at, unsigned width) const;

    std::string_view bytes_;
    ByteOrder order_;
    std::uint64_t start_bytes_;
};

}  // namespace binary_file
