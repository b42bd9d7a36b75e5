#include "cli/job/collect_plan.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <tuple>
#include <utility>

#include "cli/job/manifest.h"
#include "embedded/sequence.h"
#include "system/file_identity.h"
#include "system/files.h"
#include "text/unicode_forms.h"
#include "text/utf8.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

// A picture or a sequence with everything of it that is wanted.
struct Unit {
    bool is_sequence = false;
    std::string folder;
    std::set<std::string> names;                 // of its files
    std::map<std::string, std::string> renamed;  // to their names in the collection
};

// A footage entry of a scene, and what it means.
struct Use {
    std::size_t scene = 0;
    std::size_t footage = 0;
    std::size_t unit = 0;
    std::string name;  // of the file of the unit that the entry names
};

// The names that are taken in the collection; letter case does not tell them apart.
class TakenNames {
  public:
    void reserve(const std::string& name) { sources_.try_emplace(text::case_folded(name)); }

    // Whether the unit can have these names: none is taken by another file, and no sequence swallows another
    // file.
    [[nodiscard]] bool are_free(const Unit& unit, const std::map<std::string, std::string>& renamed) const {
        for (const auto& [name, new_name] : renamed) {
            const std::string source = joined_path(unit.folder, name);
            const auto taken = sources_.find(text::case_folded(new_name));
            if (taken != sources_.end() && taken->second != source) {
                return false;
            }
        }
        // All names of a sequence have one pattern.
        const auto pattern = patterns_.find(pattern_of(renamed.begin()->second));
        return pattern == patterns_.end() || !(unit.is_sequence || pattern->second.has_sequence) ||
               is_within(unit, pattern->second.sources) || is_around(unit, pattern->second.sources);
    }

    void take(const Unit& unit) {
        for (const auto& [name, new_name] : unit.renamed) {
            const std::string source = joined_path(unit.folder, name);
            sources_[text::case_folded(new_name)] = source;
            Pattern& pattern = patterns_[pattern_of(new_name)];
            pattern.sources.insert(source);
            pattern.has_sequence = pattern.has_sequence || unit.is_sequence;
        }
    }

  private:
    struct Pattern {
        std::set<std::string> sources;
        bool has_sequence = false;
    };

    // The same for all names that may be one sequence; of a name without number the name.
    static std::string pattern_of(const std::string& name) {
        const std::string folded = text::case_folded(name);
        const auto split = embedded::split_number(folded);
        return split ? split->prefix + '\0' + split->suffix : folded;
    }

    static bool is_within(const Unit& unit, const std::set<std::string>& sources) {
        return std::all_of(unit.names.begin(), unit.names.end(), [&](const std::string& name) {
            return sources.count(joined_path(unit.folder, name)) != 0;
        });
    }

    static bool is_around(const Unit& unit, const std::set<std::string>& sources) {
        return unit.is_sequence &&
               std::all_of(sources.begin(), sources.end(), [&](const std::string& source) {
                   const fs::path path = os::path_of(source);
                   return os::text_of(path.parent_path()) == unit.folder &&
                          unit.names.count(os::text_of(path.filename())) != 0;
               });
    }

    std::map<std::string, std::string> sources_;  // by folded names; empty for a reserved one
    std::map<std::string, Pattern> patterns_;
};

// "plate.0001.tif" as "plate-2.0001.tif", "plate.tif" as "plate-2.tif".
std::string numbered_copy(const std::string& name, int copy) {
    if (copy == 1) {
        return name;
    }
    const std::string mark = "-" + std::to_string(copy);
    if (const auto split = embedded::split_number(name)) {
        const std::size_t end = split->prefix.find_last_not_of("._- ");
        const std::size_t kept = end == std::string::npos ? 0 : end + 1;
        const std::string between = split->prefix.substr(kept);
        return split->prefix.substr(0, kept) + mark + (between.empty() ? "-" : between) + split->digits +
               split->suffix;
    }
    const std::size_t dot = name.rfind('.');
    const std::size_t stem = dot == std::string::npos || dot == 0 ? name.size() : dot;
    return name.substr(0, stem) + mark + name.substr(stem);
}

void choose_names(Unit& unit, TakenNames& taken) {
    constexpr int kMostCopies = 1000000;
    for (int copy = 1; copy < kMostCopies; ++copy) {
        std::map<std::string, std::string> renamed;
        for (const std::string& name : unit.names) {
            renamed[name] = numbered_copy(portable_name(name), copy);
        }
        if (taken.are_free(unit, renamed)) {
            unit.renamed = std::move(renamed);
            break;
        }
    }
    taken.take(unit);
}

std::string choose_scene_name(const std::string& path, TakenNames& taken,
                              std::set<std::string>& scene_names) {
    const std::string name = portable_name(os::text_of(os::path_of(path).filename()));
    for (int copy = 1;; ++copy) {
        const std::size_t dot = std::min(name.rfind('.'), name.size());
        std::string tried =
            copy == 1 ? name : name.substr(0, dot) + "-" + std::to_string(copy) + name.substr(dot);
        if (scene_names.insert(text::case_folded(tried)).second) {
            taken.reserve(tried);
            return tried;
        }
    }
}

class Planner {
  public:
    Planner(const std::vector<RelinkedScene>& scenes, FootageFinder& finder, bool trim)
        : scenes_(scenes), finder_(finder), trim_(trim) {}

    CollectPlan plan() {
        reserve_names();
        for (std::size_t scene = 0; scene < scenes_.size(); ++scene) {
            for (std::size_t footage = 0; footage < scenes_[scene].footage.size(); ++footage) {
                add_use(scene, footage);
            }
        }
        for (Unit& unit : units_) {
            choose_names(unit, taken_);
        }
        for (const Use& use : uses_) {
            const SoughtFootage& footage = scenes_[use.scene].footage[use.footage];
            plan_.scenes[use.scene].changes.push_back(
                {footage.at, footage.written, units_[use.unit].renamed.at(use.name)});
        }
        list_files();
        return std::move(plan_);
    }

  private:
    // Names that no picture may have: those of the scenes and of the list, and the last names of what is
    // missing, in whose place the importer would otherwise find another picture.
    void reserve_names() {
        taken_.reserve(kManifestName);
        std::set<std::string> scene_names{text::case_folded(kManifestName)};
        for (const RelinkedScene& scene : scenes_) {
            plan_.scenes.push_back({scene.diagnostics.empty()
                                        ? choose_scene_name(scene.full_path, taken_, scene_names)
                                        : std::string(),
                                    {}});
            for (const SoughtFootage& footage : scene.footage) {
                if (!footage.finding.is_found()) {
                    taken_.reserve(std::string(last_name(footage.written)));
                }
            }
        }
    }

    void add_use(std::size_t scene, std::size_t footage) {
        const SoughtFootage& sought = scenes_[scene].footage[footage];
        if (!sought.finding.is_found()) {
            return;
        }
        // A file that is reached in two ways is one file.
        const std::string folder =
            os::canonical_path(os::text_of(os::path_of(sought.finding.path).parent_path()));
        std::string name = os::text_of(os::path_of(sought.finding.path).filename());
        std::vector<SequenceFile> frames{{name, 0}};
        if (sought.is_sequence) {
            frames = sequence_files(finder_.sequences(), joined_path(folder, name));
        }
        if (frames.empty()) {
            frames = {{name, 0}};
        }
        // All uses of a sequence are one unit, whichever of its frames they name.
        const auto key = std::tuple(sought.is_sequence, folder, frames.front().name);
        const auto [place, is_new] = unit_of_.try_emplace(key, units_.size());
        if (is_new) {
            units_.push_back({sought.is_sequence, folder, {}, {}});
        }
        Unit& unit = units_[place->second];
        const std::int64_t end = frames.front().number + scenes_[scene].shown_frames;
        bool named_frame_stays = false;
        for (const SequenceFile& frame : frames) {
            if (!trim_ || sought.top_level || frame.number < end) {
                unit.names.insert(frame.name);
                named_frame_stays = named_frame_stays || frame.name == name;
            }
        }
        uses_.push_back({scene, footage, place->second, named_frame_stays ? name : frames.front().name});
    }

    void list_files() {
        std::map<std::string, CollectedFile> files;
        for (const Unit& unit : units_) {
            for (const auto& [name, new_name] : unit.renamed) {
                const std::string source = joined_path(unit.folder, name);
                files[new_name] = {new_name, source, os::file_state(source).size_bytes};
            }
        }
        for (auto& [name, file] : files) {
            plan_.files.push_back(std::move(file));
        }
    }

    const std::vector<RelinkedScene>& scenes_;
    FootageFinder& finder_;
    bool trim_;
    CollectPlan plan_;
    TakenNames taken_;
    std::vector<Unit> units_;
    std::map<std::tuple<bool, std::string, std::string>, std::size_t> unit_of_;
    std::vector<Use> uses_;
};

}  // namespace

CollectPlan plan_collection(const std::vector<RelinkedScene>& scenes, FootageFinder& finder, bool trim) {
    return Planner(scenes, finder, trim).plan();
}

std::string portable_name(std::string_view name) {
    constexpr std::string_view kNowhereAllowed = "<>:\"/\\|?*";
    std::string portable;
    for (std::string_view rest = name; !rest.empty();) {
        const text::Utf8Character character = text::first_character(rest);
        const std::size_t size = std::max<std::size_t>(character.size_bytes, 1);
        const bool allowed = character.size_bytes > 0 && character.code_point >= 0x20 &&
                             character.code_point != 0x7F &&
                             kNowhereAllowed.find(rest.front()) == std::string_view::npos;
        portable += allowed ? rest.substr(0, size) : "_";
        rest.remove_prefix(size);
    }
    if (!portable.empty() && (portable.back() == '.' || portable.back() == ' ')) {
        portable.back() = '_';
    }
    return text::composed(portable);
}

}  // namespace cli
