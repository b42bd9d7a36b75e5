#include "cli/batch/item_result.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "cli/job/digest.h"
#include "cli/report/json_text.h"
#include "embedded/json_values.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kItemResultSchema = 1;

struct StandingRow {
    const char* label;
    ExitCode code;
};

// In the order of the enumeration.
constexpr std::array<StandingRow, kItemStandings> kStandings{{
    {"fine", ExitCode::fine},
    {"incomplete", ExitCode::footage_missing},
    {"different", ExitCode::different},
    {"refused", ExitCode::refused},
    {"failed", ExitCode::cannot_read_or_write},
    {"misused", ExitCode::usage},
    {"crashed", ExitCode::cannot_read_or_write},
    {"too-long", ExitCode::cannot_read_or_write},
    {"too-large", ExitCode::cannot_read_or_write},
    {"not-done", ExitCode::cannot_read_or_write},
}};

Json state_json(const std::optional<InputState>& state) {
    return state ? Json{{"bytes", state->size_bytes},
                        {"changed_ns", state->changed_ns},
                        {"number", state->number}}
                 : Json();
}

std::optional<InputState> state_of(const Json& json) {
    if (json.is_null()) {
        return std::nullopt;
    }
    return InputState{json.at("bytes").get<std::uint64_t>(), json.at("changed_ns").get<std::int64_t>(),
                      json.at("number").get<std::string>()};
}

}  // namespace

const char* label(ItemStanding standing) {
    return kStandings[static_cast<std::size_t>(standing)].label;
}

ExitCode exit_code_of(ItemStanding standing) {
    return kStandings[static_cast<std::size_t>(standing)].code;
}

std::string item_key(const std::string& version, const std::vector<std::string>& words,
                     const std::string& input_sha256) {
    Sha256 digest;
    const std::string_view end("\0", 1);
    digest.add(version);
    digest.add(end);
    digest.add(input_sha256);
    for (const std::string& word : words) {
        digest.add(end);
        digest.add(word);
    }
    return digest.hexadecimal();
}

std::string item_result_text(const ItemResult& result) {
    return Json{{"schema", kItemResultSchema},
                {"key", result.key},
                {"input_sha256", result.input_sha256},
                {"input_state", state_json(result.state)},
                {"standing", label(result.standing)},
                {"exit_code", result.exit_code ? Json(*result.exit_code) : Json()},
                {"signal", embedded::json_text(result.signal)},
                {"wrote", result.wrote},
                {"log", result.has_log},
                {"out", embedded::json_text(result.out)}}
               .dump() +
           '\n';
}

std::optional<ItemResult> parse_item_result(std::string_view text) {
    try {
        const Json json = Json::parse(text);
        if (json.at("schema") != kItemResultSchema) {
            return std::nullopt;
        }
        ItemResult result;
        result.key = json.at("key").get<std::string>();
        result.input_sha256 = json.at("input_sha256").get<std::string>();
        result.state = state_of(json.at("input_state"));
        const std::string standing = json.at("standing").get<std::string>();
        const auto* const row = std::find_if(kStandings.begin(), kStandings.end(),
                                             [&](const StandingRow& one) { return one.label == standing; });
        if (row == kStandings.end()) {
            return std::nullopt;
        }
        result.standing = static_cast<ItemStanding>(row - kStandings.begin());
        if (!json.at("exit_code").is_null()) {
            result.exit_code = json.at("exit_code").get<int>();
        }
        result.signal = bytes_of_json_text(json.at("signal"));
        result.wrote = json.at("wrote").get<bool>();
        result.has_log = json.at("log").get<bool>();
        result.out = bytes_of_json_text(json.at("out"));
        return result;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace cli
