#include "embedded/conformance.h"

#include <algorithm>
#include <array>
#include <utility>

namespace embedded {
namespace {

using diagnostic::Diagnostic;
using diagnostic::Severity;
using Row = diagnostic::CodeRow<RuleViolation>;

constexpr std::array kRules{
    Row{RuleViolation::bad_argument,
        {"bad_argument", Severity::error, "An argument is null, out of its range, or a time on a scale of 0.",
         "Pass a value that the function documents."}},
    Row{RuleViolation::dead_handle,
        {"dead_handle", Severity::error, "The handle is of the right kind, and its object is gone.",
         "Use a handle only while its object lives."}},
    Row{RuleViolation::foreign_handle,
        {"foreign_handle", Severity::error,
         "The host never made the handle, or made it for another kind of object.",
         "Pass handles as the host gave them out."}},
    Row{RuleViolation::reserved_slot,
        {"reserved_slot", Severity::error, "The function is one that this host does not implement.",
         "Call only the functions that the interface headers declare."}},
    Row{RuleViolation::stream_not_disposed,
        {"stream_not_disposed", Severity::error, "A stream is open at the end of a callback.",
         "Dispose of every stream, also after a failure."}},
    Row{RuleViolation::additions_not_ended,
        {"additions_not_ended", Severity::error,
         "Key additions were started and not ended at the end of a callback.",
         "End every key addition, also after a failure."}},
    Row{RuleViolation::undo_group_unbalanced,
        {"undo_group_unbalanced", Severity::error,
         "An undo group was closed without being open, or is open at the end of a callback.",
         "Close every undo group that was opened, once."}},
    Row{RuleViolation::change_outside_undo_group,
        {"change_outside_undo_group", Severity::error,
         "The project was changed outside an undo group, so the user cannot undo the change.",
         "Open an undo group before the first change."}},
    Row{RuleViolation::footage_never_adopted,
        {"footage_never_adopted", Severity::error,
         "Footage was made and is in no project at the end of a callback.",
         "Add new footage to the project."}},
    Row{RuleViolation::suite_not_released,
        {"suite_not_released", Severity::error,
         "A suite was acquired and not released at the end of a callback.",
         "Release every suite as often as it was acquired."}},
    Row{RuleViolation::suite_not_acquired,
        {"suite_not_acquired", Severity::error, "A suite was released more often than it was acquired.",
         "Release every suite as often as it was acquired."}},
    Row{RuleViolation::memory_use_after_free,
        {"memory_use_after_free", Severity::error, "A memory handle was used after it was freed.",
         "Do not keep handles of freed memory."}},
    Row{RuleViolation::memory_double_free,
        {"memory_double_free", Severity::error, "A memory handle was freed twice.",
         "Free every memory handle once."}},
    Row{RuleViolation::memory_unlock_without_lock,
        {"memory_unlock_without_lock", Severity::error, "A memory handle was unlocked without being locked.",
         "Unlock memory as often as it was locked."}},
    Row{RuleViolation::memory_left_locked,
        {"memory_left_locked", Severity::error,
         "A memory handle was freed while locked, or is locked at the end of a callback.",
         "Unlock memory as often as it was locked."}},
    Row{RuleViolation::memory_left_alive,
        {"memory_left_alive", Severity::error,
         "A memory handle is alive at the end of a callback and attached to no in-spec.",
         "Free it, or attach it to an in-spec."}},
    Row{RuleViolation::write_outside_frame,
        {"write_outside_frame", Severity::error,
         "The module wrote outside the pixels of its frame, or outside the part that was required.",
         "Keep to the width, the height, the row length and the required region of the frame."}},
    Row{RuleViolation::frame_not_drawn,
        {"frame_not_drawn", Severity::error, "The module reported success and drew nothing into its frame.",
         "Draw the frame, or return an error."}},
    Row{RuleViolation::output_not_set,
        {"output_not_set", Severity::error,
         "A callback reported success without setting an output, whose memory may hold anything.",
         "Set every output, or ask for the host's default."}},
    Row{RuleViolation::call_off_main_thread,
        {"call_off_main_thread", Severity::error,
         "The function was called on a thread other than the main one, where hosts refuse it.",
         "Call it on the main thread, later."}},
    Row{RuleViolation::copy_changed,
        {"copy_changed", Severity::error, "The copy of an in-spec was changed while it was drawn.",
         "Only read the in-spec while drawing."}},
    Row{RuleViolation::missing_suite_exception,
        {"missing_suite_exception", Severity::error, "The exception for a missing suite left a callback.",
         "Catch it inside the callback."}},
    Row{RuleViolation::name_cut,
        {"name_cut", Severity::note, "The name is longer than the host keeps, and was cut after 31 bytes."}},
    Row{RuleViolation::sequence_gap,
        {"sequence_gap", Severity::note,
         "Numbers are missing between the first and the last file of a sequence."}},
};
static_assert(diagnostic::in_order(kRules, RuleViolation::sequence_gap));

bool is_note(const Diagnostic& finding) {
    return finding.severity() == Severity::note;
}

}  // namespace

const diagnostic::CodeInfo& code_info(RuleViolation violation) {
    return kRules[static_cast<std::size_t>(violation)].info;
}

Diagnostic conformance_finding(RuleViolation violation, std::int64_t call, std::string where,
                               std::string text) {
    diagnostic::Place at;
    if (call != 0) {
        at.line = call;
    }
    return diagnostic::make(violation, std::move(at), std::move(text), {std::move(where)});
}

void ConformanceReport::add(Diagnostic finding) {
    std::vector<Diagnostic>& list = is_note(finding) ? notes_ : violations_;
    if (list.size() < kMaxFindings) {
        list.push_back(std::move(finding));
    } else {
        ++dropped_;
    }
}

std::size_t ConformanceReport::count(RuleViolation violation) const {
    const diagnostic::Code code = violation;
    const std::vector<Diagnostic>& list = code.severity() == Severity::note ? notes_ : violations_;
    return static_cast<std::size_t>(std::count_if(
        list.begin(), list.end(), [&code](const Diagnostic& finding) { return finding.code == code; }));
}

std::string ConformanceReport::to_text() const {
    std::string text;
    for (const std::vector<Diagnostic>* list : {&violations_, &notes_}) {
        for (const Diagnostic& finding : *list) {
            text += finding.at.line ? "call " + std::to_string(*finding.at.line) + " " : "end of ";
            text += finding.within.front() + ": " + finding.code.name() + ": " + finding.reason + "\n";
        }
    }
    if (dropped_ > 0) {
        text += std::to_string(dropped_) + " more\n";
    }
    return text;
}

}  // namespace embedded
