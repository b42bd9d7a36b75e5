#include "composition/read/read_error.h"

#include <array>
#include <cstddef>

namespace {

using diagnostic::CodeRow;
using diagnostic::Severity;
using enum ReadErrorCode;

constexpr auto kRows = std::to_array<CodeRow<ReadErrorCode>>({
    {cannot_open,
     {"cannot-open", Severity::error, "The file does not exist, may not be read, or is not a regular file."}},
    {empty_file, {"empty-file", Severity::error, "The file has no bytes."}},
    {file_too_large,
     {"file-too-large", Severity::error, "The file has 2 GiB or more, or its length cannot be determined."}},
    {read_failed, {"read-failed", Severity::error, "The file could not be read completely."}},
    {out_of_memory,
     {"out-of-memory", Severity::error, "There is not enough memory for what the file holds."}},
    {unexpected_end, {"unexpected-end", Severity::error, "The file ends before it is complete."}},
    {word_cut_by_end,
     {"word-cut-by-end", Severity::error,
      "A word or number needs a character after it, so it cannot end the file."}},
    {unclosed_string, {"unclosed-string", Severity::error, "A quoted text needs its closing quote."}},
    {word_too_long, {"word-too-long", Severity::error, "A word or number has at most 511 characters."}},
    {bad_header, {"bad-header", Severity::error, "A composition file begins with VORTAN XR COMPOSITION."}},
    {expected_setting,
     {"expected-setting", Severity::error,
      "The settings are keywords with their values and end with the word COMPOSITION."}},
    {unknown_setting,
     {"unknown-setting", Severity::error,
      "The keywords of the settings are RESOLUTION, FROM, TO, RANGE, FPS, ASPECT, LOCAL and FIELDS."}},
    {missing_setting,
     {"missing-setting", Severity::error, "RESOLUTION, FROM, TO, RANGE and FPS must all be set."}},
    {expected_number, {"expected-number", Severity::error, "The keyword needs another number."}},
    {out_of_range, {"out-of-range", Severity::error, "The number is outside what the keyword allows."}},
    {expected_word,
     {"expected-word", Severity::error,
      "The keyword needs one of its words, in upper case and without quotes."}},
    {expected_blend_mode, {"expected-blend-mode", Severity::error, "A blend word is NRM, ADD or MUL."}},
    {expected_alpha_mode, {"expected-alpha-mode", Severity::error, "An alpha word is PREMUL or STRAIGHT."}},
    {expected_name,
     {"expected-name", Severity::error,
      "A composition, camera, light or null needs a name in double quotes."}},
    {expected_block,
     {"expected-block", Severity::error, "A camera, light or null needs a block in braces after its name."}},
    {expected_entry, {"expected-entry", Severity::error, "Every entry of a block begins with a word."}},
    {unknown_entry,
     {"unknown-entry", Severity::error,
      "Cameras and nulls hold KEY entries only; lights TYPE, SHADOW, COLOR, INTENSITY, ANGLE and KEY."}},
    {nesting_too_deep,
     {"nesting-too-deep", Severity::error, "Compositions nest at most 1024 levels deep, counting the root."}},
    {expected_footage_mark,
     {"expected-footage-mark", Severity::error,
      "Top-level footage has the mark <-> where footage of a composition has its blend word."}},
    {missing_path, {"missing-path", Severity::error, "A footage entry needs its path in double quotes."}},
    {unclosed_path,
     {"unclosed-path", Severity::error, "A footage path needs its closing double quote on the same line."}},
    {empty_path, {"empty-path", Severity::error, "A footage path must not be empty."}},
    {unended_path_line,
     {"unended-path-line", Severity::error, "The line of a footage path needs a line end."}},
    {path_without_folder,
     {"path-without-folder", Severity::error,
      "The footage does not open, and the composition file was named without a folder to look for it in."}},
    {expected_section,
     {"expected-section", Severity::error,
      "The root composition is followed by FILE and FSEQ, then by CAMERA, LIGHT and NULL, or by nothing."}},
});
static_assert(diagnostic::in_order(kRows, expected_section));

}  // namespace

std::span<const CodeRow<ReadErrorCode>> read_error_table() {
    return kRows;
}

const diagnostic::CodeInfo& code_info(ReadErrorCode code) {
    return kRows[static_cast<std::size_t>(code)].info;
}
