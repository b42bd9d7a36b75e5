#include "cli/source_lines.h"

#include <algorithm>
#include <fstream>
#include <string>

#include "system/files.h"

namespace cli {
namespace {

// A line longer than this is of no use to anybody who looks at it.
constexpr std::int64_t kLongestLine_bytes = 4096;

bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

}  // namespace

void add_source_line(Diagnostic& diagnostic, const std::string& path) {
    const Place& at = diagnostic.at;
    if (!at.offset_bytes || !at.column || *at.column > kLongestLine_bytes / 2) {
        return;
    }
    std::ifstream file(os::native_path(path), std::ios::binary);
    file.seekg(*at.offset_bytes - (*at.column - 1));
    std::string line(static_cast<std::size_t>(kLongestLine_bytes), '\0');
    file.read(line.data(), kLongestLine_bytes);
    line.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    line.erase(std::find_if(line.begin(), line.end(), is_line_end), line.end());
    diagnostic.source_line = line;
}

}  // namespace cli
