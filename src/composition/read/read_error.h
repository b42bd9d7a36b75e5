#pragma once

#include <span>
#include <string>
#include <vector>

#include "composition/read/text_position.h"

/// Why a composition file was refused. Stable: tests, scripts and JSON rely on the names in
/// read_error_table().
enum class ReadErrorCode {
    cannot_open,
    empty_file,
    file_too_large,
    read_failed,
    out_of_memory,
    unexpected_end,
    word_cut_by_end,
    unclosed_string,
    word_too_long,
    bad_header,
    expected_setting,
    unknown_setting,
    missing_setting,
    expected_number,
    out_of_range,
    expected_word,
    expected_blend_mode,
    expected_alpha_mode,
    expected_name,
    expected_block,
    expected_entry,
    unknown_entry,
    nesting_too_deep,
    expected_footage_mark,
    missing_path,
    unclosed_path,
    empty_path,
    unended_path_line,
    path_without_folder,
    expected_section,
};

/// One code for people and scripts.
struct ReadErrorRow {
    ReadErrorCode code;
    const char* name;     ///< stable, for JSON: lower case with hyphens
    const char* meaning;  ///< one sentence: the rule that the file breaks
};

/// Every code, in the order of the enumeration.
[[nodiscard]] std::span<const ReadErrorRow> read_error_table();
/// The row of `code`.
[[nodiscard]] const ReadErrorRow& read_error_row(ReadErrorCode code);

/// The first failure in a composition file.
struct ReadError {
    ReadErrorCode code;
    TextPosition at;                  ///< where the offending token begins
    std::string expected;             ///< what would have been right: "a number after FPS"
    std::string found;                ///< what was there: "\"abc\"", "the end of the file"
    std::vector<std::string> within;  ///< blocks around it, outermost first: "composition \"Main\""

    /// "expected a number after FPS, found "abc"". Bytes of the file are passed on as they are.
    [[nodiscard]] std::string message() const { return "expected " + expected + ", found " + found; }
};
