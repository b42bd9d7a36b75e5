#pragma once

// What a bundle did that breaks a rule of the host. A clean import leaves no violation behind.

#include <cstdint>
#include <string>
#include <vector>

#include "diagnostic/diagnostic.h"

namespace embedded {

/// The rules, and two observations that break none. The table in conformance.cpp gives each its published
/// name, its meaning and what to do about it.
enum class RuleViolation : std::uint8_t {
    bad_argument,
    dead_handle,
    foreign_handle,
    reserved_slot,
    stream_not_disposed,
    additions_not_ended,
    undo_group_unbalanced,
    change_outside_undo_group,
    footage_never_adopted,
    suite_not_released,
    suite_not_acquired,
    memory_use_after_free,
    memory_double_free,
    memory_unlock_without_lock,
    memory_left_locked,
    memory_left_alive,
    write_outside_frame,
    frame_not_drawn,
    output_not_set,
    call_off_main_thread,
    copy_changed,
    missing_suite_exception,
    // Notes: no rule was broken, but the host did not do exactly what was asked.
    name_cut,
    sequence_gap,
};

[[nodiscard]] const diagnostic::CodeInfo& code_info(RuleViolation violation);

/// One finding. `call` is the number of the host call in which it was seen, 0 at the end of a callback;
/// `where` is the host function or the callback; `text` is a sentence without a full stop.
///
/// The number becomes the line of the diagnostic's place: calls are numbered as the lines of the call log
/// are. `where` becomes the one entry of `within`.
[[nodiscard]] diagnostic::Diagnostic conformance_finding(RuleViolation violation, std::int64_t call,
                                                         std::string where, std::string text);

/// Violations and notes in the order in which they were found. At most `kMaxFindings` of each are kept and
/// the rest is counted, so that a bundle in an endless loop does not fill the memory.
class ConformanceReport {
  public:
    static constexpr std::size_t kMaxFindings = 1000;

    void add(diagnostic::Diagnostic finding);

    /// No violations; notes do not count.
    [[nodiscard]] bool clean() const { return violations_.empty(); }
    [[nodiscard]] const std::vector<diagnostic::Diagnostic>& violations() const { return violations_; }
    [[nodiscard]] const std::vector<diagnostic::Diagnostic>& notes() const { return notes_; }
    [[nodiscard]] std::int64_t dropped() const { return dropped_; }

    /// How many findings with this code were kept.
    [[nodiscard]] std::size_t count(RuleViolation violation) const;

    /// One line each, "call 12 AEGP_CreateComp: bad_argument: ..."; violations first. Empty without findings.
    [[nodiscard]] std::string to_text() const;

  private:
    std::vector<diagnostic::Diagnostic> violations_;
    std::vector<diagnostic::Diagnostic> notes_;
    std::int64_t dropped_ = 0;
};

}  // namespace embedded
