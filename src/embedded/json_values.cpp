#include "embedded/json_values.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "embedded/text_encoding.h"

namespace embedded {

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
    if (is_utf8(text)) {
        return Json(std::string(text));
    }
    return json_bytes({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

Json json_text(Utf16View text) {
    if (const auto utf8 = to_utf8(text)) {
        return Json(*utf8);
    }
    std::string hex;
    for (const A_UTF16Char unit : text) {
        const unsigned value = unit;
        for (const unsigned shift : {12U, 8U, 4U, 0U}) {
            hex += "0123456789abcdef"[(value >> shift) & 0xFU];
        }
    }
    return Json{{"utf16", hex}};
}

Json json_number(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value > 0 ? "inf" : "-inf";
    }
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
        if (byte < 0x20 || byte > 0x7E) {
            return code;
        }
        text[i] = static_cast<char>(byte);
    }
    return std::string(text.data(), text.size());
}

Json json_interpretation(const AEGP_FootageInterp& interpretation) {
    const FIEL_Label& interlace = interpretation.interlace;
    const AEGP_AlphaLabel& alpha = interpretation.alpha;
    // Packed members are copied: an initializer list would bind references to them.
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
