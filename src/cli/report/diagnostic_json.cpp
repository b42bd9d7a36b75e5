#include "cli/report/diagnostic_json.h"

#include <nlohmann/json.hpp>

#include "embedded/json_values.h"
#include "limit/limits.h"

namespace cli {
namespace {

using embedded::Json;
using embedded::json_text;

Json number_or_null(const std::optional<std::int64_t>& value) {
    return value ? Json(*value) : Json();
}

Json limit_or_null(const limits::Limit* limit) {
    return limit == nullptr ? Json()
                            : Json{{"id", limit->id},
                                   {"name", limit->name},
                                   {"value", limit->value},
                                   {"unit", limit->unit}};
}

}  // namespace

nlohmann::ordered_json texts_json(const std::vector<std::string>& texts) {
    Json array = Json::array();
    for (const std::string& text : texts) {
        array.push_back(json_text(text));
    }
    return array;
}

nlohmann::ordered_json diagnostics_json(const std::vector<diagnostic::Diagnostic>& diagnostics) {
    Json array = Json::array();
    for (const diagnostic::Diagnostic& one : diagnostics) {
        array.push_back(diagnostic_json(one));
    }
    return array;
}

nlohmann::ordered_json missing_footage_json(const diagnostic::MissingFootage& missing) {
    return Json{{"path", json_text(missing.path)},
                {"tried", texts_json(missing.tried)},
                {"placeholder", json_text(missing.placeholder)}};
}

std::string codes_document(const std::vector<diagnostic::CodeInfo>& codes) {
    constexpr int kCodesSchema = 1;
    Json rows = Json::array();
    for (const diagnostic::CodeInfo& code : codes) {
        rows.push_back(
            Json{{"code", code.name}, {"severity", severity_name(code.severity)}, {"meaning", code.meaning}});
    }
    const Json document{
        {"schema", kCodesSchema}, {"exit_code", static_cast<int>(ExitCode::fine)}, {"codes", rows}};
    return document.dump(2) + '\n';
}

std::string files_document(int schema, ExitCode code, const nlohmann::ordered_json& files,
                           const nlohmann::ordered_json* summary) {
    Json document;
    document["schema"] = schema;
    document["exit_code"] = static_cast<int>(code);
    document["files"] = files;
    if (summary != nullptr) {
        document["summary"] = *summary;
    }
    return document.dump(2) + '\n';
}

nlohmann::ordered_json diagnostic_json(const diagnostic::Diagnostic& diagnostic) {
    Json at;
    at["file"] = json_text(diagnostic.at.file);
    at["line"] = number_or_null(diagnostic.at.line);
    at["column"] = number_or_null(diagnostic.at.column);
    at["offset_bytes"] = number_or_null(diagnostic.at.offset_bytes);
    Json json;
    json["severity"] = severity_name(diagnostic.severity());
    json["code"] = diagnostic.code.name();
    json["at"] = at;
    json["reason"] = json_text(diagnostic.reason);
    json["within"] = texts_json(diagnostic.within);
    json["effects"] = texts_json(diagnostic.effects);
    json["count"] = diagnostic.count;
    json["source_line"] = diagnostic.source_line ? json_text(*diagnostic.source_line) : Json();
    json["limit"] = limit_or_null(diagnostic.limit);
    if (const auto& missing = diagnostic.missing_footage) {
        json.update(missing_footage_json(*missing));
    }
    return json;
}

}  // namespace cli
