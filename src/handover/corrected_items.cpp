// Corrections of items: rates, pixel aspect, names, plates.

#include <algorithm>
#include <cmath>
#include <limits>

#include "handover/correction_run.h"
#include "handover/loss.h"
#include "system/files.h"
#include "text/ascii.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace handover {
namespace {

using text::plain_number;

std::size_t objects_composition(const Handover& handover) {
    for (std::size_t i = 0; i < handover.compositions.size(); ++i) {
        const std::vector<Layer>& layers = handover.compositions[i].layers;
        if (std::any_of(layers.begin(), layers.end(),
                        [](const Layer& layer) { return layer.object != kNone; })) {
            return i;
        }
    }
    return kNone;
}

// The height at which square pixels show as much as the composition's own do. Of the same parity, so that
// both have their middle on a pixel or between two.
std::int32_t square_height(const Shot& shot) {
    const double exact = shot.height_px / shot.pixel_aspect;
    // A decimal aspect is not exact in binary, so 540 may come out a little above.
    constexpr double kRounding = 1e-9;
    auto height = static_cast<std::int64_t>(std::ceil(exact - exact * kRounding));
    height += (height - shot.height_px) % 2 != 0 ? 1 : 0;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(height, 1, std::numeric_limits<std::int32_t>::max()));
}

Layer* layer_of(Composition& root, std::size_t item) {
    const auto found = std::find_if(root.layers.begin(), root.layers.end(),
                                    [&](const Layer& layer) { return layer.item == item; });
    return found == root.layers.end() ? nullptr : &*found;
}

void set_scale(Layer& layer, double across_percent, double down_percent) {
    constexpr double kFull_percent = 100;
    for (Track& track : layer.tracks) {
        if (track.property == Property::scale) {
            track.frames.clear();
            track.values = {across_percent, down_percent, kFull_percent};
        }
    }
}

void correct_objects_composition(CorrectionRun& run, std::size_t index) {
    constexpr double kPercent = 100;
    Handover& handover = run.handover;
    const double aspect = handover.shot.pixel_aspect;
    Composition& composition = handover.compositions[index];
    Layer* const layer = layer_of(handover.compositions.front(), composition.item);
    if (layer == nullptr) {
        return;
    }
    if (!run.wants(Correction::square_pixels)) {
        if (run.wants(Correction::exact_aspect)) {
            set_scale(*layer, kPercent, kPercent * aspect);
        }
        return;
    }
    composition.pixel_aspect = 1;
    composition.height_px = square_height(handover.shot);
    set_scale(*layer, kPercent * aspect, kPercent * aspect);
    for (Layer& object : composition.layers) {
        if (object.kind == LayerKind::camera || object.kind == LayerKind::light) {
            const std::int32_t middle_px = composition.height_px / 2;  // as the importer halves
            object.center_px[1] = middle_px;
        }
    }
    run.changed(Correction::square_pixels,
                text::quoted(handover.items[composition.item].name) + " has " +
                    std::to_string(composition.width_px) + " x " + std::to_string(composition.height_px) +
                    " square pixels, and its layer is scaled to " + plain_number(kPercent * aspect) + " %");
}

// The numbers of a sequence that exist within FROM and TO.
struct ShownFiles {
    std::int64_t first = 0;
    std::int64_t last = -1;  ///< below `first`: none
    std::int64_t missing = 0;
};

// `sequence` has gaps in ascending order.
ShownFiles shown_files(const embedded::SequenceFrames& sequence, std::int64_t from, std::int64_t to) {
    ShownFiles shown{std::max(sequence.range.first, from), std::min(sequence.range.last, to), 0};
    for (const embedded::FrameRange& gap : sequence.gaps) {
        if (gap.first <= shown.first && shown.first <= gap.last) {
            shown.first = gap.last + 1;
        }
    }
    for (auto gap = sequence.gaps.rbegin(); gap != sequence.gaps.rend(); ++gap) {
        if (gap->first <= shown.last && shown.last <= gap->last) {
            shown.last = gap->first - 1;
        }
    }
    for (const embedded::FrameRange& gap : sequence.gaps) {
        if (gap.first > shown.first && gap.last < shown.last) {
            shown.missing += gap.last - gap.first + 1;
        }
    }
    return shown;
}

// As the host calls a sequence: "shot[0017-0020].png".
std::string sequence_name(const NumberedFiles& files) {
    NumberedFiles numbers = files;
    numbers.prefix.clear();
    numbers.suffix.clear();
    return files.prefix + "[" + file_name(numbers, files.first) + "-" + file_name(numbers, files.last) + "]" +
           files.suffix;
}

void correct_plate(CorrectionRun& run, Layer& layer, Footage& footage,
                   const embedded::SequenceFrames& sequence) {
    const Shot& shot = run.handover.shot;
    NumberedFiles& files = *footage.files;
    const ShownFiles shown = shown_files(sequence, shot.from, shot.to);
    const std::string name = text::quoted(run.handover.items[layer.item].name);
    if (shown.first > shown.last) {
        run.handover.losses.push_back(
            {diagnostic::make(LossCode::sequence_elsewhere, layer.at,
                              name + " has files " + std::to_string(files.first) + " to " +
                                  std::to_string(files.last) + ", and none from " +
                                  std::to_string(shot.from) + " to " + std::to_string(shot.to)),
             Target::jsx});
        return;
    }
    const double start = layer.start;
    const std::int64_t first_before = files.first;
    files.first = shown.first;
    files.last = shown.last;
    files.missing = shown.missing;
    files.whole = false;
    const auto folder = os::path_of(footage.path).parent_path();
    footage.path = os::text_of(folder / os::path_of(file_name(files, files.first)));
    run.handover.items[layer.item].name = sequence_name(files);
    layer.name = run.handover.items[layer.item].name;
    const std::int64_t count = shown.last - shown.first + 1;
    footage.frames = static_cast<double>(count);
    layer.start = static_cast<double>((shot.local ? shot.from : 0) + shown.first - shot.from);
    layer.in = layer.start;
    layer.length = static_cast<double>(count);
    if (layer.start != start || shown.first != first_before) {
        run.changed(Correction::plate_frames,
                    name + " begins with file " + std::to_string(shown.first) + " at frame " +
                        plain_number(layer.start) + " of the composition; the plug-in shows file " +
                        std::to_string(first_before) + " at frame " + plain_number(start));
    }
}

}  // namespace

void correct_frame_rate(CorrectionRun& run) {
    Shot& shot = run.handover.shot;
    if (!run.wants(Correction::frame_rate) || !run.options.rate_fps ||
        *run.options.rate_fps == shot.rate_fps) {
        return;
    }
    shot.rate_fps = *run.options.rate_fps;
    for (Composition& composition : run.handover.compositions) {
        composition.rate_fps = shot.rate_fps;
    }
    std::int64_t count = static_cast<std::int64_t>(run.handover.compositions.size());
    for (Footage& footage : run.handover.footage) {
        if (footage.rate_fps != 0) {
            footage.rate_fps = shot.rate_fps;
            ++count;
        }
    }
    run.changed(Correction::frame_rate,
                "the scene says " + std::to_string(shot.written_fps) + " frames a second, and has " +
                    plain_number(shot.rate_fps),
                count);
}

void correct_aspect(CorrectionRun& run) {
    Handover& handover = run.handover;
    const double aspect = handover.shot.pixel_aspect;
    if (run.wants(Correction::exact_aspect)) {
        const auto set = [&](double& to) {
            if (to != aspect) {
                run.changed(Correction::exact_aspect,
                            "the pixel aspect is " + plain_number(aspect) + " and not " + plain_number(to));
                to = aspect;
            }
        };
        for (Composition& composition : handover.compositions) {
            set(composition.pixel_aspect);
        }
        for (Footage& footage : handover.footage) {
            set(footage.pixel_aspect);
        }
    }
    // Only scenes with other pixels have a composition for their objects.
    const std::size_t objects = objects_composition(handover);
    if (objects != kNone && objects != 0) {
        correct_objects_composition(run, objects);
    }
}

void correct_names(CorrectionRun& run) {
    if (!run.wants(Correction::whole_names)) {
        return;
    }
    Handover& handover = run.handover;
    for (Item& item : handover.items) {
        if (item.kind != ItemKind::footage ||
            handover.footage[item.content].kind != FootageKind::placeholder) {
            continue;
        }
        const std::string whole(text::last_component(handover.footage[item.content].path, ":\\/"));
        if (!whole.empty() && item.name != whole) {
            run.changed(Correction::whole_names,
                        text::quoted(item.name) + " is called " + text::quoted(whole));
            item.name = whole;
        }
    }
    for (Composition& composition : handover.compositions) {
        for (Layer& layer : composition.layers) {
            if (layer.item != kNone) {
                layer.name = handover.items[layer.item].name;
            }
        }
    }
}

void correct_plates(CorrectionRun& run) {
    const Shot& shot = run.handover.shot;
    if (!run.wants(Correction::plate_frames) || shot.to < shot.from) {
        return;
    }
    for (Composition& composition : run.handover.compositions) {
        // In the order of the file: the lowest layer comes first.
        for (auto layer = composition.layers.rbegin(); layer != composition.layers.rend(); ++layer) {
            if (layer->kind != LayerKind::footage) {
                continue;
            }
            const std::size_t index = run.handover.items[layer->item].content;
            Footage& footage = run.handover.footage[index];
            if (footage.files && run.project.footage[index].sequence) {
                correct_plate(run, *layer, footage, *run.project.footage[index].sequence);
            }
        }
    }
}

}  // namespace handover
