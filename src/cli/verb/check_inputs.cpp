#include "cli/verb/check_inputs.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "cli/command.h"
#include "cli/options.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/standard_input.h"
#include "cli/terminal/terminal.h"
#include "system/file_content.h"
#include "system/files.h"
#include "text/ascii.h"

namespace cli {
namespace {

constexpr std::uint64_t kMostListBytes = std::uint64_t{64} << 20U;

std::vector<std::string> names_in(std::string_view list, bool null) {
    std::vector<std::string> names;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(null ? '\0' : '\n'), list.size());
        std::string_view name = list.substr(0, end);
        // Lists come from Windows, too.
        if (!null && name.ends_with('\r')) {
            name.remove_suffix(1);
        }
        if (!name.empty()) {
            names.emplace_back(name);
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return names;
}

void add_folder(const std::string& top, const char* extension, bool recursive,
                std::vector<std::string>& files) {
    std::vector<std::string> folders{top};
    while (!folders.empty()) {
        const std::string folder = std::move(folders.back());
        folders.pop_back();
        std::vector<os::FolderEntry> entries = os::entries_in(folder);
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return a.name < b.name; });
        std::vector<std::string> below;
        for (const os::FolderEntry& entry : entries) {
            if (entry.name.starts_with('.')) {
                continue;
            }
            std::string path = os::text_of(os::path_of(folder) / os::path_of(entry.name));
            if (entry.kind == os::FileKind::folder) {
                if (recursive && !entry.is_link) {
                    below.push_back(std::move(path));
                }
            } else if (text::ends_with_ignoring_case(entry.name, extension)) {
                files.push_back(std::move(path));
            }
        }
        folders.insert(folders.end(), below.rbegin(), below.rend());
    }
}

void refuse_standard_input_twice(const std::vector<std::string>& names) {
    if (names_standard_input_twice(names)) {
        throw UsageError("the standard input can be read only once");
    }
}

}  // namespace

void add_input_options(Options& options, CheckInputs& inputs) {
    constexpr const char* kGroup = "Which files";
    options.flag("-r,--recursive", inputs.recursive, "search folders with everything below them")
        .group(kGroup);
    options
        .option("--files-from", inputs.list,
                "read further names from this file, one on each line; - for the standard input")
        .value_name("FILE")
        .group(kGroup);
    options
        .flag("-0,--null", inputs.null, "names of --files-from end with a NUL, as `find -print0` writes them")
        .group(kGroup);
}

void refuse_wrong_inputs(const CheckInputs& inputs, const char* argument) {
    if (!inputs.given()) {
        throw UsageError(std::string(argument) + " is required");
    }
    if (inputs.null && inputs.list.empty()) {
        throw UsageError("--null needs --files-from");
    }
    std::vector<std::string> all = inputs.files;
    all.push_back(inputs.list);
    refuse_standard_input_twice(all);
}

void add_list(const CheckInputs& inputs, FileRoles& roles) {
    if (!inputs.list.empty() && !is_standard_input(inputs.list)) {
        roles.reads(inputs.list, "the list of files");
    }
}

std::vector<std::string> names_in_list(const std::string& path, bool null) {
    const std::optional<std::string> list =
        is_standard_input(path) ? standard_input_text(kMostListBytes) : os::content_of(path, kMostListBytes);
    if (!list) {
        throw std::runtime_error("the list of files \"" + path +
                                 "\" cannot be read, or is no regular file of up to 64 MiB");
    }
    return names_in(*list, null);
}

FoundInputs find_inputs(const CheckInputs& inputs, const char* extension) {
    std::vector<std::string> named = inputs.files;
    if (!inputs.list.empty()) {
        const std::vector<std::string> more = names_in_list(inputs.list, inputs.null);
        named.insert(named.end(), more.begin(), more.end());
    }
    FoundInputs found;
    for (const std::string& name : named) {
        if (os::file_state(name).kind != os::FileKind::folder) {
            found.files.push_back(name);
            continue;
        }
        const std::size_t before = found.files.size();
        add_folder(name, extension, inputs.recursive, found.files);
        if (found.files.size() == before) {
            found.empty_folders.push_back(name);
        }
    }
    refuse_standard_input_twice(found.files);
    return found;
}

ExitCode tell_empty_folders(const FoundInputs& found, const CheckInputs& inputs, const char* extension,
                            Terminal& terminal) {
    for (const std::string& folder : found.empty_folders) {
        complain(terminal, "no file in the folder \"" + folder + "\" ends with " + extension +
                               (inputs.recursive ? "" : "; --recursive searches the folders below it, too"));
    }
    return found.empty_folders.empty() ? ExitCode::fine : ExitCode::cannot_read_or_write;
}

}  // namespace cli
