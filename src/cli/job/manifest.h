#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

// manifest.json, the list of what is in a collection. docs/command-line.md describes it.

namespace cli {

inline constexpr const char* kManifestName = "manifest.json";

/// How a file of the collection came to be there.
enum class Arrival {
    planned,  ///< not yet
    copied,
    linked,
    cloned,
    there,  ///< it was there already, with the same bytes
};

/// "planned", "copied", ...
[[nodiscard]] const char* label(Arrival arrival);

/// A file as the manifest lists it.
struct ManifestEntry {
    std::string name;
    std::string sha256;  ///< empty before it is known
    std::uint64_t size_bytes = 0;
    std::string source;
    Arrival arrival = Arrival::planned;
};

/// {"path","sha256","bytes","source"}
[[nodiscard]] nlohmann::ordered_json manifest_entry_json(const ManifestEntry& entry);

/// The files that the manifest at `path` lists; null if there is no manifest of an earlier collection.
[[nodiscard]] nlohmann::ordered_json files_of_manifest(const std::string& path);

/// The text of the manifest of `folder`: `entries`, and of the `earlier` files those that are still there.
[[nodiscard]] std::string manifest_text(const std::vector<ManifestEntry>& entries,
                                        const nlohmann::ordered_json& earlier, const std::string& folder);

}  // namespace cli
