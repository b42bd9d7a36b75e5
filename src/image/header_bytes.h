#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "image/built_in_header.h"

namespace image {

enum class Order : std::uint8_t { big, little };

/// Reads numbers from a file. Bytes past its end read as 0; `cut_off` then returns true.
class HeaderBytes {
  public:
    explicit HeaderBytes(const ReadAt& read_at) : read_at_(read_at) {}

    void set_order(Order order) { order_ = order; }
    [[nodiscard]] bool cut_off() const { return cut_off_; }

    std::uint64_t number(std::uint64_t offset, int bytes) {
        std::array<char, 8> data{};
        read(offset, data.data(), bytes);
        std::uint64_t value = 0;
        for (int i = 0; i < bytes; ++i) {
            const auto at = static_cast<std::size_t>(order_ == Order::big ? i : bytes - 1 - i);
            value = value << 8 | static_cast<unsigned char>(data[at]);
        }
        return value;
    }
    std::uint8_t u8(std::uint64_t offset) { return static_cast<std::uint8_t>(number(offset, 1)); }
    std::uint16_t u16(std::uint64_t offset) { return static_cast<std::uint16_t>(number(offset, 2)); }
    std::uint32_t u32(std::uint64_t offset) { return static_cast<std::uint32_t>(number(offset, 4)); }
    std::int16_t i16(std::uint64_t offset) { return static_cast<std::int16_t>(u16(offset)); }
    std::int32_t i32(std::uint64_t offset) { return static_cast<std::int32_t>(u32(offset)); }

    std::string text(std::uint64_t offset, int bytes) {
        std::string data(static_cast<std::size_t>(bytes), '\0');
        read(offset, data.data(), bytes);
        return data;
    }

  private:
    void read(std::uint64_t offset, char* data, int bytes) {
        if (!read_at_(offset, data, static_cast<std::size_t>(bytes))) {
            std::fill_n(data, bytes, '\0');
            cut_off_ = true;
        }
    }

    const ReadAt& read_at_;
    Order order_ = Order::big;
    bool cut_off_ = false;
};

}  // namespace image
