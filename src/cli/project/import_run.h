#pragma once

#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"
#include "cli/terminal/file_roles.h"
#include "embedded/host.h"
#include "embedded/json_values.h"
#include "host/byte_encoding.h"

namespace cli {

/// The outcome of importing one file.
struct ImportRun {
    std::string file;  ///< as the user named it
    ExitCode code = ExitCode::fine;
    embedded::LoadResult load;
    embedded::VerifyResult verify;
    embedded::CallbackResult import;
    bool imported = false;                ///< the importer was called
    std::vector<Diagnostic> diagnostics;  ///< about the file: why it was refused, or what may have failed
    std::vector<diagnostic::MissingFootage> missing_footage;
    std::vector<std::string> problems;  ///< about the import: what did not happen, one sentence each
    std::vector<std::string> notes;     ///< worth knowing, but no problem; one sentence each
};

/// Does what a host does: loads the bundle, asks whether the file is importable, imports it, unloads. Then
/// compares the result with `reading`, which is the same file. The project, messages and report stay in
/// `host`, which was made with `options`.
ImportRun import_scene(embedded::Host& host, const embedded::HostOptions& options, const FoundBundle& bundle,
                       const SceneReading& reading);

/// Adds what an import of the scene reads: the scene, its footage, and the plug-in if one was found.
void add_import_reads(const SceneReading& reading, const FoundBundle& bundle, FileRoles& roles);

/// The project's document with two more members at its end: "discipline", and "import" with
/// {"file","exit_code","finished","importable","result","missing_suite","problems","notes",
/// "missing_footage","diagnostics"}. `project` is the host's, with its names decoded or not.
embedded::Json import_document(const embedded::Project& project, const embedded::ConformanceReport& report,
                               const ImportRun& run);

/// The project with its names as UTF-8: those that are not are read in this encoding.
embedded::Project with_decoded_names(embedded::Project project, ByteEncoding encoding);

}  // namespace cli
