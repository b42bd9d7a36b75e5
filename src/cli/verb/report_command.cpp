#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/job/relinked_copy.h"
#include "cli/options.h"
#include "cli/page/report_page.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/report/check_summary.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/ordered_jobs.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/terminal.h"
#include "cli/verb/check_files.h"
#include "cli/verb/check_inputs.h"
#include "cli/verb/project_policies.h"
#include "cli/verbs.h"
#include "text/printable.h"

namespace cli {
namespace {

constexpr int kMostJobs = 256;
constexpr int kMostPictures = 100;

/// A scene that was looked at.
struct SeenScene {
    WrittenScene written;
    std::vector<Diagnostic> diagnostics;
    std::size_t ignored = 0;
    FileRoles roles{};             ///< what was read for it
    std::exception_ptr failure{};  ///< what stopped it
};

class ReportCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", inputs_.files, "composition files, and folders with such files");
        add_input_options(options, inputs_);
        options.option("-o,--output", output_, "the page to write").value_name("FILE.html").group("Output");
        options
            .option("--pictures", pictures_,
                    "at most so many frames of each scene; with many scenes fewer; 0 for none")
            .value_name("N")
            .range(0, kMostPictures)
            .show_default()
            .group("Output");
        options.option("--progress", progress_, "whether a terminal shows how far the work is")
            .value_name("auto|never")
            .choices({"auto", "never"})
            .show_default()
            .group("Output");
        add_policy_options(options, policy_, composition_files().codes);
        add_finding_options(options, choices_, false);
        options.option("-j,--jobs", jobs_, "how many scenes to look at at a time; 0 for one per processor")
            .value_name("N")
            .range(0, kMostJobs)
            .show_default()
            .group("Work");
        add_bundle_option(options, bundle_);
    }

    ExitCode run(Terminal& terminal) override {
        check_usage();
        const FoundInputs inputs = find_inputs(inputs_, ".aec");
        const ExitCode code = tell_empty_folders(inputs, inputs_, ".aec", terminal);
        if (inputs.files.empty()) {
            return code;
        }
        return most_serious(code, report_on(inputs.files, terminal));
    }

  private:
    void check_usage() const {
        refuse_wrong_inputs(inputs_, "SCENE");
        if (output_.empty()) {
            throw UsageError("-o is required");
        }
    }

    // Whether the output may be written; `roles` knows what is read.
    void claim_output(FileRoles roles) const {
        if (const std::string refusal = roles.writes(output_, "-o"); !refusal.empty()) {
            throw UsageError(refusal);
        }
    }

    ExitCode report_on(const std::vector<std::string>& files, Terminal& terminal) const {
        FileRoles roles;
        add_list(inputs_, roles);
        for (const std::string& file : files) {
            roles.reads(file);
        }
        claim_output(roles);
        const FoundBundle bundle = find_bundle(bundle_);
        // Finds a file that cannot be written before the work, not after it.
        OutputFile output(output_);
        const FileKind& kind = composition_files();
        ProjectPolicies policies(policy_, kind.codes(), kind.project_table);
        std::vector<const CheckPolicy*> policy_of;
        policy_of.reserve(files.size());
        for (const std::string& file : files) {
            policy_of.push_back(&policies.policy_of(file));
        }
        std::optional<FootageFinder> finder;
        if (choices_.given()) {
            finder.emplace(choices_.finder_options());
        }
        FootageSurvey survey(finder ? &*finder : nullptr);
        std::mutex one_host;
        Progress progress(terminal, files.size(), progress_ != "never");
        CheckSummary summary;
        ExitCode code = ExitCode::fine;
        std::vector<WrittenScene> scenes;
        scenes.reserve(files.size());

        const auto look_at = [&](std::size_t i) {
            SeenScene seen;
            try {
                const FoundScene found(files[i], choices_);
                FileCheck check = check_scene(found.original(), survey);
                seen.ignored = apply_policy(check, *policy_of[i]);
                for (const SceneReading* const one : {&found.original(), &found.reading()}) {
                    add_import_reads(*one, bundle, seen.roles);
                }
                PageScene scene;
                {
                    // The bundle is loaded once into a process, and serves one host at a time.
                    const std::scoped_lock lock(one_host);
                    scene = page_scene(found.reading(), check.code, std::move(check.diagnostics), bundle,
                                       pictures_of_each(static_cast<std::size_t>(pictures_), files.size()),
                                       threads_for(jobs_));
                }
                seen.written = write_scene(scene, i, files.size() == 1);
                seen.diagnostics = std::move(scene.diagnostics);
            } catch (...) {
                seen.failure = std::current_exception();
            }
            return seen;
        };
        const auto take = [&](std::size_t i, SeenScene seen) {
            progress.clear();
            if (seen.failure) {
                std::rethrow_exception(seen.failure);
            }
            claim_output(std::move(seen.roles));
            code = most_serious(code, seen.written.code);
            summary.add(files[i], seen.written.code, seen.diagnostics, seen.ignored);
            scenes.push_back(std::move(seen.written));
        };
        // The finder remembers the folders it has seen, for one thread.
        run_in_order<SeenScene>(
            files.size(), finder ? 1 : threads_for(jobs_), look_at,
            [&](std::size_t done) { progress.bar(done); }, take);
        progress.clear();
        write_report_page(scenes, [&](std::string_view piece) { output.write(piece); });
        output.close();
        terminal.out << text::printable(output_) << '\n' << summary.text(terminal.out_paint) << std::flush;
        return code;
    }

    CheckInputs inputs_;
    PolicyChoices policy_;
    FindingChoices choices_;
    std::string output_;
    std::string progress_ = "auto";
    int pictures_ = 12;
    int jobs_ = 1;
    std::string bundle_;
};

}  // namespace

Verb report_verb() {
    return {
        "report",
        "write one page that shows scenes to anyone with a browser",
        {"Looks at every SCENE as After Effects will get it, and writes one HTML file that says, in this "
         "order: does it import, and is anything lost; what does it look like; is the camera right; what is "
         "in it; what to do next. For several scenes and for folders the page begins with a table of all of "
         "them.",
         "The page opens in any browser, needs no network and asks for nothing, prints, and can be sent to "
         "someone who has none of the files. Verdict, losses and contents can be read without scripts; with "
         "them, cameras, lights and nulls can be turned around, and keys are drawn as curves.",
         "What the page says about scenes is what `vxr check` and `vxr proof` say, and the exit code is that "
         "of `vxr check`; --fail-on, --ignore, --search, --map and a project file .vxr.toml count in the "
         "same way. The page is written whatever became of the scenes, and complete or not at all."},
        {{"vxr report shot.aec -o shot.html", "One scene."},
         {"vxr report --recursive --jobs 0 renders -o job.html",
          "Everything below a folder: a page that begins with a table of all scenes."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<ReportCommand>(); }};
}

}  // namespace cli
