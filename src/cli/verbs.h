#pragma once

#include <vector>

#include "cli/command.h"

// The one table of what the program can do. A new verb is a source in verb/, its declaration here, and a line
// in verbs.cpp.

namespace cli {

Verb import_verb();             ///< `vxr import FILE...`
Verb check_verb();              ///< `vxr check FILE...`
Verb relink_verb();             ///< `vxr relink SCENE...`
Verb collect_verb();            ///< `vxr collect SCENE... -o FOLDER`
Verb preview_verb();            ///< `vxr preview SCENE -o IMAGE`
Verb proof_verb();              ///< `vxr proof SCENE`
Verb report_verb();             ///< `vxr report SCENE... -o FILE.html`
Verb export_verb();             ///< `vxr export SCENE... --to FORMAT`
Verb texture_info_verb();       ///< `vxr texture info FILE...`
Verb texture_check_verb();      ///< `vxr texture check FILE...`
Verb texture_sheet_verb();      ///< `vxr texture sheet FILE... -o IMAGE`
Verb texture_view_verb();       ///< `vxr texture view FILE`
Verb texture_thumbnail_verb();  ///< `vxr texture thumbnail IN OUT SIZE`
Verb texture_convert_verb();    ///< `vxr texture convert IN...`
Verb frame_verb();              ///< `vxr frame FILE -o IMAGE`
Verb batch_plan_verb();         ///< `vxr batch plan JOB.toml`
Verb batch_run_verb();          ///< `vxr batch run JOB`
Verb batch_submit_verb();       ///< `vxr batch submit JOB --on SCHEDULER`
Verb batch_status_verb();       ///< `vxr batch status JOB`
Verb batch_merge_verb();        ///< `vxr batch merge JOB`
Verb batch_retry_verb();        ///< `vxr batch retry JOB --failed`
Verb modules_verb();            ///< `vxr modules`
Verb limits_verb();             ///< `vxr limits`
Verb doctor_verb();             ///< `vxr doctor [BUNDLE]`
Verb help_verb();               ///< `vxr help [VERB...]` and `vxr help --man`
Verb completion_verb();         ///< `vxr completion SHELL`

/// Every verb, in the order of the help.
const std::vector<Verb>& verbs();

/// A row for every first word that several verbs share.
const std::vector<VerbGroup>& verb_groups();

}  // namespace cli
