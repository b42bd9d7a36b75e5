#include "cli/page/page_scene.h"

#include <algorithm>
#include <utility>

#include "cli/handover/handover_format.h"
#include "cli/handover/handover_run.h"

namespace cli {

std::int64_t PageScene::count_of(Severity severity) const {
    std::int64_t count = 0;
    for (const Diagnostic& one : diagnostics) {
        count += one.severity() == severity ? one.count : 0;
    }
    return count;
}

std::int64_t PageScene::missing_footage() const {
    return std::count_if(diagnostics.begin(), diagnostics.end(),
                         [](const Diagnostic& one) { return one.missing_footage.has_value(); });
}

PageScene page_scene(const SceneReading& reading, ExitCode code, std::vector<Diagnostic> diagnostics,
                     const FoundBundle& bundle, std::size_t most_pictures, std::size_t threads) {
    PageScene scene;
    scene.file = reading.file;
    scene.code = code;
    scene.diagnostics = std::move(diagnostics);
    if (reading.error) {
        return scene;
    }
    HandedOverBoth versions = hand_over_both(reading, bundle, {});
    scene.problems = versions.problems;
    if (!versions.imported) {
        // The check has found nothing that stops an import, so this is news.
        scene.code = most_serious(scene.code, versions.code);
        scene.diagnostics.insert(scene.diagnostics.begin(), versions.diagnostics.begin(),
                                 versions.diagnostics.end());
        return scene;
    }
    scene.proof = prove(reading, versions, {});
    scene.imported = std::move(versions.imported);
    if (versions.corrected) {
        scene.losses = losses_of_all(*versions.corrected, {});
        scene.corrections = std::move(versions.corrected->corrections);
    }
    scene.pictures = page_pictures(reading, bundle, most_pictures, threads);
    return scene;
}

}  // namespace cli
