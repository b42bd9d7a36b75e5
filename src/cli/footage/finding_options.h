#pragma once

#include <string>
#include <vector>

#include "cli/footage/footage_finder.h"

namespace cli {

class Options;

/// What the user says about where footage is today, for every verb that looks for it.
struct FindingChoices {
    std::vector<std::string> search;
    std::vector<std::string> maps;
    std::string prefer;

    [[nodiscard]] bool given() const { return !search.empty() || !maps.empty(); }
    /// As the finder takes them. They have been checked.
    [[nodiscard]] FinderOptions finder_options() const;
};

/// Adds --search and --map, and --prefer where `with_preference`.
void add_finding_options(Options& options, FindingChoices& choices, bool with_preference);

}  // namespace cli
