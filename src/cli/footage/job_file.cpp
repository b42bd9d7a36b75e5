#include "cli/footage/job_file.h"

#include <toml++/toml.h>
#include <sstream>
#include <stdexcept>

#include "text/printable.h"
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

std::optional<unsigned> hexadecimal_digit(char c) {
    const std::string_view digits = "0123456789abcdef";
    const std::size_t value = digits.find(c);
    return value == std::string_view::npos ? std::nullopt : std::optional(static_cast<unsigned>(value));
}

std::string bytes_of(std::string_view hexadecimal, const std::string& key) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hexadecimal.size(); i += 2) {
        const auto high = hexadecimal_digit(hexadecimal[i]);
        const auto low = hexadecimal_digit(hexadecimal[i + 1]);
        if (!high || !low) {
            break;
        }
        bytes += static_cast<char>(*high << 4U | *low);
    }
    if (bytes.size() * 2 != hexadecimal.size()) {
        throw std::runtime_error(key + " is not lower-case hexadecimal");
    }
    return bytes;
}

std::string get_text(const toml::table& table, const std::string& key) {
    if (const auto text = table[key].value<std::string>()) {
        return *text;
    }
    if (const auto bytes = table[key + "_bytes"].value<std::string>()) {
        return bytes_of(*bytes, key + "_bytes");
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

}  // namespace cli
