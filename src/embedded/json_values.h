#pragma once

// How values are written in every JSON document of the tools. Whoever looks into a value, or keeps one, also
// includes <nlohmann/json.hpp>; it costs each source more than a second to compile, so no header does.

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string_view>

#include "embedded/text_encoding.h"
#include "host/host_interface.h"

namespace embedded {

using Json = nlohmann::ordered_json;

/// UTF-8 as a string; any other text as {"bytes":"<lower-case hex>"}.
Json json_text(std::string_view text);

/// Well-formed UTF-16 as a string; any other text as {"utf16":"<lower-case hex, four digits a unit>"}.
Json json_text(Utf16View text);

/// {"bytes":"<lower-case hex>"}
Json json_bytes(std::span<const std::uint8_t> bytes);

/// A number that reads back to the same bits; "inf", "-inf" or "nan" where JSON has no number.
Json json_number(double value);

/// {"value":..,"scale":..}
Json json_time(const A_Time& time);

/// {"num":..,"den":..}
Json json_ratio(const A_Ratio& ratio);

/// A four-character code as text if all four characters are printable ("TXL "), else as a number.
Json json_code(A_long code);

/// Every member of the record, under the names of host_interface.h.
Json json_interpretation(const AEGP_FootageInterp& interpretation);
Json json_alpha_label(const AEIO_AlphaLabel& label);
Json json_transfer_mode(const AEGP_LayerTransferMode& mode);

}  // namespace embedded
