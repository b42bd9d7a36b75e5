#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/terminal/terminal.h"
#include "diagnostic/diagnostic.h"

namespace limits {
struct Limit;
}

namespace cli {

using diagnostic::Diagnostic;
using diagnostic::Place;
using diagnostic::Severity;

/// "shot.aec:12:8: error: expected a number after FPS, found "abc" [expected-number]", then, as far as they
/// are known, the source line with a caret, the blocks around the place, and what will happen. Ends with a
/// line break.
[[nodiscard]] std::string diagnostic_text(const Diagnostic& diagnostic, const Paint& paint);

/// The part of the line of `diagnostic.at` that fits a terminal, printable, in two: what stands before the
/// place, and what begins there. Nothing if the line or the place in it is unknown.
struct SourceExcerpt {
    std::string before;
    std::string from;
};
[[nodiscard]] std::optional<SourceExcerpt> source_excerpt(const Diagnostic& diagnostic);

/// The colour of a severity's name.
[[nodiscard]] Ink ink_of(Severity severity);

/// Reads the line of each `at` again from the text file at `path`, for diagnostic_text(). Leaves out those
/// whose place is unknown or more than 2048 bytes into its line. The file is opened once at most.
void add_source_lines(std::span<Diagnostic> diagnostics, const std::string& path);

/// Names the limit that the file exceeds; null changes nothing.
void name_limit(Diagnostic& diagnostic, const limits::Limit* limit);

/// "nesting of compositions: 1,024 levels are allowed (see `vxr limits`)"
[[nodiscard]] std::string limit_text(const limits::Limit& limit);

/// "1,048,576"
[[nodiscard]] std::string grouped(std::int64_t number);

/// ", 2 losses, 1 warning"; empty when there are only errors, or nothing.
[[nodiscard]] std::string severity_counts(const std::vector<Diagnostic>& diagnostics);

/// What became of a file: "ok", "incomplete" where footage is missing, "refused" or "unreadable".
[[nodiscard]] const char* verdict_label(ExitCode code);

/// Appends the rows of a domain's table of codes to `codes`.
template <typename Table>
void add_codes(std::vector<diagnostic::CodeInfo>& codes, const Table& table) {
    for (const auto& [code, info] : table) {
        codes.push_back(info);
    }
}

/// Prints codes, one line each: "footage-missing: warning: The footage is in neither place...".
void print_codes(std::ostream& out, const std::vector<diagnostic::CodeInfo>& codes);

/// A message of the program itself on the error stream: "vxr: error: ...".
void complain(Terminal& terminal, std::string_view text);
/// What is worth knowing and no error, in the same way: "vxr: note: ...".
void remark(Terminal& terminal, std::string_view text);

}  // namespace cli
