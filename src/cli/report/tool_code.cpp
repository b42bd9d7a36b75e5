#include "cli/report/tool_code.h"

#include <cstddef>

namespace cli {
namespace {

using diagnostic::Severity;

consteval ToolCodeTable tool_codes() {
    using enum ToolCode;
    return {{
        {cannot_read,
         {"cannot-read", Severity::error,
          "The file does not exist, may not be read, or is not a regular file."}},
        {not_importable,
         {"not-importable", Severity::error, "A composition file begins with the nine bytes VORTAN XR."}},
        {internal_error,
         {"unsound-result", Severity::error,
          "What was read breaks a rule that holds for every file: a bug in this program; please report "
          "it.",
          "this is a bug in this program; please report it together with the file"}},
        {footage_missing,
         {"footage-missing", Severity::loss, "The footage is in neither place; a placeholder replaces it."}},
        {footage_unreadable,
         {"footage-unreadable", Severity::error,
          "The footage exists, but no image reader accepts it; if the host does not either, the import ends "
          "there."}},
        {footage_path_unread,
         {"footage-path-unread", Severity::loss,
          "No path could be read for footage at the top level; a placeholder without a name replaces it."}},
        {sequence_gap,
         {"sequence-gap", Severity::loss,
          "Numbers are missing between the first and the last file of a sequence."}},
        {sequence_single_frame,
         {"sequence-single-frame", Severity::warning, "The sequence consists of one file."}},
        {sequence_without_number,
         {"sequence-without-number", Severity::warning,
          "The file name of a sequence contains no frame number."}},
        {sequence_short,
         {"sequence-short", Severity::loss, "A sequence has fewer frames than its layer lasts."}},
        {sequence_offset,
         {"sequence-offset", Severity::loss,
          "A sequence has files for the scene's frames, but does not begin with FROM, so each is shown at "
          "another frame."}},
        {sequence_stray,
         {"sequence-stray", Severity::warning,
          "A sequence takes in files that lie apart from the frames of the scene."}},
        {sequence_mixed,
         {"sequence-mixed", Severity::loss,
          "The images of a sequence differ in size, channels or depth, or one cannot be read."}},
        {footage_size,
         {"footage-size", Severity::warning, "The footage does not have the size of the composition."}},
        {premul_without_alpha,
         {"premul-without-alpha", Severity::warning,
          "The entry says PREMUL, and the image has no alpha channel."}},
        {alpha_uniform,
         {"alpha-uniform", Severity::warning,
          "The alpha channel is 0 everywhere or 255 everywhere; found with --read-pixels."}},
        {value_changed,
         {"value-changed", Severity::loss, "The number that is kept differs from the one in the file."}},
        {aspect_cut,
         {"aspect-cut", Severity::loss,
          "The host receives the pixel aspect in hundredths; further digits are cut off."}},
        {name_cut,
         {"name-cut", Severity::note,
          "Classic hosts keep only the first 31 bytes of a name, current ones all of it."}},
        {name_not_utf8,
         {"name-not-utf8", Severity::warning,
          "A name is not UTF-8; current hosts get it as Windows-1252, classic ones as it is."}},
        {light_kind_changed,
         {"light-kind-changed", Severity::loss, "The host has only parallel, spot and point lights."}},
        {shadow_kind_not_sent,
         {"shadow-kind-not-sent", Severity::note,
          "The host is told that the light casts shadows, but not which kind."}},
        {angle_not_sent,
         {"angle-not-sent", Severity::loss, "The cone angle of a light does not reach the host."}},
        {key_outside_range, {"key-outside-range", Severity::warning, "A key is before FROM or after TO."}},
        {key_out_of_order,
         {"key-out-of-order", Severity::note, "A key is earlier than the one written before it."}},
        {key_repeated, {"key-repeated", Severity::warning, "An object has several keys for the same frame."}},
        {field_of_view,
         {"field-of-view", Severity::loss, "A camera's field of view is not between 0 and 180 degrees."}},
        {range_reversed, {"range-reversed", Severity::loss, "TO is before FROM, so layers have no length."}},
        {layer_past_end,
         {"layer-past-end", Severity::warning, "Layers end after the composition, which has RANGE frames."}},
        {word_ignored,
         {"word-ignored", Severity::warning, "A word in a composition that begins no entry is skipped."}},
        {text_after_end,
         {"text-after-end", Severity::warning, "The file ends before its last word; the rest is not read."}},
        {outside_host_range,
         {"outside-host-range", Severity::loss,
          "After Effects holds 4 to 30,000 pixels a side, at most 99 frames a second, and at most 3 hours.",
          "write values that After Effects can hold, and divide what is longer or larger"}},
        {name_equal_after_cut,
         {"name-equal-after-cut", Severity::warning,
          "Names that differ only after their first 31 bytes are equal in classic hosts.",
          "make the names differ in their first 31 bytes if the project goes to a classic host"}},
        {name_repeated,
         {"name-repeated", Severity::note,
          "Several compositions, or several cameras, lights and nulls, have one name in After Effects.",
          "an expression or a script that asks for the name gets only one of them"}},
        {keys_all_equal,
         {"keys-all-equal", Severity::note, "All keys of an object are equal; one would do."}},
        {hold_drifts,
         {"hold-drifts", Severity::loss,
          "Between equal keys with keys that differ around them, After Effects moves the object on a curve.",
          "choose Linear as the spatial interpolation of these keys in After Effects, or export a key on "
          "every frame"}},
        {path_bends,
         {"path-bends", Severity::loss,
          "Between keys with frames between them, After Effects moves the object on a curve.",
          "choose Linear as the spatial interpolation of these keys in After Effects, or export a key on "
          "every frame"}},
        {aim_undefined,
         {"aim-undefined", Severity::loss,
          "A camera that is aimed at its point of interest cannot look straight up or down or be upside "
          "down.",
          "turn the camera in After Effects by its orientation, without a point of interest"}},
        {turn_too_far,
         {"turn-too-far", Severity::loss,
          "Between two keys, a camera or light turns by half a turn or more; After Effects goes another "
          "way.",
          "export a key on every frame"}},
        {roll_reverses,
         {"roll-reverses", Severity::warning,
          "The roll of a camera changes its direction at a key, with frames beside it that have none.",
          "export a key on every frame"}},
        {aspect_turns_camera,
         {"aspect-turns-camera", Severity::warning,
          "A camera is turned in the composition \"Camera+Light\", whose pixels are not square."}},
    }};
}

constexpr ToolCodeTable kToolCodes = tool_codes();
static_assert(diagnostic::in_order(kToolCodes, ToolCode::aspect_turns_camera));

}  // namespace

const ToolCodeTable& tool_code_table() {
    return kToolCodes;
}

const diagnostic::CodeInfo& code_info(ToolCode code) {
    return kToolCodes[static_cast<std::size_t>(code)].info;
}

std::optional<diagnostic::Diagnostic> internal_error(const std::string& file,
                                                     const std::optional<std::string>& violation) {
    if (!violation) {
        return std::nullopt;
    }
    return diagnostic::make(ToolCode::internal_error, {file}, *violation);
}

}  // namespace cli
