#include "cli/verbs.h"

#include "cli/check_command.h"
#include "cli/help_command.h"
#include "cli/import_command.h"

namespace cli {

const std::vector<Verb>& verbs() {
    static const std::vector<Verb> kVerbs{
        import_verb(),
        check_verb(),
        help_verb(),
        completion_verb(),
    };
    return kVerbs;
}

const std::vector<VerbGroup>& verb_groups() {
    static const std::vector<VerbGroup> kGroups{};
    return kGroups;
}

}  // namespace cli
