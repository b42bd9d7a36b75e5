#include "cli/footage/job_file.h"

#include <toml++/toml.h>
#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include "text/printable.h"
#include "text/similar.h"
#include "text/utf8.h"

namespace cli {
namespace {

constexpr int kSchema = 1;

// A text is kept under its own key, and bytes that are not UTF-8 in hexadecimal under that key with "_bytes".
void put_text(toml::table& table, const std::string& key, const std::string& text) {
    if (text::is_utf8(text)) {
        table.insert(key, text);
    } else {
        table.insert(key + "_bytes", text::hexadecimal_bytes(text));
    }
}

std::string get_text(const toml::table& table, const std::string& key) {
    if (const auto text = table[key].value<std::string>()) {
        return *text;
    }
    if (const auto digits = table[key + "_bytes"].value<std::string>()) {
        if (auto bytes = text::bytes_of_hexadecimal(*digits)) {
            return *std::move(bytes);
        }
        throw std::runtime_error(key + "_bytes is not lower-case hexadecimal");
    }
    throw std::runtime_error("an entry has no " + key);
}

template <class Use>
void for_each_table(const toml::table& job, const char* key, const Use& use) {
    const toml::node_view<const toml::node> node = job[key];
    if (!node) {
        return;
    }
    const toml::array* const entries = node.as_array();
    if (entries == nullptr) {
        throw std::runtime_error(std::string(key) + " is not a list");
    }
    for (const toml::node& entry : *entries) {
        const toml::table* const table = entry.as_table();
        if (table == nullptr) {
            throw std::runtime_error(std::string(key) + " has an entry that is not a table");
        }
        use(*table);
    }
}

FinderOptions options_of(const toml::table& job) {
    if (job["schema"].value<std::int64_t>() != kSchema) {
        throw std::runtime_error("schema is not 1");
    }
    FinderOptions options;
    for_each_table(job, "search",
                   [&](const toml::table& entry) { options.search.push_back(get_text(entry, "folder")); });
    for_each_table(job, "map", [&](const toml::table& entry) {
        options.maps.push_back({get_text(entry, "from"), get_text(entry, "to")});
    });
    for_each_table(job, "footage", [&](const toml::table& entry) {
        options.kept[get_text(entry, "written")] = get_text(entry, "path");
    });
    if (const auto prefer = job["prefer"].value<std::string>()) {
        const auto known = parse_preference(*prefer);
        if (!known) {
            throw std::runtime_error("prefer is not newest, largest or first");
        }
        options.prefer = *known;
    }
    return options;
}

std::int64_t line_of(const toml::source_region& region) {
    return std::int64_t{region.begin.line};
}

// Throws unless `key` is one of `known`.
void expect_key(const toml::key& key, const std::vector<std::string>& known) {
    const std::string name(key.str());
    if (std::find(known.begin(), known.end(), name) == known.end()) {
        throw ProjectFileError{"nothing is called \"" + name + "\" here" + text::did_you_mean(name, known),
                               line_of(key.source())};
    }
}

std::vector<ProjectWord> words_of(const toml::node& node, const toml::key& key) {
    std::vector<ProjectWord> words;
    const auto add = [&](const toml::node& one) {
        const auto word = one.value_exact<std::string>();
        if (!word) {
            throw ProjectFileError{std::string(key.str()) + " is neither a text nor a list of texts",
                                   line_of(one.source())};
        }
        words.push_back({*word, line_of(one.source())});
    };
    if (const toml::array* const list = node.as_array()) {
        for (const toml::node& one : *list) {
            add(one);
        }
    } else {
        add(node);
    }
    return words;
}

CheckChoices choices_of(const toml::table& table) {
    CheckChoices choices;
    for (const auto& [key, value] : table) {
        expect_key(key, {"fail-on", "ignore"});
        (key.str() == "ignore" ? choices.ignore : choices.fail_on) = words_of(value, key);
    }
    return choices;
}

// As deep as the library reads tables and lists, which has a limit.
TomlValue plain_value(const toml::node& node) {
    TomlValue plain;
    plain.line = line_of(node.source());
    plain.column = std::int64_t{node.source().begin.column};
    if (const toml::array* const list = node.as_array()) {
        plain.kind = TomlValue::Kind::list;
        for (const toml::node& one : *list) {
            plain.values.push_back(plain_value(one));
        }
    } else if (const toml::table* const table = node.as_table()) {
        plain.kind = TomlValue::Kind::table;
        for (const auto& [key, value] : *table) {
            plain.values.push_back(plain_value(value));
            plain.values.back().key = key.str();
            plain.values.back().line = line_of(key.source());
            plain.values.back().column = std::int64_t{key.source().begin.column};
        }
        // The library keeps them in the order of their keys.
        std::stable_sort(plain.values.begin(), plain.values.end(), [](const auto& a, const auto& b) {
            return std::tie(a.line, a.column) < std::tie(b.line, b.column);
        });
    } else if (const auto text = node.value_exact<std::string>()) {
        plain.kind = TomlValue::Kind::text;
        plain.text = *text;
    } else if (const auto integer = node.value_exact<std::int64_t>()) {
        plain.kind = TomlValue::Kind::integer;
        plain.integer = *integer;
    } else if (const auto boolean = node.value_exact<bool>()) {
        plain.kind = TomlValue::Kind::boolean;
        plain.boolean = *boolean;
    }
    return plain;
}

}  // namespace

std::string job_file_text(const FinderOptions& options) {
    toml::array search;
    for (const std::string& folder : options.search) {
        toml::table entry;
        put_text(entry, "folder", folder);
        search.push_back(std::move(entry));
    }
    toml::array maps;
    for (const PathMap& map : options.maps) {
        toml::table entry;
        put_text(entry, "from", map.from);
        put_text(entry, "to", map.to);
        maps.push_back(std::move(entry));
    }
    toml::array footage;
    for (const auto& [written, path] : options.kept) {
        toml::table entry;
        put_text(entry, "written", written);
        put_text(entry, "path", path);
        footage.push_back(std::move(entry));
    }
    toml::table job;
    job.insert("schema", kSchema);
    if (options.prefer != Preference::none) {
        job.insert("prefer", label(options.prefer));
    }
    for (auto& [key, list] :
         {std::pair("search", &search), std::pair("map", &maps), std::pair("footage", &footage)}) {
        if (!list->empty()) {
            job.insert(key, std::move(*list));
        }
    }
    std::ostringstream text;
    text << "# Where the footage of a job is: vxr relink --use THIS-FILE SCENE...\n" << job << '\n';
    return text.str();
}

std::optional<FinderOptions> parse_job_file(std::string_view text, std::string& problem) {
    try {
        return options_of(toml::parse(text));
    } catch (const toml::parse_error& error) {
        const toml::source_position& at = error.source().begin;
        problem = "line " + std::to_string(at.line) + ", column " + std::to_string(at.column) + ": " +
                  std::string(error.description());
    } catch (const std::runtime_error& error) {
        problem = error.what();
    }
    return std::nullopt;
}

std::map<std::string, CheckChoices> parse_project_file(std::string_view text) {
    std::map<std::string, CheckChoices> verbs;
    try {
        for (const toml::table file = toml::parse(text); const auto& [key, value] : file) {
            expect_key(key, {"check", "texture-check"});
            const toml::table* const table = value.as_table();
            if (table == nullptr) {
                throw ProjectFileError{std::string(key.str()) + " is not a table; write [" +
                                           std::string(key.str()) + "] on a line of its own",
                                       line_of(key.source())};
            }
            verbs[std::string(key.str())] = choices_of(*table);
        }
    } catch (const toml::parse_error& error) {
        throw ProjectFileError{std::string(error.description()), line_of(error.source())};
    }
    return verbs;
}

TomlValue parse_toml(std::string_view text) {
    try {
        return plain_value(toml::parse(text));
    } catch (const toml::parse_error& error) {
        throw TomlError{std::string(error.description()), line_of(error.source()),
                        std::int64_t{error.source().begin.column}};
    }
}

}  // namespace cli
