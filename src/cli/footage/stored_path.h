#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A footage path as a scene stores it: made on any system, in any encoding, years ago.

namespace cli {

/// What a path begins with.
enum class PathRoot {
    none,    ///< nothing: "shots/a.tif", ":shots:a.tif"
    slash,   ///< the root of a Unix system: "/net/a.tif"
    drive,   ///< a drive of Windows: "C:\shots\a.tif", "C:/shots/a.tif"
    server,  ///< a server of Windows: "\\server\share\a.tif", "//server/share/a.tif"
    volume,  ///< a volume of classic Mac OS: "Macintosh HD:shots:a.tif"
};

/// A path taken apart. The views point into the path.
struct StoredPath {
    PathRoot root = PathRoot::none;
    std::string_view root_name;  ///< "C", "server", "Macintosh HD"; empty for the other roots
    /// The names below the root. ":", "\" and "/" separate them on every system, as in the importer; empty
    /// names and "." are left out, and ".." takes the name before it away.
    std::vector<std::string_view> names;
};

/// Takes any bytes apart.
[[nodiscard]] StoredPath split_path(std::string_view path);

/// The text after the last ":", "\" or "/": the name under which the importer looks beside the scene.
[[nodiscard]] std::string_view last_name(std::string_view path);

/// Where a path with such a beginning lies on this system: "/" on Unix, "C:\" on Windows. Nothing for a path
/// without a root and for those of other systems.
[[nodiscard]] std::optional<std::string> native_root(const StoredPath& path);

/// `folder` and `name` with this system's separator between them.
[[nodiscard]] std::string joined_path(std::string_view folder, std::string_view name);

/// Paths that begin with `from` continue below `to`.
struct PathMap {
    std::string from;  ///< the beginning of a path: "C:", "Macintosh HD:Renders", "\\server\share", "/net"
    std::string to;    ///< a folder of this system
};

/// "FROM=TO", split at the first "="; nothing if either side is empty.
[[nodiscard]] std::optional<PathMap> parse_path_map(std::string_view text);

}  // namespace cli
