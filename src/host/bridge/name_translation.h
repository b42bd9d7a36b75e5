#pragma once

#include <string>

#include "host/current_interface.h"

// Converts names from the plug-in for current hosts. A name in UTF-8 keeps its characters; other bytes are
// read as Windows-1252, because a composition file does not name its encoding. Names are not cut, whereas the
// classic suites keep 31 bytes. No function throws.

namespace bridge {

/// 4 when memory is short.
A_Err wide_name(const A_char* name, std::u16string* wide) noexcept;

/// The result of `call(wide)`, which calls the host and does not throw. A null name stays null.
template <typename Call>
A_Err with_wide_name(const A_char* name, const Call& call) {
    if (name == nullptr) {
        return call(static_cast<const A_UTF16Char*>(nullptr));
    }
    std::u16string wide;
    const A_Err err = wide_name(name, &wide);
    return err != kHostErrorNone ? err : call(wide.c_str());
}

// Hosts make a placeholder with a narrow name only. Its item, which is made next, gets the name in UTF-16 if
// the host would change the narrow one and has "AEGP Item Suite" 13.

/// After the host has made the placeholder. Remembers its name for this thread, until the next placeholder.
void note_placeholder(const AEGP_FootageH* footage, const A_char* name) noexcept;

/// After the host has made the item of any footage. An error leaves the item its narrow name.
void name_placeholder(AEGP_FootageH footage, const AEGP_ItemH* item) noexcept;

}  // namespace bridge
