#include "cli/report/check_policy.h"

#include <algorithm>
#include <array>

#include "text/similar.h"

namespace cli {
namespace {

using diagnostic::Severity;

constexpr std::array kSeverities{Severity::error, Severity::loss, Severity::warning, Severity::note};

std::vector<std::string> names_of(const std::vector<diagnostic::CodeInfo>& codes) {
    std::vector<std::string> names;
    names.reserve(codes.size());
    for (const diagnostic::CodeInfo& code : codes) {
        names.emplace_back(code.name);
    }
    return names;
}

}  // namespace

std::string CheckPolicy::fail_on(const std::string& word, const std::vector<diagnostic::CodeInfo>& codes) {
    std::vector<std::string> names = names_of(codes);
    for (const Severity severity : kSeverities) {
        if (word == severity_name(severity)) {
            least_ = std::max(least_, severity);
            return {};
        }
        names.emplace_back(severity_name(severity));
    }
    if (std::find(names.begin(), names.end(), word) == names.end()) {
        return "no severity and no code is called \"" + word + '"' + text::did_you_mean(word, names);
    }
    refused_.insert(word);
    return {};
}

std::string CheckPolicy::ignore(const std::string& word, const std::vector<diagnostic::CodeInfo>& codes) {
    const std::vector<std::string> names = names_of(codes);
    if (std::find(names.begin(), names.end(), word) == names.end()) {
        return "no code is called \"" + word + '"' + text::did_you_mean(word, names);
    }
    ignored_.insert(word);
    return {};
}

bool CheckPolicy::refuses(const diagnostic::Diagnostic& diagnostic) const {
    return diagnostic.severity() <= least_ || refused_.contains(std::string_view(diagnostic.code.name()));
}

bool CheckPolicy::ignores(const diagnostic::Diagnostic& diagnostic) const {
    return ignored_.contains(std::string_view(diagnostic.code.name()));
}

std::vector<std::string> comma_separated(std::string_view text) {
    std::vector<std::string> words;
    for (;;) {
        const std::size_t comma = text.find(',');
        words.emplace_back(text.substr(0, comma));
        if (comma == std::string_view::npos) {
            return words;
        }
        text.remove_prefix(comma + 1);
    }
}

}  // namespace cli
