#include "host/bridge/name_translation.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <string_view>

#include "host/bridge/underlying_host.h"
#include "host/byte_encoding.h"
#include "host/utf16.h"

namespace bridge {
namespace {

// The most bytes of a narrow name that a host keeps.
constexpr std::size_t kNarrowNameBytes = 31;

// The footage of a placeholder and the name for its item. Thread-local, because an import makes both calls on
// one thread. The importer cuts names at 32 bytes; longer ones are not remembered.
struct PlaceholderName {
    AEGP_FootageH footage;
    std::array<A_char, 64> name;
};
thread_local PlaceholderName placeholder = {};

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The name without the first part of a character that the importer has cut in two.
std::string_view without_cut_character(std::string_view name) {
    if (name.size() < kNarrowNameBytes) {
        return name;
    }
    const auto fault = utf16_from_utf8(name).fault;
    if (!fault || name.size() - *fault >= 4) {
        return name;
    }
    const std::string_view cut = name.substr(*fault);
    const bool begins = static_cast<unsigned char>(cut.front()) >= 0xC0;
    const bool goes_on = std::all_of(cut.begin() + 1, cut.end(),
                                     [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; });
    return begins && goes_on ? name.substr(0, *fault) : name;
}

}  // namespace

A_Err wide_name(const A_char* name, std::u16string* wide) noexcept {
    try {
        *wide = utf16_from_name(name, ByteEncoding::windows_1252);
        return kHostErrorNone;
    } catch (const std::bad_alloc&) {
        return kHostErrorAllocation;
    }
}

void note_placeholder(const AEGP_FootageH* footage, const A_char* name) noexcept {
    placeholder.footage = nullptr;
    if (footage == nullptr || name == nullptr) {
        return;
    }
    const std::size_t length = std::strlen(name);
    if (length >= placeholder.name.size() || (length <= kNarrowNameBytes && is_ascii(name))) {
        return;
    }
    placeholder.footage = *footage;
    std::memcpy(placeholder.name.data(), name, length + 1);
}

void name_placeholder(AEGP_FootageH footage, const AEGP_ItemH* item) noexcept {
    if (footage == nullptr || footage != placeholder.footage || item == nullptr || *item == nullptr) {
        return;
    }
    placeholder.footage = nullptr;
    const HostSuite<AEGP_ItemSuite13> items("AEGP Item Suite", 13);
    if (items.get() == nullptr) {
        return;
    }
    try {
        const std::u16string wide =
            utf16_from_name(without_cut_character(placeholder.name.data()), ByteEncoding::windows_1252);
        answer_of([&] { return items.get()->AEGP_SetItemName(*item, wide.c_str()); });
    } catch (const std::bad_alloc&) {
        return;
    }
}

}  // namespace bridge
