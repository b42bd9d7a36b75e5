#pragma once

#include <cstddef>

#include "host/host_interface.h"

class AEGP_SuiteHandler;
class CFileItem;
struct tagProjectSettings;

/// Longest name that placeholder footage gets, in bytes. Top-level footage is Deliberately one shorter than
/// footage in compositions: projects that were imported before have these names.
inline constexpr std::size_t kTopLevelPlaceholderNameBytes = 31;
inline constexpr std::size_t kLayerPlaceholderNameBytes = 32;

/// Footage and the project item that it was added as; both belong to the host.
struct FootageItem {
    AEGP_FootageH footage = nullptr;
    AEGP_ItemH item = nullptr;
};

/// Adds the footage of `file` to `folder`: the file itself, a whole numbered sequence for FSEQ, or, when the
/// file does not exist (a null path is an empty one), a placeholder of the project's size and length. It is
/// named after the last component of the path, cut at `placeholder_name_bytes` (kLayerPlaceholderNameBytes at
/// most). Returns 0, or the host's error code of the first call that failed.
A_Err add_footage_item(AEGP_SuiteHandler& suites, const CFileItem& file, const tagProjectSettings& settings,
                       std::size_t placeholder_name_bytes, AEGP_ItemH folder, FootageItem* made);
