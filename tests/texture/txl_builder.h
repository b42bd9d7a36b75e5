#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "texture/txl/txl_ids.h"

/// Builds the bytes of a container independently of the code under test.
class HyperBytes {
  public:
    HyperBytes& Raw(std::string_view more) {
        bytes_ += more;
        return *this;
    }
    HyperBytes& Byte(int value) {
        bytes_ += static_cast<char>(value);
        return *this;
    }
    HyperBytes& Be16(std::uint32_t value) {
        return Byte(static_cast<int>((value >> 8) & 0xFF)).Byte(static_cast<int>(value & 0xFF));
    }
    HyperBytes& Be32(std::int64_t value) {
        const auto bits = static_cast<std::uint32_t>(value);
        return Be16(bits >> 16).Be16(bits & 0xFFFF);
    }
    HyperBytes& Header(std::string_view magic = "AVXR", std::string_view ident = "Texa") {
        return Raw(magic).Raw(ident);
    }
    HyperBytes& Start(std::int32_t id, std::int32_t version) { return Byte(1).Be32(id).Be32(version); }
    HyperBytes& End() { return Byte(2); }
    HyperBytes& UChar(int value) { return Byte(12).Byte(value); }
    HyperBytes& Long(std::int32_t value) { return Byte(15).Be32(value); }
    HyperBytes& Real1() { return Byte(19).Be32(0x3F800000); }
    HyperBytes& Bool(int value) { return Byte(21).Byte(value); }
    HyperBytes& Block(std::string_view data) {
        return Byte(128).Be32(static_cast<std::int64_t>(data.size())).Raw(data);
    }
    HyperBytes& String(std::u16string_view units) {
        Byte(130).Be32(static_cast<std::int64_t>(units.size()) * 2);
        for (const char16_t unit : units) {
            Be16(unit);
        }
        return *this;
    }

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

  private:
    std::string bytes_;
};

/// A pixel-rows chunk; a test overrides any field.
struct TxlRows {
    std::int32_t version = 2;
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t count = 2;
    std::int32_t rows = 2;
    std::int32_t channels = 3;
    std::vector<std::pair<int, std::string>> blocks;  // flag and block for each row and each of its channels
    std::string trailing = {};                        // values and chunks after the rows
    bool ended = true;

    [[nodiscard]] std::string bytes() const {
        HyperBytes out;
        out.Start(kChunkPixelRows, version).Long(x).Long(y).Long(count).Long(rows).Long(channels);
        for (const auto& [flag, block] : blocks) {
            out.UChar(flag).Block(block);
        }
        out.Raw(trailing);
        return ended ? out.End().bytes() : out.bytes();
    }
};

struct TxlLayer {
    std::int32_t header_version = 0;
    std::int32_t mode = 2;
    std::string attributes = std::string(1, '\0');
    std::u16string name = u"Alpha";
    std::string trailing;  // after the eleven values
    bool with_header = true;
    TxlRows rows = {.version = 1, .channels = 1, .blocks = {{0, "\x10\x20"}, {0, "\x30\x40"}}};

    [[nodiscard]] std::string bytes() const {
        HyperBytes out;
        out.Start(kChunkLayer, 0);
        if (with_header) {
            out.Start(kChunkLayerHeader, header_version).Long(mode).Block(attributes);
            out.Long(0).Real1().Bool(0).Long(0).Long(0).String(name).Long(0).Long(0).Bool(0);
            out.Raw(trailing).End();
        }
        return out.Raw(rows.bytes()).End().bytes();
    }
};

/// A texture file: by default sound, with 2 x 2 RGB pixels and no alpha. A test overrides the fields that it
/// is about.
struct TxlFile {
    std::string magic = "AVXR";
    std::string ident = "Texa";
    std::string before_texture;  // chunks before the texture chunk
    std::int32_t texture_id = 502;
    std::string before_header;  // chunks at the start of the texture chunk
    std::int32_t header_version = 1;
    std::int32_t width = 2;
    std::int32_t height = 2;
    std::int32_t mode = 4;
    std::string header_trailing;
    std::string before_rows;
    bool with_rows = true;
    TxlRows rows = {.blocks = {{0, "\x01\x02"},
                               {0, "\x11\x12"},
                               {0, "\x21\x22"},
                               {0, "\x03\x04"},
                               {0, "\x13\x14"},
                               {0, "\x23\x24"}}};
    std::string before_layers;
    std::vector<TxlLayer> layers;
    std::string in_alphas;   // chunks after the layers
    int alphas_nesting = 1;  // chunks 110100 around the layers
    std::string after_layers;
    bool texture_ended = true;
    std::string after_texture;

    [[nodiscard]] std::string header_bytes() const {
        HyperBytes out;
        out.Start(kChunkTextureHeader, header_version).Long(width).Long(height);
        if (header_version > 0) {
            out.Long(mode);
        }
        return out.Raw(header_trailing).End().bytes();
    }

    [[nodiscard]] std::string layers_bytes() const {
        if (layers.empty() && in_alphas.empty()) {
            return {};
        }
        HyperBytes out;
        out.Start(kChunkLayerList, 0);
        for (int i = 0; i < alphas_nesting; ++i) {
            out.Start(kChunkAlphaChannels, 0);
        }
        for (const TxlLayer& layer : layers) {
            out.Raw(layer.bytes());
        }
        out.Raw(in_alphas);
        for (int i = 0; i < alphas_nesting; ++i) {
            out.End();
        }
        return out.End().bytes();
    }

    [[nodiscard]] std::string bytes() const {
        HyperBytes out;
        out.Header(magic, ident).Raw(before_texture).Start(texture_id, 0);
        out.Raw(before_header).Raw(header_bytes()).Raw(before_rows);
        if (with_rows) {
            out.Raw(rows.bytes());
        }
        out.Raw(before_layers).Raw(layers_bytes()).Raw(after_layers);
        if (texture_ended) {
            out.End();
        }
        return out.Raw(after_texture).bytes();
    }
};

/// An unknown chunk that holds values of every size and a nested chunk.
inline std::string unknown_chunk() {
    return HyperBytes()
        .Start(777, 3)
        .Long(1)
        .Byte(26)
        .Raw(std::string(96, '\x02'))
        .Start(778, 0)
        .Block("\x01\x02\x03")
        .End()
        .Byte(200)
        .Be32(2)
        .Raw("\x02\x02")
        .End()
        .bytes();
}
