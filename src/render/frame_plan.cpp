#include "render/frame_plan.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "embedded/sequence.h"
#include "limit/limits.h"
#include "render/code.h"
#include "system/files.h"
#include "text/printable.h"

namespace render {
namespace {

/// Times are fractions, and their doubles may lie just below the whole frame that is meant.
constexpr double kFrameSlack = 1e-6;

double seconds(const A_Time& time) {
    return time.scale == 0 ? 0 : static_cast<double>(time.value) / static_cast<double>(time.scale);
}

double rate_fps(const embedded::Composition& composition) {
    const A_Ratio& rate = composition.frame_rate;
    return rate.den == 0 ? 0 : static_cast<double>(rate.num) / static_cast<double>(rate.den);
}

std::int64_t whole_frames(double frames) {
    constexpr double kMost = 1e15;
    return static_cast<std::int64_t>(std::floor(std::clamp(frames + kFrameSlack, -kMost, kMost)));
}

Blend blend_of(const AEGP_LayerTransferMode& mode) {
    switch (mode.mode) {
        case kTransferModeAdd:
            return Blend::add;
        case kTransferModeMultiply:
            return Blend::multiply;
        default:
            return Blend::normal;
    }
}

/// The time of the layer in seconds while it is seen; nothing before and after.
std::optional<double> layer_time(const embedded::Layer& layer, double composition_seconds, double rate) {
    const double time = composition_seconds - seconds(layer.offset);
    const double in = seconds(layer.in_point);
    const double slack = rate > 0 ? kFrameSlack / rate : 0;
    if (time < in - slack || time >= in + seconds(layer.duration) - slack) {
        return std::nullopt;
    }
    return time;
}

/// The file that the footage shows; empty for placeholders, nothing when its time is over.
std::optional<std::string> file_at(const embedded::Footage& footage, double time) {
    switch (footage.kind) {
        case embedded::FootageKind::placeholder:
            return std::string();
        case embedded::FootageKind::file:
        case embedded::FootageKind::module_file:
            return footage.path;
        case embedded::FootageKind::sequence:
            break;
    }
    const double conform = footage.interpretation.conform_fps;
    return sequence_file(footage,
                         whole_frames(time * (conform > 0 ? conform : footage.interpretation.native_fps)));
}

/// Walks nested compositions without recursion: they nest as deep as a file says.
class Planner {
  public:
    explicit Planner(const embedded::Project& project) : project_(project) {}

    FramePlan plan(embedded::Id id, std::int64_t frame) {
        const embedded::Composition& root = project_.composition(id);
        open(root, {0, 0, root.width, root.height}, {0, 0, root.width, root.height}, frame, Blend::normal);
        while (!open_.empty() && !plan_.error) {
            Open& now = open_.back();
            if (now.left == 0) {
                close();
                continue;
            }
            --now.left;
            add_layer(project_.layer(now.composition->layers[now.next_from_top--]));
        }
        if (plan_.error) {
            plan_.steps.clear();
        }
        return std::move(plan_);
    }

  private:
    struct Open {
        const embedded::Composition* composition = nullptr;
        std::size_t next_from_top = 0;  ///< layers are stored from top to bottom
        std::size_t left = 0;
        Area around;
        Area visible;
        double seconds = 0;
        Blend blend = Blend::normal;
        std::size_t begin = 0;  ///< its step; the outermost has none
        bool anything = false;  ///< something was laid on it
    };

    void open(const embedded::Composition& composition, const Area& around, const Area& visible,
              std::int64_t frame, Blend blend) {
        Open opened;
        opened.composition = &composition;
        opened.left = composition.layers.size();
        opened.next_from_top = opened.left - 1;
        opened.around = around;
        opened.visible = visible;
        opened.seconds = static_cast<double>(frame) / rate_fps(composition);
        opened.blend = blend;
        opened.begin = plan_.steps.size();
        if (!open_.empty()) {
            PlanStep step;
            step.kind = PlanStep::Kind::begin;
            step.around = around;
            step.visible = visible;
            plan_.steps.push_back(std::move(step));
        }
        open_.push_back(opened);
        plan_.depth = std::max(plan_.depth, open_.size());
    }

    void close() {
        const Open closed = open_.back();
        open_.pop_back();
        if (open_.empty()) {
            return;
        }
        if (!closed.anything) {
            plan_.steps.pop_back();  // it begins and shows nothing
            return;
        }
        PlanStep step;
        step.kind = PlanStep::Kind::end;
        step.blend = closed.blend;
        step.around = closed.around;
        step.visible = closed.visible;
        lay(std::move(step));
    }

    void lay(PlanStep step) {
        step.first = !std::exchange(open_.back().anything, true);
        plan_.steps.push_back(std::move(step));
    }

    void add_layer(const embedded::Layer& layer) {
        if (layer.source_item == 0) {
            return;
        }
        const Open& now = open_.back();
        const std::optional<double> time = layer_time(layer, now.seconds, rate_fps(*now.composition));
        if (!time || !counted()) {
            return;
        }
        const embedded::Item& source = project_.item(layer.source_item);
        if (source.kind == embedded::ItemKind::composition) {
            add_composition(project_.composition(source.content), *time, blend_of(layer.transfer));
        } else if (source.kind == embedded::ItemKind::footage) {
            add_footage(project_.footage_of(source.content), *time, blend_of(layer.transfer));
        }
    }

    bool counted() {
        if (++layers_ > limits::kPreviewLayers) {
            refuse(Code::too_many_layers,
                   "the frame shows more than " + std::to_string(limits::kPreviewLayers) + " layers");
            return false;
        }
        return true;
    }

    void refuse(Code code, std::string reason) {
        plan_.error = diagnostic::make(code, {}, std::move(reason));
    }

    void add_composition(const embedded::Composition& inner, double time, Blend blend) {
        const Open now = open_.back();
        const std::int64_t frame = whole_frames(time * rate_fps(inner));
        const Area around = centred_in(now.around, inner.width, inner.height);
        const Area visible = common_area(now.visible, around);
        if (frame < 0 || frame >= frame_count(inner) || inner.layers.empty() || visible.empty()) {
            return;
        }
        if (static_cast<std::int64_t>(open_.size()) > limits::kCompositionNesting.value) {
            return refuse(Code::compositions_too_deep,
                          text::quoted(project_.item(inner.item).name) + " is nested more than " +
                              std::to_string(limits::kCompositionNesting.value) + " levels deep");
        }
        open(inner, around, visible, frame, blend);
    }

    void add_footage(const embedded::Footage& footage, double time, Blend blend) {
        std::optional<std::string> file = file_at(footage, time);
        if (!file) {
            return;
        }
        PlanStep step;
        step.kind = PlanStep::Kind::footage;
        step.blend = blend;
        step.footage = footage.id;
        step.file = std::move(*file);
        step.around = open_.back().around;
        step.visible = open_.back().visible;
        lay(std::move(step));
    }

    const embedded::Project& project_;
    FramePlan plan_;
    std::vector<Open> open_;
    std::int64_t layers_ = 0;
};

}  // namespace

Area common_area(const Area& a, const Area& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

Area centred_in(const Area& around, std::int64_t width_px, std::int64_t height_px) {
    // Rounded up, also where the difference is negative.
    const auto half = [](std::int64_t difference) { return (difference >> 1) + (difference & 1); };
    const std::int64_t left = around.left + half(around.right - around.left - width_px);
    const std::int64_t top = around.top + half(around.bottom - around.top - height_px);
    return {left, top, left + width_px, top + height_px};
}

std::int64_t frame_count(const embedded::Composition& composition) {
    const double frames = seconds(composition.duration) * rate_fps(composition);
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(std::ceil(frames - kFrameSlack)));
}

std::optional<std::string> sequence_file(const embedded::Footage& footage, std::int64_t index) {
    if (!footage.sequence) {
        return index == 0 ? std::optional(footage.path) : std::nullopt;
    }
    const embedded::SequenceFrames& frames = *footage.sequence;
    const std::filesystem::path path = os::path_of(footage.path);
    const auto name = embedded::split_number(os::text_of(path.filename()));
    if (!name || index < 0 || index > frames.range.last - frames.range.first) {
        return std::nullopt;
    }
    std::int64_t number = frames.range.first + index;
    for (const embedded::FrameRange& gap : frames.gaps) {
        if (gap.first <= number && number <= gap.last) {
            number = gap.first - 1;
        }
    }
    std::string digits = std::to_string(number);
    const auto padding = static_cast<std::size_t>(std::max(frames.padding, 1));
    digits.insert(0, padding - std::min(padding, digits.size()), '0');
    return os::text_of(path.parent_path() / os::path_of(name->prefix + digits + name->suffix));
}

FramePlan plan_frame(const embedded::Project& project, embedded::Id composition, std::int64_t frame) {
    return Planner(project).plan(composition, frame);
}

}  // namespace render
