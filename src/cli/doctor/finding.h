#pragma once

#include <array>

#include "diagnostic/diagnostic.h"

namespace cli::doctor {

/// What `vxr doctor` can find. An error keeps every host from listing the bundle.
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

using FindingTable = std::array<diagnostic::CodeRow<Finding>, 30>;

/// Every finding, in the order of the enumeration. The remedies become the last effects of a diagnostic.
[[nodiscard]] const FindingTable& finding_table();

[[nodiscard]] const diagnostic::CodeInfo& code_info(Finding finding);

}  // namespace cli::doctor
