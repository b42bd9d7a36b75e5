#include "cli/footage/footage_finding.h"

#include <array>
#include <iterator>
#include <utility>

namespace cli {
namespace {

constexpr const char* kRuleLabels[] = {"as-written", "beside-scene", "kept",       "map",
                                       "tail",       "unicode-form", "mac-roman",  "windows-1252",
                                       "cut-name",   "letter-case",  "other-frame"};
static_assert(std::size(kRuleLabels) == static_cast<std::size_t>(FindingRule::other_frame) + 1);

constexpr std::array<std::pair<const char*, Preference>, 3> kPreferences{
    {{"newest", Preference::newest}, {"largest", Preference::largest}, {"first", Preference::first}}};

}  // namespace

const char* label(FindingRule rule) {
    return kRuleLabels[static_cast<std::size_t>(rule)];
}

const char* label(Finding::Outcome outcome) {
    switch (outcome) {
        case Finding::Outcome::found:
            return "found";
        case Finding::Outcome::ambiguous:
            return "ambiguous";
        case Finding::Outcome::missing:
            break;
    }
    return "missing";
}

std::optional<Preference> parse_preference(std::string_view text) {
    for (const auto& [name, preference] : kPreferences) {
        if (text == name) {
            return preference;
        }
    }
    return std::nullopt;
}

const char* label(Preference preference) {
    for (const auto& [name, known] : kPreferences) {
        if (known == preference) {
            return name;
        }
    }
    return "";
}

}  // namespace cli
