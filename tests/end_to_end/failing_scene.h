#pragma once

// One scene that makes the bundle call everything that an import can call, in a host in which one thing goes
// wrong.

#include <map>
#include <string>
#include <vector>

#include "embedded/host.h"
#include "support/scene_folder.h"
#include "support/tested_host.h"

inline constexpr std::uint8_t kAlphaPreferenceBefore = 2;

/// What became of one import.
struct ImportRun {
    embedded::CallbackResult entry;   ///< of the entry point
    embedded::CallbackResult import;  ///< not run when the entry point failed
    std::vector<std::string> messages;
    std::vector<std::string> load_calls;    ///< in the notation of call_notation.h
    std::vector<std::string> import_calls;  ///< likewise
    embedded::Project project;
    embedded::ConformanceReport conformance;
    std::map<std::string, std::int64_t> call_counts;
    int alpha_preference = -1;  ///< -1: absent

    /// What is after the import's `nth` call of `function`; throws when there is none.
    [[nodiscard]] std::vector<std::string> calls_after(const std::string& function, int nth) const;
    /// What is before it, and the call itself without its result.
    [[nodiscard]] std::vector<std::string> calls_until(const std::string& function, int nth) const;
};

/// The function of a call in the notation: what stands before its parenthesis.
std::string function_of(const std::string& call);

class FailingScene {
  public:
    FailingScene();

    /// Loads the bundle into a host of these options and imports the scene.
    [[nodiscard]] ImportRun run(embedded::HostOptions options = {}) const;

    /// What the user reads about a host error, the line being that where reading ended.
    [[nodiscard]] static std::string loading_message();

  private:
    SceneFolder folder_;
    std::string path_;
};
