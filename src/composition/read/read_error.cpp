#include "composition/read/read_error.h"

#include <array>
#include <cstddef>

namespace {

using enum ReadErrorCode;

constexpr auto kRows = std::to_array<ReadErrorRow>({
    {cannot_open, "cannot-open", "The file does not exist, may not be read, or is no regular file."},
    {empty_file, "empty-file", "The file has no bytes."},
    {file_too_large, "file-too-large", "The file has 2 GiB or more, or its length cannot be told."},
    {read_failed, "read-failed", "The file could not be read to the end of what counts."},
    {out_of_memory, "out-of-memory", "There is not enough memory for what the file holds."},
    {unexpected_end, "unexpected-end", "The file ends before everything that it must hold."},
    {word_cut_by_end, "word-cut-by-end",
     "A word or number needs a character behind it and must not be the last thing in the file."},
    {unclosed_string, "unclosed-string", "A quoted text needs its closing quote."},
    {word_too_long, "word-too-long", "A word or number has at most 511 characters."},
    {bad_header, "bad-header", "A composition file begins with VORTAN XR COMPOSITION."},
    {expected_setting, "expected-setting",
     "The settings hold keywords with their values and end with the word COMPOSITION."},
    {unknown_setting, "unknown-setting",
     "The keywords of the settings are RESOLUTION, FROM, TO, RANGE, FPS, ASPECT, LOCAL and FIELDS."},
    {missing_setting, "missing-setting", "RESOLUTION, FROM, TO, RANGE and FPS must all be set."},
    {expected_number, "expected-number", "The keyword needs another number."},
    {out_of_range, "out-of-range", "The number is outside what the keyword allows."},
    {expected_word, "expected-word", "The keyword needs one of its words, in upper case and without quotes."},
    {expected_blend_mode, "expected-blend-mode", "A blend word is NRM, ADD or MUL."},
    {expected_alpha_mode, "expected-alpha-mode", "An alpha word is PREMUL or STRAIGHT."},
    {expected_name, "expected-name", "A composition, camera, light or null needs a name in double quotes."},
    {expected_block, "expected-block", "A camera, light or null needs a block in braces behind its name."},
    {expected_entry, "expected-entry", "Every entry of a block begins with a word."},
    {unknown_entry, "unknown-entry",
     "Cameras and nulls hold KEY entries only; lights TYPE, SHADOW, COLOR, INTENSITY, ANGLE and KEY."},
    {nesting_too_deep, "nesting-too-deep",
     "At most 1024 compositions are inside one another, the root counted as the first."},
    {expected_footage_mark, "expected-footage-mark",
     "Top-level footage has the mark <-> where footage of a composition has its blend word."},
    {missing_path, "missing-path", "A footage entry needs its path in double quotes."},
    {unclosed_path, "unclosed-path", "A footage path needs its closing double quote on the same line."},
    {empty_path, "empty-path", "A footage path must not be empty."},
    {unended_path_line, "unended-path-line", "The line of a footage path needs a line end."},
    {path_without_folder, "path-without-folder",
     "The footage does not open, and the composition file was named without a folder to look for it in."},
    {expected_section, "expected-section",
     "The root composition is followed by FILE and FSEQ, then by CAMERA, LIGHT and NULL, or by nothing."},
});

constexpr bool in_order() {
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        if (kRows[i].code != static_cast<ReadErrorCode>(i)) {
            return false;
        }
    }
    return kRows.size() == static_cast<std::size_t>(expected_section) + 1;
}
static_assert(in_order(), "one row for each code, in the order of the enumeration");

}  // namespace

std::span<const ReadErrorRow> read_error_table() {
    return kRows;
}

const ReadErrorRow& read_error_row(ReadErrorCode code) {
    return kRows[static_cast<std::size_t>(code)];
}
