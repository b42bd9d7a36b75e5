// "AEGP Register Suite" 4 and "AEGP File Import Manager Suite" 2: what the plug-in registers until the host
// quits, and the functions that the host gets in its place.

#include <array>
#include <utility>

#include "host/bridge/basic_suite.h"
#include "host/bridge/given_argument.h"
#include "host/bridge/guarded_call.h"
#include "host/bridge/path_translation.h"
#include "host/bridge/pictures.h"
#include "host/bridge/registrations.h"
#include "host/bridge/reports.h"
#include "host/bridge/underlying_host.h"
#include "host/byte_encoding.h"
#include "system/open_regular_file.h"

namespace bridge {
namespace {

Registrations<AEGP_DeathHook> death_hooks;
Registrations<AE_FIM_ImportCallbacks> importers;

template <std::size_t Place>
A_Err death_hook(AEGP_GlobalRefcon global_refcon, AEGP_DeathRefcon refcon) {
    return guarded([=] {
        free_reloaded_pictures();
        return death_hooks[Place](global_refcon, refcon);
    });
}

template <std::size_t Place>
A_Err import_file(const A_UTF16Char* path, AE_FIM_ImportOptions options, AE_FIM_SpecialAction action,
                  AEGP_ItemH folder, AE_FIM_Refcon refcon) {
    return guarded([=] {
        std::string narrow;
        const A_Err err = narrow_path(path, &narrow);
        if (err != kHostErrorNone) {
            return err;
        }
        // Current systems name files in Unicode; old composition files name footage in other encodings.
        const os::PathGuesses guesses(paths_in_other_encodings);
        return importers[Place].import_cb(narrow.c_str(), options, action, folder, refcon);
    });
}

template <std::size_t Place>
A_Err verify_file(const A_UTF16Char* path, AE_FIM_Refcon refcon, A_Boolean* importable) {
    return guarded([=] {
        // A file whose path cannot be converted is not importable; otherwise the plug-in answers.
        const GivenArgument<A_Boolean*> answer(importable);
        std::string narrow;
        const A_Err err = narrow_path(path, &narrow);
        return err != kHostErrorNone ? err : importers[Place].verify_cb(narrow.c_str(), refcon, answer.get());
    });
}

AEGP_DeathHook death_hook_at(std::size_t place) {
    return [place]<std::size_t... Place>(std::index_sequence<Place...>) {
        constexpr AEGP_DeathHook kHooks[] = {death_hook<Place>...};
        return kHooks[place];
    }
    (std::make_index_sequence<kPlaces>());
}

AE_FIM_ImportCallbacks3 import_callbacks_at(std::size_t place) {
    const AE_FIM_ImportCallbacks& classic = importers[place];
    AE_FIM_ImportCallbacks3 current = {};
    current.refcon = classic.refcon;
    [&classic, &current, place ]<std::size_t... Place>(std::index_sequence<Place...>) {
        constexpr AE_FIM_ImportFileCB3 kImports[] = {import_file<Place>...};
        constexpr AE_FIM_VerifyFileCB3 kVerifies[] = {verify_file<Place>...};
        current.import_cb = classic.import_cb == nullptr ? nullptr : kImports[place];
        current.verify_cb = classic.verify_cb == nullptr ? nullptr : kVerifies[place];
    }
    (std::make_index_sequence<kPlaces>());
    return current;
}

// Claims a place for `record` and registers it by `tell_host(place)`. The place is freed again if the host
// refuses.
template <typename Record, typename TellHost>
A_Err register_at_place(Registrations<Record>* registrations, const Record& record, const A_char* things,
                        const TellHost& tell_host) {
    const std::optional<std::size_t> place = registrations->claim(record);
    if (!place) {
        report_no_room(things, kPlaces);
        return kHostErrorGeneric;
    }
    const A_Err err = tell_host(*place);
    if (err != kHostErrorNone) {
        registrations->give_back(*place);
    }
    return err;
}

A_Err register_death_hook(AEGP_PluginID plugin_id, AEGP_DeathHook hook, AEGP_DeathRefcon refcon) {
    const auto* suite = current_suite<AEGP_RegisterSuite6>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    if (hook == nullptr) {
        return answer_of([=] { return suite->AEGP_RegisterDeathHook(plugin_id, nullptr, refcon); });
    }
    return register_at_place(&death_hooks, hook, "death hooks", [=](std::size_t place) {
        return answer_of(
            [=] { return suite->AEGP_RegisterDeathHook(plugin_id, death_hook_at(place), refcon); });
    });
}

A_Err register_io(AEGP_PluginID plugin_id, AEGP_IORefcon refcon, const AEIO_ModuleInfo* info,
                  const AEIO_FunctionBlock2* functions) {
    const auto* suite = current_suite<AEGP_RegisterSuite6>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    if (functions == nullptr) {
        return answer_of([=] { return suite->AEGP_RegisterIO(plugin_id, refcon, info, nullptr); });
    }
    return register_at_place(&input_modules, *functions, "input modules", [=](std::size_t place) {
        const AEIO_FunctionBlock4 block = function_block_at(place);
        return answer_of([&] { return suite->AEGP_RegisterIO(plugin_id, refcon, info, &block); });
    });
}

A_Err register_import_callbacks(AE_FIM_ImportFlavorRef flavor, AE_FIM_ImportFlags flags,
                                const AE_FIM_ImportCallbacks* callbacks) {
    const auto* suite = current_suite<AEGP_FileImportManagerSuite3>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    if (callbacks == nullptr) {
        return answer_of(
            [=] { return suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, flags, nullptr); });
    }
    return register_at_place(&importers, *callbacks, "importers", [=](std::size_t place) {
        const AE_FIM_ImportCallbacks3 current_callbacks = import_callbacks_at(place);
        return answer_of([&] {
            return suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, flags, &current_callbacks);
        });
    });
}

}  // namespace

const AEGP_RegisterSuite4* register_suite() {
    static constexpr AEGP_RegisterSuite4 kTable = [] {
        AEGP_RegisterSuite4 suite = {};
        suite.AEGP_RegisterDeathHook = register_death_hook;
        suite.AEGP_RegisterIO = register_io;
        return suite;
    }();
    return &kTable;
}

const AEGP_FileImportManagerSuite2* file_import_manager_suite() {
    static constexpr AEGP_FileImportManagerSuite2 kTable = [] {
        using Current = AEGP_FileImportManagerSuite3;
        AEGP_FileImportManagerSuite2 suite = {};
        suite.AEGP_RegisterImportFlavor = Forward<&Current::AEGP_RegisterImportFlavor>::call;
        suite.AEGP_RegisterImportFlavorFileTypes =
            Forward<&Current::AEGP_RegisterImportFlavorFileTypes>::call;
        suite.AEGP_RegisterImportFlavorImportCallbacks = register_import_callbacks;
        return suite;
    }();
    return &kTable;
}

void forget_registrations() {
    death_hooks.give_back_all();
    importers.give_back_all();
    input_modules.give_back_all();
}

}  // namespace bridge
