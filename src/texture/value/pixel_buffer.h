#pragma once

#include <cstddef>
#include <cstdint>

#include "texture/file/memory.h"

/// A fixed number of bytes with the manners of a value: copies are deep, equality compares bytes. They begin
/// as zeros whose pages are not touched before they are used, so a picture that a file only claims costs
/// nothing.
class PixelBuffer {
  public:
    PixelBuffer() = default;
    /// `size` zeros. Throws std::bad_alloc when there is no memory.
    explicit PixelBuffer(std::size_t size);
    PixelBuffer(const PixelBuffer& other);
    PixelBuffer(PixelBuffer&& other) noexcept;
    PixelBuffer& operator=(const PixelBuffer& other);
    PixelBuffer& operator=(PixelBuffer&& other) noexcept;
    ~PixelBuffer() = default;

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::uint8_t* data() { return bytes_.get(); }
    [[nodiscard]] const std::uint8_t* data() const { return bytes_.get(); }
    [[nodiscard]] std::uint8_t* begin() { return data(); }
    [[nodiscard]] std::uint8_t* end() { return data() + size_; }
    [[nodiscard]] const std::uint8_t* begin() const { return data(); }
    [[nodiscard]] const std::uint8_t* end() const { return data() + size_; }
    [[nodiscard]] std::uint8_t& operator[](std::size_t i) { return data()[i]; }
    [[nodiscard]] const std::uint8_t& operator[](std::size_t i) const { return data()[i]; }

    friend bool operator==(const PixelBuffer& a, const PixelBuffer& b);

  private:
    MemBlock bytes_;
    std::size_t size_ = 0;
};
