// "AEGP Register Suite" 4, in current hosts 6: what a bundle registers for the life of the host.

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

A_Err register_death_hook(AEGP_PluginID plugin_id, AEGP_DeathHook hook, AEGP_DeathRefcon refcon) {
    return host_call(
        Fn::AEGP_RegisterDeathHook,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.present("hook", hook != nullptr);
            args.pointer("refcon", refcon);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            session.require_true(hook != nullptr, "hook", "is null");
            session.death_hooks.emplace_back(hook, refcon);
            return kHostErrorNone;
        });
}

template <class Block>
constexpr std::size_t kFields = sizeof(Block) / sizeof(ReservedSlot);

/// How many functions of the block are not null.
template <class Block>
std::size_t filled_functions(const Block& functions) {
    const auto slots = std::bit_cast<std::array<void (*)(), kFields<Block>>>(functions);
    return static_cast<std::size_t>(
        std::count_if(slots.begin(), slots.end(), [](auto function) { return function != nullptr; }));
}

/// The block of current hosts has more functions, which take UTF-16 paths.
template <class Block>
A_Err register_io(AEGP_PluginID plugin_id, AEGP_IORefcon refcon, const AEIO_ModuleInfo* info,
                  const Block* functions) {
    return host_call(
        Fn::AEGP_RegisterIO,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.pointer("refcon", refcon);
            args.module_info("info", info);
            if (functions == nullptr) {
                args.pointer("functions", nullptr);
                return;
            }
            CallValues record(*Session::active());
            record.integer("filled", filled_functions(*functions));
            args.record("functions", record);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            session.require(info, "info");
            session.require(functions, "functions");
            session.require_true(filled_functions(*functions) == kFields<Block>, "functions",
                                 "has null fields");
            session.require_true(std::find(info->name, std::end(info->name), '\0') != std::end(info->name),
                                 "info.name", "is not terminated");
            const auto in_range = [](A_short count) { return count >= 0 && count <= kMaxFileKinds; };
            session.require_true(in_range(info->num_filetypes) && in_range(info->num_extensions) &&
                                     info->num_filetypes + info->num_extensions <= kMaxFileKinds &&
                                     in_range(info->num_aux_extensions),
                                 "info", "counts more kinds of files than its table holds");
            session.modules.push_back({refcon, *info, *functions});
            return kHostErrorNone;
        });
}

template <class Table>
Table registration_table() {
    auto suite = reserved_table<Table, SuiteId::registration>();
    suite.AEGP_RegisterDeathHook = register_death_hook;
    suite.AEGP_RegisterIO = register_io;
    return suite;
}

}  // namespace

const AEGP_RegisterSuite4* registration_suite() {
    static const auto table = registration_table<AEGP_RegisterSuite4>();
    return &table;
}

const AEGP_RegisterSuite6* registration_suite_of_today() {
    static const auto table = registration_table<AEGP_RegisterSuite6>();
    return &table;
}

}  // namespace embedded
