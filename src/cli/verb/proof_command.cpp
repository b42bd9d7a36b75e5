#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/handover/measured_report.h"
#include "cli/handover/measuring_run.h"
#include "cli/handover/proof_picture.h"
#include "cli/handover/proof_run.h"
#include "cli/options.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/report/json_text.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "text/printable.h"

namespace cli {
namespace {

class ProofCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", file_, "a composition file; - for the standard input").required();
        options
            .option("--points", options_.grid_points, "at least so many test points around each camera's aim")
            .value_name("N")
            .range(1, 1000)
            .show_default();
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
        options
            .option(
                "--at", at_,
                "with --json: also list every test point at this frame and where it lands; may be repeated")
            .value_name("FRAME")
            .group("Output");
        options.option("--picture", picture_, "also write a picture of the test points, as SVG")
            .value_name("FILE")
            .group("Output");
        options
            .option("--for-after-effects", script_,
                    "instead write a script by which After Effects itself says where points land")
            .value_name("FILE")
            .group("After Effects");
        options.option("--compare", table_, "judge the table that such a script wrote in After Effects")
            .value_name("TABLE")
            .group("After Effects");
        add_bundle_option(options, bundle_);
    }

    ExitCode run(Terminal& terminal) override {
        take_listed_frames();
        const SceneReading reading = read_scene(file_);
        const FoundBundle bundle = find_bundle(bundle_);
        if (!script_.empty()) {
            return write_script(reading, bundle, terminal);
        }
        // Finds a file that cannot be written before the work, not after it.
        std::optional<OutputFile> picture;
        if (!picture_.empty()) {
            refuse_to_overwrite(reading, bundle, picture_, "--picture");
            picture.emplace(picture_);
        }
        std::optional<Measurement> measurement;
        if (!table_.empty() && !reading.error) {
            auto read = read_measurement(table_, reading);
            if (const auto* const problem = std::get_if<TableProblem>(&read)) {
                return refuse(*problem, terminal);
            }
            measurement = std::get<Measurement>(std::move(read));
        }
        const ProofRun run = prove(reading, bundle, options_, measurement ? &*measurement : nullptr);
        if (picture && run.result) {
            picture->write(proof_picture(run));
            picture->close();
        }
        const bool judged = measurement && run.measured;
        if (json_) {
            nlohmann::ordered_json document = proof_document(run);
            if (judged) {
                document["measured"] = measured_json(run, *measurement);
            }
            terminal.out << json_text_of(document);
        } else {
            terminal.out << fitted(terminal, judged ? measured_text(run, *measurement, terminal.out_paint)
                                                    : proof_text(run, terminal.out_paint));
        }
        terminal.out << std::flush;
        complain_about(run.diagnostics, run.problems, terminal);
        return run.code;
    }

  private:
    void take_listed_frames() {
        if (!at_.empty() && !json_) {
            throw UsageError("--at lists points in the JSON document, so it goes with --json");
        }
        for (const std::string& text : at_) {
            const bool negative = text.starts_with('-');
            const std::optional<double> frame = parse_option_decimal(negative ? text.substr(1) : text);
            if (!frame) {
                throw UsageError("--at takes a frame, like 17 or 17.5, and not " + text::quoted(text));
            }
            options_.listed_frames.push_back(negative ? -*frame : *frame);
        }
    }

    [[nodiscard]] ExitCode write_script(const SceneReading& reading, const FoundBundle& bundle,
                                        Terminal& terminal) const {
        if (json_ || !picture_.empty() || !table_.empty()) {
            throw UsageError(
                "--for-after-effects compares nothing, so it goes without --json, --picture and --compare");
        }
        refuse_to_overwrite(reading, bundle, script_, "--for-after-effects");
        OutputFile script(script_);
        const MeasuringScript made = measuring_script(reading, bundle);
        if (made.script) {
            script.write(*made.script);
            script.close();
            terminal.out << fitted(terminal, measuring_text(made, script_, terminal.out_paint)) << std::flush;
        }
        complain_about(made.diagnostics, made.problems, terminal);
        return made.code;
    }

    // The document still says why there is nothing in it.
    [[nodiscard]] ExitCode refuse(const TableProblem& problem, Terminal& terminal) const {
        if (json_) {
            ProofRun none;
            none.file = file_;
            none.code = problem.code;
            none.problems = {problem.text};
            terminal.out << json_text_of(proof_document(none)) << std::flush;
        }
        complain(terminal, problem.text);
        return problem.code;
    }

    static void complain_about(const std::vector<Diagnostic>& diagnostics,
                               const std::vector<std::string>& problems, Terminal& terminal) {
        for (const Diagnostic& diagnostic : diagnostics) {
            terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
        }
        for (const std::string& problem : problems) {
            complain(terminal, problem);
        }
    }

    void refuse_to_overwrite(const SceneReading& reading, const FoundBundle& bundle, const std::string& path,
                             const char* option) const {
        FileRoles roles;
        add_import_reads(reading, bundle, roles);
        if (!table_.empty()) {
            roles.reads(table_);
        }
        if (const std::string refusal = roles.writes(path, option); !refusal.empty()) {
            throw UsageError(refusal);
        }
    }

    std::string file_;
    std::string picture_;
    std::string script_;
    std::vector<std::string> at_;
    std::string table_;
    proof::ProofOptions options_;
    bool json_ = false;
    std::string bundle_;
};

}  // namespace

Verb proof_verb() {
    return {
        "proof",
        "compare where points are seen by the scene's camera and by what is handed over",
        {"Projects test points by the scene's own camera, and by what arrives in After Effects through the "
         "plug-in, by the corrected script, in glTF and in USD: the nulls, a grid around each camera's aim, "
         "and the corners of the frame at three depths; at keys, between keys, at FROM and at TO. Shows for "
         "each camera and target the largest and the mean distance in pixels, the frame, and why.",
         "After Effects is a written model until someone has measured it. "
         "Where pixels are not square, \"stretched\" is After Effects if it stretches the space of such "
         "compositions.",
         "--for-after-effects writes a script by which After Effects itself says where points land and what "
         "colours come out, and --compare judges the table that it writes.",
         "The exit code is 5 when what is corrected is more than 0.05 pixels off at a whole frame, or when a "
         "table says that After Effects is not as the model has it."},
        {{"vxr proof shot.aec", "How far each target is from the scene."},
         {"vxr proof shot.aec --json | jq '.cameras[].targets[] | [.target, .largest_px]'",
          "The numbers for another program."},
         {"vxr proof shot.aec --picture shot.svg", "Where the points land, as a picture."},
         {"vxr proof shot.aec --for-after-effects measure.jsx", "A script to run in After Effects."},
         {"vxr proof shot.aec --compare measure-measured.tsv", "What After Effects says."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<ProofCommand>(); }};
}

}  // namespace cli
