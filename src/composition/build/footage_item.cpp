#include "composition/build/footage_item.h"

#include <algorithm>
#include <string_view>

#include "composition/build/host_values.h"
#include "composition/model/composition.h"
#include "composition/model/project_settings.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"
#include "texture/file/base_file.h"

namespace {

A_Err new_file_footage(AEGP_SuiteHandler& suites, const CFileItem& file, AEGP_FootageH* footage) {
    // A null sequence record means a single image, even if the folder holds a sequence of that name.
    const AEGP_FileSequenceImportOptions whole_sequence = {1, 0, -1, -1};
    return suites.FootageSuite7()->AEGP_NewFootage(g_PluginID, file.path, nullptr,
                                                   file.isSequence != 0 ? &whole_sequence : nullptr,
                                                   kInterpretationGuessWithoutDialog, nullptr, footage);
}

A_Err new_placeholder(AEGP_SuiteHandler& suites, const char* path, const tagProjectSettings& settings,
                      std::size_t name_bytes, AEGP_FootageH* footage) {
    std::string_view component(path);
    component.remove_prefix(component.find_last_of(":\\/") + 1);  // npos + 1 is 0: the whole path
    char name[kLayerPlaceholderNameBytes + 1] = {};
    component.copy(name, std::min(name_bytes, kLayerPlaceholderNameBytes));

    const A_Time duration = range_duration(settings.from, settings.to, settings.fps);
    return suites.FootageSuite7()->AEGP_NewPlaceholderFootage(g_PluginID, name, settings.width,
                                                              settings.height, &duration, footage);
}

}  // namespace

A_Err add_footage_item(AEGP_SuiteHandler& suites, const CFileItem& file, const tagProjectSettings& settings,
                       std::size_t placeholder_name_bytes, AEGP_ItemH folder, FootageItem* made) {
    *made = {};
    A_Err err = GeFExist(file.path) != 0 ? new_file_footage(suites, file, &made->footage)
                                         : new_placeholder(suites, file.path != nullptr ? file.path : "",
                                                           settings, placeholder_name_bytes, &made->footage);
    err = require_handle(err, made->footage);
    if (err != kHostErrorNone) {
        return err;
    }
    err = suites.FootageSuite7()->AEGP_AddFootageToProject(made->footage, folder, &made->item);
    return require_handle(err, made->item);
}
