#include "texture/value/texture_image.h"

#include <algorithm>
#include <new>

#include "limit/limits.h"
#include "texture/file/memory.h"
#include "texture/txl/txl_ids.h"

bool TextureSink::Init(std::int32_t w, std::int32_t h, std::int32_t colorMode) {
    if (has_picture_) {
        recorder_.notice(TextureNotice::second_header,
                         [] { return std::string("a second texture header starts the picture over"); });
    }
    texture_ = Texture{};
    decoded_bytes_ = 0;
    has_channel_ = false;
    colour_ = {};
    colour_.offset_bytes = recorder_.chunk_offset_bytes();
    alphas_.clear();
    names_.clear();
    last_number_.clear();
    const bool negative = w < 0 || h < 0;
    if (negative || std::int64_t{w} * h > limits::kTexturePixels.value) {
        const std::string reason = "a texture of " + std::to_string(w) + " x " + std::to_string(h) +
                                   " pixels; sizes must not be negative, and at most 2^30 pixels are read";
        recorder_.refuse(TextureFault::over_limit, reason, negative ? nullptr : &limits::kTexturePixels);
        return false;
    }
    texture_.width_px = w;
    texture_.height_px = h;
    texture_.mode = colorMode;
    // A mode without rows takes no bytes; read_texture refuses such a picture after the load.
    const std::uint64_t bytes =
        texture_.pixel_count() * static_cast<std::uint64_t>(texture_channels(colorMode));
    if (!reserve(bytes, "the picture")) {
        return false;
    }
    try {
        texture_.pixels = PixelBuffer(bytes);
    } catch (const std::bad_alloc&) {
        recorder_.refuse(TextureFault::out_of_memory, "no memory for " + std::to_string(bytes) + " bytes");
        return false;
    }
    has_picture_ = true;
    return true;
}

bool TextureSink::InitAlphaChannel(std::int32_t /*channel*/, std::int32_t /*w*/, std::int32_t /*h*/) {
    has_channel_ = false;
    const std::size_t bytes = texture_.pixel_count();
    if (!reserve(bytes, "one more alpha channel")) {
        return false;
    }
    try {
        texture_.alphas.push_back({unique_name(recorder_.layer_name()), PixelBuffer(bytes)});
        alphas_.push_back({{}, recorder_.chunk_offset_bytes(), !recorder_.layer_has_no_alpha()});
    } catch (const std::bad_alloc&) {
        recorder_.refuse(TextureFault::out_of_memory, "no memory for " + std::to_string(bytes) + " bytes");
        return false;
    }
    has_channel_ = true;
    return true;
}

bool TextureSink::SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                                std::int32_t stride) {
    const Part part = clip(x, y, count);
    const std::int32_t channels = texture_channels(texture_.mode);
    if (part.begin >= part.end || channels != stride) {
        return true;
    }
    colour_.rows.add(y);
    const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(texture_.width_px) +
                              static_cast<std::size_t>(x + part.begin);
    MemCopy(data + std::int64_t{part.begin} * stride,
            texture_.pixels.data() + first * static_cast<std::size_t>(channels),
            std::int64_t{part.end - part.begin} * stride);
    return true;
}

bool TextureSink::SetAlphaPixel(std::int32_t /*channel*/, std::int32_t x, std::int32_t y, std::int32_t count,
                                unsigned char* data) {
    if (!has_channel_) {
        return false;
    }
    const Part part = clip(x, y, count);
    if (part.begin < part.end) {
        alphas_.back().rows.add(y);
        const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(texture_.width_px) +
                                  static_cast<std::size_t>(x + part.begin);
        MemCopy(data + part.begin, texture_.alphas.back().values.data() + first, part.end - part.begin);
    }
    return true;
}

TextureSink::Part TextureSink::clip(std::int32_t x, std::int32_t y, std::int32_t count) {
    const bool row_inside = y >= 0 && y < texture_.height_px;
    const std::int64_t begin = std::clamp<std::int64_t>(-std::int64_t{x}, 0, count);
    const std::int64_t end = std::clamp<std::int64_t>(std::int64_t{texture_.width_px} - x, begin, count);
    if (!row_inside || begin != 0 || end != count) {
        recorder_.notice(TextureNotice::outside_picture, [&] {
            return "row " + std::to_string(y) + ", with " + std::to_string(count) + " pixels from column " +
                   std::to_string(x) + ", extends beyond the picture";
        });
    }
    if (!row_inside) {
        return {0, 0};
    }
    return {static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end)};
}

void TextureSink::finish() {
    report_missing(colour_, "the picture");
    for (std::size_t i = 0; i < alphas_.size(); ++i) {
        report_missing(alphas_[i], "alpha channel " + std::to_string(i + 1));
    }
}

void TextureSink::report_missing(const Rows& found, const std::string& of_what) {
    const std::int64_t there = found.rows.count();
    if (found.expected && texture_.width_px > 0 && there < texture_.height_px) {
        recorder_.notice_at(TextureNotice::rows_missing, found.offset_bytes, [&] {
            return of_what + " has " + std::to_string(texture_.height_px) +
                   " rows, of which the file holds " + std::to_string(there);
        });
    }
}

bool TextureSink::reserve(std::uint64_t bytes, const char* what) {
    if (bytes > max_decoded_bytes_ - decoded_bytes_) {
        recorder_.refuse(TextureFault::over_limit,
                         std::string(what) + " takes " + std::to_string(bytes) + " bytes in addition to " +
                             std::to_string(decoded_bytes_) + "; at most " +
                             std::to_string(max_decoded_bytes_) + " are allowed",
                         &limits::kDecodedBytes);
        return false;
    }
    decoded_bytes_ += bytes;
    return true;
}

std::string TextureSink::unique_name(const std::string& stored) {
    const std::string base = stored.empty() ? "Alpha" : stored;
    std::string name = base;
    while (!names_.insert(name).second) {
        std::int64_t& number = last_number_.try_emplace(base, 1).first->second;
        name = base + "." + std::to_string(++number);
    }
    return name;
}

std::int32_t TextureSource::GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                                          unsigned char* data) {
    const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(texture_.width_px) +
                              static_cast<std::size_t>(x);
    const std::int32_t channels = texture_.channels();
    MemCopy(texture_.pixels.data() + first * static_cast<std::size_t>(channels), data,
            std::int64_t{count} * channels);
    return 0;
}

std::int32_t TextureSource::GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y,
                                          std::int32_t count, unsigned char* data) {
    const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(texture_.width_px) +
                              static_cast<std::size_t>(x);
    MemCopy(texture_.alphas[static_cast<std::size_t>(channel)].values.data() + first, data, count);
    return 0;
}
