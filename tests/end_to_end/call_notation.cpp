#include "end_to_end/call_notation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kSetInterpretation = "AEGP_SetFootageInterpretation";
constexpr std::string_view kGetInterpretation = "AEGP_GetFootageInterpretation";

// The shortest decimal that reads back as the same bits, always with a point, an exponent or a word.
std::string number_text(double value) {
    std::array<char, 32> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    if (error != std::errc()) {
        throw std::runtime_error("a number is too long");
    }
    std::string text(buffer.data(), end);
    if (text.find_first_of(".en") == std::string::npos) {
        text += ".0";
    }
    return text;
}

/// "layer:12", for example.
bool is_handle(std::string_view text) {
    static constexpr std::array<std::string_view, 11> kKinds{"project", "item",      "comp",    "layer",
                                                             "stream",  "additions", "footage", "mem",
                                                             "blob",    "inspec",    "outspec"};
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos ||
        std::find(kKinds.begin(), kKinds.end(), text.substr(0, colon)) == kKinds.end()) {
        return false;
    }
    const std::string_view number = text.substr(colon + 1);
    return !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
}

/// The suites that current hosts offer in another version than classic ones.
struct TwoVersions {
    const char* suite;
    int classic;
    int today;
};

constexpr TwoVersions kNewer[] = {
    {"AEGP Register Suite", 4, 6},        {"AEGP File Import Manager Suite", 2, 3},
    {"AEGP Persistent Data Suite", 1, 3}, {"AEGP Proj Suite", 5, 8},
    {"AEGP Footage Suite", 7, 11},        {"AEGP IO In Suite", 1, 5},
    {"AEGP IO Out Suite", 1, 7},          {"AEGP Item Suite", 10, 13},
    {"AEGP Comp Suite", 9, 15},
};
constexpr int kLookAtPointOfInterest = 0x2000;
constexpr int kClassicFunctions = 46;
constexpr int kTodaysFunctions = 49;

int classic_version(const std::string& suite, int version) {
    for (const TwoVersions& newer : kNewer) {
        if (suite != newer.suite) {
            continue;
        }
        // The bridge asks a current host for the classic version only if the host lacks the current one.
        return version == newer.today ? newer.classic : version;
    }
    return version;
}

/// A call into a current host as a classic host would have logged it.
Json in_classic_spelling(Json call) {
    call["version"] = classic_version(call.at("suite"), call.at("version"));
    const std::string function = call.at("function");
    Json& args = call["args"];
    if (function == "AcquireSuite" || function == "ReleaseSuite") {
        const std::string suite = args.at("name");
        const int version = classic_version(suite, args.at("version"));
        args["version"] = version;
        if (call["out"].contains("suite") && call["out"]["suite"].is_string()) {
            call["out"]["suite"] = suite + " " + std::to_string(version);
        }
    } else if (function == "AEGP_RegisterIO" && args.at("functions").is_object()) {
        Json& filled = args["functions"]["filled"];
        if (filled == kTodaysFunctions) {
            filled = kClassicFunctions;
        }
    }
    return call;
}

bool is_of_suite(const Json& call, const char* function, const char* suite) {
    return call.at("function") == function && call.at("args").at("name") == suite;
}

/// Whether the bridge added this call, for something that classic hosts do not have.
bool is_added(const Json& call) {
    return call.at("function") == "AEGP_SetItemName" ||
           (call.at("function") == "AEGP_SetLayerFlag" &&
            call.at("args").value("flag", 0) == kLookAtPointOfInterest);
}

/// The calls of a log without those that the bridge adds in a current host, and without the acquisition and
/// the release around each. The rest is numbered without gaps.
std::vector<Json> without_additions(const std::vector<std::string>& log_lines) {
    std::vector<Json> calls;
    int dropped = 0;
    bool release_follows = false;
    for (const std::string& line : log_lines) {
        Json call = Json::parse(line);
        if (is_added(call)) {
            const char* const suite =
                call.at("function") == "AEGP_SetItemName" ? "AEGP Item Suite" : "AEGP Layer Suite";
            if (calls.empty() || !is_of_suite(calls.back(), "AcquireSuite", suite)) {
                throw std::runtime_error("an added call without its suite");
            }
            calls.pop_back();
            dropped += 3;
            release_follows = true;
        } else if (release_follows) {
            if (call.at("function") != "ReleaseSuite") {
                throw std::runtime_error("a suite is not released after an added call");
            }
            release_follows = false;
        } else {
            call["n"] = call.at("n").get<int>() - dropped;
            calls.push_back(std::move(call));
        }
    }
    return calls;
}

class Notation {
  public:
    explicit Notation(std::string_view folder) : folder_(folder) {}

    std::string line(const Json& call) {
        const std::string function = call.at("function");
        std::string text = function + "(" + arguments(function, call.at("args")) + ")";
        const Json& result = call.at("result");
        if (function == kGetInterpretation) {
            given_.clear();
            for (const Json& record : call.at("out")) {
                flatten("", record, given_);
            }
        } else if (function == "AcquireSuite" && !call.at("out").empty()) {
            if (call.at("out").front().is_null()) {
                text += " -> null";
            }
        } else if (!call.at("out").empty()) {
            text += " -> " + joined(call.at("out"));
        }
        if (result.is_number_float() || result.is_string()) {
            text += " -> " + value(result);
        } else if (result != 0) {
            text += " !" + value(result);
        }
        return text;
    }

  private:
    using Members = std::map<std::string, std::string>;

    std::string text(const std::string& content) const {
        if (is_handle(content)) {
            return content;
        }
        if (!folder_.empty() && content.starts_with(folder_)) {
            // Expected files use the same separator for all systems.
            std::string below = content.substr(folder_.size());
            std::replace(below.begin(), below.end(), '\\', '/');
            return "\"<folder>" + below + "\"";
        }
        return "\"" + content + "\"";
    }

    std::string joined(const Json& values) const {
        std::string all;
        for (const Json& one : values) {
            if (!all.empty()) {
                all += ", ";
            }
            all += value(one);
        }
        return all;
    }

    std::string value(const Json& json) const {
        if (json.is_string()) {
            return text(json);
        }
        if (json.is_number_float()) {
            return number_text(json);
        }
        if (!json.is_structured()) {
            return json.dump();
        }
        if (json.is_array()) {
            return "[" + joined(json) + "]";
        }
        if (json.size() == 2 && json.contains("value") && json.contains("scale")) {
            return value(json["value"]) + "@" + value(json["scale"]);
        }
        if (json.size() == 2 && json.contains("num") && json.contains("den")) {
            return value(json["num"]) + "/" + value(json["den"]);
        }
        if (json.size() == 1 && json.contains("bytes")) {
            return "bytes " + json["bytes"].get<std::string>();
        }
        if (json.size() == 2 && json.contains("stream") && json.contains("value")) {
            return value(json["stream"]) + " " + value(json["value"]);
        }
        if (json.contains("x") || json.contains("red")) {
            return "(" + joined(json) + ")";
        }
        return "{" + joined(json) + "}";
    }

    void flatten(const std::string& name, const Json& json, Members& members) const {
        if (!json.is_object() || json.contains("num")) {
            members[name] = value(json);
            return;
        }
        for (const auto& [key, member] : json.items()) {
            std::string full = name;
            full.append(name.empty() ? "" : ".").append(key);
            flatten(full, member, members);
        }
    }

    std::string arguments(const std::string& function, const Json& args) const {
        if (function != kSetInterpretation) {
            return joined(args);
        }
        Json others = args;
        Json record;
        for (const auto& [name, argument] : args.items()) {
            if (argument.is_object()) {
                record = argument;
                others.erase(name);
            }
        }
        Members set;
        flatten("", record, set);
        std::string all = joined(others);
        for (const char* decided : {"alpha.flags", "interlace.type", "interlace.order", "pixel_aspect"}) {
            all.append(", ").append(decided).append(" ").append(set.at(decided));
            set.erase(decided);
        }
        for (const auto& [name, content] : set) {
            if (given_.at(name) != content) {
                all.append(", ").append(name).append(" ").append(content);
            }
        }
        return all;
    }

    std::string folder_;
    Members given_;  // the interpretation that the host returned and the importer edits
};

std::vector<std::string> in_notation(const std::vector<Json>& calls, std::string_view folder) {
    Notation notation(folder);
    std::vector<std::string> lines;
    std::transform(calls.begin(), calls.end(), std::back_inserter(lines),
                   [&notation](const Json& call) { return notation.line(in_classic_spelling(call)); });
    return lines;
}

}  // namespace

std::vector<std::string> calls_in_notation(const std::vector<std::string>& log_lines,
                                           std::string_view folder) {
    return in_notation(without_additions(log_lines), folder);
}

std::vector<std::string> all_calls_in_notation(const std::vector<std::string>& log_lines,
                                               std::string_view folder) {
    std::vector<Json> calls;
    std::transform(log_lines.begin(), log_lines.end(), std::back_inserter(calls),
                   [](const std::string& line) { return Json::parse(line); });
    return in_notation(calls, folder);
}

std::vector<std::string> in_classic_spelling(const std::vector<std::string>& log_lines) {
    std::vector<std::string> lines;
    for (const Json& call : without_additions(log_lines)) {
        lines.push_back(in_classic_spelling(call).dump());
    }
    return lines;
}

std::vector<std::string> read_expected_calls(const std::string& path) {
    std::ifstream in(path);
    std::vector<std::string> calls;
    for (std::string line; std::getline(in, line);) {
        const std::size_t begin = line.find_first_not_of(" \t");
        if (begin != std::string::npos && line[begin] != '#') {
            calls.push_back(line.substr(begin));
        }
    }
    if (calls.empty()) {
        throw std::runtime_error("no expected calls in " + path);
    }
    return calls;
}

std::string first_difference(const std::vector<std::string>& expected, const std::vector<std::string>& made) {
    const auto [missed, strange] = std::mismatch(expected.begin(), expected.end(), made.begin(), made.end());
    if (missed == expected.end() && strange == made.end()) {
        return {};
    }
    const auto at = static_cast<std::size_t>(missed - expected.begin());
    std::string text = "call " + std::to_string(at + 1) + " of " + std::to_string(expected.size()) +
                       " expected, " + std::to_string(made.size()) + " made:\n";
    constexpr std::size_t kAround = 3;
    for (std::size_t i = at - std::min(at, kAround); i < at; ++i) {
        text += "           " + expected[i] + "\n";
    }
    text += "  expected " + (missed == expected.end() ? "nothing" : *missed) + "\n";
    for (std::size_t i = at; i < std::min(at + kAround, made.size()); ++i) {
        text += "  made     " + made[i] + "\n";
    }
    return text;
}
