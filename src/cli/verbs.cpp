#include "cli/verbs.h"

namespace cli {

const std::vector<Verb>& verbs() {
    static const std::vector<Verb> kVerbs{
        import_verb(),
        check_verb(),
        relink_verb(),
        collect_verb(),
        export_verb(),
        preview_verb(),
        proof_verb(),
        report_verb(),
        texture_info_verb(),
        texture_check_verb(),
        texture_sheet_verb(),
        texture_view_verb(),
        texture_thumbnail_verb(),
        texture_convert_verb(),
        frame_verb(),
        batch_plan_verb(),
        batch_run_verb(),
        batch_submit_verb(),
        batch_status_verb(),
        batch_merge_verb(),
        batch_retry_verb(),
        modules_verb(),
        limits_verb(),
        doctor_verb(),
        help_verb(),
        completion_verb(),
    };
    return kVerbs;
}

const std::vector<VerbGroup>& verb_groups() {
    static const std::vector<VerbGroup> kGroups{
        {"texture", "look at texture files, check and convert them"},
        {"batch", "do the same with thousands of files, here or on a scheduler"},
    };
    return kGroups;
}

}  // namespace cli
