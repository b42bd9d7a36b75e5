#pragma once

#include <span>
#include <string>
#include <vector>

#include "cli/report/diagnostic_text.h"

namespace cli::doctor {

/// What `vxr doctor` can find. An error keeps a host from listing the bundle.
enum class Finding {
    cannot_read,
    not_a_binary,
    not_a_bundle,
    damaged,
    wrong_kind,
    wrong_processor,
    wrong_name,
    no_properties,
    properties_damaged,
    properties_number,
    property_missing,
    property_wrong,
    entry_missing,
    entry_not_exported,
    plist_missing,
    plist_unreadable,
    plist_value,
    executable_missing,
    library_missing,
    not_loadable,
    load_crashed,
    load_timed_out,
    entry_failed,
    // Warnings.
    plist_binary,
    property_unusual,
    one_generation,
    processor_missing,
    not_signed,
    library_elsewhere,
    registers_nothing,
};

struct FindingRow {
    Finding finding;
    const char* code;  ///< stable: "entry-missing"
    Severity severity;
    const char* meaning;  ///< one sentence
    const char* remedy;   ///< what to do; one sentence
};

/// Every finding, in the order of the enumeration.
std::span<const FindingRow> finding_table();

[[nodiscard]] const diagnostic::CodeInfo& code_info(Finding finding);

/// A finding with its remedy as the last of its effects.
Diagnostic found(Finding finding, Place at, std::string reason, std::vector<std::string> effects = {});

}  // namespace cli::doctor
