#pragma once

#include <cstddef>

#include "host/host_interface.h"

class AEGP_SuiteHandler;
class CFileItem;
struct tagProjectSettings;

/// Longest name of placeholder footage, in bytes. Deliberately one less for top-level footage than for
/// footage in compositions: existing projects have these names.
inline constexpr std::size_t kTopLevelPlaceholderNameBytes = 31;
inline constexpr std::size_t kLayerPlaceholderNameBytes = 32;

/// Footage and its project item; the host owns both.
struct FootageItem {
    AEGP_FootageH footage = nullptr;
    AEGP_ItemH item = nullptr;
};

/// Adds the footage of `file` to `folder`: the file itself, the whole numbered sequence for FSEQ, or, when
/// the file does not exist, a placeholder of the project's size and length. The placeholder is named after
/// the last component of the path (a null path counts as empty), truncated to `placeholder_name_bytes`, at
/// most kLayerPlaceholderNameBytes. Returns 0, or the host's error code of the first call that failed.
A_Err add_footage_item(AEGP_SuiteHandler& suites, const CFileItem& file, const tagProjectSettings& settings,
                       std::size_t placeholder_name_bytes, AEGP_ItemH folder, FootageItem* made);
