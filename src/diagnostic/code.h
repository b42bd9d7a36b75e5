#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>

namespace diagnostic {

/// How much something matters to the person who is told about it.
enum class Severity : std::uint8_t {
    error,    ///< the file is refused, or the job cannot be done or ends midway
    loss,     ///< the job is done, and the picture or the motion differs from what the file says
    warning,  ///< the job is done, and whether the result is the one wanted cannot be known here
    note,     ///< worth knowing; nothing is wrong
};

/// "error", "loss", "warning" or "note".
[[nodiscard]] const char* severity_name(Severity severity);

/// What is fixed about one code, whatever the file. The name is an interface: scripts, tests and JSON rely on
/// it.
struct CodeInfo {
    const char* name;  ///< stable: "expected-number"
    Severity severity;
    const char* meaning;      ///< one sentence: the rule that is broken, or what differs
    const char* remedy = "";  ///< one sentence: what to do; empty where the meaning says it
};

/// One row of a domain's table. A domain is an enumeration, a constexpr array of these in the order of the
/// enumeration (held by `in_order`), and a function `const CodeInfo& code_info(Enum)` beside the enumeration.
template <typename Enum>
struct CodeRow {
    Enum code;
    CodeInfo info;
};

/// Whether a table has one row for each enumerator from 0 to `last`, in that order. For a static_assert.
template <typename Enum, std::size_t kRows>
consteval bool in_order(const std::array<CodeRow<Enum>, kRows>& table, Enum last) {
    for (std::size_t i = 0; i < kRows; ++i) {
        if (table[i].code != static_cast<Enum>(i)) {
            return false;
        }
    }
    return kRows == static_cast<std::size_t>(last) + 1;
}

template <typename Enum>
concept HasCodeInfo = requires(Enum code) {
    { code_info(code) } -> std::same_as<const CodeInfo&>;
};

/// A code of any domain. Converts from the domain's enumerators and compares with them.
class Code {
  public:
    template <HasCodeInfo Enum>
    Code(Enum code) : info_(&code_info(code)) {}

    [[nodiscard]] const char* name() const { return info_->name; }
    [[nodiscard]] Severity severity() const { return info_->severity; }
    [[nodiscard]] const char* meaning() const { return info_->meaning; }
    [[nodiscard]] const char* remedy() const { return info_->remedy; }

    /// The same row of the same table.
    friend bool operator==(const Code&, const Code&) = default;

  private:
    const CodeInfo* info_;
};

}  // namespace diagnostic
