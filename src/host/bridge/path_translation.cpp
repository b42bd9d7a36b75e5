#include "host/bridge/path_translation.h"

#include <array>
#include <cstring>
#include <new>
#include <optional>
#include <string_view>

#include "host/bridge/reports.h"
#include "host/bridge/underlying_host.h"
#include "host/utf16.h"

namespace bridge {
namespace {

constexpr const A_char* kMemorySuite = "AEGP Memory Suite";
constexpr A_long kMemorySuiteVersion = 1;

A_Err missing_memory_suite() {
    report_missing_suite(kMemorySuite, kMemorySuiteVersion);
    return kHostErrorMissingSuite;
}

A_Err first_of(A_Err earlier, A_Err later) {
    return earlier != kHostErrorNone ? earlier : later;
}

template <typename Result, typename View>
A_Err translate(View path, ConvertedText<Result> (*convert)(View), Result* translated) noexcept {
    try {
        ConvertedText<Result> converted = convert(path);
        if (converted.fault) {
            report_invalid_path(path, *converted.fault);
            return kHostErrorParameter;
        }
        *translated = std::move(converted.text);
        return kHostErrorNone;
    } catch (const std::bad_alloc&) {
        return kHostErrorAllocation;
    }
}

// The path without its terminator; nothing if it has more units than a classic path's buffer has bytes. Every
// unit becomes at least one byte, so looking further is useless.
std::optional<std::u16string_view> short_path(const A_UTF16Char* path) {
    for (std::size_t length = 0; length < kClassicPathBytes; ++length) {
        if (path[length] == 0) {
            return std::u16string_view(path, length);
        }
    }
    return std::nullopt;
}

A_Err copy_path(const A_UTF16Char* wide, std::array<A_char, kClassicPathBytes>* path) {
    const std::optional<std::u16string_view> units = short_path(wide);
    std::string narrow;
    if (units) {
        const A_Err err = translate(*units, utf8_from_utf16, &narrow);
        if (err != kHostErrorNone) {
            return err;
        }
    }
    if (!units || narrow.size() >= path->size()) {
        report_long_path();
        return kHostErrorParameter;
    }
    std::memcpy(path->data(), narrow.c_str(), narrow.size() + 1);
    return kHostErrorNone;
}

// Locks the handle, calls `use(address)` and unlocks the handle. Returns the first error of the three.
template <typename Use>
A_Err with_locked(const AEGP_MemorySuite1& memory, AEGP_MemHandle handle, const Use& use) {
    void* address = nullptr;
    const A_Err err = memory.AEGP_LockMemHandle(handle, &address);
    if (err != kHostErrorNone) {
        return err;
    }
    const A_Err used = address == nullptr ? kHostErrorGeneric : use(address);
    return first_of(used, memory.AEGP_UnlockMemHandle(handle));
}

}  // namespace

A_Err wide_path(const A_char* path, std::u16string* wide) noexcept {
    if (path == nullptr) {
        return kHostErrorParameter;
    }
    return translate(std::string_view(path), utf16_from_utf8, wide);
}

A_Err narrow_path(const A_UTF16Char* path, std::string* narrow) noexcept {
    if (path == nullptr) {
        report_no_path();
        return kHostErrorParameter;
    }
    return translate(std::u16string_view(path), utf8_from_utf16, narrow);
}

A_Err copy_asked_path(A_Err (*ask)(const void* context, AEGP_MemHandle* handle), const void* context,
                      A_char* path) noexcept {
    if (path == nullptr) {
        return kHostErrorParameter;
    }
    // Acquired first: without this suite the handle could not even be freed.
    const HostSuite<AEGP_MemorySuite1> memory(kMemorySuite, kMemorySuiteVersion);
    if (memory.get() == nullptr) {
        return missing_memory_suite();
    }
    AEGP_MemHandle handle = nullptr;
    const A_Err err = ask(context, &handle);
    if (err != kHostErrorNone) {
        return err;
    }
    if (handle == nullptr) {
        return kHostErrorGeneric;
    }
    std::array<A_char, kClassicPathBytes> copy = {};
    const A_Err copied = with_locked(*memory.get(), handle, [&copy](const void* address) {
        return copy_path(static_cast<const A_UTF16Char*>(address), &copy);
    });
    const A_Err freed = first_of(copied, memory.get()->AEGP_FreeMemHandle(handle));
    if (freed == kHostErrorNone) {
        std::memcpy(path, copy.data(), std::strlen(copy.data()) + 1);
    }
    return freed;
}

A_Err make_path_handle(const A_char* path, AEGP_MemHandle* handle) noexcept {
    if (handle == nullptr) {
        return kHostErrorParameter;
    }
    *handle = nullptr;
    std::u16string wide;
    A_Err err = wide_path(path, &wide);
    if (err != kHostErrorNone) {
        return err;
    }
    const HostSuite<AEGP_MemorySuite1> memory(kMemorySuite, kMemorySuiteVersion);
    if (memory.get() == nullptr) {
        return missing_memory_suite();
    }
    const std::size_t size_bytes = (wide.size() + 1) * sizeof(A_UTF16Char);
    AEGP_MemHandle made = nullptr;
    err = memory.get()->AEGP_NewMemHandle(underlying_host.plugin_id, "path",
                                          static_cast<AEGP_MemSize>(size_bytes), kMemFlagClear, &made);
    if (err != kHostErrorNone) {
        return err;
    }
    if (made == nullptr) {
        return kHostErrorGeneric;
    }
    err = with_locked(*memory.get(), made, [&wide, size_bytes](void* address) {
        std::memcpy(address, wide.c_str(), size_bytes);
        return kHostErrorNone;
    });
    if (err == kHostErrorNone) {
        *handle = made;
    } else {
        memory.get()->AEGP_FreeMemHandle(made);
    }
    return err;
}

}  // namespace bridge
