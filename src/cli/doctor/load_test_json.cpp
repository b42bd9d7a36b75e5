#include <algorithm>
#include <array>
#include <iterator>
#include <nlohmann/json.hpp>

#include "cli/doctor/load_test.h"
#include "embedded/json_values.h"

namespace cli::doctor {
namespace {

using Json = nlohmann::ordered_json;

// In the order of the enumeration.
constexpr std::array kEnds{"listed", "failed", "not-loadable", "crashed", "timed-out"};

Json texts(const std::vector<std::string>& all) {
    Json json = Json::array();
    for (const std::string& text : all) {
        json.push_back(embedded::json_text(text));
    }
    return json;
}

/// A text that is not UTF-8 is an object in the JSON; its hexadecimal bytes are shown instead.
std::string text_of(const Json& json) {
    return json.is_object() ? json.at("bytes").get<std::string>() : json.get<std::string>();
}

std::vector<std::string> texts_of(const Json& json) {
    std::vector<std::string> all;
    for (const Json& text : json) {
        all.push_back(text_of(text));
    }
    return all;
}

}  // namespace

Json load_test_json(const LoadTest& load_test) {
    Json registered = Json::array();
    for (const Registration& one : load_test.registered) {
        registered.push_back(Json{{"kind", one.kind},
                                  {"name", embedded::json_text(one.name)},
                                  {"extensions", texts(one.extensions)}});
    }
    return Json{{"generation", load_test.generation},
                {"end", kEnds[static_cast<std::size_t>(load_test.end)]},
                {"reason", embedded::json_text(load_test.reason)},
                {"registered", registered},
                {"messages", texts(load_test.messages)}};
}

std::string load_test_line(const LoadTest& load_test) {
    return load_test_json(load_test).dump() + '\n';
}

std::optional<LoadTest> read_load_test_line(const std::string& line) {
    try {
        const Json json = Json::parse(line);
        LoadTest load_test;
        load_test.generation = json.at("generation");
        const auto* const end = std::find(kEnds.begin(), kEnds.end(), json.at("end").get<std::string>());
        if (end == kEnds.end()) {
            return std::nullopt;
        }
        load_test.end = static_cast<LoadOutcome>(std::distance(kEnds.begin(), end));
        load_test.reason = text_of(json.at("reason"));
        for (const Json& one : json.at("registered")) {
            load_test.registered.push_back(
                {one.at("kind"), text_of(one.at("name")), texts_of(one.at("extensions"))});
        }
        load_test.messages = texts_of(json.at("messages"));
        return load_test;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

}  // namespace cli::doctor
