#include "embedded/json_values.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <string>

namespace embedded {
namespace {

/// The length of the well-formed sequence at the start of `text`, 0 when there is none. The table of
/// well-formed byte sequences is that of the Unicode standard, section 3.9.
std::size_t utf8_sequence_length(std::string_view text) {
    const auto byte = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const auto continues = [&byte](std::size_t i, unsigned low = 0x80U, unsigned high = 0xBFU) {
        return byte(i) >= low && byte(i) <= high;
    };
    const unsigned first = byte(0);
    if (first < 0x80U)
        return 1;
    if (first >= 0xC2U && first <= 0xDFU)
        return continues(1) ? 2 : 0;
    if (first >= 0xE0U && first <= 0xEFU) {
        const unsigned low = first == 0xE0U ? 0xA0U : 0x80U;   // no overlong forms
        const unsigned high = first == 0xEDU ? 0x9FU : 0xBFU;  // no surrogates
        return continues(1, low, high) && continues(2) ? 3 : 0;
    }
    if (first >= 0xF0U && first <= 0xF4U) {
        const unsigned low = first == 0xF0U ? 0x90U : 0x80U;
        const unsigned high = first == 0xF4U ? 0x8FU : 0xBFU;  // nothing above U+10FFFF
        return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

}  // namespace

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = utf8_sequence_length(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

Json json_bytes(std::span<const std::uint8_t> bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 0xF];
    }
    return Json{{"bytes", hex}};
}

Json json_text(std::string_view text) {
    if (is_utf8(text))
        return Json(std::string(text));
    return json_bytes({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

Json json_number(double value) {
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    return value;
}

Json json_time(const A_Time& time) {
    return Json{{"value", time.value}, {"scale", time.scale}};
}

Json json_ratio(const A_Ratio& ratio) {
    return Json{{"num", ratio.num}, {"den", ratio.den}};
}

Json json_code(A_long code) {
    std::array<char, 4> text{};
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = (static_cast<std::uint32_t>(code) >> (24 - 8 * i)) & 0xFFU;
        if (byte < 0x20 || byte > 0x7E)
            return code;
        text[i] = static_cast<char>(byte);
    }
    return std::string(text.data(), text.size());
}

Json json_interpretation(const AEGP_FootageInterp& interpretation) {
    const FIEL_Label& interlace = interpretation.interlace;
    const AEGP_AlphaLabel& alpha = interpretation.alpha;
    // Copies of the packed members: an element of an initializer list would bind a reference to them.
    return Json{
        {"interlace",
         {{"signature", A_u_long{interlace.signature}},
          {"version", A_short{interlace.version}},
          {"type", FIEL_Type{interlace.type}},
          {"order", FIEL_Order{interlace.order}},
          {"reserved", A_u_long{interlace.reserved}}}},
        {"alpha", {{"flags", alpha.flags}, {"red", alpha.red}, {"green", alpha.green}, {"blue", alpha.blue}}},
        {"pulldown_phase", interpretation.pulldown_phase},
        {"loop", {{"loops", interpretation.loop.loops}, {"reserved", interpretation.loop.reserved}}},
        {"pixel_aspect", json_ratio(interpretation.pixel_aspect)},
        {"native_fps", json_number(interpretation.native_fps)},
        {"conform_fps", json_number(interpretation.conform_fps)},
        {"depth", interpretation.depth},
        {"motion", interpretation.motion}};
}

Json json_alpha_label(const AEIO_AlphaLabel& label) {
    return Json{{"version", A_short{label.version}},
                {"flags", AEIO_AlphaFlags{label.flags}},
                {"red", label.red},
                {"green", label.green},
                {"blue", label.blue},
                {"alpha_type", label.alpha_type}};
}

Json json_transfer_mode(const AEGP_LayerTransferMode& mode) {
    return Json{{"mode", mode.mode}, {"flags", mode.flags}, {"track_matte", mode.track_matte}};
}

}  // namespace embedded
