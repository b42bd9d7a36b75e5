#include "cli/report/source_lines.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "system/input_file.h"

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
    // It may have changed since the place was found: then there is no line, or another.
    const os::InputFile file = os::open_input_file(path);
    if (file == nullptr ||
        std::fseek(file.get(), static_cast<long>(*at.offset_bytes - (*at.column - 1)), SEEK_SET) != 0) {
        return;
    }
    std::string line(static_cast<std::size_t>(kLongestLine_bytes), '\0');
    line.resize(std::fread(line.data(), 1, line.size(), file.get()));
    line.erase(std::find_if(line.begin(), line.end(), is_line_end), line.end());
    diagnostic.source_line = line;
}

}  // namespace cli
