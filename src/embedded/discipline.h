#pragma once

// What the bundle did that a host must not be treated to. A clean import leaves no problem behind.

#include <cstdint>
#include <string>
#include <vector>

namespace embedded {

enum class Breach {
    // Problems: the bundle broke a rule of the host.
    bad_argument,               ///< null, a size below 1, a time on a scale of 0, a value outside its set
    dead_handle,                ///< a handle of the right kind whose object is gone
    foreign_handle,             ///< never made by this host, or a handle of another kind
    reserved_slot,              ///< a function that this system has no business to call
    stream_not_disposed,        ///< at the end of a callback
    additions_not_ended,        ///< key additions started and not ended at the end of a callback
    undo_group_unbalanced,      ///< closed without being open, or open at the end of a callback
    change_outside_undo_group,  ///< the user cannot take this change back
    footage_never_adopted,      ///< made and not added to the project at the end of a callback
    suite_not_released,         ///< acquired and not given back at the end of a callback
    suite_not_acquired,         ///< given back more often than acquired
    memory_use_after_free,
    memory_double_free,
    memory_unlock_without_lock,
    memory_left_locked,  ///< freed while locked, or locked at the end of a callback
    memory_left_alive,   ///< at the end of a callback, attached to no in-spec
    write_outside_frame,
    missing_suite_exception,  ///< the missing-suite exception left a callback
    // Notes: nothing was broken, but the host did not do exactly what was asked.
    name_cut,      ///< longer than the host's 31 characters
    sequence_gap,  ///< numbers are missing between the first and the last file of a sequence
};

/// The stable word for JSON and for tests: "bad_argument".
const char* breach_word(Breach breach);

/// True for the kinds that are observations and not the bundle's fault.
bool is_note(Breach breach);

struct Finding {
    Breach breach = Breach::bad_argument;
    std::int64_t call =
        0;  ///< number of the host call in which it was seen, as in the log; 0: at the end of a callback
    std::string where;  ///< function or callback
    std::string text;   ///< one sentence without a full stop
};

/// Problems and notes in the order in which they were found. At most `kMaxFindings` of each are kept, the
/// rest is counted: a loop that goes wrong must not fill the memory.
class DisciplineReport {
  public:
    static constexpr std::size_t kMaxFindings = 1000;

    void add(Finding finding);

    /// No problems; notes do not count.
    [[nodiscard]] bool clean() const { return problems_.empty(); }
    [[nodiscard]] const std::vector<Finding>& problems() const { return problems_; }
    [[nodiscard]] const std::vector<Finding>& notes() const { return notes_; }
    [[nodiscard]] std::int64_t dropped() const { return dropped_; }

    /// How many problems or notes of one kind were kept.
    [[nodiscard]] std::size_t count(Breach breach) const;

    /// One line each, "call 12 AEGP_CreateComp: bad_argument: ..."; problems first. Empty without findings.
    [[nodiscard]] std::string to_text() const;

  private:
    std::vector<Finding> problems_;
    std::vector<Finding> notes_;
    std::int64_t dropped_ = 0;
};

}  // namespace embedded
