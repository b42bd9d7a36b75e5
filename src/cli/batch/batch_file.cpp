#include "cli/batch/batch_file.h"

#include <algorithm>
#include <filesystem>

#include "system/files.h"
#include "text/printable.h"
#include "text/similar.h"

namespace cli {
namespace {

using Kind = TomlValue::Kind;

[[noreturn]] void refuse(const TomlValue& at, const std::string& reason) {
    throw TomlError{reason, at.line, at.column};
}

[[noreturn]] void refuse_key(const TomlValue& at, const std::vector<std::string>& known) {
    refuse(at, "nothing is called " + text::quoted(at.key) + " here" + text::did_you_mean(at.key, known));
}

std::string text_of(const TomlValue& value, const char* what) {
    if (value.kind != Kind::text) {
        refuse(value, std::string(what) + " is not a text");
    }
    // Neither a name nor a word of a command can hold one.
    if (value.text.find('\0') != std::string::npos) {
        refuse(value, std::string(what) + " holds a NUL character");
    }
    return value.text;
}

std::string one_text(const TomlValue& value) {
    std::string text = text_of(value, value.key.c_str());
    if (text.empty()) {
        refuse(value, value.key + " is empty");
    }
    return text;
}

std::vector<std::string> texts_of(const TomlValue& value) {
    if (value.kind != Kind::list) {
        refuse(value, value.key + " is not a list of texts; write " + value.key + " = [\"...\"]");
    }
    std::vector<std::string> texts;
    for (const TomlValue& one : value.values) {
        texts.push_back(text_of(one, ("an entry of " + value.key).c_str()));
    }
    return texts;
}

bool truth_of(const TomlValue& value) {
    if (value.kind != Kind::boolean) {
        refuse(value, value.key + " is neither true nor false");
    }
    return value.boolean;
}

int number_of(const TomlValue& value, int least, int most) {
    if (value.kind != Kind::integer || value.integer < least || value.integer > most) {
        refuse(value, value.key + " is not a whole number from " + std::to_string(least) + " to " +
                          std::to_string(most));
    }
    return static_cast<int>(value.integer);
}

const BatchVerb* verb_of(const TomlValue& value) {
    const std::string name = one_text(value);
    const BatchVerb* const verb = find_batch_verb(name);
    if (verb == nullptr) {
        refuse(value,
               "a batch has no verb " + text::quoted(name) + text::did_you_mean(name, batch_verb_names()));
    }
    return verb;
}

std::vector<std::string> options_of(const TomlValue& value) {
    std::vector<std::string> options = texts_of(value);
    for (std::size_t i = 0; i < options.size(); ++i) {
        if (const std::string reason = refused_batch_option(options[i]); !reason.empty()) {
            refuse(value.values[i], text::quoted(options[i]) + " is not for a batch: " + reason);
        }
    }
    return options;
}

std::vector<std::string> files_of(const TomlValue& value) {
    std::vector<std::string> files = texts_of(value);
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (files[i].empty() || files[i] == "-") {
            refuse(value.values[i], text::quoted(files[i]) + " is not the name of a file");
        }
    }
    return files;
}

std::string extension_of(const TomlValue& value) {
    std::string extension = one_text(value);
    if (extension.starts_with('.')) {
        extension.erase(0, 1);
    }
    if (extension.empty() || extension.find_first_of("/\\") != std::string::npos) {
        refuse(value, text::quoted(value.text) + " is not the extension of a file");
    }
    return extension;
}

// A task that is complete. `at` is where it begins.
void check_task(const BatchTask& task, const TomlValue& at) {
    if (task.verb == nullptr) {
        refuse(at, "the task has no verb");
    }
    if (task.files.empty() && task.list.empty()) {
        refuse(at, "the task has neither files nor files-from");
    }
    if (task.null && task.list.empty()) {
        refuse(at, "null needs files-from");
    }
    const std::string verb = task.verb->name;
    if (task.verb->output_option == nullptr && (!task.extension.empty() || !task.out_dir.empty())) {
        refuse(at, verb + " writes no files, so out-dir and extension mean nothing");
    }
    if (task.extension.empty() && task.verb->needs_output) {
        refuse(at, verb + " writes a file for each input: extension is missing");
    }
    if (task.extension.empty() && !task.out_dir.empty()) {
        refuse(at, "out-dir needs extension");
    }
}

BatchTask task_of(const TomlValue& table) {
    if (table.kind != Kind::table) {
        refuse(table, "task is not a table; write [[task]] on a line of its own");
    }
    BatchTask task;
    task.line = table.line;
    task.column = table.column;
    for (const TomlValue& value : table.values) {
        if (value.key == "verb") {
            task.verb = verb_of(value);
        } else if (value.key == "options") {
            task.options = options_of(value);
        } else if (value.key == "files") {
            task.files = files_of(value);
        } else if (value.key == "files-from") {
            task.list = one_text(value);
        } else if (value.key == "null") {
            task.null = truth_of(value);
        } else if (value.key == "recursive") {
            task.recursive = truth_of(value);
        } else if (value.key == "out-dir") {
            task.out_dir = one_text(value);
        } else if (value.key == "extension") {
            task.extension = extension_of(value);
        } else {
            refuse_key(value, {"verb", "options", "files", "files-from", "null", "recursive", "out-dir",
                               "extension"});
        }
    }
    check_task(task, table);
    return task;
}

ItemLimits limits_of(const TomlValue& table) {
    if (table.kind != Kind::table) {
        refuse(table, "limits is not a table; write [limits] on a line of its own");
    }
    ItemLimits limits;
    for (const TomlValue& value : table.values) {
        if (value.key == "seconds") {
            limits.seconds = number_of(value, 1, kMostItemSeconds);
        } else if (value.key == "memory-mib") {
            limits.memory_mib = number_of(value, 0, kMostItemMemory_mib);
        } else {
            refuse_key(value, {"seconds", "memory-mib"});
        }
    }
    return limits;
}

}  // namespace

BatchFile parse_batch_file(std::string_view text) {
    BatchFile file;
    const TomlValue whole = parse_toml(text);
    for (const TomlValue& value : whole.values) {
        if (value.key == "limits") {
            file.limits = limits_of(value);
        } else if (value.key == "task") {
            if (value.kind != Kind::list) {
                refuse(value, "task is one table; write [[task]] with two brackets");
            }
            for (const TomlValue& one : value.values) {
                file.tasks.push_back(task_of(one));
            }
        } else {
            refuse_key(value, {"limits", "task"});
        }
    }
    if (file.tasks.empty()) {
        refuse(whole, "there is no [[task]]");
    }
    return file;
}

std::string output_name(const BatchTask& task, const std::string& input, const std::string& below) {
    namespace fs = std::filesystem;
    if (task.extension.empty()) {
        return {};
    }
    const fs::path path = os::path_of(input);
    fs::path output = path;
    if (!task.out_dir.empty()) {
        const fs::path inner = below.empty() ? path.filename() : path.lexically_relative(os::path_of(below));
        output = os::path_of(task.out_dir) / inner;
    }
    return os::text_of(output.replace_extension(os::path_of("." + task.extension)));
}

}  // namespace cli
