#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// A heap block of exactly the requested size, which may be zero, so that AddressSanitizer detects an access
/// one byte outside.
class ExactBuffer {
  public:
    explicit ExactBuffer(std::size_t size_bytes, unsigned char fill = 0)
        : size_(size_bytes), bytes_(new unsigned char[size_bytes]) {
        std::fill_n(bytes_.get(), size_, fill);
    }
    explicit ExactBuffer(const std::vector<unsigned char>& content) : ExactBuffer(content.size()) {
        std::copy(content.begin(), content.end(), bytes_.get());
    }

    [[nodiscard]] unsigned char* data() { return bytes_.get(); }
    [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(size_); }
    [[nodiscard]] std::vector<unsigned char> first(std::size_t count) const {
        return {bytes_.get(), bytes_.get() + count};
    }
    [[nodiscard]] std::vector<unsigned char> all() const { return first(size_); }

  private:
    std::size_t size_;
    std::unique_ptr<unsigned char[]> bytes_;
};
