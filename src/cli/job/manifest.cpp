#include "cli/job/manifest.h"

#include <map>
#include <nlohmann/json.hpp>

#include "cli/footage/stored_path.h"
#include "embedded/json_values.h"
#include "system/file_content.h"
#include "system/files.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kManifestSchema = 1;
constexpr const char* kGenerator = "vxr collect";
constexpr std::uint64_t kMostManifestBytes = std::uint64_t{1} << 30U;

}  // namespace

const char* label(Arrival arrival) {
    switch (arrival) {
        case Arrival::planned:
            return "planned";
        case Arrival::copied:
            return "copied";
        case Arrival::linked:
            return "linked";
        case Arrival::cloned:
            return "cloned";
        case Arrival::there:
            break;
    }
    return "there";
}

nlohmann::ordered_json manifest_entry_json(const ManifestEntry& entry) {
    return Json{{"path", embedded::json_text(entry.name)},
                {"sha256", entry.sha256.empty() ? Json() : Json(entry.sha256)},
                {"bytes", entry.size_bytes},
                {"source", embedded::json_text(entry.source)}};
}

nlohmann::ordered_json files_of_manifest(const std::string& path) {
    const auto text = os::content_of(path, kMostManifestBytes);
    const Json manifest = Json::parse(text.value_or(""), nullptr, false);
    const bool ours = manifest.is_object() && manifest.value("generator", Json()) == kGenerator &&
                      manifest.value("schema", Json()) == kManifestSchema && manifest.contains("files") &&
                      manifest["files"].is_array();
    return ours ? manifest["files"] : Json();
}

std::string manifest_text(const std::vector<ManifestEntry>& entries, const nlohmann::ordered_json& earlier,
                          const std::string& folder) {
    std::map<std::string, Json> files;
    for (const Json& one : earlier) {
        const Json path = one.is_object() ? one.value("path", Json()) : Json();
        if (path.is_string() &&
            os::file_state(joined_path(folder, path.get<std::string>())).kind == os::FileKind::regular) {
            files[path.get<std::string>()] = one;
        }
    }
    for (const ManifestEntry& entry : entries) {
        files[entry.name] = manifest_entry_json(entry);
    }
    Json list = Json::array();
    for (const auto& [path, file] : files) {
        list.push_back(file);
    }
    return Json{{"schema", kManifestSchema}, {"generator", kGenerator}, {"files", list}}.dump(2) + '\n';
}

}  // namespace cli
