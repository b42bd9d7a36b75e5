#include "cli/handover/script_package.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "cli/handover/proof_run.h"
#include "cli/job/zip_file.h"
#include "cli/report/diagnostic_text.h"
#include "cli/report/json_text.h"
#include "cli/scene/scene_check.h"
#include "handover/jsx/jsx_script.h"
#include "system/file_identity.h"
#include "system/files.h"
#include "system/replacement_file.h"
#include "text/ascii.h"

namespace cli {
namespace {

std::string footage_folder(const std::string& path) {
    return os::text_of(os::path_of(path).parent_path());
}

std::string last_name(const std::string& path) {
    return os::text_of(os::path_of(path).filename());
}

// Whether the file is one of the numbered ones that the footage uses.
bool is_used(const handover::NumberedFiles& files, const std::string& name) {
    const std::size_t around = files.prefix.size() + files.suffix.size();
    constexpr std::size_t kMostDigits = 18;  // of a number in 64 bits
    if (name.size() <= around || name.size() > around + kMostDigits) {
        return false;
    }
    std::int64_t number = 0;
    for (const char c : name.substr(files.prefix.size(), name.size() - around)) {
        if (c < '0' || c > '9') {
            return false;
        }
        number = number * 10 + (c - '0');
    }
    return number >= files.first && number <= files.last && name == handover::file_name(files, number);
}

// The files of the footage that exist, by their names. The folder is listed, because numbers may lie far
// apart.
std::vector<std::string> present_names(const handover::Footage& footage) {
    std::vector<std::string> names;
    if (footage.kind != handover::FootageKind::sequence || !footage.files) {
        names.push_back(last_name(footage.path));
        return names;
    }
    for (const os::FolderEntry& entry : os::entries_in(footage_folder(footage.path))) {
        if (entry.kind == os::FileKind::regular && is_used(*footage.files, entry.name)) {
            names.push_back(entry.name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string file_in(const std::string& folder, const std::string& name) {
    return os::text_of(os::path_of(folder) / os::path_of(name));
}

// The names in the package, which differ also where letter case does not count, and the files that have been
// added.
class PackedNames {
  public:
    // Where the files of one folder go: beside the script, or into a numbered folder if one of their names is
    // taken by another file.
    std::string place(const std::string& source_folder, const std::vector<std::string>& names) {
        for (int number = 1;; ++number) {
            std::string place = number == 1 ? "" : std::to_string(number) + "/";
            bool free = true;
            for (const std::string& name : names) {
                const auto taken = sources_.find(text::lower_case(file_in(place, name)));
                free = free && (taken == sources_.end() || taken->second == file_in(source_folder, name));
            }
            if (free) {
                return place;
            }
        }
    }

    // Whether the file is new there.
    bool take(const std::string& name, const std::string& source) {
        return sources_.emplace(text::lower_case(name), source).second;
    }

  private:
    std::map<std::string, std::string> sources_;
};

// The files that go into the package, as they were before they are copied.
class SourceFiles {
  public:
    void add(const std::string& path, const os::FileVersion& version) { versions_.emplace(path, version); }
    void add(const std::string& path) { add(path, os::version_of(path)); }

    // Throws when one of them has changed since: script, scene and footage would not belong together.
    void require_unchanged() const {
        for (const auto& [path, version] : versions_) {
            if (os::version_of(path) != version) {
                throw std::runtime_error(path +
                                         " was changed while the package was made; export again when nothing "
                                         "writes to it");
            }
        }
    }

  private:
    std::map<std::string, os::FileVersion> versions_;
};

void add_footage(ZipFile& archive, const std::string& top, PackedNames& names, SourceFiles& sources,
                 handover::Handover& handover) {
    for (handover::Footage& footage : handover.footage) {
        if (footage.kind == handover::FootageKind::placeholder) {
            continue;
        }
        const std::string folder = footage_folder(footage.path);
        const std::vector<std::string> files = present_names(footage);
        const std::string place = names.place(folder, files);
        for (const std::string& name : files) {
            const std::string source = file_in(folder, name);
            std::string packed = place;
            packed += name;
            if (names.take(packed, source)) {
                sources.add(source);
                archive.add_file(packed.insert(0, top), source);
            }
        }
        footage.path = place + last_name(footage.path);
    }
}

std::string check_report(const SceneReading& reading) {
    std::string report;
    for (const Diagnostic& warning : scene_warnings(reading)) {
        report += diagnostic_text(warning, Paint(false));
    }
    return report.empty() ? "vxr check finds nothing to say about this scene.\n" : report;
}

}  // namespace

void write_script_package(const SceneReading& reading, const handover::Handover& handover,
                          const FoundBundle& bundle, const HandoverFormatOptions& options,
                          const std::string& path) {
    if (os::file_state(path).kind != os::FileKind::missing) {
        throw std::runtime_error(path + " exists; a package is only written anew");
    }
    std::string reason;
    auto replacement = os::ReplacementFile::create(path, reason);
    if (!replacement) {
        throw std::runtime_error("cannot write " + reason);
    }
    const std::string scene_name = last_name(reading.file);
    const std::string stem = os::text_of(os::path_of(scene_name).stem());
    const std::string top = stem + "/";
    PackedNames names;
    for (const std::string& own :
         {scene_name, stem + ".jsx", std::string("check.txt"), std::string("proof.json")}) {
        names.take(own, "");
    }
    ZipFile archive(replacement->temporary_path());
    handover::Handover packed = handover;
    packed.shot.file = scene_name;
    SourceFiles sources;
    sources.add(reading.full_path, reading.version);
    add_footage(archive, top, names, sources, packed);

    handover::JsxOptions script_options;
    script_options.undo_safe = options.undo_safe;
    std::string script;
    handover::write_jsx(packed, script_options, [&](std::string_view piece) { script += piece; });
    archive.add_bytes(top + stem + ".jsx", script);
    archive.add_file(top + scene_name, reading.full_path);
    archive.add_bytes(top + "check.txt", check_report(reading));
    proof::ProofOptions proof_options;
    proof_options.cut_angle_degrees = options.cut_angle_degrees;
    archive.add_bytes(top + "proof.json",
                      json_text_of(proof_document(prove(reading, bundle, proof_options))));
    archive.close();
    sources.require_unchanged();
    if (!replacement->put_in_place(reason)) {
        throw std::runtime_error("cannot write " + reason);
    }
}

}  // namespace cli
