#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/job/relinked_copy.h"
#include "cli/options.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/project/project_tree.h"
#include "cli/report/diagnostic_text.h"
#include "cli/report/json_text.h"
#include "cli/scene/scene_reading.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/standard_input.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "embedded/host.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

constexpr const char* kHostGroup = "The plug-in and its host";

// A check for an option: accepts what `parse` accepts, and says for anything else what is wrong.
template <class Parse>
auto checked_by(Parse parse, const char* problem) {
    return [parse, problem](const std::string& text) {
        return parse(text) ? std::string() : "\"" + text + "\" " + problem;
    };
}

bool is_preference(std::string_view text) {
    if (text == "none") {
        return true;
    }
    const int value = parse_option_integer(std::string(text)).value_or(-1);
    return value >= 0 && value <= 255;
}

constexpr const char* kBytes = "bytes";
constexpr const char* kAsComposition = "composition";

bool is_name_encoding(std::string_view text) {
    return text == kBytes || parse_byte_encoding(text);
}

std::optional<int> parse_count(std::string_view text) {
    const std::optional<int> count = parse_option_integer(std::string(text));
    return count && *count >= 1 ? count : std::nullopt;
}

/// The preference for stills. Without a length they are as long as the composition.
struct StillDuration {
    std::optional<A_Time> length;
};

std::optional<StillDuration> parse_still_duration(std::string_view text) {
    constexpr A_u_long kRate_fps = 25;
    if (text == kAsComposition) {
        return StillDuration{};
    }
    const std::optional<int> frames = parse_count(text);
    return frames ? std::optional(StillDuration{A_Time{*frames, kRate_fps}}) : std::nullopt;
}

class ImportCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("FILE", files_, "composition files; - for the standard input").required();
        options.flag("--json", json_, "write the project as a JSON document instead of a tree")
            .group("Output");
        options
            .option("--save", save_,
                    "also write the JSON document to this file, or with - to standard output alone")
            .value_name("FILE")
            .group("Output");
        options.option("--log", log_, "write every call into the host to this file, one JSON object per line")
            .value_name("FILE")
            .group("Output");
        add_finding_options(options, choices_, false);
        add_bundle_option(options, bundle_);
        add_host_option(options, host_);
        options
            .option("--alpha-preference", preference_,
                    "the host's preference for unlabeled alpha: none, or a value from 0 to 255")
            .value_name("VALUE")
            .show_default()
            .check(checked_by(is_preference, "is neither none nor a number from 0 to 255"))
            .group(kHostGroup);
        options
            .option("--still-duration", still_duration_,
                    "the host's preference for the length of stills and of nulls: composition, or a number "
                    "of frames at 25 frames a second")
            .value_name("LENGTH")
            .show_default()
            .check(checked_by(parse_still_duration, "is neither composition nor a number from 1"))
            .group(kHostGroup);
        options
            .option(
                "--name-encoding", name_encoding_,
                "how to show names that reach the host as bytes other than UTF-8: windows-1252, mac-roman, "
                "or bytes, which shows the bytes; a current host gets such names as Windows-1252")
            .value_name("ENCODING")
            .show_default()
            .check(checked_by(is_name_encoding, "is neither windows-1252, mac-roman nor bytes"))
            .group("Output");
        options.option("--without-suite", without_, "a suite that the host does not offer; may be repeated")
            .value_name("NAME:VERSION")
            .one_value_at_a_time()
            .check(checked_by(embedded::parse_suite_name, "is not NAME:VERSION"))
            .group("What goes wrong");
        options
            .option("--fail", faults_, "make the N-th call of a host function return CODE; may be repeated")
            .value_name("FUNCTION:N:CODE")
            .one_value_at_a_time()
            .check(checked_by(
                embedded::parse_fault,
                "is not FUNCTION:N:CODE with a function of the host, N from 1 and a CODE other than 0"))
            .group("What goes wrong");
        options
            .option("--refuse-layer", refused_,
                    "answer no to the N-th question whether an item may become a layer; may be repeated")
            .value_name("N")
            .one_value_at_a_time()
            .check(checked_by(parse_count, "is not a number from 1"))
            .group("What goes wrong");
    }

    ExitCode run(Terminal& terminal) override {
        check_usage();
        if (save_ == "-") {
            json_ = true;
            save_.clear();
        }
        const embedded::HostOptions options = host_options();
        const FoundBundle bundle = find_bundle(bundle_);
        ExitCode code = ExitCode::fine;
        bool first = true;
        for (const std::string& file : files_) {
            if (!first && !json_) {
                terminal.out << '\n';
            }
            first = false;
            code = most_serious(code, import_one(file, options, bundle, terminal));
        }
        return code;
    }

  private:
    void check_usage() const {
        if (files_.size() > 1 && !(save_.empty() && log_.empty())) {
            throw UsageError("--save and --log are for one FILE");
        }
        if (log_ == "-") {
            throw UsageError("--log needs a file: standard output has the project");
        }
        if (names_standard_input_twice(files_)) {
            throw UsageError("the standard input can be read only once");
        }
    }

    ExitCode import_one(const std::string& file, const embedded::HostOptions& options,
                        const FoundBundle& bundle, Terminal& terminal) const {
        const FoundScene scene(file, choices_);
        const SceneReading& reading = scene.reading();
        refuse_to_overwrite(scene.original(), bundle);
        refuse_to_overwrite(reading, bundle);
        // Finds files that cannot be written before the work, not after it.
        std::optional<OutputFile> log = opened(log_);
        std::optional<OutputFile> save = opened(save_);
        embedded::Host host(options);
        if (log) {
            host.log_calls([&](std::string_view line) {
                log->write(line);
                log->write("\n");
            });
        }
        const ImportRun run = import_scene(host, options, bundle, reading);
        const std::optional<ByteEncoding> encoding = parse_byte_encoding(name_encoding_);
        const embedded::Project project =
            encoding ? with_decoded_names(host.project(), *encoding) : host.project();
        show(project, host.conformance(), run, terminal);
        if (save) {
            save->write(json_text_of(import_document(project, host.conformance(), run)));
            save->close();
        }
        if (log) {
            log->close();
        }
        return run.code;
    }

    static std::optional<OutputFile> opened(const std::string& path) {
        return path.empty() ? std::nullopt : std::optional<OutputFile>(std::in_place, path);
    }

    void refuse_to_overwrite(const SceneReading& reading, const FoundBundle& bundle) const {
        if (save_.empty() && log_.empty()) {
            return;
        }
        FileRoles roles;
        add_import_reads(reading, bundle, roles);
        for (const auto& [path, option] : {std::pair(save_, "--save"), std::pair(log_, "--log")}) {
            const std::string refusal = path.empty() ? std::string() : roles.writes(path, option);
            if (!refusal.empty()) {
                throw UsageError(refusal);
            }
        }
    }

    [[nodiscard]] embedded::HostOptions host_options() const {
        embedded::HostOptions options = host_of_kind(host_);
        for (const std::string& suite : without_) {
            options.suites_not_offered.push_back(*embedded::parse_suite_name(suite));
        }
        for (const std::string& fault : faults_) {
            options.faults.push_back(*embedded::parse_fault(fault));
        }
        for (const std::string& refused : refused_) {
            options.layers_refused.push_back(*parse_count(refused));
        }
        options.still_duration = parse_still_duration(still_duration_)->length;
        if (preference_ != "none") {
            options.alpha_preference = static_cast<std::uint8_t>(std::stoi(preference_));
        }
        return options;
    }

    void show(const embedded::Project& project, const embedded::ConformanceReport& findings,
              const ImportRun& run, Terminal& terminal) const {
        if (json_) {
            terminal.out << json_text_of(import_document(project, findings, run));
        } else {
            show_tree(project, findings, run, terminal);
        }
        terminal.out << std::flush;
        for (const Diagnostic& diagnostic : run.diagnostics) {
            terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
        }
        for (const std::string& problem : run.problems) {
            complain(terminal, problem);
        }
        for (const std::string& note : run.notes) {
            remark(terminal, note);
        }
    }

    static void show_tree(const embedded::Project& project, const embedded::ConformanceReport& findings,
                          const ImportRun& run, Terminal& terminal) {
        const std::string tree = project_tree(project, terminal.out_paint);
        if (!tree.empty()) {
            terminal.out << terminal.out_paint(Ink::bold, text::printable(run.file)) << ": "
                         << project_summary(project) << "\n\n"
                         << fitted(terminal, tree);
        }
        const std::string report = host_report(project, findings, terminal.out_paint);
        terminal.out << (tree.empty() || report.empty() ? "" : "\n") << report;
    }

    std::vector<std::string> files_;
    bool json_ = false;
    std::string save_;
    std::string log_;
    FindingChoices choices_;
    std::string bundle_;
    std::string host_ = kUsualHost;
    std::string preference_ = "none";
    std::vector<std::string> without_;
    std::vector<std::string> faults_;
    std::vector<std::string> refused_;
    std::string still_duration_ = kAsComposition;
    std::string name_encoding_ = kBytes;
};

}  // namespace

Verb import_verb() {
    return {"import",
            "import a composition file and show the resulting project",
            {"Loads the plug-in into an embedded host, has it verify and import FILE, and shows the project "
             "as a tree: folders, compositions with their layers from top to bottom, footage as the host "
             "interprets it, cameras, lights and nulls with the number and range of their keys. In-points "
             "and keys are frames on the composition's own timeline. Missing footage is marked in its place.",
             "Below the tree come the messages that After Effects would have shown, the rules of the host "
             "that the plug-in broke, and the host's notes. When the plug-in ignores the file and shows no "
             "message, the reason is given as `vxr check` gives it.",
             "The options under \"What goes wrong\" make the host fail on purpose, to show what the import "
             "does then."},
            {{"vxr import examples/interlaced/lantern_010.aec", "Shows the project of an interlaced scene."},
             {"vxr import --json shot.aec | jq '.compositions[].name'",
              "The project as JSON, for another program."},
             {"vxr import --log calls.jsonl --host 9.31 shot.aec",
              "Imports into an older host, which gets no cameras, lights and nulls, and logs every call."},
             {"vxr import --fail AEGP_CreateComp:2:4 shot.aec",
              "What is left when the host has no memory for the second composition."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<ImportCommand>(); }};
}

}  // namespace cli
