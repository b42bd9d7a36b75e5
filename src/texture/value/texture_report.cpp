#include "texture/value/texture_report.h"

#include <algorithm>

namespace {

bool names_a_chunk(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '_';
}

void append_utf8(std::string& text, char32_t character) {
    const auto continuation = [character](int shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | (character >> 6));
        text += continuation(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | (character >> 12));
        text += continuation(6);
        text += continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        text += continuation(12);
        text += continuation(6);
        text += continuation(0);
    }
}

constexpr bool leads(std::uint16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool trails(std::uint16_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

const char* notice_name(TextureNotice notice) {
    switch (notice) {
        case TextureNotice::row_cleared:
            return "row-cleared";
        case TextureNotice::row_repeated:
            return "row-repeated";
        case TextureNotice::chunk_skipped:
            return "chunk-skipped";
        case TextureNotice::layer_without_alpha:
            return "layer-without-alpha";
        case TextureNotice::outside_picture:
            return "outside-picture";
        case TextureNotice::second_header:
            return "second-header";
        case TextureNotice::cut_off:
            return "cut-off";
    }
    return "";
}

std::string chunk_name(std::int32_t id) {
    const auto bits = static_cast<std::uint32_t>(id);
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) {
        name += static_cast<char>((bits >> shift) & 0xFF);
    }
    const bool readable = std::all_of(name.begin(), name.end(),
                                      [](char c) { return names_a_chunk(static_cast<unsigned char>(c)); });
    return readable ? name : std::to_string(id);
}

std::string chunk_path(const std::vector<std::string>& within) {
    std::string path;
    for (const std::string& name : within) {
        path += path.empty() ? "" : " > ";
        path += name;
    }
    return path;
}

std::string utf8_from_units(std::span<const std::uint16_t> units) {
    constexpr char32_t kReplacement = 0xFFFD;
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const std::uint16_t unit = units[i];
        if (leads(unit) && i + 1 < units.size() && trails(units[i + 1])) {
            append_utf8(text, 0x10000 + ((char32_t{unit} & 0x3FF) << 10) + (char32_t{units[++i]} & 0x3FF));
        } else {
            append_utf8(text, leads(unit) || trails(unit) ? kReplacement : char32_t{unit});
        }
    }
    return text;
}
