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

/// The suite of this name in the version that the tested host offers.
inline embedded::SuiteName offered_suite(const std::string& name) {
    for (const embedded::SuiteName& suite : embedded::offered_suites(tested_generation())) {
        if (suite.name == name) {
            return suite;
        }
    }
    throw std::runtime_error("no suite " + name);
}

/// What the user reads when a callback lacks a suite that the tested host withholds. A classic host gets the
/// exception and shows nothing; for a current host the bridge stops the exception and reports the suite.
inline std::vector<std::string> missing_suite_messages(const std::string& name) {
    if (!tests_today()) {
        return {};
    }
    const embedded::SuiteName suite = offered_suite(name);
    return {"This plug-in needs the suite \"" + suite.name + "\" " + std::to_string(suite.version) +
            ", which the host does not offer."};
}
