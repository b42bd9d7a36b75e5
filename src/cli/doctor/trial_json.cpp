#include "cli/doctor/trial_json.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <nlohmann/json.hpp>

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

/// Texts that are not UTF-8 come as an object; what is shown of them is the hexadecimal in it.
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

Json trial_json(const Trial& trial) {
    Json registered = Json::array();
    for (const Registration& one : trial.registered) {
        registered.push_back(Json{{"kind", one.kind},
                                  {"name", embedded::json_text(one.name)},
                                  {"extensions", texts(one.extensions)}});
    }
    return Json{{"generation", trial.generation},
                {"end", kEnds[static_cast<std::size_t>(trial.end)]},
                {"reason", embedded::json_text(trial.reason)},
                {"registered", registered},
                {"messages", texts(trial.messages)}};
}

std::string trial_line(const Trial& trial) {
    return trial_json(trial).dump() + '\n';
}

std::optional<Trial> read_trial_line(const std::string& line) {
    try {
        const Json json = Json::parse(line);
        Trial trial;
        trial.generation = json.at("generation");
        const auto* const end = std::find(kEnds.begin(), kEnds.end(), json.at("end").get<std::string>());
        if (end == kEnds.end()) {
            return std::nullopt;
        }
        trial.end = static_cast<TrialEnd>(std::distance(kEnds.begin(), end));
        trial.reason = text_of(json.at("reason"));
        for (const Json& one : json.at("registered")) {
            trial.registered.push_back(
                {one.at("kind"), text_of(one.at("name")), texts_of(one.at("extensions"))});
        }
        trial.messages = texts_of(json.at("messages"));
        return trial;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

}  // namespace cli::doctor
