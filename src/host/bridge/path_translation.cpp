#include "host/bridge/path_translation.h"

#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "host/bridge/guarded_call.h"
#include "host/bridge/reports.h"
#include "host/bridge/underlying_host.h"
#include "host/byte_encoding.h"
#include "host/utf16.h"
#include "system/open_regular_file.h"
#include "system/path_style.h"

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

A_Err translate_to_utf8(std::u16string_view path, std::string* translated) noexcept {
    try {
        ConvertedText<std::string> converted = utf8_from_utf16(path);
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

bool is_file(const std::string& path) {
    return os::InputFile(os::open_exactly(path.c_str())) != nullptr;
}

A_Err translate_to_utf16(std::string_view path, std::u16string* translated) noexcept {
    try {
        ConvertedText<std::u16string> converted = utf16_from_utf8(path);
        if (!converted.fault) {
            *translated = std::move(converted.text);
            return kHostErrorNone;
        }
        // The encoding is the one in which a file has this name.
        for (const std::string& other : paths_in_other_encodings(path)) {
            if (is_file(other)) {
                *translated = utf16_from_utf8(other).text;
                return kHostErrorNone;
            }
        }
        report_invalid_path(path, *converted.fault);
        return kHostErrorParameter;
    } catch (const std::bad_alloc&) {
        return kHostErrorAllocation;
    }
}

// The host's path in UTF-8, which has at most `most_bytes` bytes. Every unit becomes at least one byte, so
// looking for the terminator further than that is useless.
A_Err bounded_path(const A_UTF16Char* wide, std::size_t most_bytes, std::string* path) {
    std::size_t length = 0;
    while (length <= most_bytes && wide[length] != 0) {
        ++length;
    }
    if (length <= most_bytes) {
        const A_Err err = translate_to_utf8(std::u16string_view(wide, length), path);
        if (err != kHostErrorNone) {
            return err;
        }
    }
    if (length > most_bytes || path->size() > most_bytes) {
        report_long_path(most_bytes);
        return kHostErrorParameter;
    }
    return kHostErrorNone;
}

// Locks the handle, calls `use(address)` and unlocks the handle. Returns the first error of the three.
template <typename Use>
A_Err with_locked(const AEGP_MemorySuite1& memory, AEGP_MemHandle handle, const Use& use) {
    void* address = nullptr;
    const A_Err err = answer_of([&] { return memory.AEGP_LockMemHandle(handle, &address); });
    if (err != kHostErrorNone) {
        return err;
    }
    const A_Err used = address == nullptr ? kHostErrorGeneric : use(address);
    return first_of(used, answer_of([&] { return memory.AEGP_UnlockMemHandle(handle); }));
}

A_Err ask_for_path(A_Err (*ask)(const void* context, AEGP_MemHandle* handle), const void* context,
                   std::size_t most_bytes, std::string* path) noexcept {
    // Acquired first: without this suite the handle could not even be freed.
    const HostSuite<AEGP_MemorySuite1> memory(kMemorySuite, kMemorySuiteVersion);
    if (memory.get() == nullptr) {
        return missing_memory_suite();
    }
    AEGP_MemHandle handle = nullptr;
    const A_Err err = answer_of([&] { return ask(context, &handle); });
    if (err != kHostErrorNone) {
        return err;
    }
    if (handle == nullptr) {
        return kHostErrorGeneric;
    }
    std::string copy;
    const A_Err copied = with_locked(*memory.get(), handle, [most_bytes, &copy](const void* address) {
        return bounded_path(static_cast<const A_UTF16Char*>(address), most_bytes, &copy);
    });
    const A_Err freed = first_of(copied, answer_of([&] { return memory.get()->AEGP_FreeMemHandle(handle); }));
    if (freed == kHostErrorNone) {
        *path = std::move(copy);
    }
    return freed;
}

}  // namespace

A_Err wide_path(const A_char* path, std::u16string* wide) noexcept {
    if (path == nullptr) {
        return kHostErrorParameter;
    }
    if (path[0] == '/') {
        return translate_to_utf16(path, wide);
    }
    const std::unique_ptr<char[]> posix = os::posix_path_from_host(path);
    return posix == nullptr ? kHostErrorAllocation : translate_to_utf16(posix.get(), wide);
}

A_Err narrow_path(const A_UTF16Char* path, std::string* narrow) noexcept {
    if (path == nullptr) {
        report_no_path();
        return kHostErrorParameter;
    }
    return translate_to_utf8(path, narrow);
}

A_Err copy_asked_path(A_Err (*ask)(const void* context, AEGP_MemHandle* handle), const void* context,
                      A_char* path) noexcept {
    if (path == nullptr) {
        return kHostErrorParameter;
    }
    std::string copy;
    const A_Err err = ask_for_path(ask, context, kClassicPathBytes - 1, &copy);
    if (err == kHostErrorNone) {
        std::memcpy(path, copy.c_str(), copy.size() + 1);
    }
    return err;
}

A_Err take_asked_path(A_Err (*ask)(const void* context, AEGP_MemHandle* handle), const void* context,
                      std::string* path) noexcept {
    return ask_for_path(ask, context, kLongestPathBytes, path);
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
    err = answer_of([&] {
        return memory.get()->AEGP_NewMemHandle(underlying_host.plugin_id, "path",
                                               static_cast<AEGP_MemSize>(size_bytes), kMemFlagClear, &made);
    });
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
        answer_of([&] { return memory.get()->AEGP_FreeMemHandle(made); });
    }
    return err;
}

}  // namespace bridge
