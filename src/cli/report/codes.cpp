#include "cli/report/codes.h"

#include <array>
#include <cstddef>

namespace cli {
namespace {

using enum Code;

constexpr auto kRows = std::to_array<CodeRow>({
    {cannot_read, "cannot-read", "The file does not exist, may not be read, or is no regular file."},
    {not_importable, "not-importable", "The first nine bytes of a composition file are VORTAN XR."},
    {unsound_result, "unsound-result",
     "What was read breaks a rule that holds for every file: a defect of this program, please report it."},
    {footage_missing, "footage-missing", "The footage is in neither place; a placeholder stands for it."},
    {footage_unreadable, "footage-unreadable",
     "The footage exists and no image reader takes it; a host that does not either ends the import there."},
    {footage_path_unread, "footage-path-unread",
     "No path could be read for footage at the top level; a placeholder without a name stands for it."},
    {sequence_gap, "sequence-gap", "Numbers are missing between the first and the last file of a sequence."},
    {sequence_single_frame, "sequence-single-frame", "The sequence has one file."},
    {sequence_without_number, "sequence-without-number",
     "The file name of a sequence holds no number to count by."},
    {value_changed, "value-changed", "The number that is kept is not the one that is written."},
    {aspect_cut, "aspect-cut", "The host is given the pixel aspect in hundredths, the rest cut off."},
    {name_cut, "name-cut", "The host keeps 31 bytes of a name."},
    {light_kind_changed, "light-kind-changed", "The host has parallel, spot and point lights only."},
    {shadow_kind_not_sent, "shadow-kind-not-sent",
     "The host is told that the light casts shadows, not of which kind."},
    {angle_not_sent, "angle-not-sent", "The cone angle of a light does not reach the host."},
    {key_outside_range, "key-outside-range", "A key is before FROM or after TO."},
    {key_out_of_order, "key-out-of-order", "A key is earlier than the one written before it."},
    {key_repeated, "key-repeated", "An object has several keys for one frame."},
    {field_of_view, "field-of-view", "A camera's field of view is not between 0 and 180 degrees."},
    {range_reversed, "range-reversed", "TO is before FROM, so layers have no length."},
    {layer_past_end, "layer-past-end", "Layers end after the composition does, which has RANGE frames."},
    {word_ignored, "word-ignored", "A word in a composition that begins no entry is passed over."},
    {text_after_end, "text-after-end", "The file ends before its last word; the rest is not read."},
});

constexpr bool in_order() {
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        if (kRows[i].code != static_cast<Code>(i)) {
            return false;
        }
    }
    return kRows.size() == static_cast<std::size_t>(text_after_end) + 1;
}
static_assert(in_order(), "one row for each code, in the order of the enumeration");

}  // namespace

std::span<const CodeRow> code_table() {
    return kRows;
}

const char* code_name(Code code) {
    return kRows[static_cast<std::size_t>(code)].name;
}

bool is_error(Code code) {
    return code <= unsound_result;
}

}  // namespace cli
