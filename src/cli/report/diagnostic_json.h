#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "diagnostic/diagnostic.h"

namespace cli {

/// {"severity","code","at":{"file","line","column","offset_bytes"},"reason","within","effects","count",
/// "source_line","limit":{"id","name","value","unit"}}; what is not known is null. A diagnostic about missing
/// footage also has the members of missing_footage_json().
[[nodiscard]] nlohmann::ordered_json diagnostic_json(const diagnostic::Diagnostic& diagnostic);

/// An array of diagnostic_json().
[[nodiscard]] nlohmann::ordered_json diagnostics_json(const std::vector<diagnostic::Diagnostic>& diagnostics);

/// {"path","tried","placeholder"}
[[nodiscard]] nlohmann::ordered_json missing_footage_json(const diagnostic::MissingFootage& missing);

/// An array of texts.
[[nodiscard]] nlohmann::ordered_json texts_json(const std::vector<std::string>& texts);

/// The document of `--list-codes --json`: {"schema","exit_code","codes":[{"code","severity","meaning"}]}.
/// Ends with a line break.
[[nodiscard]] std::string codes_document(const std::vector<diagnostic::CodeInfo>& codes);

/// What every verb that takes several files prints with --json: {"schema","exit_code","files"}, one entry a
/// file in the order in which they were given, and "summary" unless that is null. Ends with a line break.
[[nodiscard]] std::string files_document(int schema, ExitCode code, const nlohmann::ordered_json& files,
                                         const nlohmann::ordered_json* summary = nullptr);

}  // namespace cli
