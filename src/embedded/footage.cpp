#include "embedded/footage.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "embedded/module_driver.h"
#include "image/image.h"

namespace embedded {
namespace {

constexpr A_u_long kImportRate_fps = 30;  // the host's rate for sequences, whose files have none
constexpr double kFixedOne = 65536.0;     // 16.16
constexpr A_long kFieldSignature = four_char_code("FIEL");
constexpr A_short kFieldVersion = 1;

std::string file_name(const std::string& path) {
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

/// "shot.[0017-0020].png", as the host shows sequences; `name` is that of one of its files.
std::string sequence_name(const SequenceFrames& frames, const NumberedName& name) {
    const auto width = static_cast<std::size_t>(frames.padding);
    const auto padded = [width](std::int64_t frame) {
        std::string digits = std::to_string(frame);
        digits.insert(0, width - std::min(width, digits.size()), '0');
        return digits;
    };
    // Not taken from the pattern: the name itself may contain a number sign.
    return name.prefix + "[" + padded(frames.range.first) + "-" + padded(frames.range.last) + "]" +
           name.suffix;
}

/// The host's own interpretation of new footage: square pixels, whole frames, and the rate and alpha of the
/// file.
AEGP_FootageInterp guess(const Footage& footage, double native_fps, A_long depth) {
    AEGP_FootageInterp interpretation{};
    interpretation.interlace.signature = static_cast<A_u_long>(kFieldSignature);
    interpretation.interlace.version = kFieldVersion;
    interpretation.interlace.type = kFieldTypeWholeFrames;
    interpretation.alpha.flags =
        footage.has_alpha && footage.alpha_premultiplied ? kAlphaFlagPremultiplied : AEGP_AlphaFlags{0};
    interpretation.loop.loops = 1;
    interpretation.pixel_aspect = {1, 1};
    interpretation.native_fps = native_fps;
    interpretation.depth = depth;
    return interpretation;
}

/// The depth counts the bits of a whole pixel: colour, and alpha if there is any.
A_long pixel_depth(const Footage& footage) {
    const int rounded = footage.bits_per_channel <= 8 ? 8 : (footage.bits_per_channel <= 16 ? 16 : 32);
    return rounded * (footage.has_alpha ? 4 : 3);
}

Id keep(Session& session, Footage made) {
    session.handles.make<AEGP_FootageH>();
    made.id = static_cast<Id>(session.project.footage.size()) + 1;
    session.project.footage.push_back(std::move(made));
    return session.project.footage.back().id;
}

Id make_module_footage(Session& session, const Module& module, const std::string& path) {
    const OpenResult opened = open_with_module(session, module, path);
    if (opened.in_spec == 0) {
        throw Refusal{opened.callback.code};
    }
    const InSpec& in_spec = session.in_spec(opened.in_spec);
    Footage made;
    made.kind = FootageKind::module_file;
    made.path = path;
    made.name = file_name(path);
    made.in_spec = opened.in_spec;
    made.width = in_spec.width;
    made.height = in_spec.height;
    made.channels = in_spec.depth / 8;
    made.bits_per_channel = 8;  // frames are drawn in 8 bits
    made.duration = in_spec.duration;
    made.has_alpha =
        in_spec.alpha_label ? in_spec.alpha_label->alpha_type != kAlphaTypeNone : made.channels == 4;
    made.alpha_premultiplied =
        in_spec.alpha_label && in_spec.alpha_label->alpha_type == kAlphaTypePremultiplied;
    made.interpretation = guess(made, in_spec.native_fps / kFixedOne, in_spec.depth);
    return keep(session, std::move(made));
}

A_Time sequence_duration(const SequenceFrames& frames) {
    // Gaps count, too: the host repeats the last frame there.
    const std::int64_t length =
        frames.gaps.empty() ? frames.count : frames.range.last - frames.range.first + 1;
    return {static_cast<A_long>(std::min<std::int64_t>(length, std::numeric_limits<A_long>::max())),
            kImportRate_fps};
}

void note_gaps(Session& session, const SequenceFrames& frames) {
    if (frames.gaps.empty()) {
        return;
    }
    std::string text = frames.pattern + " has gaps:";
    constexpr std::size_t kShown = 8;
    for (std::size_t i = 0; i < frames.gaps.size() && i < kShown; ++i) {
        const FrameRange& gap = frames.gaps[i];
        text += " " + std::to_string(gap.first);
        if (gap.last != gap.first) {
            text += "-" + std::to_string(gap.last);
        }
    }
    if (frames.gaps.size() > kShown) {
        text += " and " + std::to_string(frames.gaps.size() - kShown) + " more";
    }
    session.found(RuleViolation::sequence_gap, std::move(text));
}

}  // namespace

Id make_file_footage(Session& session, const std::string& path,
                     const std::optional<SequenceRequest>& sequence) {
    if (const Module* module = module_for(session, path)) {
        return make_module_footage(session, *module, path);
    }

    const std::optional<image::Header> header = image::probe(path).header;
    if (!header) {
        throw Refusal{kHostErrorGeneric};
    }
    Footage made;
    made.path = path;
    made.name = file_name(path);
    made.width = header->width_px;
    made.height = header->height_px;
    made.channels = header->channels;
    made.bits_per_channel = header->bits_per_channel;
    made.has_alpha = header->has_alpha;
    made.alpha_premultiplied = header->alpha_premultiplied;
    made.duration = {0, kImportRate_fps};
    if (sequence) {
        made.kind = FootageKind::sequence;
        if (session.callbacks_running == 0) {
            session.sequences.forget();
        }
        made.sequence = find_sequence(session.sequences, path, *sequence);
        const auto numbered = split_number(made.name);
        if (!made.sequence && numbered) {
            throw Refusal{kHostErrorGeneric};  // no frame in the requested range
        }
        made.duration = {1, kImportRate_fps};
        if (made.sequence && numbered) {
            made.name = sequence_name(*made.sequence, *numbered);
            made.duration = sequence_duration(*made.sequence);
            note_gaps(session, *made.sequence);
        }
    }
    made.interpretation = guess(made, kImportRate_fps, pixel_depth(made));
    return keep(session, std::move(made));
}

Id make_placeholder(Session& session, std::string name, A_long width, A_long height, const A_Time& duration) {
    Footage made;
    made.kind = FootageKind::placeholder;
    made.name = std::move(name);
    made.width = width;
    made.height = height;
    made.duration = duration;
    constexpr A_long kPlaceholderDepth = 32;
    made.interpretation = guess(made, kImportRate_fps, kPlaceholderDepth);
    return keep(session, std::move(made));
}

}  // namespace embedded
