// "AEGP File Import Manager Suite" 2, in current hosts 3: importers.

#include "embedded/module_driver.h"
#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

constexpr A_long kMaxKinds = 1000;  // above any real count, below most uninitialised ones

ImportFlavor& flavor_of(Session& session, AE_FIM_ImportFlavorRef ref) {
    const bool known = ref >= 1 && static_cast<std::size_t>(ref) <= session.flavors.size();
    session.require_true(known, "flavor", "was never registered");
    return session.flavors[static_cast<std::size_t>(ref) - 1];
}

A_Err register_flavor(const A_char* name, AE_FIM_ImportFlavorRef* flavor) {
    return host_call(
        Fn::AEGP_RegisterImportFlavor, [&](CallValues& args) { args.text("name", name); },
        [&](Session& session) -> A_Err {
            session.require(name, "name");
            session.require(flavor, "flavor");
            ImportFlavor& made = session.flavors.emplace_back();
            made.ref = static_cast<AE_FIM_ImportFlavorRef>(session.flavors.size());
            made.name = name;
            *flavor = made.ref;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.integer("flavor", *flavor); });
}

A_Err register_file_types(AE_FIM_ImportFlavorRef flavor, A_long num_kinds, const AEIO_FileKind* kinds,
                          A_long num_extensions, const AEIO_FileKind* extensions) {
    return host_call(
        Fn::AEGP_RegisterImportFlavorFileTypes,
        [&](CallValues& args) {
            args.integer("flavor", flavor);
            args.integer("num_kinds", num_kinds);
            args.file_types("kinds", num_kinds > kMaxKinds ? nullptr : kinds, num_kinds);
            args.integer("num_extensions", num_extensions);
            args.extensions("extensions", num_extensions > kMaxKinds ? nullptr : extensions, num_extensions);
        },
        [&](Session& session) -> A_Err {
            ImportFlavor& registered = flavor_of(session, flavor);
            session.require_true(num_kinds >= 0 && num_kinds <= kMaxKinds, "num_kinds", "is out of range");
            session.require_true(num_extensions >= 0 && num_extensions <= kMaxKinds, "num_extensions",
                                 "is out of range");
            session.require_true(num_kinds == 0 || kinds != nullptr, "kinds", "is null");
            session.require_true(num_extensions == 0 || extensions != nullptr, "extensions", "is null");
            for (A_long i = 0; i < num_kinds; ++i) {
                registered.file_types.push_back(kinds[i].mac);
            }
            for (A_long i = 0; i < num_extensions; ++i) {
                registered.extensions.push_back(extension_text(extensions[i].ext));
            }
            return kHostErrorNone;
        });
}

/// The callbacks of the two generations take different paths.
template <class Callbacks>
A_Err register_callbacks(AE_FIM_ImportFlavorRef flavor, AE_FIM_ImportFlags flags,
                         const Callbacks* callbacks) {
    return host_call(
        Fn::AEGP_RegisterImportFlavorImportCallbacks,
        [&](CallValues& args) {
            args.integer("flavor", flavor);
            args.integer("flags", flags);
            if (callbacks == nullptr) {
                args.pointer("callbacks", nullptr);
                return;
            }
            CallValues record(*Session::active());
            record.pointer("refcon", callbacks->refcon);
            record.present("import_cb", callbacks->import_cb != nullptr);
            record.present("verify_cb", callbacks->verify_cb != nullptr);
            args.record("callbacks", record);
        },
        [&](Session& session) -> A_Err {
            ImportFlavor& registered = flavor_of(session, flavor);
            session.require(callbacks, "callbacks");
            session.require_true(callbacks->import_cb != nullptr, "callbacks.import_cb", "is null");
            session.require_true(callbacks->verify_cb != nullptr, "callbacks.verify_cb", "is null");
            registered.flags = flags;
            registered.callbacks = *callbacks;
            return kHostErrorNone;
        });
}

template <class Table>
Table import_manager_table() {
    auto suite = reserved_table<Table, SuiteId::import_manager>();
    suite.AEGP_RegisterImportFlavor = register_flavor;
    suite.AEGP_RegisterImportFlavorFileTypes = register_file_types;
    suite.AEGP_RegisterImportFlavorImportCallbacks = register_callbacks;
    return suite;
}

}  // namespace

const AEGP_FileImportManagerSuite2* import_manager_suite() {
    static const auto table = import_manager_table<AEGP_FileImportManagerSuite2>();
    return &table;
}

const AEGP_FileImportManagerSuite3* import_manager_suite_of_today() {
    static const auto table = import_manager_table<AEGP_FileImportManagerSuite3>();
    return &table;
}

}  // namespace embedded
