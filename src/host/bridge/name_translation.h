#pragma once

#include <string>

#include "host/bridge/guarded_call.h"
#include "host/current_interface.h"

// Names on their way from the plug-in to a current host. A name in UTF-8 stays what it is; other bytes count
// as Windows-1252, since a composition file does not say how it is written. Names are not cut: the classic
// suites keep 31 bytes. No function throws.

namespace bridge {

/// 4 when memory is short.
A_Err wide_name(const A_char* name, std::u16string* wide) noexcept;

/// The result of `call(wide_name)`, which calls the host; a null name stays null.
template <typename Call>
A_Err with_wide_name(const A_char* name, const Call& call) {
    if (name == nullptr) {
        return answer_of([&] { return call(static_cast<const A_UTF16Char*>(nullptr)); });
    }
    std::u16string wide;
    const A_Err err = wide_name(name, &wide);
    return err != kHostErrorNone ? err : answer_of([&] { return call(wide.c_str()); });
}

// A placeholder is made with a narrow name, the only one that hosts take there. Its item, made next, gets the
// name in UTF-16 if the narrow one does not arrive as it is and the host has "AEGP Item Suite" 13.

/// After the host has made the placeholder. Remembers its name for this thread, until the next placeholder.
void note_placeholder(const AEGP_FootageH* footage, const A_char* name) noexcept;

/// After the host has made the item of any footage. An error leaves the item its narrow name.
void name_placeholder(AEGP_FootageH footage, const AEGP_ItemH* item) noexcept;

}  // namespace bridge
