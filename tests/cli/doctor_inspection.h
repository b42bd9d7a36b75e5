#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/doctor/inspection.h"
#include "support/made_binary.h"

// What the tests of the doctor's inspection share.

/// A load test in which every bundle is listed; loading has tests of its own.
inline cli::doctor::LoadTest listed(const std::string& /*binary*/, embedded::HostGeneration generation) {
    return {embedded::generation_label(generation),
            cli::doctor::LoadOutcome::listed,
            "",
            {{"importer", "x", {".x"}}},
            {}};
}

inline std::vector<std::string> codes_of(const cli::doctor::Diagnosis& diagnosis) {
    std::vector<std::string> codes;
    for (const diagnostic::Diagnostic& finding : diagnosis.findings) {
        codes.emplace_back(finding.code.name());
    }
    return codes;
}

inline cli::doctor::Answer answer(const cli::doctor::Diagnosis& diagnosis, const std::string& platform,
                                  const std::string& generation) {
    for (const cli::doctor::Compatibility& host : diagnosis.compatibility) {
        if (host.platform == platform && host.generation == generation) {
            return host.answer;
        }
    }
    ADD_FAILURE() << "no answer for " << platform << ", " << generation;
    return cli::doctor::Answer::no;
}

/// The usual properties with one of them replaced, or left out when its data is empty.
inline std::string properties_with(bool windows, const MadeProperty& changed) {
    std::vector<MadeProperty> properties;
    for (const MadeProperty& property : usual_properties(windows)) {
        if (property.key != changed.key) {
            properties.push_back(property);
        } else if (!changed.data.empty()) {
            properties.push_back(changed);
        }
    }
    return made_property_list({.windows = windows, .properties = properties});
}
