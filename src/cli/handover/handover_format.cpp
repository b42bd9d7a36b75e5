#include "cli/handover/handover_format.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "cli/terminal/ordered_jobs.h"
#include "handover/jsx/jsx_script.h"
#include "handover/scene3d/gltf.h"
#include "handover/scene3d/usd.h"
#include "system/files.h"

namespace cli {
namespace {

using handover::Handover;
using handover::Sink;

handover::Scene3dOptions scene3d_options(const HandoverFormatOptions& options) {
    handover::Scene3dOptions made;
    made.cut_angle_degrees = options.cut_angle_degrees;
    made.scale = options.scale_m;
    return made;
}

// A format with its writer.
struct Writer {
    HandoverFormat format;
    void (*write)(const Handover& handover, const HandoverFormatOptions& options, const Sink& out);
    std::vector<handover::Loss> (*losses)(const Handover& handover, const HandoverFormatOptions& options);
};

void write_script(const Handover& handover, const HandoverFormatOptions& options, const Sink& out) {
    handover::JsxOptions made;
    made.undo_safe = options.undo_safe;
    made.working_folder = os::absolute_path(".");
    made.threads = threads_for(0);
    handover::write_jsx(handover, made, out);
}

constexpr Writer kWriters[] = {
    {{"jsx", ".jsx", handover::Target::jsx}, write_script, nullptr},
    {{"gltf", ".gltf", handover::Target::gltf},
     [](const Handover& handover, const HandoverFormatOptions& options, const Sink& out) {
         handover::write_gltf(handover, scene3d_options(options), out);
     },
     [](const Handover& handover, const HandoverFormatOptions& options) {
         return handover::gltf_losses(handover, scene3d_options(options));
     }},
    {{"glb", ".glb", handover::Target::gltf},
     [](const Handover& handover, const HandoverFormatOptions& options, const Sink& out) {
         handover::write_glb(handover, scene3d_options(options), out);
     },
     [](const Handover& handover, const HandoverFormatOptions& options) {
         return handover::gltf_losses(handover, scene3d_options(options));
     }},
    {{"usda", ".usda", handover::Target::usda},
     [](const Handover& handover, const HandoverFormatOptions& options, const Sink& out) {
         handover::write_usda(handover, scene3d_options(options), out);
     },
     [](const Handover& handover, const HandoverFormatOptions& options) {
         return handover::usda_losses(handover, scene3d_options(options));
     }},
};

const Writer& writer_of(const HandoverFormat& format) {
    return *std::find_if(std::begin(kWriters), std::end(kWriters), [&](const Writer& writer) {
        return std::string_view(writer.format.name) == format.name;
    });
}

}  // namespace

const std::vector<HandoverFormat>& handover_formats() {
    static const std::vector<HandoverFormat> kFormats = [] {
        std::vector<HandoverFormat> formats;
        for (const Writer& writer : kWriters) {
            formats.push_back(writer.format);
        }
        return formats;
    }();
    return kFormats;
}

const HandoverFormat* handover_format_named(std::string_view name) {
    const std::vector<HandoverFormat>& formats = handover_formats();
    const auto found = std::find_if(formats.begin(), formats.end(),
                                    [&](const HandoverFormat& format) { return format.name == name; });
    return found == formats.end() ? nullptr : &*found;
}

void write_handover(const Handover& handover, const HandoverFormat& format,
                    const HandoverFormatOptions& options, const Sink& out) {
    writer_of(format).write(handover, options, out);
}

std::vector<diagnostic::Diagnostic> losses_of(const Handover& handover, const HandoverFormat& format,
                                              const HandoverFormatOptions& options) {
    std::vector<diagnostic::Diagnostic> losses;
    for (const handover::Loss& loss : handover.losses) {
        if (loss.targets.has(format.target)) {
            losses.push_back(loss.what);
        }
    }
    if (const auto own = writer_of(format).losses; own != nullptr) {
        for (handover::Loss& loss : own(handover, options)) {
            losses.push_back(std::move(loss.what));
        }
    }
    return losses;
}

std::vector<handover::Loss> losses_of_all(const Handover& handover, const HandoverFormatOptions& options) {
    std::vector<handover::Loss> all;
    std::map<std::tuple<std::string, std::int64_t, std::string>, std::size_t> places;
    const auto add = [&](handover::Loss loss) {
        const auto [place, is_new] = places.try_emplace(
            {loss.what.code.name(), loss.what.at.line.value_or(0), loss.what.reason}, all.size());
        if (is_new) {
            all.push_back(std::move(loss));
        } else {
            all[place->second].targets = all[place->second].targets | loss.targets;
        }
    };
    for (const handover::Loss& loss : handover.losses) {
        add(loss);
    }
    std::set<handover::Target> done;
    for (const Writer& writer : kWriters) {
        // .gltf and .glb lose the same.
        if (writer.losses != nullptr && done.insert(writer.format.target).second) {
            for (handover::Loss& loss : writer.losses(handover, options)) {
                add(std::move(loss));
            }
        }
    }
    return all;
}

}  // namespace cli
