#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "embedded/host_options.h"

/// The generation of hosts that the test program runs for. The build runs every end-to-end test program once
/// for each and names it in VXR_TESTED_HOST; a program that is run by hand without it tests current hosts.
inline embedded::HostGeneration tested_generation() {
    const char* named = std::getenv("VXR_TESTED_HOST");
    const auto kind = embedded::parse_host(named == nullptr ? "today" : named);
    if (!kind) {
        throw std::runtime_error("VXR_TESTED_HOST names no kind of host: " + std::string(named));
    }
    return kind->generation;
}

inline bool tests_today() {
    return tested_generation() == embedded::HostGeneration::today;
}

/// The suite of this name in every version that the tested host offers, the classic one first.
inline std::vector<embedded::SuiteName> offered_suites_of(const std::string& name) {
    std::vector<embedded::SuiteName> found;
    for (const embedded::SuiteName& suite : embedded::offered_suites(tested_generation())) {
        if (suite.name == name) {
            found.push_back(suite);
        }
    }
    if (found.empty()) {
        throw std::runtime_error("no suite " + name);
    }
    return found;
}

/// What the user reads when a callback lacks a suite that the tested host withholds. A classic host gets the
/// exception and shows nothing; for a current host the bridge stops the exception and reports the suite.
inline std::vector<std::string> missing_suite_messages(const std::string& name) {
    if (!tests_today()) {
        return {};
    }
    const embedded::SuiteName suite = offered_suites_of(name).front();
    return {"This plug-in needs the suite \"" + suite.name + "\" " + std::to_string(suite.version) +
            ", which the host does not offer."};
}
