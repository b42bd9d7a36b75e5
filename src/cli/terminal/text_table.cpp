#include "cli/terminal/text_table.h"

#include <algorithm>
#include <cstddef>

#include "text/printable.h"

namespace cli {

std::vector<std::string> TextTable::lines(const Paint& paint) const {
    if (rows_.empty()) {
        return {};
    }
    std::vector<std::size_t> widths;
    for (const std::vector<Cell>& row : rows_) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], text::columns_of(row[i].text));
        }
    }
    // A column that is empty below its heading is left out.
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const bool used = std::any_of(rows_.begin() + 1, rows_.end(), [&](const std::vector<Cell>& row) {
            return i < row.size() && !row[i].text.empty();
        });
        widths[i] = used ? widths[i] : 0;
    }
    std::vector<std::string> lines;
    for (const std::vector<Cell>& row : rows_) {
        std::string line;
        std::string blanks;  // only written when something follows
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (widths[i] == 0) {
                continue;
            }
            const std::string fill(widths[i] - text::columns_of(row[i].text), ' ');
            if (!row[i].text.empty()) {
                line += blanks + (row[i].right ? fill : "") + paint(row[i].ink, row[i].text);
                blanks = row[i].right ? "" : fill;
            } else {
                blanks += fill;
            }
            blanks += "  ";
        }
        lines.push_back(line);
    }
    return lines;
}

}  // namespace cli
