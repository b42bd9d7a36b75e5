#include "cli/scene/footage_paths.h"

#include <cstddef>
#include <cstdint>

#include "composition/model/composition.h"
#include "limit/limits.h"
#include "system/file_content.h"

namespace cli {
namespace {

constexpr const char* kChanged = "the file changed while it was read";

struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;
};

// The bytes between the quotes of an entry's path; nothing if they are no longer there. The path that was
// read may be shorter: a NUL byte ended it.
std::optional<Span> path_in(std::string_view bytes, const PathChange& change) {
    const auto quote = static_cast<std::uint64_t>(change.at.offset_bytes);
    if (quote >= bytes.size() || bytes[quote] != '"') {
        return std::nullopt;
    }
    const std::size_t begin = quote + 1;
    const std::size_t line_end = bytes.find_first_of("\r\n", begin);
    if (line_end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t last = bytes.substr(begin, line_end - begin).rfind('"');
    if (last == std::string_view::npos || !bytes.substr(begin, last).starts_with(change.written)) {
        return std::nullopt;
    }
    return Span{begin, begin + last};
}

}  // namespace

std::vector<SoughtFootage> seek_footage(const SceneReading& reading, FootageFinder& finder) {
    std::vector<SoughtFootage> sought;
    for (const SceneFootage& entry : reading.facts.footage) {
        if (entry.problem || entry.written.empty()) {
            continue;
        }
        const bool is_sequence = entry.file->isSequence != 0;
        sought.push_back({entry.path_at, entry.written, is_sequence, entry.top_level,
                          finder.find({reading.full_path, entry.written, is_sequence})});
    }
    return sought;
}

std::string unwritable_path(std::string_view path) {
    if (path.empty()) {
        return "a path has at least one character";
    }
    // Everything else can be written, quotes too: a path ends at the last quote of its line.
    if (path.find_first_of("\r\n") != std::string_view::npos) {
        return "a path in a composition file ends with its line, and this one has a line end in it";
    }
    if (path.find('\0') != std::string_view::npos) {
        return "a NUL byte ends a path";
    }
    return {};
}

std::optional<std::string> scene_with_paths(const std::string& full_path,
                                            const std::vector<PathChange>& changes, std::string& problem) {
    const std::optional<std::string> bytes =
        os::content_of(full_path, static_cast<std::uint64_t>(limits::kCompositionFile.value));
    if (!bytes) {
        problem = "the file cannot be read";
        return std::nullopt;
    }
    std::string made;
    std::size_t copied = 0;
    for (const PathChange& change : changes) {
        const std::optional<Span> span = path_in(*bytes, change);
        if (!span || span->begin < copied) {
            problem = kChanged;
            return std::nullopt;
        }
        made.append(*bytes, copied, span->begin - copied).append(change.path);
        copied = span->end;
    }
    made.append(*bytes, copied);
    return made;
}

}  // namespace cli
