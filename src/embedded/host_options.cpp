#include "embedded/host_options.h"

#include <algorithm>
#include <charconv>

#include "embedded/suites/functions.h"

namespace embedded {
namespace {

/// The whole text as a decimal number.
template <class Number>
std::optional<Number> whole_number(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

/// Splits at the last `separator`; names may contain it, too.
std::optional<std::pair<std::string_view, std::string_view>> split_last(std::string_view text,
                                                                        char separator) {
    const std::size_t at = text.rfind(separator);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    return std::pair{text.substr(0, at), text.substr(at + 1)};
}

constexpr A_long kFirstMajorOfToday = 13;

std::optional<HostGeneration> parse_generation(std::string_view text) {
    for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
        if (text == generation_label(generation)) {
            return generation;
        }
    }
    return std::nullopt;
}

}  // namespace

const char* generation_label(HostGeneration generation) {
    return generation == HostGeneration::classic ? "classic" : "today";
}

InterfaceVersion usual_version(HostGeneration generation) {
    return generation == HostGeneration::classic ? InterfaceVersion{11, 0}
                                                 : InterfaceVersion{kFirstMajorOfToday, 0};
}

std::optional<HostKind> parse_host(std::string_view text) {
    if (const auto generation = parse_generation(text)) {
        return HostKind{*generation, usual_version(*generation)};
    }
    if (const auto version = parse_interface_version(text)) {
        return HostKind{version->major < kFirstMajorOfToday ? HostGeneration::classic : HostGeneration::today,
                        *version};
    }
    const auto parts = split_last(text, ':');
    if (!parts) {
        return std::nullopt;
    }
    const auto generation = parse_generation(parts->first);
    const auto version = parse_interface_version(parts->second);
    if (!generation || !version) {
        return std::nullopt;
    }
    return HostKind{*generation, *version};
}

std::optional<InterfaceVersion> parse_interface_version(std::string_view text) {
    const auto parts = split_last(text, '.');
    if (!parts) {
        return std::nullopt;
    }
    const auto major = whole_number<A_long>(parts->first);
    const auto minor = whole_number<A_long>(parts->second);
    if (!major || !minor || *major < 0 || *minor < 0) {
        return std::nullopt;
    }
    return InterfaceVersion{*major, *minor};
}

std::optional<SuiteName> parse_suite_name(std::string_view text) {
    const auto parts = split_last(text, ':');
    if (!parts || parts->first.empty()) {
        return std::nullopt;
    }
    const auto version = whole_number<A_long>(parts->second);
    if (!version) {
        return std::nullopt;
    }
    return SuiteName{std::string(parts->first), *version};
}

std::optional<Fault> parse_fault(std::string_view text) {
    const auto code_split = split_last(text, ':');
    if (!code_split) {
        return std::nullopt;
    }
    const auto nth_split = split_last(code_split->first, ':');
    if (!nth_split) {
        return std::nullopt;
    }
    const auto nth = whole_number<int>(nth_split->second);
    const auto code = whole_number<A_Err>(code_split->second);
    if (!nth || *nth < 1 || !code || *code == kHostErrorNone) {
        return std::nullopt;
    }
    const std::vector<HostFunction>& known = failable_functions();
    const bool exists = std::any_of(known.begin(), known.end(), [&](const HostFunction& function) {
        return function.function == nth_split->first;
    });
    if (!exists) {
        return std::nullopt;
    }
    return Fault{std::string(nth_split->first), *nth, *code};
}

const std::vector<HostFunction>& failable_functions() {
    static const std::vector<HostFunction> functions = [] {
        std::vector<HostFunction> all;
        for (const FunctionInfo& info : kFunctions) {
            if (info.can_fail) {
                all.push_back({suite_info(info.suite).name, info.name});
            }
        }
        return all;
    }();
    return functions;
}

std::vector<SuiteName> offered_suites(HostGeneration generation) {
    std::vector<SuiteName> all;
    for (const SuiteInfo& info : kSuites) {
        if (info.version(generation) != 0) {
            all.push_back({info.name, info.version(generation)});
        }
    }
    return all;
}

}  // namespace embedded
