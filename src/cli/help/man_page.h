#pragma once

#include <string>
#include <vector>

#include "cli/help/page.h"

namespace cli {

/// The manual page vxr(1) in man macros: the first page is the program's, every other one becomes a section.
/// `version` is "vxr 1.0.0".
std::string man_page(const std::vector<Page>& pages, const std::string& version);

}  // namespace cli
