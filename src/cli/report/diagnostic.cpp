#include "cli/report/diagnostic.h"
#include "text/printable.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <utility>

namespace cli {
namespace {

std::string place_text(const Place& place) {
    std::string text = text::printable(place.file);
    if (place.line) {
        text += ':' + std::to_string(*place.line);
        text += place.column ? ':' + std::to_string(*place.column) : std::string();
    } else if (place.offset_bytes) {
        text += '@' + text::hexadecimal(static_cast<std::uint64_t>(*place.offset_bytes));
    }
    return text;
}

// As much of a long line as fits a terminal, chosen so that the place in question is in it.
struct Excerpt {
    std::string text;
    std::size_t caret = 0;
};

Excerpt excerpt_of(std::string_view line, std::size_t column) {
    constexpr std::size_t kBefore = 60;
    constexpr std::size_t kBytes = 100;
    const std::size_t at = std::min(column - 1, line.size());
    const std::size_t first = at > kBefore + 10 ? at - kBefore : 0;
    const std::string_view shown = line.substr(first, kBytes);
    // Tabs become one blank each, so that the caret stands below its character in every terminal.
    const auto clean = [](std::string_view text) {
        std::string copy(text);
        std::replace(copy.begin(), copy.end(), '\t', ' ');
        return text::printable(copy);
    };
    const std::string head = (first > 0 ? "..." : "") + clean(shown.substr(0, at - first));
    const bool cut = first + shown.size() < line.size();
    return {head + clean(shown.substr(at - first)) + (cut ? "..." : ""), text::columns_of(head)};
}

std::string source_text(const Diagnostic& diagnostic, const Paint& paint) {
    if (!diagnostic.source_line || !diagnostic.at.line || !diagnostic.at.column) {
        return {};
    }
    const Excerpt excerpt =
        excerpt_of(*diagnostic.source_line, static_cast<std::size_t>(*diagnostic.at.column));
    std::string number = std::to_string(*diagnostic.at.line);
    number.insert(0, number.size() < 5 ? 5 - number.size() : 0, ' ');
    return number + " | " + excerpt.text + '\n' + std::string(number.size(), ' ') + " | " +
           std::string(excerpt.caret, ' ') + paint(Ink::green, "^") + '\n';
}

}  // namespace

Diagnostic fail(std::string code, Place at, std::string reason, std::vector<std::string> within) {
    return {Severity::error, std::move(code), std::move(at), std::move(reason), std::move(within)};
}

Diagnostic warn(std::string code, Place at, std::string reason, std::vector<std::string> within) {
    return {Severity::warning, std::move(code), std::move(at), std::move(reason), std::move(within)};
}

std::string diagnostic_text(const Diagnostic& diagnostic, const Paint& paint) {
    const bool error = diagnostic.severity == Severity::error;
    std::string text = paint(Ink::bold, place_text(diagnostic.at) + ": ") +
                       paint(error ? Ink::red : Ink::yellow, error ? "error:" : "warning:") + ' ' +
                       text::printable(diagnostic.reason) + paint(Ink::dim, " [" + diagnostic.code + ']') +
                       '\n' + source_text(diagnostic, paint);
    for (auto block = diagnostic.within.rbegin(); block != diagnostic.within.rend(); ++block) {
        text += "      in " + text::printable(*block) + '\n';
    }
    for (const std::string& effect : diagnostic.effects) {
        text += "      = " + text::printable(effect) + '\n';
    }
    return text;
}

void complain(Terminal& terminal, std::string_view text) {
    terminal.err << "vxr: " << terminal.err_paint(Ink::red, "error:") << ' ' << text::printable(text) << '\n';
}

void remark(Terminal& terminal, std::string_view text) {
    terminal.err << "vxr: note: " << text::printable(text) << '\n';
}

}  // namespace cli
