#include "end_to_end/failing_scene.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "end_to_end/call_notation.h"
#include "support/loaded_bundle.h"

namespace {

// Three levels of compositions with existing and missing footage, both also outside of compositions, and one
// object of each kind. The pixels are not square, so that Camera+Light is created.
constexpr std::string_view kScene = R"(VORTAN XR COMPOSITION
RESOLUTION 64 48
FROM 1
TO 2
RANGE 2
FPS 25
ASPECT 1.0667
COMPOSITION NRM "Outer" {
  FILE NRM STRAIGHT "C:\plate.tga"
  COMPOSITION NRM "Middle" {
    COMPOSITION NRM "Inner" {
      FILE NRM STRAIGHT "C:\inner.tga"
      FILE NRM STRAIGHT "C:\missing.tga"
    }
  }
  FSEQ ADD PREMUL "C:\missing0001.tga"
}
FILE <-> STRAIGHT "C:\card.tga"
FILE <-> STRAIGHT "C:\missing_card.tga"
NULL "Null" {
  KEY 1 0 0 0 0 0 0
}
LIGHT "Light" {
  TYPE SPOT
  KEY 1 0 0 0 0 0 0
}
CAMERA "Camera" {
  KEY 1 0 0 0 0 0 0 45
  KEY 2 1 0 0 0 0 0 45
}
)";

std::vector<std::string>::const_iterator find_call(const std::vector<std::string>& calls,
                                                   const std::string& function, int nth) {
    int count = 0;
    const auto found = std::find_if(calls.begin(), calls.end(), [&](const std::string& call) {
        return function_of(call) == function && ++count == nth;
    });
    if (found == calls.end()) {
        throw std::runtime_error("no call " + std::to_string(nth) + " of " + function);
    }
    return found;
}

}  // namespace

std::string function_of(const std::string& call) {
    return call.substr(0, call.find('('));
}

std::vector<std::string> ImportRun::calls_after(const std::string& function, int nth) const {
    return {find_call(import_calls, function, nth) + 1, import_calls.end()};
}

std::vector<std::string> ImportRun::calls_until(const std::string& function, int nth) const {
    std::vector<std::string> calls(import_calls.begin(), find_call(import_calls, function, nth) + 1);
    calls.back().resize(calls.back().rfind(')') + 1);
    return calls;
}

FailingScene::FailingScene() : path_(folder_.scene(kScene)) {
    for (const char* name : {"plate.tga", "inner.tga", "card.tga"}) {
        folder_.image(name);
    }
}

ImportRun FailingScene::run(embedded::HostOptions options) const {
    options.alpha_preference = kAlphaPreferenceBefore;
    LoadedBundle bundle(std::move(options));
    if (!bundle.loaded().ok() && bundle.loaded().entry.code == 0) {
        throw std::runtime_error(bundle.loaded().error);
    }
    const std::string folder = folder_.files().folder().string();
    ImportRun run;
    run.entry = bundle.loaded().entry;
    run.log = bundle.take_calls();
    run.load_calls = calls_in_notation(run.log, folder);
    if (run.entry.code == 0) {
        run.import = bundle.host().import_file(path_);
        const std::vector<std::string> import_log = bundle.take_calls();
        run.import_calls = calls_in_notation(import_log, folder);
        run.log.insert(run.log.end(), import_log.begin(), import_log.end());
    }
    run.messages = bundle.message_texts();
    run.project = bundle.host().project();
    run.conformance = bundle.host().conformance();
    run.call_counts = bundle.host().call_counts();
    const auto preference =
        run.project.preferences.find({"Main Pref Section", "Pref_DEFAULT_UNLABELED_ALPHA"});
    if (preference != run.project.preferences.end()) {
        run.alpha_preference = preference->second.at(0);
    }
    return run;
}

std::string FailingScene::loading_message() {
    // Lines count from 1, and the read that finds the end of the file counts the last line end again.
    const auto line = 1 + std::count(kScene.begin(), kScene.end(), '\n') + 1;
    return "There was an error loading the file in line " + std::to_string(line) + ".";
}
