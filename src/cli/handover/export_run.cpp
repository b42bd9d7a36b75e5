#include "cli/handover/export_run.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include "cli/handover/script_package.h"
#include "cli/report/diagnostic_json.h"
#include "cli/terminal/output_file.h"
#include "embedded/json_values.h"
#include "system/files.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;
using handover::CorrectionInfo;

const CorrectionInfo& info_of(const handover::AppliedCorrection& applied) {
    return handover::correction_table().at(static_cast<std::size_t>(applied.correction));
}

void write_output(ExportedScene& scene, const SceneReading& reading, const FoundBundle& bundle,
                  const ExportSettings& settings, const std::string& output) {
    try {
        const std::string folder = os::text_of(os::path_of(output).parent_path());
        if (!folder.empty()) {
            std::error_code failure;  // what is missing then shows in the next step
            std::filesystem::create_directories(os::native_path(folder), failure);
        }
        if (settings.packaged) {
            write_script_package(reading, *scene.result.handover, bundle, settings.format_options, output);
        } else {
            OutputFile file(output);
            write_handover(*scene.result.handover, *settings.format, settings.format_options,
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

}  // namespace

ExportedScene export_scene(const SceneReading& reading, const FoundBundle& bundle,
                           const ExportSettings& settings, const std::string& output) {
    ExportedScene scene;
    scene.result = hand_over(reading, bundle, settings.version, settings.handover_options);
    if (!scene.result.handover) {
        return scene;
    }
    scene.losses = losses_of(*scene.result.handover, *settings.format, settings.format_options);
    scene.corrections = scene.result.handover->corrections;
    if (settings.write) {
        write_output(scene, reading, bundle, settings, output);
    }
    scene.result.handover.reset();
    return scene;
}

void show_exported(const ExportedScene& scene, bool listed, Terminal& terminal) {
    for (const Diagnostic& diagnostic : scene.result.diagnostics) {
        terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
    }
    terminal.out << terminal.out_paint(Ink::bold, text::printable(scene.result.file));
    if (scene.written) {
        terminal.out << " -> " << text::printable(scene.output);
    }
    const bool described =
        scene.written || (listed && scene.result.problems.empty() && scene.result.diagnostics.empty());
    terminal.out << ": "
                 << (described
                         ? text::count_text(scene.corrections.size(), "correction", "corrections") + ", " +
                               text::count_text(scene.losses.size(), "loss or note", "losses and notes")
                         : verdict_label(scene.result.code))
                 << '\n';
    if (listed) {
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

Json exported_json(const ExportedScene& scene) {
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

}  // namespace cli
