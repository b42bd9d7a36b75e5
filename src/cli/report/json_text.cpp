#include "cli/report/json_text.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "text/printable.h"

namespace cli {
namespace {

using Json = nlohmann::ordered_json;

bool is_plain(const Json& value) {
    return value.is_primitive();
}

bool fits_a_line(const Json& value) {
    return value.empty() || is_plain(value) ||
           (value.is_array() && std::all_of(value.begin(), value.end(), [](const Json& one) {
                return is_plain(one) || (one.is_array() && std::all_of(one.begin(), one.end(), is_plain));
            }));
}

// As deep as the documents of this program are, whose shape no file decides.
void write(const Json& value, std::size_t indent, std::string& text) {
    constexpr std::size_t kStep = 2;
    if (fits_a_line(value)) {
        text += value.dump();
        return;
    }
    const std::string line_break = '\n' + std::string(indent + kStep, ' ');
    text += value.is_object() ? '{' : '[';
    const char* separator = "";
    for (const auto& [key, member] : value.items()) {
        text += separator + line_break;
        if (value.is_object()) {
            text += Json(key).dump() + ": ";
        }
        write(member, indent + kStep, text);
        separator = ",";
    }
    text += '\n' + std::string(indent, ' ') + (value.is_object() ? '}' : ']');
}

}  // namespace

std::string json_text_of(const nlohmann::ordered_json& document) {
    std::string text;
    write(document, 0, text);
    return text + '\n';
}

std::string bytes_of_json_text(const nlohmann::ordered_json& json) {
    if (json.is_string()) {
        return json.get<std::string>();
    }
    const Json digits = json.is_object() ? json.value("bytes", Json()) : Json();
    if (auto bytes =
            digits.is_string() ? text::bytes_of_hexadecimal(digits.get<std::string>()) : std::nullopt) {
        return *std::move(bytes);
    }
    throw std::runtime_error("a text is neither a string nor bytes in hexadecimal");
}

}  // namespace cli
