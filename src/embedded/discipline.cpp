#include "embedded/discipline.h"

#include <algorithm>
#include <utility>

namespace embedded {

const char* breach_word(Breach breach) {
    switch (breach) {
        case Breach::bad_argument:
            return "bad_argument";
        case Breach::dead_handle:
            return "dead_handle";
        case Breach::foreign_handle:
            return "foreign_handle";
        case Breach::reserved_slot:
            return "reserved_slot";
        case Breach::stream_not_disposed:
            return "stream_not_disposed";
        case Breach::additions_not_ended:
            return "additions_not_ended";
        case Breach::undo_group_unbalanced:
            return "undo_group_unbalanced";
        case Breach::change_outside_undo_group:
            return "change_outside_undo_group";
        case Breach::footage_never_adopted:
            return "footage_never_adopted";
        case Breach::suite_not_released:
            return "suite_not_released";
        case Breach::suite_not_acquired:
            return "suite_not_acquired";
        case Breach::memory_use_after_free:
            return "memory_use_after_free";
        case Breach::memory_double_free:
            return "memory_double_free";
        case Breach::memory_unlock_without_lock:
            return "memory_unlock_without_lock";
        case Breach::memory_left_locked:
            return "memory_left_locked";
        case Breach::memory_left_alive:
            return "memory_left_alive";
        case Breach::write_outside_frame:
            return "write_outside_frame";
        case Breach::missing_suite_exception:
            return "missing_suite_exception";
        case Breach::name_cut:
            return "name_cut";
        case Breach::sequence_gap:
            return "sequence_gap";
    }
    return "unknown";
}

bool is_note(Breach breach) {
    return breach == Breach::name_cut || breach == Breach::sequence_gap;
}

void DisciplineReport::add(Finding finding) {
    std::vector<Finding>& list = is_note(finding.breach) ? notes_ : problems_;
    if (list.size() < kMaxFindings) {
        list.push_back(std::move(finding));
    } else {
        ++dropped_;
    }
}

std::size_t DisciplineReport::count(Breach breach) const {
    const std::vector<Finding>& list = is_note(breach) ? notes_ : problems_;
    return static_cast<std::size_t>(std::count_if(
        list.begin(), list.end(), [breach](const Finding& finding) { return finding.breach == breach; }));
}

std::string DisciplineReport::to_text() const {
    std::string text;
    for (const std::vector<Finding>* list : {&problems_, &notes_}) {
        for (const Finding& finding : *list) {
            if (finding.call == 0) {
                text += "end of ";
            } else {
                text += "call " + std::to_string(finding.call) + " ";
            }
            text += finding.where + ": " + breach_word(finding.breach) + ": " + finding.text + "\n";
        }
    }
    if (dropped_ > 0) {
        text += std::to_string(dropped_) + " more\n";
    }
    return text;
}

}  // namespace embedded
