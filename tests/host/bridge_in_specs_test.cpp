// The options that a module attaches to an in-spec of a current host, as the module sees them later.

#include <gtest/gtest.h>

#include "host/bridged_plugin.h"

namespace {

void* hosts_options = nullptr;  ///< what the host keeps for its one in-spec
void* seen_options = nullptr;   ///< what the module found attached when it disposed of the in-spec
int picture = 0;                ///< what the module attaches

const AEGP_IOInSuite5 kHostsSuite = [] {
    AEGP_IOInSuite5 suite = {};
    suite.AEGP_GetInSpecOptionsHandle = [](AEIO_InSpecH, void** options) {
        *options = hosts_options;
        return A_Err{0};
    };
    suite.AEGP_SetInSpecOptionsHandle = [](AEIO_InSpecH, void* options, void** old_options) {
        *old_options = hosts_options;
        hosts_options = options;
        return A_Err{0};
    };
    return suite;
}();

const AEGP_IOInSuite1* specs_of(const AEIO_BasicData* data) {
    return acquired<AEGP_IOInSuite1>(data->basic_suite, "AEGP IO In Suite", 1);
}

AEIO_FunctionBlock2 module_functions() {
    AEIO_FunctionBlock2 functions = {};
    functions.AEIO_InitInSpecFromFile = [](AEIO_BasicData* data, const A_char*, AEIO_InSpecH spec) {
        void* old = nullptr;
        return specs_of(data)->AEGP_SetInSpecOptionsHandle(spec, &picture, &old);
    };
    functions.AEIO_DisposeInSpec = [](AEIO_BasicData* data, AEIO_InSpecH spec) {
        return specs_of(data)->AEGP_GetInSpecOptionsHandle(spec, &seen_options);
    };
    return functions;
}

class BridgeInSpecs : public ::testing::Test {
  protected:
    BridgeInSpecs() {
        hosts_options = nullptr;
        host.offer_suite("AEGP IO In Suite", 5, &kHostsSuite);
        const auto* registers = acquired<AEGP_RegisterSuite4>(bridge_over(host), "AEGP Register Suite", 4);
        const AEIO_ModuleInfo info = {};
        const AEIO_FunctionBlock2 functions = module_functions();
        EXPECT_EQ(registers->AEGP_RegisterIO(7, nullptr, &info, &functions), 0);
        data = *host.basic_data();
    }
    void open() { EXPECT_EQ(module().AEIO_InitInSpecFromFile(&data, u"/a.txl", spec), 0); }
    /// Disposes of the in-spec and returns what the module then finds attached.
    const void* options_when_disposed() {
        seen_options = &data;
        EXPECT_EQ(module().AEIO_DisposeInSpec(&data, spec), 0);
        return seen_options;
    }

    CurrentHost host;
    AEIO_BasicData data = {};
    const AEIO_InSpecH spec = some_handle<AEIO_InSpecH>(0x50);

  private:
    AEIO_FunctionBlock4& module() { return host.modules.at(0).second; }
};

TEST_F(BridgeInSpecs, ShowAModuleTheOptionsThatItAttached) {
    open();
    EXPECT_EQ(hosts_options, &picture);
    EXPECT_EQ(options_when_disposed(), &picture);
}

// A copy of a project may hold the address of options that are gone. Freeing them twice would end the host.
TEST_F(BridgeInSpecs, HideOptionsThatTheModuleHasDisposedOf) {
    open();
    EXPECT_EQ(options_when_disposed(), &picture);
    EXPECT_EQ(options_when_disposed(), nullptr);
}

TEST_F(BridgeInSpecs, HideOptionsThatNoModuleAttached) {
    int from_the_project_file = 0;
    hosts_options = &from_the_project_file;
    EXPECT_EQ(options_when_disposed(), nullptr);
}

}  // namespace
