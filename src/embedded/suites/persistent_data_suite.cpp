// "AEGP Persistent Data Suite" 1, in current hosts 3: the host's preferences.

#include <cstring>

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

constexpr A_u_long kMaxPreference_bytes = 1U << 20;

struct Key {
    AEGP_PersistentBlobH blob;
    const A_char* section;
    const A_char* key;

    void describe(CallValues& args) const {
        args.handle("blob", blob);
        args.text("section", section);
        args.text("key", key);
    }
    [[nodiscard]] PreferenceKey check(Session& session) const {
        session.id(blob, "blob");
        return {&session.require(section, "section"), &session.require(key, "key")};
    }
};

void describe_data(CallValues& values, const char* name, const void* data, A_u_long size) {
    values.bytes(name, size > kMaxPreference_bytes ? nullptr : data, size);
}

void check_size(Session& session, A_u_long size) {
    session.require_true(size >= 1 && size <= kMaxPreference_bytes, "size", "is out of range");
}

A_Err get_application_blob(AEGP_PersistentBlobH* blob) {
    return host_call(
        Fn::AEGP_GetApplicationBlob, [](CallValues&) {},
        [&](Session& session) -> A_Err {
            session.require(blob, "blob") = session.handles.handle<AEGP_PersistentBlobH>(1);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("blob", *blob); });
}

A_Err does_key_exist(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_Boolean* exists) {
    const Key wanted{blob, section, key};
    return host_call(
        Fn::AEGP_DoesKeyExist, [&](CallValues& args) { wanted.describe(args); },
        [&](Session& session) -> A_Err {
            const PreferenceKey preference = wanted.check(session);
            session.require(exists, "exists") = session.project.preferences.contains(preference) ? 1 : 0;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.flag("exists", *exists); });
}

A_Err get_data(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_u_long size,
               const void* default_data, void* data) {
    const Key wanted{blob, section, key};
    return host_call(
        Fn::AEGP_GetData,
        [&](CallValues& args) {
            wanted.describe(args);
            args.integer("size", size);
            describe_data(args, "default", default_data, size);
        },
        [&](Session& session) -> A_Err {
            const PreferenceKey preference = wanted.check(session);
            check_size(session, size);
            session.require_true(data != nullptr, "data", "is null");
            auto stored = session.project.preferences.find(preference);
            if (stored == session.project.preferences.end()) {
                // Reading a missing preference stores its default, as After Effects does.
                std::vector<std::uint8_t> value(size, 0);
                if (default_data != nullptr) {
                    std::memcpy(value.data(), default_data, size);
                }
                stored = session.project.preferences.emplace(preference, std::move(value)).first;
            }
            session.require_true(stored->second.size() == size, "size",
                                 "differs from the size of the stored value");
            std::memcpy(data, stored->second.data(), size);
            return kHostErrorNone;
        },
        [&](CallValues& out) { describe_data(out, "data", data, size); });
}

A_Err set_data(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_u_long size,
               const void* data) {
    const Key wanted{blob, section, key};
    return host_call(
        Fn::AEGP_SetData,
        [&](CallValues& args) {
            wanted.describe(args);
            args.integer("size", size);
            describe_data(args, "data", data, size);
        },
        [&](Session& session) -> A_Err {
            const PreferenceKey preference = wanted.check(session);
            check_size(session, size);
            session.require_true(data != nullptr, "data", "is null");
            const auto* bytes = static_cast<const std::uint8_t*>(data);
            session.project.preferences[preference].assign(bytes, bytes + size);
            return kHostErrorNone;
        });
}

template <class Table>
Table persistent_data_table() {
    auto suite = reserved_table<Table, SuiteId::persistent_data>();
    suite.AEGP_GetApplicationBlob = get_application_blob;
    suite.AEGP_DoesKeyExist = does_key_exist;
    suite.AEGP_GetData = get_data;
    suite.AEGP_SetData = set_data;
    return suite;
}

}  // namespace

const AEGP_PersistentDataSuite1* persistent_data_suite() {
    static const auto table = persistent_data_table<AEGP_PersistentDataSuite1>();
    return &table;
}

const AEGP_PersistentDataSuite3* persistent_data_suite_of_today() {
    static const auto table = persistent_data_table<AEGP_PersistentDataSuite3>();
    return &table;
}

}  // namespace embedded
