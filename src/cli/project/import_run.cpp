#include "cli/project/import_run.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/project/host_setup.h"
#include "cli/project/import_outcome.h"
#include "cli/report/diagnostic_json.h"
#include "cli/report/tool_code.h"
#include "cli/scene/scene_check.h"
#include "embedded/project_json.h"
#include "system/files.h"

namespace cli {
namespace {

void refuse(ImportRun& run, std::string problem) {
    run.code = most_serious(run.code, ExitCode::refused);
    run.problems.push_back(std::move(problem));
}

// A host error does not say what it is about; footage that no reader accepts is the likeliest cause.
void explain_failure(ImportRun& run, const SceneReading& reading) {
    std::vector<Diagnostic> warnings = scene_warnings(reading);
    std::erase_if(warnings,
                  [](const Diagnostic& warning) { return !(warning.code == ToolCode::footage_unreadable); });
    run.diagnostics = std::move(warnings);
}

// The importer returned; checks its answer against the file and the project.
void judge(ImportRun& run, const SceneReading& reading, const embedded::Host& host,
           const embedded::HostOptions& options) {
    const embedded::Project& project = host.project();
    for (const std::string& problem : left_changed(host, options.alpha_preference)) {
        refuse(run, problem);
    }
    if (reading.error) {
        run.diagnostics.push_back(*reading.error);
        run.code = most_serious(run.code, reading.code);
        return;
    }
    if (run.import.code != kHostErrorNone) {
        refuse(run, "the import ended " + end_text(run.import) + "; what it made before stays");
        explain_failure(run, reading);
        return;
    }
    const embedded::InterfaceVersion version = options.interface_version();
    const bool objects_wanted = gets_scene_objects(version.major, version.minor);
    for (const std::string& problem : missing_in_project(reading, project, objects_wanted)) {
        refuse(run, "the import did not finish: " + problem);
    }
    if (!objects_wanted && !reading.facts.objects.empty()) {
        run.notes.push_back("hosts before 9.32 get no cameras, lights and nulls; the file has " +
                            std::to_string(reading.facts.objects.size()));
    }
}

void note_missing_footage(ImportRun& run, const embedded::Project& project) {
    const auto missing = std::count_if(
        project.footage.begin(), project.footage.end(),
        [](const embedded::Footage& footage) { return footage.kind == embedded::FootageKind::placeholder; });
    if (missing > 0) {
        run.notes.push_back(std::to_string(missing) +
                            (missing == 1 ? " footage file is" : " footage files are") +
                            " missing; `vxr check " + run.file + "` lists the places that were searched");
    }
}

// Failures that were asked for and could not happen.
void note_unused_options(ImportRun& run, const embedded::Host& host, const embedded::HostOptions& options) {
    const auto counts = host.call_counts();
    for (const embedded::Fault& fault : options.faults) {
        const auto count = counts.find(fault.function);
        const std::int64_t calls = count == counts.end() ? 0 : count->second;
        if (calls < fault.nth) {
            run.notes.push_back(fault.function + " was called " + std::to_string(calls) +
                                " times, so its call " + std::to_string(fault.nth) + " did not fail");
        }
    }
    const std::vector<embedded::SuiteName> offered = embedded::offered_suites(options.generation);
    for (const embedded::SuiteName& suite : options.suites_not_offered) {
        if (std::find(offered.begin(), offered.end(), suite) == offered.end()) {
            run.notes.push_back("the host never offers \"" + suite.name + "\" version " +
                                std::to_string(suite.version));
        }
    }
}

void add_notes(ImportRun& run, const embedded::Host& host, const embedded::HostOptions& options) {
    note_missing_footage(run, host.project());
    note_unused_options(run, host, options);
}

}  // namespace

ImportRun import_scene(embedded::Host& host, const embedded::HostOptions& options, const FoundBundle& bundle,
                       const SceneReading& reading) {
    ImportRun run;
    run.file = reading.file;
    run.load.error = bundle.error;
    if (run.load.ok()) {
        run.load = host.load(bundle.path);
    }
    if (!run.load.ok()) {
        const bool refused = run.load.entry.code != kHostErrorNone;
        run.code = refused ? ExitCode::refused : ExitCode::cannot_read_or_write;
        run.problems.push_back("the plug-in was not loaded: " + run.load.error);
        return run;
    }
    if (const std::string problem = host.path_problem(reading.full_path); !problem.empty()) {
        host.unload();
        refuse(run, run.file + ": " + problem + " (--host classic)");
        return run;
    }
    run.verify = host.verify(reading.full_path);
    if (run.verify.importable) {
        run.imported = true;
        run.import = host.import_file(reading.full_path);
    }
    if (const auto broken = host.validate()) {
        refuse(run, "the host's project is inconsistent, a bug in this program: " + *broken);
    }
    // Nothing changes from here on, and what the bundle leaves behind is in the report.
    host.unload();
    if (!run.imported && !reading.error) {
        refuse(run, "the plug-in does not accept the file");
    } else {
        run.missing_footage = missing_footage(reading);
        judge(run, reading, host, options);
        add_notes(run, host, options);
    }
    return run;
}

void add_import_reads(const SceneReading& reading, const FoundBundle& bundle, FileRoles& roles) {
    roles.reads(reading.input ? reading.full_path : reading.file);
    if (bundle.error.empty()) {
        roles.reads(os::text_of(bundle.path), "the plug-in");
    }
    for (const std::string& footage : footage_files(reading)) {
        roles.reads(footage, "footage of " + reading.file);
    }
}

embedded::Project with_decoded_names(embedded::Project project, ByteEncoding encoding) {
    const auto decode = [encoding](auto& named) {
        for (auto& one : named) {
            one.name = utf8_from_name(one.name, encoding);
        }
    };
    decode(project.items);
    decode(project.footage);
    decode(project.layers);
    return project;
}

embedded::Json import_document(const embedded::Project& project, const embedded::ConformanceReport& report,
                               const ImportRun& run) {
    using embedded::Json;
    Json document = embedded::project_to_json(project);
    document["discipline"] = embedded::conformance_to_json(report);
    Json missing = Json::array();
    for (const diagnostic::MissingFootage& footage : run.missing_footage) {
        missing.push_back(missing_footage_json(footage));
    }
    document["import"] = Json{{"file", embedded::json_text(run.file)},
                              {"exit_code", static_cast<int>(run.code)},
                              {"finished", run.imported && run.code == ExitCode::fine},
                              {"importable", run.verify.importable},
                              {"result", run.imported ? Json(run.import.code) : Json()},
                              {"missing_suite", run.import.missing_suite},
                              {"problems", texts_json(run.problems)},
                              {"notes", texts_json(run.notes)},
                              {"missing_footage", missing},
                              {"diagnostics", diagnostics_json(run.diagnostics)}};
    return document;
}

}  // namespace cli
