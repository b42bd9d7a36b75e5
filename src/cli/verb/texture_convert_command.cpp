#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/options.h"
#include "cli/report/diagnostic_json.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/ordered_jobs.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_conversion.h"
#include "cli/texture/texture_diagnostics.h"
#include "cli/verbs.h"
#include "embedded/json_values.h"
#include "image/image.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using embedded::Json;

constexpr int kConvertSchema = 1;

std::string conversion_line(const Conversion& conversion, const Paint& paint) {
    if (conversion.code != ExitCode::fine) {
        return text::printable(conversion.input) + ": " + paint(Ink::red, "not converted") + '\n';
    }
    return text::printable(conversion.input) + " -> " + text::printable(conversion.output) + ": " +
           conversion.size + '\n';
}

Json conversion_json(const Conversion& conversion) {
    return Json{{"file", embedded::json_text(conversion.input)},
                {"output", embedded::json_text(conversion.output)},
                {"converted", conversion.code == ExitCode::fine},
                {"exit_code", static_cast<int>(conversion.code)},
                {"diagnostics", diagnostics_json(conversion.diagnostics)}};
}

void write_diagnostics(const std::vector<Diagnostic>& diagnostics, Terminal& terminal) {
    for (const Diagnostic& diagnostic : diagnostics) {
        terminal.err << texture_diagnostic_text(diagnostic, terminal.err_paint);
    }
    terminal.err << std::flush;
}

/// A bar for the rows of a single picture that takes a while to write. With several pictures it is not
/// wanted: then `show` does nothing and may run on any thread. With one picture it runs on the thread of the
/// conversion, while the thread that made the bar waits.
class RowBar {
  public:
    RowBar(Terminal& terminal, bool wanted) : terminal_(terminal), wanted_(wanted) {}

    void show(std::int64_t written, std::int64_t rows) {
        constexpr auto kPause = std::chrono::milliseconds(200);
        constexpr auto kWithoutBar = std::chrono::milliseconds(500);
        if (!wanted_) {
            return;
        }
        const auto now = std::chrono::steady_clock::now();
        if (!next_.has_value()) {
            next_ = now + kWithoutBar;
        }
        if (now < *next_) {
            return;
        }
        next_ = now + kPause;
        if (!bar_.has_value()) {
            bar_.emplace(terminal_, static_cast<std::size_t>(rows));
        }
        bar_->bar(static_cast<std::size_t>(written));
    }

    /// Shows the bar from the first row on. Otherwise it appears after half a second, so that a picture that
    /// is written quickly has no bar.
    void begin_at_once() { next_ = std::chrono::steady_clock::now(); }

    void clear() { bar_.reset(); }

  private:
    Terminal& terminal_;
    bool wanted_;
    std::optional<std::chrono::steady_clock::time_point> next_;  // set by the first row
    std::optional<Progress> bar_;
};

class TextureConvertCommand : public Command {
  public:
    void add_options(Options& options) override {
        options
            .file_argument("IN", inputs_, "textures to convert to images, or images to convert to textures")
            .required();
        options.option("-o,--output", output_, "the file to write, for one input")
            .value_name("FILE")
            .group("Output");
        options.option("--to", to_, "the extension of the files to write: png, tif, exr, txl ...")
            .value_name("EXT")
            .group("Output");
        options
            .option("--out-dir", out_dir_,
                    "the folder to write them to, created if missing; without this, beside each input")
            .value_name("DIR")
            .group("Output");
        options.flag("--json", json_, "write one JSON document instead of one line per file").group("Output");
        options.option("--alpha", alpha_, "which alpha channels to keep: all, none, or the number of one")
            .value_name("N|all|none")
            .show_default()
            .check([](const std::string& text) {
                return parse_alpha_choice(text) ? std::string()
                                                : '"' + text + "\" is neither all, none nor a number from 1";
            })
            .group("Alpha");
        options
            .flag("--convert-alpha", convert_alpha_,
                  "multiply or divide colour by alpha where the texture and the image format differ")
            .group("Alpha");
        add_alpha_label_option(options, label_);
        options.option("-j,--jobs", jobs_, "how many files to convert at a time; 0 for one per processor")
            .value_name("N")
            .show_default()
            .check([](const std::string& text) {
                const int jobs = parse_option_integer(text).value_or(-1);
                return jobs >= 0 && jobs <= kMostJobs
                           ? std::string()
                           : '"' + text + "\" is not a number from 0 to " + std::to_string(kMostJobs);
            })
            .group("Work");
    }

    ExitCode run(Terminal& terminal) override {
        if (output_.empty() && to_.empty() && complained_about_missing(terminal)) {
            return ExitCode::cannot_read_or_write;
        }
        const std::vector<std::string> outputs = output_names();
        if (!out_dir_.empty()) {
            fs::create_directories(os::native_path(out_dir_));
        }
        ConversionOptions options;
        options.alpha = *parse_alpha_choice(alpha_);
        options.alpha_bytes = convert_alpha_ ? image::AlphaBytes::converted : image::AlphaBytes::kept;
        options.label = *parse_alpha_label(label_);
        const bool shows_progress = terminal.live && is_terminal(1) && !json_;
        const bool bar_wanted = shows_progress && inputs_.size() > 1;
        Progress progress(terminal, inputs_.size(), bar_wanted);
        std::mutex terminal_mutex;
        RowBar row_bar(terminal, shows_progress && inputs_.size() == 1);
        options.on_rows = [&](std::int64_t written, std::int64_t rows) { row_bar.show(written, rows); };
        if (!json_) {
            options.before_missing_rows = [&](const std::vector<Diagnostic>& diagnostics) {
                const std::lock_guard lock(terminal_mutex);
                progress.clear();
                write_diagnostics(diagnostics, terminal);
                row_bar.begin_at_once();
            };
        }
        Json documents = Json::array();
        ExitCode code = ExitCode::fine;
        std::size_t converted = 0;
        run_in_order<Conversion>(
            inputs_.size(), threads_for(jobs_),
            [&](std::size_t i) { return convert_texture(inputs_[i], outputs[i], options); },
            [&](std::size_t done) {
                const std::lock_guard lock(terminal_mutex);
                progress.bar(done);
            },
            [&](std::size_t, const Conversion& conversion) {
                const std::lock_guard lock(terminal_mutex);
                row_bar.clear();
                code = most_serious(code, conversion.code);
                converted += conversion.code == ExitCode::fine ? 1 : 0;
                if (json_) {
                    documents.push_back(conversion_json(conversion));
                    return;
                }
                report(conversion, !bar_wanted, progress, terminal);
            });
        progress.clear();
        if (json_) {
            terminal.out << Json{{"schema", kConvertSchema},
                                 {"exit_code", static_cast<int>(code)},
                                 {"files", documents}}
                                .dump(2)
                         << '\n';
        } else if (bar_wanted) {
            terminal.out << converted << " of " << inputs_.size() << " converted\n";
        }
        return code;
    }

  private:
    static constexpr int kMostJobs = 256;

    /// A file that does not exist is likelier to be mistyped than an option to be forgotten.
    bool complained_about_missing(Terminal& terminal) const {
        bool complained = false;
        for (const std::string& input : inputs_) {
            const os::FileState state = os::file_state(input);
            if (state.kind == os::FileKind::missing) {
                complain(terminal, input + ": " + state.error);
                complained = true;
            }
        }
        return complained;
    }

    /// One name for each input. Throws UsageError for names that cannot be meant, before anything is read.
    [[nodiscard]] std::vector<std::string> output_names() const {
        if (output_.empty() == to_.empty()) {
            throw UsageError("either -o FILE or --to EXT is required");
        }
        if (!output_.empty() && inputs_.size() > 1) {
            throw UsageError("-o is for one input; --to EXT is for several");
        }
        if (!out_dir_.empty() && to_.empty()) {
            throw UsageError("--out-dir needs --to EXT");
        }
        std::vector<std::string> outputs;
        FileRoles roles;
        for (const std::string& input : inputs_) {
            roles.reads(input);
        }
        for (const std::string& input : inputs_) {
            const std::string output = output_.empty() ? name_for(input) : output_;
            if (!has_texture_extension(output) && !image::can_write(output)) {
                throw UsageError("no image format has the extension of " + output);
            }
            if (const std::string refusal = roles.writes(output, input); !refusal.empty()) {
                throw UsageError(refusal);
            }
            outputs.push_back(output);
        }
        return outputs;
    }

    [[nodiscard]] std::string name_for(const std::string& input) const {
        fs::path name = os::path_of(input).filename();
        name.replace_extension(os::path_of(to_));
        return os::text_of((out_dir_.empty() ? os::path_of(input).parent_path() : os::path_of(out_dir_)) /
                           name);
    }

    static void report(const Conversion& conversion, bool line_wanted, Progress& progress,
                       Terminal& terminal) {
        if (!conversion.diagnostics.empty()) {
            progress.clear();
            write_diagnostics(conversion.diagnostics, terminal);
        }
        if (line_wanted) {
            terminal.out << conversion_line(conversion, terminal.out_paint) << std::flush;
        }
    }

    std::vector<std::string> inputs_;
    std::string output_;
    std::string to_;
    std::string out_dir_;
    std::string alpha_ = "all";
    std::string label_ = "premultiplied";
    bool convert_alpha_ = false;
    bool json_ = false;
    int jobs_ = 0;
};

}  // namespace

Verb texture_convert_verb() {
    return {
        "texture convert",
        "convert textures to images and images to textures",
        {"Reads and writes every format of the image library; the extension of the output chooses the "
         "format. Images become textures with 8 bits per channel: one channel becomes grey, three become "
         "RGB, and every other channel becomes an alpha channel, the image's own alpha first.",
         "Every byte is copied as it is stored, so converting there and back loses nothing, even through "
         "formats like PNG that expect colour not to be multiplied by alpha. TIFF files say whether it is; "
         "--alpha-label decides what they say. With --convert-alpha, colour is multiplied or divided where "
         "the image format differs from the texture as --alpha-label describes it: the image then looks "
         "right in a viewer, but 8 bits lose some precision.",
         "An image becomes a texture of its display window; an image with pixels outside it is refused. "
         "Warnings name what a texture cannot hold: depths above 8 bits, names, metadata, further images.",
         "A file is written beside the one that it will replace, and takes its place when it is complete. An "
         "image format without room for all alpha channels is an error; --alpha chooses."},
        {{"vxr texture convert bark.txl -o bark.png", "Converts one texture to PNG."},
         {"vxr texture convert scans/*.tif --to txl --out-dir maps",
          "Converts all scans to textures, several at a time."},
         {"vxr texture convert bark.txl --alpha 2 -o mask.png", "The colour with the second alpha channel."},
         {"vxr texture convert bark.txl --alpha none --to jpg", "Writes bark.jpg beside it, without alpha."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<TextureConvertCommand>(); }};
}

}  // namespace cli
