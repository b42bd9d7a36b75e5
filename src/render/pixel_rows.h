#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

// Between the bytes of pictures and the rows of compositing.h.

namespace render {

/// What the colour of footage means.
enum class Coverage : std::uint8_t {
    full,           ///< the picture has no alpha, or it is ignored: every pixel covers
    straight,       ///< colour is as it was before it was cut out
    premultiplied,  ///< colour was laid over the matte colour
};

/// In which values layers are blended.
enum class Light : std::uint8_t {
    as_stored,  ///< in the values of the files, as hosts did when these scenes were made
    linear,     ///< in linear light; files and results are sRGB
};

/// How the bytes of one picture become a row. Colour that was laid over a matte is taken off it: values that
/// no such picture can have, a colour brighter than its alpha over black, are cut to full brightness.
class RowReader {
  public:
    struct Meaning {
        Coverage coverage = Coverage::full;
        bool inverted = false;  ///< alpha 0 covers
        std::array<std::uint8_t, 3> matte{};
        Light light = Light::as_stored;
    };

    explicit RowReader(const Meaning& meaning);

    /// `bytes` are `pixels` times red, green, blue and alpha; `row` has room for as many pixels of
    /// compositing.h.
    void read(const std::uint8_t* bytes, float* row, std::size_t pixels) const;

  private:
    void take_off_matte(const std::uint8_t* bytes, float* row, std::size_t pixels) const;
    [[nodiscard]] float off_matte(std::uint8_t colour, std::uint8_t alpha, std::size_t channel) const;

    Meaning meaning_;
    std::array<float, 256> colour_{};    ///< of a byte
    std::array<float, 256> coverage_{};  ///< of a byte
};

/// Rows as bytes of red, green, blue and alpha, colour straight, each rounded to the nearest. Where nothing
/// covers, all are 0.
class RowWriter {
  public:
    explicit RowWriter(Light light);
    ~RowWriter();
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;

    void write(const float* row, std::uint8_t* bytes, std::size_t pixels) const;

  private:
    struct Steps;
    std::unique_ptr<const Steps> steps_;  ///< of linear light only
};

}  // namespace render
