#pragma once

// The arguments and results of one call, as the log writes them. All JSON of the suites is built in the
// source of this header, so theirs compile without the JSON library.

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>

#include "embedded/session.h"

namespace embedded {

/// Collects named values in order. A null pointer is written as null.
class CallValues {
  public:
    explicit CallValues(const Session& session);
    ~CallValues();
    CallValues(const CallValues&) = delete;
    CallValues& operator=(const CallValues&) = delete;

    template <std::signed_integral Integer>
    void integer(const char* name, Integer value) {
        signed_integer(name, value);
    }
    template <std::unsigned_integral Integer>
    void integer(const char* name, Integer value) {
        unsigned_integer(name, value);
    }
    /// "inf", "-inf" or "nan" where JSON has no number.
    void number(const char* name, double value);
    void flag(const char* name, A_Boolean value);
    /// Text that is not UTF-8 or UTF-16 is written as its bytes or units.
    void text(const char* name, const A_char* value);
    void text(const char* name, const A_UTF16Char* value);
    void bytes(const char* name, const void* value, std::size_t size_bytes);
    void time(const char* name, const A_Time* value);
    void ratio(const char* name, const A_Ratio* value);
    void point(const char* name, const A_FloatPoint& value);
    /// "item:3", or "foreign" for an address that the host never gave out.
    void handle(const char* name, const void* value);
    /// An address that only the bundle can interpret: true, or null for a null pointer.
    void pointer(const char* name, const void* value) { present(name, value != nullptr); }
    void present(const char* name, bool there);

    // Records of the interface, under its names.
    void interpretation(const char* name, const AEGP_FootageInterp* value);
    void sequence_options(const char* name, const AEGP_FileSequenceImportOptions* value);
    void alpha_label(const char* name, const AEIO_AlphaLabel* value);
    void transfer_mode(const char* name, const AEGP_LayerTransferMode* value);
    /// The value's members are those of the stream that it names.
    void stream_value(const char* name, const AEGP_StreamValue* value);
    void module_info(const char* name, const AEIO_ModuleInfo* value);
    void file_types(const char* name, const AEIO_FileKind* kinds, A_long count);
    void extensions(const char* name, const AEIO_FileKind* kinds, A_long count);
    /// A nested record, whose values are moved out of `members`.
    void record(const char* name, CallValues& members);

  private:
    friend class CallScope;

    void signed_integer(const char* name, std::int64_t value);
    void unsigned_integer(const char* name, std::uint64_t value);
    nlohmann::ordered_json& at(const char* name);
    /// An object, empty when nothing was collected; nothing is left.
    nlohmann::ordered_json take();

    const Session& session_;
    std::unique_ptr<nlohmann::ordered_json> values_;  // null until there is a value
};

}  // namespace embedded
