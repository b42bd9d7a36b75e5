#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/footage/job_file.h"
#include "cli/job/relink_run.h"
#include "cli/options.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/terminal.h"
#include "cli/terminal/text_table.h"
#include "cli/verbs.h"
#include "system/file_content.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

constexpr int kStandardInput = 0;

Ink ink_of(Finding::Outcome outcome) {
    return outcome == Finding::Outcome::found       ? Ink::green
           : outcome == Finding::Outcome::ambiguous ? Ink::yellow
                                                    : Ink::red;
}

class RelinkCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", files_, "the composition files").required();
        add_finding_options(options, choices_, true);
        options.option("--use", use_, "begin with the folders, maps and decisions of this job file")
            .value_name("JOB.toml")
            .group("Where footage is");
        options.flag("--interactive", interactive_, "ask which file is meant where several may be")
            .group("Where footage is");
        options.option("-o,--output", output_, "the new scene, for one SCENE")
            .value_name("FILE")
            .group("Output");
        options.option("--out-dir", folder_, "write every scene below this folder, under its own name")
            .value_name("DIR")
            .group("Output");
        options.flag("--dry-run", dry_run_, "show every path and what was found for it; write no scene")
            .group("Output");
        options.option("--save-map", save_map_, "keep folders, maps and decisions in this job file")
            .value_name("JOB.toml")
            .group("Output");
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        check_usage();
        FootageFinder finder(finder_options());
        Progress progress(terminal, interactive_ ? 0 : files_.size());
        std::vector<RelinkedScene> scenes;
        for (const std::string& file : files_) {
            progress.step(text::printable(file));
            scenes.push_back(seek_scene(file, finder, chooser(terminal)));
        }
        progress.clear();
        place(scenes);
        check_outputs(scenes, finder);
        ExitCode code = ExitCode::fine;
        for (RelinkedScene& scene : scenes) {
            if (!dry_run_) {
                write_scene(scene);
            }
            code = most_serious(code, scene.code);
        }
        if (!save_map_.empty()) {
            save_job(finder.options(), scenes);
        }
        if (json_) {
            terminal.out << relink_document(scenes, code, dry_run_).dump(2) << '\n';
        } else {
            show(scenes, terminal);
        }
        return code;
    }

  private:
    void check_usage() const {
        if (!output_.empty() && !folder_.empty()) {
            throw UsageError("-o and --out-dir exclude each other");
        }
        if (!output_.empty() && files_.size() > 1) {
            throw UsageError("-o is for one SCENE; --out-dir takes several");
        }
        if (output_.empty() && folder_.empty() && !dry_run_) {
            throw UsageError("-o, --out-dir or --dry-run is required");
        }
        if (interactive_ && !is_terminal(kStandardInput)) {
            throw UsageError("--interactive needs a terminal to ask on");
        }
        if (const std::string problem = scene_argument_problem(files_); !problem.empty()) {
            throw UsageError(problem);
        }
    }

    [[nodiscard]] FinderOptions finder_options() const {
        FinderOptions options = choices_.finder_options();
        if (use_.empty()) {
            return options;
        }
        const auto text = os::content_of(use_, kMostJobFileBytes);
        if (!text) {
            throw std::runtime_error("cannot read " + use_);
        }
        std::string problem;
        const auto job = parse_job_file(*text, problem);
        if (!job) {
            throw std::runtime_error(use_ + " is no job file: " + problem);
        }
        options.search.insert(options.search.end(), job->search.begin(), job->search.end());
        options.maps.insert(options.maps.end(), job->maps.begin(), job->maps.end());
        options.kept = job->kept;
        options.prefer = options.prefer == Preference::none ? job->prefer : options.prefer;
        return options;
    }

    [[nodiscard]] ChooseCandidate chooser(Terminal& terminal) const {
        if (!interactive_) {
            return {};
        }
        return [&terminal](const RelinkedScene& scene, const SoughtFootage& footage) {
            return ask_for_candidate(std::cin, terminal.err, scene, footage);
        };
    }

    void place(std::vector<RelinkedScene>& scenes) const {
        if (!folder_.empty()) {
            place_outputs(scenes, folder_);
        } else {
            scenes.front().output = output_;
        }
    }

    // Before the first output is made.
    void check_outputs(const std::vector<RelinkedScene>& scenes, FootageFinder& finder) const {
        FileRoles roles;
        if (!use_.empty()) {
            roles.reads(use_);
        }
        for (const RelinkedScene& scene : scenes) {
            add_roles(scene, finder, roles);
        }
        std::string refusal;
        for (const RelinkedScene& scene : scenes) {
            if (!dry_run_ && refusal.empty()) {
                refusal = roles.writes(scene.output, scene.file);
            }
        }
        if (!save_map_.empty() && refusal.empty()) {
            refusal = roles.writes(save_map_, "--save-map");
        }
        if (!refusal.empty()) {
            throw UsageError(refusal);
        }
    }

    void save_job(const FinderOptions& used, const std::vector<RelinkedScene>& scenes) const {
        FinderOptions job = used;
        for (std::string& folder : job.search) {
            folder = os::absolute_path(folder);
        }
        for (const auto& [written, path] : decisions_of(scenes)) {
            job.kept[written] = path;
        }
        OutputFile file(save_map_);
        file.write(job_file_text(job));
        file.close();
    }

    void show(const std::vector<RelinkedScene>& scenes, Terminal& terminal) const {
        for (const RelinkedScene& scene : scenes) {
            for (const Diagnostic& diagnostic : scene.diagnostics) {
                terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
            }
            terminal.out << terminal.out_paint(Ink::bold, text::printable(scene.file));
            if (scene.written) {
                terminal.out << " -> " << text::printable(scene.output);
            }
            terminal.out << ": "
                         << (scene.diagnostics.empty() ? relink_summary({scene}) : verdict_label(scene.code))
                         << '\n';
            for (const std::string& line : table(scene).lines(terminal.out_paint)) {
                terminal.out << "  " << line << '\n';
            }
            terminal.out << std::flush;
            for (const std::string& problem : scene.problems) {
                complain(terminal, problem);
            }
        }
        if (scenes.size() > 1) {
            terminal.out << scenes.size() << " scenes, " << relink_summary(scenes) << '\n';
        }
    }

    // Every path of a dry run; else only those that were not found.
    [[nodiscard]] TextTable table(const RelinkedScene& scene) const {
        TextTable table;
        bool begun = false;
        for (const SoughtFootage& footage : scene.footage) {
            const Finding& finding = footage.finding;
            const bool found = finding.is_found();
            if (found && !dry_run_) {
                continue;
            }
            if (!begun) {
                table.add({{"line"}, {"rule"}, {"path as written"}, {"result"}});
                begun = true;
            }
            table.add({{std::to_string(footage.at.line), Ink::plain, true},
                       {found ? label(finding.rule) : label(finding.outcome), ink_of(finding.outcome)},
                       {text::printable(footage.written)},
                       {text::printable(finding.path)}});
            for (const FootageCandidate& candidate : finding.candidates) {
                if (!found) {
                    table.add({{}, {label(candidate.rule)}, {}, {text::printable(candidate.path) + " ?"}});
                }
            }
        }
        return table;
    }

    std::vector<std::string> files_;
    FindingChoices choices_;
    std::string use_;
    bool interactive_ = false;
    std::string output_;
    std::string folder_;
    bool dry_run_ = false;
    std::string save_map_;
    bool json_ = false;
};

}  // namespace

Verb relink_verb() {
    return {
        "relink",
        "find the footage of old scenes again, and write new scenes with paths that lead to it",
        {"Looks for the footage of every SCENE where it may be today, and writes a new scene: the same bytes "
         "but for the paths. The rules are tried in this order: as written; beside the scene; behind a "
         "--map; below a --search folder, under the longest tail of the path. Then the same places again for "
         "names in another form of Unicode or in the bytes of old systems, for names cut at 31 characters, "
         "and for names in other letters' case. Of a sequence, another frame will do in the end.",
         "Where two files are equally likely, none is taken: both are listed, and the path stays as it is. "
         "--prefer or --interactive decides.",
         "No scene is written onto a file that is read. The exit code is 4 when a path was not found."},
        {{"vxr relink shot.aec --search renders --dry-run",
          "Shows what would be found below the folder renders, and by which rule."},
         {"vxr relink job/*.aec --map 'Macintosh HD:Renders=renders' --out-dir relinked",
          "Writes all scenes of a job into the folder relinked."},
         {"vxr relink job/*.aec --search renders --dry-run --save-map job.toml",
          "Keeps what was found in job.toml, to be read and corrected."},
         {"vxr relink job/*.aec --use job.toml --out-dir relinked",
          "Writes the scenes with what job.toml says."},
         {"vxr relink shot.aec --search renders --dry-run --json | jq '.scenes[].paths[] | select(.outcome "
          "!= \"found\")'",
          "The paths that were not found, with all candidates."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<RelinkCommand>(); }};
}

}  // namespace cli
