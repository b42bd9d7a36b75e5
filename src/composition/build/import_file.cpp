#include "composition/build/import_file.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "composition/build/footage_item.h"
#include "composition/build/host_values.h"
#include "composition/build/import_guards.h"
#include "composition/build/scene_comp.h"
#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"

namespace {

/// Tests that the host offers the suite, none of whose functions is called. Deliberately asks the basic suite
/// directly: a success without a suite ends the import silently, where the suite handler would throw.
A_Err test_adv_app_suite(bool* offered) {
    constexpr const char* kName = "PF AE Adv App Suite";
    constexpr A_long kVersion = 1;
    const void* suite = nullptr;
    const A_Err err = g_pBasicSuite->AcquireSuite(kName, kVersion, &suite);
    *offered = err == kHostErrorNone && suite != nullptr;
    return *offered ? g_pBasicSuite->ReleaseSuite(kName, kVersion) : err;
}

A_Err root_folder_of_project(AEGP_SuiteHandler& suites, AEGP_ItemH* root_folder) {
    AEGP_ProjectH project = nullptr;
    A_Err err = suites.ProjSuite5()->AEGP_GetProjectByIndex(0, &project);
    err = require_handle(err, project);
    if (err != kHostErrorNone) {
        return err;
    }
    err = suites.ProjSuite5()->AEGP_GetProjectRootFolder(project, root_folder);
    return require_handle(err, *root_folder);
}

/// Adds the footage that belongs to no composition to a folder of its own, which is created only for such
/// footage.
A_Err add_top_level_footage(AEGP_SuiteHandler& suites, tagProjectSettings& settings, AEGP_ItemH root_folder) {
    AEGP_ItemH folder = nullptr;
    for (CCompoChild* child = settings.files.First(); child != nullptr; child = settings.files.Next(child)) {
        if (child->type != kChildFile) {
            continue;
        }
        A_Err err = kHostErrorNone;
        if (folder == nullptr) {
            err = suites.ItemSuite10()->AEGP_CreateNewFolder(g_pCh_Others, root_folder, &folder);
            err = require_handle(err, folder);
            if (err != kHostErrorNone) {
                return err;
            }
        }
        CFileItem& file = *child->item.file;
        FootageItem made;
        err = add_footage_item(suites, file, settings, kTopLevelPlaceholderNameBytes, folder, &made);
        if (err != kHostErrorNone) {
            return err;
        }
        err = file.InterpretFootage(&suites, made.footage, made.item, &settings, file.path);
        if (err != kHostErrorNone) {
            return err;
        }
    }
    return kHostErrorNone;
}

A_Err build_project(AEGP_SuiteHandler& suites, tagProjectSettings& settings) {
    AEGP_ItemH root_folder = nullptr;
    A_Err err = root_folder_of_project(suites, &root_folder);
    if (err != kHostErrorNone) {
        return err;
    }
    err = settings.composition.CreateComposition(&suites, root_folder, &settings);
    if (err != kHostErrorNone) {
        return err;
    }
    err = add_top_level_footage(suites, settings, root_folder);
    if (err != kHostErrorNone) {
        return err;
    }
    // Older hosts have no camera, light and null layers.
    return version55 ? add_scene_objects(suites, settings) : kHostErrorNone;
}

A_Err read_and_build(ASCIIParser& parser, tagProjectSettings& settings, AEGP_SuiteHandler& suites) {
    const AlphaPreferenceGuard alpha_preference(suites);
    // Deliberately silent: a file with a grammar error is ignored as a whole.
    if (read_composition_file(parser, settings) == 0) {
        return kHostErrorNone;
    }
    bool offered = false;
    const A_Err err = test_adv_app_suite(&offered);
    if (err != kHostErrorNone || !offered) {
        return err;
    }
    const UndoGroup undo_group(suites, g_pCh_Import_media);
    return undo_group.Error() != kHostErrorNone ? undo_group.Error() : build_project(suites, settings);
}

/// Deliberately shows the line where reading stopped, which is the end of the file: building begins only
/// after that.
void report_error(AEGP_SuiteHandler& suites, A_long line) {
    constexpr std::size_t kRoomForTheLine = 20;
    const std::size_t size = std::strlen(g_pCh_Error_loading_file) + kRoomForTheLine;
    const std::unique_ptr<char[]> text(new (std::nothrow) char[size]);
    if (text == nullptr) {
        return;  // the result still reports the failure; only a missing suite may throw
    }
    std::snprintf(text.get(), size, g_pCh_Error_loading_file, line);
    suites.UtilitySuite7()->AEGP_ReportInfo(g_PluginID, text.get());
}

}  // namespace

A_Err import_composition_file(const A_char* path, ReadObserver* observer) {
    ASCIIParser parser;
    parser.SetObserver(observer);
    if (parser.Init(Filename(path), 1, 0) != 0) {
        return kHostErrorParameter;
    }
    tagProjectSettings settings;
    AEGP_SuiteHandler suites(g_pBasicSuite);
    const A_Err err = read_and_build(parser, settings, suites);
    if (err != kHostErrorNone) {
        report_error(suites, parser.line);
    }
    return err;
}

A_Err ImportFile(const A_char* path, AE_FIM_ImportOptions /*options*/, AE_FIM_SpecialAction /*userRequest*/,
                 AEGP_ItemH /*item*/, AE_FIM_Refcon /*refcon*/) {
    return import_composition_file(path, nullptr);
}
