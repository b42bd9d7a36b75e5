#include "cli/footage/finding_options.h"

#include "cli/options.h"
#include "system/files.h"

namespace cli {
namespace {

constexpr const char* kGroup = "Where footage is";

std::string check_folder(const std::string& text) {
    return os::file_state(text).kind == os::FileKind::folder ? std::string()
                                                             : '"' + text + "\" is not a folder";
}

}  // namespace

FinderOptions FindingChoices::finder_options() const {
    FinderOptions options;
    options.search = search;
    for (const std::string& map : maps) {
        options.maps.push_back(*parse_path_map(map));
    }
    options.prefer = parse_preference(prefer).value_or(Preference::none);
    return options;
}

void add_finding_options(Options& options, FindingChoices& choices, bool with_preference) {
    options
        .option("--search", choices.search,
                "look for footage in this folder and everything below it; may be repeated")
        .value_name("DIR")
        .one_value_at_a_time()
        .check(check_folder)
        .group(kGroup);
    options
        .option("--map", choices.maps,
                "look below TO for paths that begin with FROM, such as C:, \"Macintosh HD:Renders\" or "
                "\\\\server\\share; may be repeated")
        .value_name("FROM=TO")
        .one_value_at_a_time()
        .check([](const std::string& text) {
            return parse_path_map(text) ? std::string() : '"' + text + "\" is not FROM=TO";
        })
        .group(kGroup);
    if (with_preference) {
        options
            .option("--prefer", choices.prefer,
                    "which of several files of equal rank to take: newest, largest, or first in the order of "
                    "--search and --map")
            .value_name("newest|largest|first")
            .check([](const std::string& text) {
                return parse_preference(text) ? std::string()
                                              : '"' + text + "\" is neither newest, largest nor first";
            })
            .group(kGroup);
    }
}

}  // namespace cli
