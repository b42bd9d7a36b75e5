#include "cli/job/collect_run.h"

#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "cli/job/digest.h"
#include "cli/job/zip_file.h"
#include "cli/report/diagnostic_json.h"
#include "cli/terminal/output_file.h"
#include "embedded/json_values.h"
#include "limit/limits.h"
#include "system/file_identity.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "system/replacement_file.h"
#include "text/printable.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using embedded::Json;

constexpr int kCollectSchema = 1;
void fail(CollectRun& run, std::string problem, ExitCode code) {
    run.problems.push_back(std::move(problem));
    run.code = most_serious(run.code, code);
}

std::string sha256_of(std::string_view bytes) {
    Sha256 digest;
    digest.add(bytes);
    return digest.hexadecimal();
}

// A scene as it is in the collection.
struct MadeScene {
    ManifestEntry entry;
    std::string bytes;
};

// Scenes whose text cannot be made are left out and reported.
std::vector<MadeScene> make_scenes(const std::vector<RelinkedScene>& scenes, const CollectPlan& plan,
                                   CollectRun& run) {
    std::vector<MadeScene> made;
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        run.code = most_serious(run.code, scenes[i].code);
        if (plan.scenes[i].name.empty()) {
            continue;
        }
        std::string problem;
        std::optional<std::string> bytes =
            scene_with_paths(scenes[i].full_path, plan.scenes[i].changes, problem);
        if (!bytes) {
            fail(run, scenes[i].file + ": " + problem, ExitCode::cannot_read_or_write);
            continue;
        }
        ManifestEntry entry{plan.scenes[i].name, sha256_of(*bytes), bytes->size(), scenes[i].full_path,
                            Arrival::planned};
        made.push_back({std::move(entry), std::move(*bytes)});
    }
    return made;
}

// Whether the file at `path` has these bytes; an error is no equality.
bool holds(const std::string& path, const ManifestEntry& entry) {
    return os::file_state(path).size_bytes == entry.size_bytes && sha256_of_file(path) == entry.sha256;
}

// Finds what is there already, and what is in the way.
void compare_with_folder(std::vector<ManifestEntry>& entries, bool are_scenes, const std::string& folder,
                         CollectRun& run) {
    for (ManifestEntry& entry : entries) {
        const std::string path = joined_path(folder, entry.name);
        std::error_code none;
        if (!fs::exists(fs::symlink_status(os::native_path(path), none))) {
            continue;
        }
        if (!are_scenes) {
            const auto digest = os::file_state(path).size_bytes == entry.size_bytes
                                    ? sha256_of_file(entry.source)
                                    : std::nullopt;
            entry.sha256 = digest.value_or("");
        }
        if (!entry.sha256.empty() && holds(path, entry)) {
            entry.arrival = Arrival::there;
        } else {
            fail(run, path + " exists and is another file; it stays, and nothing is collected",
                 ExitCode::refused);
        }
    }
}

std::uint64_t free_bytes_at(const std::string& folder) {
    std::error_code failure;
    fs::path place = os::path_of(os::absolute_path(folder));
    while (!fs::exists(os::native_path(os::text_of(place)), failure) && place.has_relative_path()) {
        place = place.parent_path();
    }
    const fs::space_info space = fs::space(os::native_path(os::text_of(place)), failure);
    return failure ? UINT64_MAX : space.available;
}

// Copies the bytes and computes their digest. The copy gets the time of the source.
void copy_file(ManifestEntry& entry, const std::string& path) {
    const os::InputFile in = os::open_input_file(entry.source);
    if (in == nullptr) {
        throw std::runtime_error("cannot read " + entry.source);
    }
    std::string reason;
    auto replacement = os::ReplacementFile::create(path, reason);
    if (!replacement) {
        throw std::runtime_error("cannot write " + reason);
    }
    Sha256 digest;
    std::uint64_t size = 0;
    {
        const std::unique_ptr<std::FILE, os::CloseInputFile> out(
            os::open_file_to_write(replacement->temporary_path().c_str()));
        std::vector<char> block(std::size_t{1} << 18U);
        bool written = out != nullptr;
        while (const std::size_t count = written ? std::fread(block.data(), 1, block.size(), in.get()) : 0) {
            digest.add({block.data(), count});
            size += count;
            written = std::fwrite(block.data(), 1, count, out.get()) == count;
        }
        if (!written || std::fflush(out.get()) != 0) {
            throw std::runtime_error("cannot write " + path);
        }
        if (std::ferror(in.get()) != 0) {
            throw std::runtime_error("cannot read all of " + entry.source);
        }
    }
    std::error_code none;
    const auto changed = fs::last_write_time(os::native_path(entry.source), none);
    if (!none) {
        fs::last_write_time(os::native_path(replacement->temporary_path()), changed, none);
    }
    if (!replacement->put_in_place(reason)) {
        throw std::runtime_error("cannot write " + reason);
    }
    entry.sha256 = digest.hexadecimal();
    entry.size_bytes = size;
    entry.arrival = Arrival::copied;
}

bool clone_file(ManifestEntry& entry, const std::string& path) {
    std::string reason;
    auto replacement = os::ReplacementFile::create(path, reason);
    if (!replacement || os::clone_file(entry.source, replacement->temporary_path()) ||
        !replacement->put_in_place(reason)) {
        return false;
    }
    entry.arrival = Arrival::cloned;
    return true;
}

bool link_file(ManifestEntry& entry, const std::string& path) {
    std::error_code failure;
    // Of the file itself, not of a link to it.
    fs::create_hard_link(os::native_path(os::canonical_path(entry.source)), os::native_path(path), failure);
    if (failure) {
        return false;
    }
    entry.arrival = Arrival::linked;
    return true;
}

void bring(ManifestEntry& entry, const std::string& folder, Transfer transfer) {
    const std::string path = joined_path(folder, entry.name);
    const bool shared = (transfer == Transfer::hard_link && link_file(entry, path)) ||
                        (transfer == Transfer::reflink && clone_file(entry, path));
    if (!shared) {
        copy_file(entry, path);
        return;
    }
    const auto digest = sha256_of_file(path);
    if (!digest) {
        throw std::runtime_error("cannot read " + entry.source);
    }
    entry.sha256 = *digest;
}

std::vector<ManifestEntry> picture_entries(const CollectPlan& plan) {
    std::vector<ManifestEntry> entries;
    for (const CollectedFile& file : plan.files) {
        entries.push_back({file.name, {}, file.size_bytes, file.source, Arrival::planned});
    }
    return entries;
}

std::uint64_t bytes_to_bring(const std::vector<ManifestEntry>& entries) {
    std::uint64_t bytes = 0;
    for (const ManifestEntry& entry : entries) {
        if (entry.arrival == Arrival::planned) {
            bytes += std::min(entry.size_bytes, UINT64_MAX - bytes);
        }
    }
    return bytes;
}

void write_text(const std::string& path, const std::string& text) {
    OutputFile file(path);
    file.write(text);
    file.close();
}

// Scenes last: where a scene is, its pictures are.
void bring_all(std::vector<ManifestEntry>& pictures, std::vector<MadeScene>& scenes,
               const std::string& folder, Transfer transfer, Terminal& terminal) {
    fs::create_directories(os::native_path(folder));
    Progress progress(terminal, pictures.size());
    for (ManifestEntry& entry : pictures) {
        progress.step(text::printable(entry.name));
        if (entry.arrival == Arrival::planned) {
            bring(entry, folder, transfer);
        }
    }
    for (MadeScene& scene : scenes) {
        if (scene.entry.arrival == Arrival::planned) {
            write_text(joined_path(folder, scene.entry.name), scene.bytes);
            scene.entry.arrival = Arrival::copied;
        }
    }
}

void keep_entries(CollectRun& run, std::vector<ManifestEntry> pictures,
                  const std::vector<MadeScene>& scenes) {
    for (const MadeScene& scene : scenes) {
        run.entries.push_back(scene.entry);
    }
    run.entries.insert(run.entries.end(), std::make_move_iterator(pictures.begin()),
                       std::make_move_iterator(pictures.end()));
}

}  // namespace

std::string space_problem(std::uint64_t needed_bytes, std::uint64_t free_bytes) {
    if (needed_bytes <= free_bytes) {
        return {};
    }
    constexpr auto text = [](std::uint64_t bytes) {
        return grouped(static_cast<std::int64_t>(std::min<std::uint64_t>(bytes, INT64_MAX)));
    };
    return "there is too little space: " + text(needed_bytes) + " bytes are needed, and " + text(free_bytes) +
           " are free";
}

CollectRun planned_collection(const std::vector<RelinkedScene>& scenes, const CollectPlan& plan) {
    CollectRun run;
    std::vector<MadeScene> made = make_scenes(scenes, plan, run);
    keep_entries(run, picture_entries(plan), made);
    return run;
}

CollectRun collect_into_folder(const std::vector<RelinkedScene>& scenes, const CollectPlan& plan,
                               const std::string& folder, Transfer transfer, Terminal& terminal) {
    CollectRun run;
    std::vector<MadeScene> made = make_scenes(scenes, plan, run);
    std::vector<ManifestEntry> pictures = picture_entries(plan);
    std::size_t problems = run.problems.size();
    compare_with_folder(pictures, false, folder, run);
    for (MadeScene& scene : made) {
        std::vector<ManifestEntry> one{scene.entry};
        compare_with_folder(one, true, folder, run);
        scene.entry = one.front();
    }
    const os::FileKind kind = os::file_state(folder).kind;
    if (kind != os::FileKind::missing && kind != os::FileKind::folder) {
        fail(run, folder + " is not a folder; nothing is collected", ExitCode::refused);
    }
    const std::string manifest = joined_path(folder, kManifestName);
    const Json earlier = files_of_manifest(manifest);
    if (earlier.is_null() && os::file_state(manifest).kind != os::FileKind::missing) {
        fail(run,
             manifest + " exists and is not from an earlier collection; it stays, and nothing is collected",
             ExitCode::refused);
    }
    if (run.problems.size() == problems && transfer != Transfer::hard_link) {
        if (std::string problem = space_problem(bytes_to_bring(pictures), free_bytes_at(folder));
            !problem.empty()) {
            fail(run, folder + ": " + problem, ExitCode::cannot_read_or_write);
        }
    }
    if (run.problems.size() == problems) {
        try {
            bring_all(pictures, made, folder, transfer, terminal);
            keep_entries(run, pictures, made);
            write_text(manifest, manifest_text(run.entries, earlier, folder));
            return run;
        } catch (const std::runtime_error& error) {
            run.entries.clear();
            fail(run, std::string(error.what()) + "; the same command goes on where this one ended",
                 ExitCode::cannot_read_or_write);
        }
    }
    keep_entries(run, std::move(pictures), made);
    return run;
}

CollectRun collect_into_zip(const std::vector<RelinkedScene>& scenes, const CollectPlan& plan,
                            const std::string& path) {
    CollectRun run;
    std::vector<MadeScene> made = make_scenes(scenes, plan, run);
    std::vector<ManifestEntry> pictures = picture_entries(plan);
    try {
        if (os::file_state(path).kind != os::FileKind::missing) {
            fail(run, path + " exists; an archive is only written anew", ExitCode::refused);
        } else if (const std::string problem = space_problem(
                       bytes_to_bring(pictures),
                       free_bytes_at(os::text_of(os::path_of(os::absolute_path(path)).parent_path())));
                   !problem.empty()) {
            fail(run, path + ": " + problem, ExitCode::cannot_read_or_write);
        } else {
            std::string reason;
            auto replacement = os::ReplacementFile::create(path, reason);
            if (!replacement) {
                throw std::runtime_error("cannot write " + reason);
            }
            ZipFile archive(replacement->temporary_path());
            for (ManifestEntry& entry : pictures) {
                const auto digest = sha256_of_file(entry.source);
                if (!digest) {
                    throw std::runtime_error("cannot read " + entry.source);
                }
                entry.sha256 = *digest;
                entry.arrival = Arrival::copied;
                archive.add_file(entry.name, entry.source);
            }
            for (MadeScene& scene : made) {
                archive.add_bytes(scene.entry.name, scene.bytes);
                scene.entry.arrival = Arrival::copied;
            }
            keep_entries(run, pictures, made);
            archive.add_bytes(kManifestName, manifest_text(run.entries, Json::array(), {}));
            archive.close();
            if (!replacement->put_in_place(reason)) {
                throw std::runtime_error("cannot write " + reason);
            }
            return run;
        }
    } catch (const std::runtime_error& error) {
        fail(run, path + ": " + error.what(), ExitCode::cannot_read_or_write);
        for (ManifestEntry& entry : pictures) {
            entry.arrival = Arrival::planned;
        }
        for (MadeScene& scene : made) {
            scene.entry.arrival = Arrival::planned;
        }
        run.entries.clear();
    }
    keep_entries(run, std::move(pictures), made);
    return run;
}

nlohmann::ordered_json collect_document(const std::vector<RelinkedScene>& scenes, const CollectPlan& plan,
                                        const CollectRun& run, const std::string& output, bool dry_run) {
    Json list = Json::array();
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        Json missing = Json::array();
        for (const SoughtFootage& footage : scenes[i].footage) {
            if (!footage.finding.is_found()) {
                missing.push_back(embedded::json_text(footage.written));
            }
        }
        const std::string& name = plan.scenes[i].name;
        list.push_back({{"scene", embedded::json_text(scenes[i].file)},
                        {"exit_code", static_cast<int>(scenes[i].code)},
                        {"path", name.empty() ? Json() : Json(name)},
                        {"missing", missing},
                        {"problems", texts_json(scenes[i].problems)},
                        {"diagnostics", diagnostics_json(scenes[i].diagnostics)}});
    }
    Json files = Json::array();
    for (const ManifestEntry& entry : run.entries) {
        Json file = manifest_entry_json(entry);
        file["arrival"] = label(entry.arrival);
        files.push_back(file);
    }
    return Json{{"schema", kCollectSchema},
                {"exit_code", static_cast<int>(run.code)},
                {"dry_run", dry_run},
                {"output", embedded::json_text(output)},
                {"scenes", list},
                {"files", files},
                {"problems", texts_json(run.problems)}};
}

}  // namespace cli
