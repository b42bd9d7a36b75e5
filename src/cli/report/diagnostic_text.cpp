#include "cli/report/diagnostic_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ostream>

#include "limit/limits.h"
#include "system/open_regular_file.h"
#include "text/printable.h"

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

std::string source_text(const Diagnostic& diagnostic, const Paint& paint) {
    const std::optional<SourceExcerpt> excerpt = source_excerpt(diagnostic);
    if (!excerpt) {
        return {};
    }
    std::string number = std::to_string(*diagnostic.at.line);
    number.insert(0, number.size() < 5 ? 5 - number.size() : 0, ' ');
    return number + " | " + excerpt->before + excerpt->from + '\n' + std::string(number.size(), ' ') + " | " +
           std::string(text::columns_of(excerpt->before), ' ') + paint(Ink::green, "^") + '\n';
}

// A longer line does not help anyone who reads the message.
constexpr std::int64_t kLongestLine_bytes = 4096;

bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

bool has_readable_line(const Place& at) {
    return at.offset_bytes && at.column && *at.column <= kLongestLine_bytes / 2;
}

// Nothing if `file` ends before the line.
std::optional<std::string> line_of(std::FILE* file, const Place& at) {
    if (std::fseek(file, static_cast<long>(*at.offset_bytes - (*at.column - 1)), SEEK_SET) != 0) {
        return std::nullopt;
    }
    std::string line(static_cast<std::size_t>(kLongestLine_bytes), '\0');
    line.resize(std::fread(line.data(), 1, line.size(), file));
    line.erase(std::find_if(line.begin(), line.end(), is_line_end), line.end());
    return line;
}

}  // namespace

std::optional<SourceExcerpt> source_excerpt(const Diagnostic& diagnostic) {
    if (!diagnostic.source_line || !diagnostic.at.line || !diagnostic.at.column) {
        return std::nullopt;
    }
    constexpr std::size_t kBefore = 60;
    constexpr std::size_t kBytes = 100;
    const std::string_view line = *diagnostic.source_line;
    const std::size_t at = std::min(static_cast<std::size_t>(*diagnostic.at.column) - 1, line.size());
    const std::size_t first = at > kBefore + 10 ? at - kBefore : 0;
    const std::string_view shown = line.substr(first, kBytes);
    // Each tab becomes one blank, so that the caret is below its character in every terminal.
    const auto clean = [](std::string_view text) {
        std::string copy(text);
        std::replace(copy.begin(), copy.end(), '\t', ' ');
        return text::printable(copy);
    };
    const bool cut = first + shown.size() < line.size();
    return SourceExcerpt{(first > 0 ? "..." : "") + clean(shown.substr(0, at - first)),
                         clean(shown.substr(at - first)) + (cut ? "..." : "")};
}

Ink ink_of(Severity severity) {
    switch (severity) {
        case Severity::error:
            return Ink::red;
        case Severity::loss:
            return Ink::yellow;
        case Severity::warning:
            return Ink::cyan;
        case Severity::note:
            break;
    }
    return Ink::plain;
}

std::string diagnostic_text(const Diagnostic& diagnostic, const Paint& paint) {
    std::string text =
        paint(Ink::bold, place_text(diagnostic.at) + ": ") +
        paint(ink_of(diagnostic.severity()), std::string(severity_name(diagnostic.severity())) + ':') + ' ' +
        text::printable(diagnostic.reason) +
        paint(Ink::dim, std::string(" [") + diagnostic.code.name() + ']') + '\n' +
        source_text(diagnostic, paint);
    for (auto block = diagnostic.within.rbegin(); block != diagnostic.within.rend(); ++block) {
        text += "      in " + text::printable(*block) + '\n';
    }
    for (const std::string& effect : diagnostic.effects) {
        text += "      = " + text::printable(effect) + '\n';
    }
    return text;
}

void add_source_lines(std::span<Diagnostic> diagnostics, const std::string& path) {
    os::InputFile file;
    for (Diagnostic& diagnostic : diagnostics) {
        if (!has_readable_line(diagnostic.at)) {
            continue;
        }
        // The file may have changed since the place was found: then there is no line, or a different one.
        if (file == nullptr && (file = os::open_input_file(path)) == nullptr) {
            return;
        }
        diagnostic.source_line = line_of(file.get(), diagnostic.at);
    }
}

void name_limit(Diagnostic& diagnostic, const limits::Limit* limit) {
    if (limit != nullptr) {
        diagnostic.limit = limit;
        diagnostic.effects.push_back(limit_text(*limit));
    }
}

std::string limit_text(const limits::Limit& limit) {
    return std::string(limit.name) + ": " + grouped(limit.value) + ' ' + limit.unit +
           " are allowed (see `vxr limits`)";
}

std::string grouped(std::int64_t number) {
    constexpr std::size_t kGroup = 3;
    std::string text = std::to_string(number);
    const std::size_t first_digit = number < 0 ? 1 : 0;
    for (std::size_t end = text.size(); end > first_digit + kGroup;) {
        end -= kGroup;
        text.insert(end, 1, ',');
    }
    return text;
}

std::string severity_counts(const std::vector<Diagnostic>& diagnostics) {
    std::string text;
    const auto add = [&](Severity severity, const char* several) {
        const auto count = std::count_if(diagnostics.begin(), diagnostics.end(),
                                         [severity](const auto& one) { return one.severity() == severity; });
        if (count > 0) {
            text += ", " + grouped(count) + ' ' + (count == 1 ? severity_name(severity) : several);
        }
    };
    add(Severity::loss, "losses");
    add(Severity::warning, "warnings");
    add(Severity::note, "notes");
    return text;
}

void print_codes(std::ostream& out, const std::vector<diagnostic::CodeInfo>& codes) {
    for (const diagnostic::CodeInfo& code : codes) {
        out << code.name << ": " << severity_name(code.severity) << ": " << code.meaning << '\n';
    }
}

const char* verdict_label(ExitCode code) {
    switch (code) {
        case ExitCode::fine:
            return "ok";
        case ExitCode::footage_missing:
            return "incomplete";
        case ExitCode::different:
            return "different";
        case ExitCode::refused:
            return "refused";
        case ExitCode::usage:
        case ExitCode::cannot_read_or_write:
            break;
    }
    return "unreadable";
}

void complain(Terminal& terminal, std::string_view text) {
    terminal.err << "vxr: " << terminal.err_paint(Ink::red, "error:") << ' ' << text::printable(text) << '\n';
}

void remark(Terminal& terminal, std::string_view text) {
    terminal.err << "vxr: note: " << text::printable(text) << '\n';
}

}  // namespace cli
