#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "texture/txl/txl_image.h"
#include "texture/value/row_set.h"
#include "texture/value/texture.h"
#include "texture/value/texture_recorder.h"

/// Lets the texture filter fill a `Texture`: every layer becomes an alpha channel, and every byte is kept
/// unchanged.
class TextureSink final : public TXLImage {
  public:
    /// `texture` and `recorder` are not owned. Holds at most `max_decoded_bytes` bytes of pixels and alphas.
    TextureSink(Texture& texture, TextureRecorder& recorder, std::uint64_t max_decoded_bytes)
        : texture_(texture), recorder_(recorder), max_decoded_bytes_(max_decoded_bytes) {}

    /// Starts over. False, with the reason in the recorder, for negative sizes, for more pixels than
    /// limits::kTexturePixels, for more bytes than allowed, and when memory is short.
    bool Init(std::int32_t w, std::int32_t h, std::int32_t colorMode) override;
    /// Appends a channel with the name of the layer announced last, made unique. False, with the reason in
    /// the recorder, when it exceeds the limit or memory is short.
    bool InitAlphaChannel(std::int32_t channel, std::int32_t w, std::int32_t h) override;
    bool SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                       std::int32_t stride) override;
    /// Stores into the channel appended last; false when there is none.
    bool SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                       unsigned char* data) override;

    /// Ends a load without an error. Rows of the picture and of its alpha channels that the file does not
    /// hold are recorded as notices.
    void finish();

    /// Whether a texture header was read.
    [[nodiscard]] bool has_picture() const { return has_picture_; }

    /// The rows of colour that the file holds.
    [[nodiscard]] const RowSet& colour_rows() const { return colour_.rows; }

  private:
    bool reserve(std::uint64_t bytes, const char* what);
    std::string unique_name(const std::string& stored);
    /// The part of a row that lies inside the picture: [begin, end), relative to `x`.
    struct Part {
        std::int32_t begin, end;
    };
    Part clip(std::int32_t x, std::int32_t y, std::int32_t count);

    /// What the file holds of the colour or of an alpha channel.
    struct Rows {
        RowSet rows;
        std::int64_t offset_bytes = 0;  // of the header chunk
        bool expected = true;           // false where the file may hold none
    };
    void report_missing(const Rows& found, const std::string& of_what);

    Texture& texture_;
    TextureRecorder& recorder_;
    std::uint64_t max_decoded_bytes_;
    std::uint64_t decoded_bytes_ = 0;
    bool has_picture_ = false;
    bool has_channel_ = false;
    Rows colour_;
    std::vector<Rows> alphas_;  // one for each alpha channel
    std::set<std::string> names_;
    std::map<std::string, std::int64_t> last_number_;  // the last number appended to each stored name
};

/// Lets the texture filter read a `Texture`, which is not owned and passes validate_for_writing.
class TextureSource final : public TXLImage {
  public:
    explicit TextureSource(const Texture& texture) : texture_(texture) {}

    std::int32_t GetBw() override { return texture_.width_px; }
    std::int32_t GetBh() override { return texture_.height_px; }
    std::int32_t GetColorMode() override { return texture_.mode; }
    std::int32_t GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;
    std::int32_t GetAlphaCount() override { return static_cast<std::int32_t>(texture_.alphas.size()); }
    std::int32_t GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;

  private:
    const Texture& texture_;
};
