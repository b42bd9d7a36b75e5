#include "cli/footage/stored_path.h"

#include <algorithm>

#include "text/ascii.h"

namespace cli {
namespace {

constexpr std::string_view kSeparators = ":\\/";

#if defined(_WIN32)
constexpr bool kWindows = true;
constexpr char kSeparator = '\\';
#else
constexpr bool kWindows = false;
constexpr char kSeparator = '/';
#endif

bool is_slash(char c) {
    return c == '/' || c == '\\';
}

// "C:" alone or before a slash. "C:a" is the file "a" on a volume of classic Mac OS.
bool begins_with_drive(std::string_view path) {
    return path.size() >= 2 && text::is_letter(path[0]) && path[1] == ':' &&
           (path.size() == 2 || is_slash(path[2]));
}

// Takes the next name off `rest`.
std::string_view take_name(std::string_view& rest) {
    const std::size_t end = std::min(rest.find_first_of(kSeparators), rest.size());
    const std::string_view name = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return name;
}

void take_root(std::string_view& rest, StoredPath& path) {
    if (begins_with_drive(rest)) {
        path.root = PathRoot::drive;
        path.root_name = take_name(rest);
    } else if (rest.size() > 2 && is_slash(rest[0]) && rest[1] == rest[0] && !is_slash(rest[2])) {
        path.root = PathRoot::server;
        rest.remove_prefix(2);
        path.root_name = take_name(rest);
    } else if (!rest.empty() && is_slash(rest[0])) {
        path.root = PathRoot::slash;
    } else if (const std::size_t separator = rest.find_first_of(kSeparators);
               separator != std::string_view::npos && separator > 0 && rest[separator] == ':') {
        path.root = PathRoot::volume;
        path.root_name = take_name(rest);
    }
}

}  // namespace

StoredPath split_path(std::string_view path) {
    StoredPath parts;
    take_root(path, parts);
    while (!path.empty()) {
        const std::string_view name = take_name(path);
        if (name == "..") {
            if (!parts.names.empty()) {
                parts.names.pop_back();
            }
        } else if (!name.empty() && name != ".") {
            parts.names.push_back(name);
        }
    }
    return parts;
}

std::string_view last_name(std::string_view path) {
    return text::last_component(path, kSeparators);
}

std::optional<std::string> native_root(const StoredPath& path) {
    if (path.root == PathRoot::slash) {
        return std::string(1, kSeparator);
    }
    if (kWindows && path.root == PathRoot::drive) {
        return std::string(path.root_name) + ":\\";
    }
    if (kWindows && path.root == PathRoot::server) {
        return "\\\\" + std::string(path.root_name);
    }
    return std::nullopt;
}

std::string joined_path(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && path.back() != '/' && !(kWindows && path.back() == '\\')) {
        path += kSeparator;
    }
    return path.append(name);
}

std::optional<PathMap> parse_path_map(std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0 || equals + 1 == text.size()) {
        return std::nullopt;
    }
    return PathMap{std::string(text.substr(0, equals)), std::string(text.substr(equals + 1))};
}

}  // namespace cli
