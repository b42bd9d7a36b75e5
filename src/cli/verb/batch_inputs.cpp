#include "cli/verb/batch_inputs.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <utility>

#include "cli/command.h"
#include "cli/terminal/file_roles.h"
#include "cli/verb/check_inputs.h"
#include "system/files.h"
#include "text/printable.h"
#include "text/utf8.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

struct FoundInput {
    std::string path;
    std::string below;  ///< the folder that was named; empty if the file was
};

/// `name` as an absolute path; empty if it is.
std::string placed(const std::string& base, const std::string& name) {
    return name.empty() ? name : os::text_of((os::path_of(base) / os::path_of(name)).lexically_normal());
}

bool is_pattern(const std::string& path) {
    return os::text_of(os::path_of(path).filename()).find_first_of("*?") != std::string::npos &&
           os::file_state(path).kind == os::FileKind::missing;
}

[[noreturn]] void refuse_nothing_found(const std::string& path) {
    throw std::runtime_error("there is no file for " + text::quoted(path));
}

void add_matching(const std::string& path, bool recursive, std::vector<FoundInput>& found) {
    const fs::path whole = os::path_of(path);
    const std::string folder = os::text_of(whole.parent_path());
    const std::string pattern = os::text_of(whole.filename());
    const std::size_t before = found.size();
    if (os::file_state(folder).kind == os::FileKind::folder) {
        CheckInputs inputs;
        inputs.files = {folder};
        inputs.recursive = recursive;
        for (std::string& file : find_inputs(inputs, "").files) {
            if (matches_pattern(os::text_of(os::path_of(file).filename()), pattern)) {
                found.push_back({std::move(file), folder});
            }
        }
    }
    if (found.size() == before) {
        refuse_nothing_found(path);
    }
}

void add_named(const std::string& path, const BatchTask& task, std::vector<FoundInput>& found) {
    if (is_pattern(path)) {
        return add_matching(path, task.recursive, found);
    }
    const os::FileState state = os::file_state(path);
    if (state.kind == os::FileKind::regular) {
        found.push_back({path, {}});
        return;
    }
    if (state.kind != os::FileKind::folder) {
        throw std::runtime_error(path + ": " + (state.error.empty() ? "not a regular file" : state.error));
    }
    CheckInputs inputs;
    inputs.files = {path};
    inputs.recursive = task.recursive;
    const FoundInputs all = find_inputs(inputs, task.verb->extension);
    if (all.files.empty()) {
        throw std::runtime_error(
            "no file in the folder " + text::quoted(path) + " ends with " + task.verb->extension +
            (task.recursive ? "" : "; recursive = true searches the folders below it, too"));
    }
    for (const std::string& file : all.files) {
        found.push_back({file, path});
    }
}

std::vector<FoundInput> inputs_of(const BatchTask& task, const std::string& base) {
    std::vector<std::string> names = task.files;
    if (!task.list.empty()) {
        const std::vector<std::string> more = names_in_list(placed(base, task.list), task.null);
        names.insert(names.end(), more.begin(), more.end());
    }
    std::vector<FoundInput> found;
    for (const std::string& name : names) {
        add_named(placed(base, name), task, found);
    }
    return found;
}

void refuse_overwriting(const std::vector<BatchItem>& items, FileRoles& roles) {
    for (const BatchItem& item : items) {
        roles.reads(item.input);
    }
    for (const BatchItem& item : items) {
        if (item.output.empty()) {
            continue;
        }
        if (const std::string refusal = roles.writes(item.output, item.input); !refusal.empty()) {
            throw UsageError(refusal);
        }
    }
}

}  // namespace

bool matches_pattern(std::string_view name, std::string_view pattern) {
    // After the last '*' seen, and where in the name it was tried.
    std::string_view retry_pattern;
    std::string_view retry_name;
    bool may_retry = false;
    while (!name.empty() || !pattern.empty()) {
        if (!pattern.empty() && pattern.front() == '*') {
            pattern.remove_prefix(1);
            retry_pattern = pattern;
            retry_name = name;
            may_retry = true;
            continue;
        }
        if (!name.empty() && !pattern.empty() &&
            (pattern.front() == '?' || pattern.front() == name.front())) {
            const std::size_t bytes =
                pattern.front() == '?' ? std::max<std::size_t>(text::first_character(name).size_bytes, 1) : 1;
            name.remove_prefix(bytes);
            pattern.remove_prefix(1);
            continue;
        }
        if (!may_retry || retry_name.empty()) {
            return false;
        }
        retry_name.remove_prefix(1);
        name = retry_name;
        pattern = retry_pattern;
    }
    return true;
}

std::vector<BatchItem> find_batch_items(const BatchFile& file, const std::vector<PlannedTask>& tasks,
                                        const std::string& path, const std::string& base) {
    FileRoles roles;
    roles.reads(path, "which says what is to be done");
    std::vector<BatchItem> items;
    std::set<std::string> known;
    for (std::size_t i = 0; i < file.tasks.size(); ++i) {
        BatchTask task = file.tasks[i];
        task.out_dir = placed(base, task.out_dir);
        if (!task.list.empty()) {
            roles.reads(placed(base, task.list), "the list of files");
        }
        for (const FoundInput& input : inputs_of(task, base)) {
            BatchItem item{{}, i, input.path, output_name(task, input.path, input.below)};
            item.id = item_id(tasks[i], item);
            // A file may be named twice: by itself and by its folder.
            if (known.insert(item.id).second) {
                items.push_back(std::move(item));
            }
        }
    }
    if (items.size() > kMostBatchItems) {
        throw std::runtime_error("more than " + std::to_string(kMostBatchItems) + " items");
    }
    refuse_overwriting(items, roles);
    return items;
}

}  // namespace cli
