#pragma once

// A scene for which the bundle calls everything that an import can call, in a host with one fault.

#include <map>
#include <string>
#include <vector>

#include "embedded/host.h"
#include "support/scene_folder.h"
#include "support/tested_host.h"

inline constexpr std::uint8_t kAlphaPreferenceBefore = 2;

/// The result of one import.
struct ImportRun {
    embedded::CallbackResult entry;   ///< of the entry point
    embedded::CallbackResult import;  ///< not run if the entry point failed
    std::vector<std::string> messages;
    std::vector<std::string> load_calls;    ///< in the notation of call_notation.h
    std::vector<std::string> import_calls;  ///< in the same notation
    std::vector<std::string> log;  ///< of both, as the host wrote it; the bridge's own calls among them
    embedded::Project project;
    embedded::ConformanceReport conformance;
    std::map<std::string, std::int64_t> call_counts;
    int alpha_preference = -1;  ///< -1: absent

    /// The calls after the import's `nth` call of `function`. Throws if there is no such call.
    [[nodiscard]] std::vector<std::string> calls_after(const std::string& function, int nth) const;
    /// The calls before it, and the call itself without its result.
    [[nodiscard]] std::vector<std::string> calls_until(const std::string& function, int nth) const;
};

/// The function of a call in the notation: the text before the parenthesis.
std::string function_of(const std::string& call);

class FailingScene {
  public:
    FailingScene();

    /// Loads the bundle into a host with these options and imports the scene.
    [[nodiscard]] ImportRun run(embedded::HostOptions options = {}) const;

    /// The message about a host error, with the line where reading ended.
    [[nodiscard]] static std::string loading_message();

  private:
    SceneFolder folder_;
    std::string path_;
};
