#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/terminal/terminal.h"

namespace limits {
struct Limit;
}

namespace cli {

enum class Severity { error, warning };

/// Where in a file: line and column in a text, the offset alone in a binary file, neither for a file as a
/// whole.
struct Place {
    std::string file;  ///< as the user named it
    std::optional<std::int64_t> offset_bytes = {};
    std::optional<std::int64_t> line = {};    ///< from 1
    std::optional<std::int64_t> column = {};  ///< in bytes, from 1
};

/// Something that a person or a script is told about a file. Texts may hold any bytes; they are made safe
/// where they are written.
struct Diagnostic {
    Severity severity = Severity::error;
    std::string code;  ///< stable: scripts rely on it, never on the texts
    Place at;
    std::string reason;                           ///< what was found and what was allowed; no full stop
    std::vector<std::string> within = {};         ///< outermost first: `composition "Main"`
    std::vector<std::string> effects = {};        ///< what will happen, and what to do; one sentence each
    std::int64_t count = 1;                       ///< how often it occurs; `at` is the first place
    std::optional<std::string> source_line = {};  ///< the line of `at`, without its end
    const limits::Limit* limit = nullptr;         ///< what the file is above of, if that is the mistake
};

/// Every error of the tools is made here, so one breakpoint finds the first.
Diagnostic fail(std::string code, Place at, std::string reason, std::vector<std::string> within = {});
/// The same for what is no reason to refuse a file.
Diagnostic warn(std::string code, Place at, std::string reason, std::vector<std::string> within = {});

/// "shot.aec:12:8: error: expected a number after FPS, found "abc" [expected-number]", then, as far as they
/// are known, the source line with a caret, the blocks around the place, and what will happen. Ends with a
/// line break.
std::string diagnostic_text(const Diagnostic& diagnostic, const Paint& paint);

/// {"severity","code","at":{"file","line","column","offset_bytes"},"reason","within","effects","count",
/// "source_line","limit":{"id","name","value","unit"}}; what is not known is null.
nlohmann::ordered_json diagnostic_json(const Diagnostic& diagnostic);

/// What every verb that takes several files prints with --json: {"schema","exit_code","files"}, one entry a
/// file in the order in which they were given, ended by a line break.
std::string files_document(int schema, ExitCode code, const nlohmann::ordered_json& files);

/// An array of texts.
nlohmann::ordered_json texts_json(const std::vector<std::string>& texts);

/// A message of the program itself on the error stream: "vxr: error: ...".
void complain(Terminal& terminal, std::string_view text);
/// The same for what is worth knowing and no error: "vxr: note: ...".
void remark(Terminal& terminal, std::string_view text);

}  // namespace cli
