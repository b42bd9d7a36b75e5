#include "embedded/testing.h"

#include <stdexcept>

#include "embedded/module_driver.h"
#include "embedded/session.h"

namespace embedded {
namespace {

void require_generation(const Session& session, HostGeneration generation) {
    if (session.options.generation != generation) {
        throw std::logic_error("the entry point is for another generation of hosts");
    }
}

}  // namespace

LoadResult TestHost::load_entry(AEGP_PluginInitFunc entry) {
    require_generation(session(), HostGeneration::classic);
    unload();
    return session().call_entry(entry, "");
}

LoadResult TestHost::load_entry(AEGP_PluginInitFuncCurrent entry) {
    require_generation(session(), HostGeneration::today);
    unload();
    return session().call_entry(entry);
}

void TestHost::watch(Watcher watcher) {
    session().watcher = std::move(watcher);
}

SPBasicSuite* TestHost::basic_suite() {
    return basic_suite_table();
}

AEGP_PluginID TestHost::plugin_id() const {
    return session().plugin_id;
}

AEIO_BasicData* TestHost::basic_data() {
    return &session().basic_data;
}

Id TestHost::new_in_spec(const std::string& path) {
    const Id made = make_in_spec(session(), path);
    if (const Module* module = module_for(path)) {
        session().in_spec(made).module_signature = module->info.signature;
    }
    return made;
}

AEIO_InSpecH TestHost::in_spec_handle(Id in_spec) const {
    return session().handles.handle<AEIO_InSpecH>(in_spec);
}

AEIO_OutSpecH TestHost::new_out_spec(const std::string& path) {
    session().out_spec_paths.push_back(path);
    return session().handles.make<AEIO_OutSpecH>();
}

CallbackResult TestHost::run(const std::string& name, const std::function<A_Err()>& body) {
    return session().run(name, body);
}

}  // namespace embedded
