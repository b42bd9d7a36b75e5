#include "cli/page/html.h"

#include <cmath>

#include "cli/report/diagnostic_text.h"
#include "cli/scene/written_number.h"
#include "text/printable.h"

namespace cli {

std::string html_text(std::string_view text) {
    const std::string shown = text::printable(text);
    std::string html;
    html.reserve(shown.size());
    for (const char c : shown) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

std::string html_name(std::string_view name) {
    return "<bdi>" + html_text(name) + "</bdi>";
}

std::string counted(std::int64_t count, std::string_view one, std::string_view several) {
    return grouped(count) + ' ' + std::string(count == 1 ? one : several);
}

std::string html_number(double value) {
    if (std::isnan(value)) {
        return "not a number";
    }
    return std::isinf(value) ? "infinite" : shortest_text(value);
}

}  // namespace cli
