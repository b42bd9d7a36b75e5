#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/options.h"
#include "cli/project/frame_run.h"
#include "cli/project/host_setup.h"
#include "cli/project/project_tree.h"
#include "cli/report/diagnostic_text.h"
#include "cli/report/json_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_conversion.h"
#include "cli/verbs.h"
#include "image/image.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

bool parse_size_part(std::string_view text, A_long& value) {
    const auto [stopped, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && stopped == text.data() + text.size() && value > 0;
}

/// "320x240"
std::optional<FrameSize> parse_frame_size(std::string_view text) {
    const std::size_t cross = text.find('x');
    FrameSize size;
    if (cross == std::string_view::npos || !parse_size_part(text.substr(0, cross), size.width_px) ||
        !parse_size_part(text.substr(cross + 1), size.height_px)) {
        return std::nullopt;
    }
    return size;
}

struct Resolution {
    const char* name;
    A_long divisor;
};

/// The choices in the menu of a composition.
constexpr Resolution kResolutions[] = {{"full", 1}, {"half", 2}, {"third", 3}, {"quarter", 4}};

std::vector<std::string> resolution_names() {
    std::vector<std::string> names;
    for (const Resolution& resolution : kResolutions) {
        names.emplace_back(resolution.name);
    }
    return names;
}

/// `name` is one of kResolutions.
A_long resolution_divisor(const std::string& name) {
    const auto* known =
        std::find_if(std::begin(kResolutions), std::end(kResolutions),
                     [&name](const Resolution& resolution) { return name == resolution.name; });
    return known->divisor;
}

class FrameCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("FILE", file_, "the texture").required();
        options.option("-o,--output", output_, "the image to write; its extension chooses the format")
            .value_name("IMAGE")
            .required()
            .group("Output");
        options.flag("--json", json_, "write the host's project as a JSON document instead of text")
            .group("Output");
        options.option("--resolution", resolution_, "the resolution of the composition that the frame is for")
            .value_name("full|half|third|quarter")
            .choices(resolution_names())
            .show_default()
            .group("The frame");
        options
            .option("--size", size_,
                    "the size of the frame; without this, the texture's size at the resolution")
            .value_name("WIDTHxHEIGHT")
            .check([](const std::string& text) {
                return parse_frame_size(text) ? std::string() : '"' + text + "\" is not WIDTHxHEIGHT";
            })
            .group("The frame");
        options.option("--fill", fill_, "the value of every byte of the frame before drawing, 0 to 255")
            .value_name("BYTE")
            .show_default()
            .check([](const std::string& text) {
                const int byte = parse_option_integer(text).value_or(-1);
                return byte >= 0 && byte <= 255 ? std::string()
                                                : '"' + text + "\" is not a number from 0 to 255";
            })
            .group("The frame");
        add_alpha_label_option(options, label_);
        add_finding_options(options, choices_, false);
        add_bundle_option(options, bundle_);
        add_host_option(options, host_);
    }

    ExitCode run(Terminal& terminal) override {
        const FoundBundle bundle = find_bundle(bundle_);
        std::string file = file_;
        if (!find_texture(file, terminal)) {
            return ExitCode::footage_missing;
        }
        FileRoles roles;
        roles.reads(file_);
        roles.reads(file);
        if (bundle.error.empty()) {
            roles.reads(os::text_of(bundle.path), "the plug-in");
        }
        if (const std::string refusal = roles.writes(output_, "--output"); !refusal.empty()) {
            throw UsageError(refusal);
        }
        if (!image::can_write(output_)) {
            throw UsageError("no image format has the extension of " + output_);
        }
        embedded::Host host(host_of_kind(host_));
        FrameRequest request;
        request.size = parse_frame_size(size_);
        request.resolution_divisor = resolution_divisor(resolution_);
        request.fill = static_cast<std::uint8_t>(fill_);
        FrameRun frame = draw_file(host, bundle, file, request);
        if (frame.frame.has_value()) {
            write(frame);
        }
        if (json_) {
            terminal.out << json_text_of(frame_document(host, frame, output_));
        } else {
            show(host, frame, terminal);
        }
        terminal.out << std::flush;
        for (const std::string& problem : frame.problems) {
            complain(terminal, problem);
        }
        return frame.code;
    }

  private:
    // Changes `file` to where the texture is today, if it is not where it is named and is found; false if it
    // may be one of several.
    bool find_texture(std::string& file, Terminal& terminal) const {
        if (!choices_.given() || os::file_state(file).kind != os::FileKind::missing) {
            return true;
        }
        FootageFinder finder(choices_.finder_options());
        // Beside the scene means in the present folder.
        const Finding found = finder.find({os::absolute_path("scene"), file, false});
        if (found.is_found()) {
            file = found.path;
        }
        for (const FootageCandidate& candidate : found.candidates) {
            complain(terminal, file_ + " may be " + candidate.path);
        }
        return found.outcome != Finding::Outcome::ambiguous;
    }

    void write(FrameRun& frame) const {
        image::WriteOptions options;
        options.alpha.pixels = alpha_pixels(*parse_alpha_label(label_), *frame.frame);
        const image::Writing writing = image::write(output_, *frame.frame, options);
        if (writing.error.has_value()) {
            frame.code = most_serious(frame.code, image_exit_code(*writing.error));
            frame.problems.push_back(writing.error->reason);
            frame.frame.reset();
        }
    }

    void show(const embedded::Host& host, const FrameRun& frame, Terminal& terminal) const {
        if (frame.in_spec.has_value()) {
            terminal.out << terminal.out_paint(Ink::bold, text::printable(frame.file)) << ": "
                         << in_spec_text(*frame.in_spec) << '\n';
        }
        if (frame.frame.has_value()) {
            terminal.out << "frame of " << frame.frame->width_px << " x " << frame.frame->height_px << " -> "
                         << text::printable(output_) << '\n';
        }
        terminal.out << host_report(host.project(), host.conformance(), terminal.out_paint);
    }

    std::string file_;
    std::string output_;
    std::string resolution_ = kResolutions[0].name;
    FindingChoices choices_;
    std::string size_;
    std::string label_ = "premultiplied";
    std::string bundle_;
    std::string host_ = kUsualHost;
    int fill_ = 0;
    bool json_ = false;
};

}  // namespace

Verb frame_verb() {
    return {"frame",
            "draw a texture as After Effects receives it, and write the frame as an image",
            {"Loads the plug-in, has it open the texture and draw a frame, and writes the frame: 8 bits each "
             "of alpha, red, green and blue, every byte unchanged. Also shows what the plug-in reports about "
             "the texture: size, depth, alpha, duration.",
             "`texture convert` takes the picture directly from the file; `frame` takes it through the "
             "plug-in. A difference between the two would be a bug in one of them. Both write every byte as "
             "it is, and both mark it in formats that can say so, such as TIFF, as --alpha-label says."},
            {{"vxr frame bark.txl -o frame.png", "What After Effects draws for bark.txl."},
             {"vxr frame bark.txl -o half.png --resolution half",
              "What it draws in a composition at half resolution: the whole texture, with half as many "
              "pixels a side."},
             {"vxr frame bark.txl -o corner.png --size 64x64 --fill 128 --host classic",
              "Classic hosts get the top left part of the texture in full size; pixels outside the texture "
              "stay grey."},
             {"vxr frame bark.txl -o frame.png --json | jq .in_specs",
              "What the plug-in reports about the texture."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<FrameCommand>(); }};
}

}  // namespace cli
