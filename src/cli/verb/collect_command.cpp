#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/job/collect_plan.h"
#include "cli/job/collect_run.h"
#include "cli/options.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "text/ascii.h"
#include "text/printable.h"

namespace cli {
namespace {

std::optional<Transfer> parse_transfer(std::string_view text) {
    return text == "copy"       ? std::optional(Transfer::copy)
           : text == "hardlink" ? std::optional(Transfer::hard_link)
           : text == "reflink"  ? std::optional(Transfer::reflink)
                                : std::nullopt;
}

class CollectCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", files_, "the composition files").required();
        options.option("-o,--output", output_, "a folder, or an archive if the name ends in .zip")
            .value_name("FOLDER|ZIP")
            .required()
            .group("Output");
        options.flag("--trim", trim_, "of sequences only the frames that are shown").group("Output");
        options
            .option("--by", by_,
                    "how pictures get into the folder: as copies, as second names of the same files, or as "
                    "copies that share their blocks")
            .value_name("copy|hardlink|reflink")
            .check([](const std::string& text) {
                return parse_transfer(text) ? std::string()
                                            : '"' + text + "\" is neither copy, hardlink nor reflink";
            })
            .show_default()
            .group("Output");
        options.flag("--dry-run", dry_run_, "show what would be collected; write nothing").group("Output");
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
        add_finding_options(options, choices_, true);
    }

    ExitCode run(Terminal& terminal) override {
        if (const std::string problem = scene_argument_problem(files_); !problem.empty()) {
            throw UsageError(problem);
        }
        FootageFinder finder(choices_.finder_options());
        std::vector<RelinkedScene> scenes;
        for (const std::string& file : files_) {
            scenes.push_back(seek_scene(file, finder, {}));
        }
        const CollectPlan plan = plan_collection(scenes, finder, trim_);
        const CollectRun run = collect(scenes, plan, terminal);
        if (json_) {
            terminal.out << collect_document(scenes, plan, run, output_, dry_run_).dump(2) << '\n';
        } else {
            show(scenes, run, terminal);
        }
        return run.code;
    }

  private:
    CollectRun collect(const std::vector<RelinkedScene>& scenes, const CollectPlan& plan,
                       Terminal& terminal) {
        if (dry_run_) {
            return planned_collection(scenes, plan);
        }
        if (text::ends_with_ignoring_case(output_, ".zip")) {
            if (by_ != "copy") {
                throw UsageError("an archive holds copies; --by " + by_ + " is for a folder");
            }
            return collect_into_zip(scenes, plan, output_);
        }
        return collect_into_folder(scenes, plan, output_, *parse_transfer(by_), terminal);
    }

    void show(const std::vector<RelinkedScene>& scenes, const CollectRun& run, Terminal& terminal) const {
        std::uint64_t bytes = 0;
        for (const ManifestEntry& entry : run.entries) {
            bytes += entry.size_bytes;
            if (dry_run_) {
                terminal.out << text::printable(entry.source) << " -> " << text::printable(entry.name)
                             << '\n';
            }
        }
        for (const RelinkedScene& scene : scenes) {
            show_scene(scene, terminal);
        }
        const auto files = static_cast<std::int64_t>(run.entries.size());
        terminal.out << text::printable(output_) << ": " << grouped(files)
                     << (files == 1 ? " file of " : " files, ") << grouped(static_cast<std::int64_t>(bytes))
                     << " bytes"
                     << (dry_run_               ? " would be collected"
                         : run.problems.empty() ? ""
                                                : ", not complete")
                     << '\n'
                     << std::flush;
        for (const std::string& problem : run.problems) {
            complain(terminal, problem);
        }
    }

    // What of the scene is not in the collection.
    static void show_scene(const RelinkedScene& scene, Terminal& terminal) {
        for (const Diagnostic& diagnostic : scene.diagnostics) {
            terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
        }
        for (const SoughtFootage& footage : scene.footage) {
            if (!footage.finding.is_found()) {
                terminal.out << text::printable(scene.file) << ':' << footage.at.line << ':'
                             << footage.at.column << ": " << label(footage.finding.outcome) << ": "
                             << text::quoted(footage.written) << '\n';
            }
            for (const FootageCandidate& candidate : footage.finding.candidates) {
                if (!footage.finding.is_found()) {
                    terminal.out << "  " << text::printable(candidate.path) << " ?\n";
                }
            }
        }
        for (const std::string& problem : scene.problems) {
            complain(terminal, problem);
        }
    }

    std::vector<std::string> files_;
    std::string output_;
    bool trim_ = false;
    std::string by_ = "copy";
    bool dry_run_ = false;
    bool json_ = false;
    FindingChoices choices_;
};

}  // namespace

Verb collect_verb() {
    return {"collect",
            "gather scenes with their footage in one folder or archive",
            {"Copies every SCENE with the footage that it uses, whole sequences included, into one folder. "
             "The paths in the copies are names only, so that After Effects finds everything beside the "
             "scene, wherever the folder is taken to. " +
                 std::string(kManifestName) +
                 " lists every file with its SHA-256, its size and where it came from. Footage is found as "
                 "`vxr relink` finds it.",
             "Pictures of different folders that have one name get different ones, and so do sequences that "
             "would become one. A file that is there already with the same bytes stays, so the same command "
             "goes on where another one ended; if any other file is in the way, nothing is written. Free "
             "space is compared first.",
             "The exit code is 4 when footage was not found; the rest is collected."},
            {{"vxr collect shot.aec -o delivery", "Gathers shot.aec and its footage in the folder delivery."},
             {"vxr collect job/*.aec -o job.zip --trim --search renders",
              "An archive of a whole job with only the frames that are seen."},
             {"vxr collect shot.aec -o delivery --dry-run --json | jq '[.files[].bytes] | add'",
              "How many bytes would be collected."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<CollectCommand>(); }};
}

}  // namespace cli
