#pragma once

#include <cstdint>

// The identifiers in a texture file, for the reader, the writer and the tools that print them.

/// Four ASCII characters read as one big-endian value.
constexpr std::int32_t four_characters(const char (&text)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = (value << 8) | static_cast<unsigned char>(text[i]);
    }
    return static_cast<std::int32_t>(value);
}

constexpr std::int32_t kTextureFileIdent = four_characters("Texa");

constexpr std::int32_t kChunkTexture = 502;
constexpr std::int32_t kChunkTextureHeader = four_characters("TaTx");
constexpr std::int32_t kChunkPixelRows = four_characters("TaVx");
constexpr std::int32_t kChunkLayerList = 599;
constexpr std::int32_t kChunkAlphaChannels = 110100;
constexpr std::int32_t kChunkLayer = 501;
constexpr std::int32_t kChunkLayerHeader = four_characters("TaLy");

/// Colour modes, and the bytes per pixel of the texture's own rows in each; 0 for modes without rows.
constexpr std::int32_t kModeGrey = 2;
constexpr std::int32_t kModeRgb = 4;
constexpr std::int32_t texture_channels(std::int32_t mode) {
    return mode == kModeGrey ? 1 : mode == kModeRgb ? 3 : 0;
}

/// How a channel of a row is coded.
constexpr std::uint8_t kRowRaw = 0;
constexpr std::uint8_t kRowPacked = 1;
