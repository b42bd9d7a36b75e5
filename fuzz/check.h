#pragma once

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

// What a target does when something is not as it must be: it says so and ends the process, which is what the
// fuzzer and ctest notice.

[[noreturn]] inline void report_find(const std::string& what) {
    std::fprintf(stderr, "find: %s\n", what.c_str());
    std::abort();
}

/// `rule` says what must hold.
inline void require(bool holds, const char* rule) {
    if (!holds) {
        report_find(rule);
    }
}

/// For the validators, which have nothing to say about a sound result.
inline void require_sound(const std::optional<std::string>& complaint) {
    if (complaint) {
        report_find(*complaint);
    }
}
