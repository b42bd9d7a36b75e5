#include "cli/verbs.h"

#include "cli/verb/check_command.h"
#include "cli/verb/doctor_command.h"
#include "cli/verb/frame_command.h"
#include "cli/verb/help_command.h"
#include "cli/verb/import_command.h"
#include "cli/verb/limits_command.h"
#include "cli/verb/modules_command.h"
#include "cli/verb/texture_check_command.h"
#include "cli/verb/texture_convert_command.h"
#include "cli/verb/texture_info_command.h"

namespace cli {

const std::vector<Verb>& verbs() {
    static const std::vector<Verb> kVerbs{
        import_verb(),          check_verb(), texture_info_verb(), texture_check_verb(),
        texture_convert_verb(), frame_verb(), modules_verb(),      limits_verb(),
        doctor_verb(),          help_verb(),  completion_verb(),
    };
    return kVerbs;
}

const std::vector<VerbGroup>& verb_groups() {
    static const std::vector<VerbGroup> kGroups{{"texture", "look at texture files, check and convert them"}};
    return kGroups;
}

}  // namespace cli
