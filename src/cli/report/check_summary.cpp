#include "cli/report/check_summary.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <tuple>

#include "cli/report/diagnostic_text.h"
#include "cli/terminal/text_table.h"
#include "embedded/json_values.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

constexpr std::size_t kMostFiles = 3;

// Every way in which a file comes out, the best first.
constexpr std::array kOutcomes{ExitCode::fine, ExitCode::footage_missing, ExitCode::refused,
                               ExitCode::cannot_read_or_write};

std::string files_text(std::size_t count) {
    return grouped(static_cast<std::int64_t>(count)) + (count == 1 ? " file" : " files");
}

}  // namespace

void CheckSummary::add(const std::string& file, ExitCode code,
                       const std::vector<diagnostic::Diagnostic>& diagnostics, std::size_t ignored) {
    ++outcomes_.at(static_cast<std::size_t>(code));
    ignored_ += ignored;
    std::map<std::string, std::int64_t> counts;
    for (const diagnostic::Diagnostic& one : diagnostics) {
        codes_.try_emplace(one.code.name(), OfCode{one.code});
        counts[one.code.name()] += one.count;
    }
    for (const auto& [name, count] : counts) {
        OfCode& all = codes_.at(name);
        all.count += count;
        ++all.files;
        all.most.emplace_back(file, count);
        std::stable_sort(all.most.begin(), all.most.end(),
                         [](const auto& a, const auto& b) { return a.second > b.second; });
        all.most.resize(std::min(all.most.size(), kMostFiles));
    }
}

std::vector<CheckSummary::OfCode> CheckSummary::in_order() const {
    std::vector<OfCode> codes;
    for (const auto& [name, code] : codes_) {
        codes.push_back(code);
    }
    std::stable_sort(codes.begin(), codes.end(), [](const OfCode& a, const OfCode& b) {
        return std::tuple(a.code.severity(), -a.count) < std::tuple(b.code.severity(), -b.count);
    });
    return codes;
}

std::string CheckSummary::text(const Paint& paint) const {
    std::size_t files = 0;
    std::string text;
    for (const ExitCode code : kOutcomes) {
        const std::size_t count = outcomes_.at(static_cast<std::size_t>(code));
        files += count;
        if (count > 0) {
            text += (text.empty() ? "" : ", ") + grouped(static_cast<std::int64_t>(count)) + ' ' +
                    verdict_label(code);
        }
    }
    text = files_text(files) + ": " + text;
    if (ignored_ > 0) {
        text += "; " + grouped(static_cast<std::int64_t>(ignored_)) + " ignored";
    }
    text += '\n';
    TextTable table;
    table.add({{"severity"}, {"count"}, {"code"}, {"files"}, {"most in"}});
    for (const OfCode& one : in_order()) {
        std::string most;
        for (const auto& [file, count] : one.most) {
            most += (most.empty() ? "" : ", ") + text::printable(file) + " (" + grouped(count) + ')';
        }
        table.add({{severity_name(one.code.severity()), ink_of(one.code.severity())},
                   {grouped(one.count), Ink::plain, true},
                   {one.code.name()},
                   {grouped(static_cast<std::int64_t>(one.files)), Ink::plain, true},
                   {most}});
    }
    if (!codes_.empty()) {
        text += '\n';
        for (const std::string& line : table.lines(paint)) {
            text += line + '\n';
        }
    }
    return text;
}

nlohmann::ordered_json CheckSummary::json() const {
    Json json;
    std::size_t files = 0;
    for (const ExitCode code : kOutcomes) {
        files += outcomes_.at(static_cast<std::size_t>(code));
    }
    json["files"] = files;
    for (const ExitCode code : kOutcomes) {
        json[verdict_label(code)] = outcomes_.at(static_cast<std::size_t>(code));
    }
    json["ignored"] = ignored_;
    json["codes"] = Json::array();
    for (const OfCode& one : in_order()) {
        Json most = Json::array();
        for (const auto& [file, count] : one.most) {
            most.push_back(Json{{"file", embedded::json_text(file)}, {"count", count}});
        }
        json["codes"].push_back(Json{{"code", one.code.name()},
                                     {"severity", severity_name(one.code.severity())},
                                     {"count", one.count},
                                     {"files", one.files},
                                     {"most", most}});
    }
    return json;
}

}  // namespace cli
