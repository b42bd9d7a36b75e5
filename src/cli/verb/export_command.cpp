#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/handover/correction_options.h"
#include "cli/handover/export_run.h"
#include "cli/job/relink_run.h"
#include "cli/job/relinked_copy.h"
#include "cli/options.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/report/json_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/standard_input.h"
#include "cli/terminal/terminal.h"
#include "cli/verb/check_inputs.h"
#include "cli/verbs.h"
#include "embedded/json_values.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kExportSchema = 1;
constexpr double kLeastScale_m = 1e-6;
constexpr double kMostScale_m = 1e6;
constexpr const char* kContentGroup = "What is handed over";

class ExportCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", inputs_.files, "composition files, and folders with such files");
        add_input_options(options, inputs_);
        add_output_options(options);
        add_correction_options(options, corrections_, kContentGroup);
        add_content_options(options);
        add_finding_options(options, choices_, false);
        add_bundle_option(options, bundle_);
    }

    ExitCode run(Terminal& terminal) override {
        if (list_corrections_) {
            for (const handover::CorrectionInfo& info : handover::correction_table()) {
                terminal.out << info.name << ": " << info.reason << '\n';
            }
            return ExitCode::fine;
        }
        check_usage();
        const FoundInputs inputs = find_inputs(inputs_, ".aec");
        check_scenes(inputs.files);
        ExitCode code = tell_empty_folders(inputs, inputs_, ".aec", terminal);
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
        options
            .flag("--list-corrections", list_corrections_, "list every correction with its reason, and exit")
            .group(kContentGroup);
        options.option("--scale", scale_, "for 3D programs: how many metres one of the scene's units is")
            .value_name("METRES")
            .show_default()
            .decimal_range(kLeastScale_m, kMostScale_m)
            .group(kContentGroup);
    }

    void check_usage() const {
        refuse_wrong_inputs(inputs_, "SCENE");
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
        if (const std::string contradiction = corrections_.contradiction(); !contradiction.empty()) {
            throw UsageError(contradiction);
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

    [[nodiscard]] ExportSettings export_settings() const {
        ExportSettings settings;
        settings.format = handover_format_named(to_);
        settings.version = corrections_.version();
        settings.handover_options = corrections_.handover_options();
        settings.format_options.cut_angle_degrees = settings.handover_options.cut_angle_degrees;
        settings.format_options.scale_m = *parse_option_decimal(scale_);
        settings.format_options.undo_safe = undo_safe_;
        settings.write = !list_losses_;
        settings.packaged = !package_.empty();
        return settings;
    }

    void export_all(const std::vector<std::string>& files, Terminal& terminal, ExitCode& code) {
        const ExportSettings settings = export_settings();
        const std::vector<std::string> targets = outputs(files, *settings.format);
        std::optional<FoundScene> read;  // a single scene is read once
        if (!list_losses_) {
            FileRoles roles;
            add_list(inputs_, roles);
            for (const std::string& file : files) {
                read.emplace(file, choices_);
                add_import_reads(read->original(), bundle_found_, roles);
                add_import_reads(read->reading(), bundle_found_, roles);
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
                if (files.size() > 1 || !read) {
                    read.emplace(files[i], choices_);
                }
                const ExportedScene scene =
                    export_scene(read->reading(), bundle_found_, settings, targets[i]);
                progress.clear();
                code = most_serious(code, scene.result.code);
                if (json_) {
                    documents.push_back(exported_json(scene));
                } else {
                    show_exported(scene, list_losses_, terminal);
                }
            }
        }
        if (json_) {
            terminal.out << Json{{"schema", kExportSchema},
                                 {"exit_code", static_cast<int>(code)},
                                 {"to", to_},
                                 {"as", corrections_.as},
                                 {"scenes", documents}}
                                .dump(2)
                         << '\n';
        }
    }

    CheckInputs inputs_;
    std::string to_;
    std::string output_;
    std::string folder_;
    bool list_losses_ = false;
    bool undo_safe_ = false;
    bool json_ = false;
    CorrectionChoices corrections_;
    bool list_corrections_ = false;
    std::string scale_ = "0.01";
    std::string package_;
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
