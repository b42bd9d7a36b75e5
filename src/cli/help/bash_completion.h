#pragma once

#include <string>
#include <vector>

#include "cli/help/page.h"

namespace cli {

/// A bash script that completes verbs, options and file names; `pages` as from program_pages().
std::string bash_completion(const std::vector<Page>& pages);

}  // namespace cli
