#include "cli/page/page_scene.h"

#include <utility>

#include "cli/handover/handover_run.h"

namespace cli {

PageScene page_scene(const SceneReading& reading, ExitCode code, std::vector<Diagnostic> diagnostics,
                     const FoundBundle& bundle, std::size_t most_pictures, std::size_t threads) {
    PageScene scene;
    scene.file = reading.file;
    scene.code = code;
    scene.diagnostics = std::move(diagnostics);
    if (reading.error) {
        return scene;
    }
    HandedOver imported = hand_over(reading, bundle, handover::Version::imported, {});
    scene.problems = std::move(imported.problems);
    if (!imported.handover) {
        // The check has found nothing that stops an import, so this is news.
        scene.code = most_serious(scene.code, imported.code);
        scene.diagnostics.insert(scene.diagnostics.begin(), imported.diagnostics.begin(),
                                 imported.diagnostics.end());
        return scene;
    }
    scene.imported = std::move(imported.handover);
    HandedOver corrected = hand_over(reading, bundle, handover::Version::corrected, {});
    if (corrected.handover) {
        scene.corrections = std::move(corrected.handover->corrections);
        scene.losses = std::move(corrected.handover->losses);
    }
    scene.proof = prove(reading, bundle, {});
    scene.pictures = page_pictures(reading, bundle, most_pictures, threads);
    return scene;
}

}  // namespace cli
