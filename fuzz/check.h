#pragma once

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

// How a target reports a broken rule: it prints the rule and ends the process, which the fuzzer and ctest
// notice.

[[noreturn]] inline void report_find(const std::string& what) {
    std::fprintf(stderr, "find: %s\n", what.c_str());
    std::abort();
}

/// `rule` is the sentence that must be true.
inline void require(bool holds, const char* rule) {
    if (!holds) {
        report_find(rule);
    }
}

/// For the validators, which return nothing for a sound result.
inline void require_sound(const std::optional<std::string>& violation) {
    if (violation) {
        report_find(*violation);
    }
}
