#pragma once

#include <cstdint>
#include <span>

#include "diagnostic/code.h"

/// Why a composition file was refused. Tests, scripts and JSON rely on the names in read_error_table().
enum class ReadErrorCode : std::uint8_t {
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

/// Every code, in the order of the enumeration.
[[nodiscard]] std::span<const diagnostic::CodeRow<ReadErrorCode>> read_error_table();
/// Name and meaning of `code`.
[[nodiscard]] const diagnostic::CodeInfo& code_info(ReadErrorCode code);
