#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/doctor/diagnosis.h"
#include "cli/doctor/finding.h"
#include "cli/doctor/inspection.h"
#include "cli/doctor/load_test.h"
#include "cli/options.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_json.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "system/files.h"

namespace cli {
namespace {

class DoctorCommand : public Command {
  public:
    void add_options(Options& options) override {
        options
            .file_argument(
                "BUNDLE", bundle_,
                "the plug-in: a .aex, a .plugin folder or a .so; without one, the plug-in of this program")
            .environment("VXR_BUNDLE");
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
        options.flag("--list-codes", list_codes_, "list every finding with its meaning, and exit")
            .group("Output");
        options.flag("--no-load", no_load_, "only look; run no code of the plug-in").group("Loading");
        options
            .flag("--always-load", always_load_,
                  "also load a plug-in that is not VORTAN XR's, which is only looked at otherwise")
            .group("Loading");
        options.option("--timeout", timeout_s_, "how long loading and unloading the plug-in may take")
            .value_name("SECONDS")
            .range(1, kLongestTimeout)
            .show_default()
            .group("Loading");
        options
            .option("--load", load_,
                    "load it in this process, as a host of this generation, and write one line of JSON about "
                    "it: for a debugger")
            .value_name("today|classic")
            .choices({"today", "classic"})
            .group("Loading");
    }

    ExitCode run(Terminal& terminal) override {
        if (list_codes_) {
            std::vector<diagnostic::CodeInfo> codes;
            add_codes(codes, doctor::finding_table());
            if (json_) {
                terminal.out << codes_document(codes);
            } else {
                print_codes(terminal.out, codes);
            }
            return ExitCode::fine;
        }
        if (no_load_ && (always_load_ || !load_.empty())) {
            throw UsageError(std::string("--no-load and ") + (always_load_ ? "--always-load" : "--load") +
                             " exclude each other");
        }
        if (bundle_.empty()) {
            const FoundBundle own = find_bundle({});
            if (!own.error.empty()) {
                throw UsageError(own.error);
            }
            bundle_ = os::text_of(own.path);
        }
        if (!load_.empty()) {
            const auto generation =
                load_ == "today" ? embedded::HostGeneration::today : embedded::HostGeneration::classic;
            terminal.out << doctor::load_test_line(doctor::load_here(bundle_, generation));
            return ExitCode::fine;
        }
        const doctor::Diagnosis diagnosis = doctor::inspect(
            bundle_,
            [this](const std::string& binary, embedded::HostGeneration generation) {
                return doctor::load_apart(binary, generation, std::chrono::seconds(timeout_s_));
            },
            no_load_       ? doctor::Loading::never
            : always_load_ ? doctor::Loading::any
                           : doctor::Loading::ours);
        terminal.out << (json_ ? doctor::diagnosis_document(diagnosis)
                               : doctor::diagnosis_text(diagnosis, terminal.out_paint));
        return diagnosis.code;
    }

  private:
    static constexpr int kLongestTimeout = 3600;

    std::string bundle_;
    std::string load_;
    int timeout_s_ = 60;
    bool json_ = false;
    bool list_codes_ = false;
    bool no_load_ = false;
    bool always_load_ = false;
};

}  // namespace

Verb doctor_verb() {
    return {
        "doctor",
        "explain why a host lists a plug-in, or does not",
        {"Inspects a plug-in as hosts do before they load it; works on any system, for plug-ins of any "
         "system. Looks at the kind of code and its processors, the exported entries, the properties (the "
         "PiPL resource), Info.plist, and the libraries that it needs. Where the plug-in can be loaded, it "
         "is loaded into the embedded host of both generations, in a process of its own: a plug-in that "
         "crashes does no harm and is reported. Code of other makers is not run unless --always-load says "
         "so.",
         "One line for each kind of host says whether it would list the plug-in. Then come the findings, "
         "each with its place and a remedy, and what the plug-in consists of. The exit code is 0 when a host "
         "would list it and there is no error."},
        {{"vxr doctor VORTANXR_AE.aex", "Why After Effects on Windows does not show the plug-in."},
         {"vxr doctor --json VORTANXR_AE.plugin | jq -r '.findings[].code'", "What is wrong, for a script."},
         {"gdb --args vxr doctor --load today ./VORTANXR_AE.so", "A crash while loading, in a debugger."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<DoctorCommand>(); }};
}

}  // namespace cli
