#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/handover/handover_format.h"
#include "cli/handover/handover_run.h"
#include "cli/handover/script_package.h"
#include "cli/job/relink_run.h"
#include "cli/job/relinked_copy.h"
#include "cli/options.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/report/diagnostic_json.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/standard_input.h"
#include "cli/terminal/terminal.h"
#include "cli/verb/check_inputs.h"
#include "cli/verbs.h"
#include "embedded/json_values.h"
#include "system/files.h"
#include "text/plain_number.h"
#include "text/printable.h"
#include "text/similar.h"

namespace cli {
namespace {

using embedded::Json;
using handover::CorrectionInfo;
using handover::Version;

constexpr int kExportSchema = 1;

// Between these lies every rate, and what a person may mean by an angle or a tolerance.
constexpr double kMostTurn_degrees = 180;
constexpr double kLeastRate_fps = 1;
constexpr double kMostRate_fps = 99;
constexpr double kLeastScale_m = 1e-6;
constexpr double kMostScale_m = 1e6;

/// A decimal number of at most 15 digits, without a sign; nothing for any other text.
std::optional<double> parse_decimal(const std::string& text) {
    constexpr std::size_t kMostDigits = 15;  // exact in a double, as are the powers of ten below
    double digits = 0;
    double scale = 1;
    std::size_t count = 0;
    bool after_point = false;
    for (const char c : text) {
        if (c == '.' && !after_point) {
            after_point = true;
        } else if (c >= '0' && c <= '9' && ++count <= kMostDigits) {
            digits = digits * 10 + (c - '0');
            scale *= after_point ? 10 : 1;
        } else {
            return std::nullopt;
        }
    }
    return count > 0 ? std::optional(digits / scale) : std::nullopt;
}

Option::Check decimal_within(double least, double most) {
    return [least, most](const std::string& text) {
        const std::optional<double> value = parse_decimal(text);
        return value && *value >= least && *value <= most
                   ? std::string()
                   : '"' + text + "\" is not a number from " + text::plain_number(least) + " to " +
                         text::plain_number(most);
    };
}

std::vector<std::string> correction_names() {
    std::vector<std::string> names;
    for (const CorrectionInfo& info : handover::correction_table()) {
        names.emplace_back(info.name);
    }
    return names;
}

std::string correction_problem(const std::string& name) {
    if (handover::correction_named(name)) {
        return {};
    }
    const std::string similar = text::did_you_mean(name, correction_names());
    return '"' + name + "\" is no correction" +
           (similar.empty() ? "; --list-corrections lists them" : similar);
}

const CorrectionInfo& info_of(const handover::AppliedCorrection& applied) {
    return handover::correction_table().at(static_cast<std::size_t>(applied.correction));
}

/// A scene and what became of it.
struct ExportedScene {
    HandedOver result;
    std::string output;  ///< where it is written; empty if it is not
    bool written = false;
    std::vector<Diagnostic> losses;
    std::vector<handover::AppliedCorrection> corrections;
};

std::string count_text(std::size_t count, const char* one, const char* several) {
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

Json scene_json(const ExportedScene& scene) {
    Json corrections = Json::array();
    for (const handover::AppliedCorrection& applied : scene.corrections) {
        corrections.push_back({{"name", info_of(applied).name},
                               {"reason", info_of(applied).reason},
                               {"count", applied.count},
                               {"example", embedded::json_text(applied.example)}});
    }
    return Json{{"scene", embedded::json_text(scene.result.file)},
                {"exit_code", static_cast<int>(scene.result.code)},
                {"output", scene.output.empty() ? Json() : embedded::json_text(scene.output)},
                {"written", scene.written},
                {"corrections", corrections},
                {"losses", diagnostics_json(scene.losses)},
                {"problems", texts_json(scene.result.problems)},
                {"diagnostics", diagnostics_json(scene.result.diagnostics)}};
}

class ExportCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", inputs_.files, "composition files, and folders with such files");
        add_input_options(options, inputs_);
        add_output_options(options);
        add_content_options(options);
        add_finding_options(options, choices_, false);
        add_bundle_option(options, bundle_);
    }

    ExitCode run(Terminal& terminal) override {
        if (list_corrections_) {
            for (const CorrectionInfo& info : handover::correction_table()) {
                terminal.out << info.name << ": " << info.reason << '\n';
            }
            return ExitCode::fine;
        }
        check_usage();
        const FoundInputs inputs = find_inputs(inputs_, ".aec");
        check_scenes(inputs.files);
        ExitCode code = ExitCode::fine;
        for (const std::string& folder : inputs.empty_folders) {
            complain(terminal,
                     "no file in the folder \"" + folder + "\" ends with .aec" +
                         (inputs_.recursive ? "" : "; --recursive searches the folders below it, too"));
            code = ExitCode::cannot_read_or_write;
        }
        bundle_found_ = find_bundle(bundle_);
        export_all(inputs.files, terminal, code);
        return code;
    }

  private:
    void add_output_options(Options& options) {
        constexpr const char* kGroup = "Output";
        std::vector<std::string> formats;
        std::string names;
        for (const HandoverFormat& format : handover_formats()) {
            formats.emplace_back(format.name);
            names += (names.empty() ? "" : "|") + formats.back();
        }
        options.option("--to", to_, "what to write: a script for After Effects, or a file for 3D programs")
            .value_name(names)
            .choices(formats)
            .group(kGroup);
        options.option("-o,--output", output_, "the file to write, for one SCENE")
            .value_name("FILE")
            .group(kGroup);
        options.option("--out-dir", folder_, "write a file for every scene below this folder, under its name")
            .value_name("DIR")
            .group(kGroup);
        options
            .option(
                "--package", package_,
                "for --to jsx: a new ZIP archive with the script, the scene, its footage, and what vxr check "
                "and vxr proof say; for one SCENE")
            .value_name("ZIP")
            .group(kGroup);
        options
            .flag("--list-losses", list_losses_,
                  "show what is corrected and where the result differs from the scene; write no file")
            .group(kGroup);
        options
            .flag("--undo-safe", undo_safe_,
                  "for --to jsx: the script names everything that it will touch, and asks")
            .group(kGroup);
        options.flag("--json", json_, "write one JSON document instead of text").group(kGroup);
    }

    void add_content_options(Options& options) {
        constexpr const char* kGroup = "What is handed over";
        options
            .option(
                "--as", as_,
                "the project as the plug-in builds it, or with corrections that make it what the scene says")
            .value_name("imported|corrected")
            .choices({"imported", "corrected"})
            .show_default()
            .group(kGroup);
        options.option("--without", without_, "leave out this correction; may be repeated")
            .value_name("CORRECTION")
            .one_value_at_a_time()
            .check(correction_problem)
            .group(kGroup);
        options
            .flag("--list-corrections", list_corrections_, "list every correction with its reason, and exit")
            .group(kGroup);
        options
            .option("--cut-angle", cut_angle_,
                    "a camera that turns by more degrees than this from one frame to the next is cut")
            .value_name("DEGREES")
            .show_default()
            .check(decimal_within(0, kMostTurn_degrees))
            .group(kGroup);
        options
            .option("--fps", rate_,
                    "the frame rate, for scenes written with whole frames a second: 29.97 instead of 29")
            .value_name("RATE")
            .check(decimal_within(kLeastRate_fps, kMostRate_fps))
            .group(kGroup);
        options
            .option("--tolerance", tolerance_,
                    "leave out keys whose values the line between others misses by no more than this; 0 for "
                    "those that it does not miss in single precision")
            .value_name("NUMBER")
            .show_default()
            .check(decimal_within(0, 1e6))
            .group(kGroup);
        options.option("--scale", scale_, "for 3D programs: how many metres one of the scene's units is")
            .value_name("METRES")
            .show_default()
            .check(decimal_within(kLeastScale_m, kMostScale_m))
            .group(kGroup);
    }

    void check_usage() const {
        if (!inputs_.given()) {
            throw UsageError("SCENE is required");
        }
        if (inputs_.null && inputs_.list.empty()) {
            throw UsageError("--null needs --files-from");
        }
        if (to_.empty()) {
            throw UsageError("--to is required");
        }
        const int outputs =
            (output_.empty() ? 0 : 1) + (folder_.empty() ? 0 : 1) + (package_.empty() ? 0 : 1);
        if (list_losses_ && outputs > 0) {
            throw UsageError("--list-losses writes no file, so it excludes -o, --out-dir and --package");
        }
        if (outputs > 1) {
            throw UsageError("-o, --out-dir and --package exclude each other");
        }
        if (!package_.empty() && to_ != "jsx") {
            throw UsageError("--package is for --to jsx");
        }
        if (undo_safe_ && to_ != "jsx") {
            throw UsageError("--undo-safe is for --to jsx");
        }
        if (outputs == 0 && !list_losses_) {
            throw UsageError("-o, --out-dir, --package or --list-losses is required");
        }
        if (as_ == "imported" && !without_.empty()) {
            throw UsageError("--without is for --as corrected: an imported project has no corrections");
        }
        if (as_ == "imported" && !rate_.empty()) {
            throw UsageError("--fps is for --as corrected: an imported project has the scene's rate");
        }
        std::vector<std::string> all = inputs_.files;
        all.push_back(inputs_.list);
        if (names_standard_input_twice(all)) {
            throw UsageError("the standard input can be read only once");
        }
    }

    void check_scenes(const std::vector<std::string>& files) const {
        if (!output_.empty() && files.size() > 1) {
            throw UsageError("-o is for one SCENE; --out-dir takes several");
        }
        if (!package_.empty() && files.size() > 1) {
            throw UsageError("--package is for one SCENE");
        }
        const bool has_input = std::any_of(files.begin(), files.end(), is_standard_input);
        if (has_input && output_.empty() && !list_losses_) {
            throw UsageError("the standard input has no name for a file in --out-dir or --package");
        }
        if (has_input && choices_.given()) {
            throw UsageError("--search and --map need a scene with a name");
        }
    }

    [[nodiscard]] handover::HandoverOptions handover_options() const {
        handover::HandoverOptions options;
        for (const std::string& name : without_) {
            options.left_out.insert(*handover::correction_named(name));
        }
        options.cut_angle_degrees = *parse_decimal(cut_angle_);
        options.tolerance = *parse_decimal(tolerance_);
        if (!rate_.empty()) {
            options.rate_fps = *parse_decimal(rate_);
        }
        return options;
    }

    // Where the scenes are written, in their order; empty texts if they are not.
    [[nodiscard]] std::vector<std::string> outputs(const std::vector<std::string>& files,
                                                   const HandoverFormat& format) const {
        std::vector<std::string> outputs(files.size(), package_.empty() ? output_ : package_);
        if (folder_.empty()) {
            return outputs;
        }
        std::vector<RelinkedScene> scenes(files.size());
        for (std::size_t i = 0; i < files.size(); ++i) {
            scenes[i].file = files[i];
            scenes[i].full_path = os::absolute_path(files[i]);
        }
        place_outputs(scenes, folder_);
        for (std::size_t i = 0; i < files.size(); ++i) {
            outputs[i] =
                os::text_of(os::path_of(scenes[i].output).replace_extension(os::path_of(format.extension)));
        }
        return outputs;
    }

    // A scene with its footage where it is today.
    struct Read {
        SceneReading original;
        std::optional<RelinkedCopy> copy;
        std::optional<SceneReading> relinked;

        [[nodiscard]] const SceneReading& reading() const { return relinked ? *relinked : original; }
    };

    [[nodiscard]] Read read(const std::string& file) const {
        Read made{read_scene(file), std::nullopt, std::nullopt};
        if (choices_.given() && !made.original.error) {
            FootageFinder finder(choices_.finder_options());
            if (auto copy = RelinkedCopy::make(file, finder)) {
                made.copy.emplace(std::move(*copy));
                made.relinked.emplace(reading_of(*made.copy, made.original));
            }
        }
        return made;
    }

    void export_all(const std::vector<std::string>& files, Terminal& terminal, ExitCode& code) {
        const HandoverFormat& format = *handover_format_named(to_);
        const std::vector<std::string> targets = outputs(files, format);
        std::optional<Read> first;  // a single scene is read once
        if (!list_losses_) {
            FileRoles roles;
            for (const std::string& file : files) {
                first.emplace(read(file));
                add_import_reads(first->reading(), bundle_found_, roles);
            }
            for (std::size_t i = 0; i < files.size(); ++i) {
                if (const std::string refusal = roles.writes(targets[i], files[i]); !refusal.empty()) {
                    throw UsageError(refusal);
                }
            }
        }
        Json documents = Json::array();
        {
            Progress progress(terminal, files.size());
            for (std::size_t i = 0; i < files.size(); ++i) {
                progress.step(text::printable(files[i]));
                const ExportedScene scene = files.size() == 1 && first
                                                ? export_one(*first, targets[i], format)
                                                : export_one(read(files[i]), targets[i], format);
                progress.clear();
                code = most_serious(code, scene.result.code);
                if (json_) {
                    documents.push_back(scene_json(scene));
                } else {
                    show(scene, terminal);
                }
            }
        }
        if (json_) {
            terminal.out << Json{{"schema", kExportSchema},
                                 {"exit_code", static_cast<int>(code)},
                                 {"to", format.name},
                                 {"as", as_},
                                 {"scenes", documents}}
                                .dump(2)
                         << '\n';
        }
    }

    [[nodiscard]] ExportedScene export_one(const Read& read, const std::string& output,
                                           const HandoverFormat& format) const {
        const Version version = as_ == "imported" ? Version::imported : Version::corrected;
        ExportedScene scene;
        scene.result = hand_over(read.reading(), bundle_found_, version, handover_options());
        if (!scene.result.handover) {
            return scene;
        }
        HandoverFormatOptions options;
        options.cut_angle_degrees = handover_options().cut_angle_degrees;
        options.scale_m = *parse_decimal(scale_);
        options.undo_safe = undo_safe_;
        scene.losses = losses_of(*scene.result.handover, format, options);
        scene.corrections = scene.result.handover->corrections;
        if (!list_losses_) {
            write(scene, read.reading(), output, format, options);
        }
        scene.result.handover.reset();
        return scene;
    }

    void write(ExportedScene& scene, const SceneReading& reading, const std::string& output,
               const HandoverFormat& format, const HandoverFormatOptions& options) const {
        try {
            const std::string folder = os::text_of(os::path_of(output).parent_path());
            if (!folder.empty()) {
                std::error_code failure;  // what is missing then shows in the next step
                std::filesystem::create_directories(os::native_path(folder), failure);
            }
            if (!package_.empty()) {
                write_script_package(reading, *scene.result.handover, bundle_found_, options, output);
            } else {
                OutputFile file(output);
                write_handover(*scene.result.handover, format, options,
                               [&](std::string_view piece) { file.write(piece); });
                file.close();
            }
            scene.output = output;
            scene.written = true;
        } catch (const std::runtime_error& error) {
            scene.result.problems.emplace_back(error.what());
            scene.result.code = most_serious(scene.result.code, ExitCode::cannot_read_or_write);
        }
    }

    void show(const ExportedScene& scene, Terminal& terminal) const {
        for (const Diagnostic& diagnostic : scene.result.diagnostics) {
            terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
        }
        terminal.out << terminal.out_paint(Ink::bold, text::printable(scene.result.file));
        if (scene.written) {
            terminal.out << " -> " << text::printable(scene.output);
        }
        const bool described = scene.written || (list_losses_ && scene.result.problems.empty() &&
                                                 scene.result.diagnostics.empty());
        terminal.out << ": "
                     << (described
                             ? count_text(scene.corrections.size(), "correction", "corrections") + ", " +
                                   count_text(scene.losses.size(), "loss or note", "losses and notes")
                             : verdict_label(scene.result.code))
                     << '\n';
        if (list_losses_) {
            for (const handover::AppliedCorrection& applied : scene.corrections) {
                terminal.out << "  " << terminal.out_paint(Ink::cyan, info_of(applied).name) << ": "
                             << applied.example
                             << (applied.count > 1 ? "; " + std::to_string(applied.count) + " in all" : "")
                             << '\n';
            }
            for (const Diagnostic& loss : scene.losses) {
                terminal.out << diagnostic_text(loss, terminal.out_paint);
            }
        }
        terminal.out << std::flush;
        for (const std::string& problem : scene.result.problems) {
            complain(terminal, problem);
        }
    }

    CheckInputs inputs_;
    std::string to_;
    std::string output_;
    std::string folder_;
    bool list_losses_ = false;
    bool undo_safe_ = false;
    bool json_ = false;
    std::string as_ = "corrected";
    std::vector<std::string> without_;
    bool list_corrections_ = false;
    std::string cut_angle_ = "60";
    std::string scale_ = "0.01";
    std::string package_;
    std::string rate_;
    std::string tolerance_ = "0";
    FindingChoices choices_;
    std::string bundle_;
    FoundBundle bundle_found_;
};

}  // namespace

Verb export_verb() {
    return {
        "export",
        "write a scene as a script for any After Effects, or its cameras for 3D programs",
        {"Imports every SCENE with the plug-in into an embedded host, and writes what comes out for programs "
         "without the plug-in: a script that rebuilds the project in After Effects, or cameras, lights and "
         "nulls as glTF or USD.",
         "The plug-in's rules are old: it cuts the pixel aspect to hundredths, shows plates from their first "
         "file on, and leaves the way between keys to the host. What is written is corrected where the scene "
         "says something else. Every correction can be left out by its name; --as imported writes exactly "
         "what the plug-in builds.",
         "Where the other program still differs from the scene, that is a loss, with a code that scripts can "
         "rely on. docs/handover.md explains corrections and losses.",
         "The exit code is 4 when footage is missing: the file is written, and placeholders stand in. "
         "Nothing is written for a scene that is refused or does not arrive whole, and no file is left half "
         "written."},
        {{"vxr export shot.aec --to jsx -o shot.jsx",
          "Writes a script; run it in After Effects with File > Scripts > Run Script File."},
         {"vxr export --recursive job --to glb --out-dir cameras",
          "The cameras, lights and nulls of a whole job, for 3D programs."},
         {"vxr export shot.aec --to jsx --list-losses",
          "What would be corrected, and where After Effects would still differ."},
         {"vxr export shot.aec --to jsx --without plate-frames --fps 29.97 -o shot.jsx",
          "Leaves sequences where the plug-in puts them, and corrects the rate of a scene written with 29."},
         {"vxr export shot.aec --to usda --list-losses --json | jq -r '.scenes[].losses[].code'",
          "The codes of everything that USD does not hold."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<ExportCommand>(); }};
}

}  // namespace cli
