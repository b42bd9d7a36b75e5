// The functions that the host gets in place of the plug-in's callbacks, and how they call those.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/bridged_plugin.h"
#include "host/one_refused_allocation.h"
#include "host/suite_handler.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- the plug-in's callbacks

std::vector<std::string> called;
std::function<void()> in_callback;  ///< called by each of them before it returns
A_Err callback_result = 0;

A_Err noted(const std::string& call) {
    called.push_back(call);
    if (in_callback) {
        in_callback();
    }
    return callback_result;
}

std::string text(const void* pointer) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(pointer));
}

template <int Which>
A_Err death_hook(AEGP_GlobalRefcon global, AEGP_DeathRefcon refcon) {
    return noted("death " + std::to_string(Which) + " " + text(global) + " " + text(refcon));
}
template <int Which>
A_Err import_file(const A_char* path, AE_FIM_ImportOptions options, AE_FIM_SpecialAction action,
                  AEGP_ItemH folder, AE_FIM_Refcon refcon) {
    return noted("import " + std::to_string(Which) + " " + path + " " + text(options) + " " +
                 std::to_string(action) + " " + text(folder) + " " + text(refcon));
}
template <int Which>
A_Err verify_file(const A_char* path, AE_FIM_Refcon refcon, A_Boolean* importable) {
    *importable = 1;
    return noted("verify " + std::to_string(Which) + " " + path + " " + text(refcon));
}
template <int Which>
A_Err idle(AEIO_BasicData*, A_long signature, A_long*) {
    return noted("idle " + std::to_string(Which) + " " + std::to_string(signature));
}

AE_FIM_Refcon refcon_of(std::uintptr_t number) {
    return reinterpret_cast<AE_FIM_Refcon>(number);
}

class BridgeCallbacks : public ::testing::Test {
  protected:
    BridgeCallbacks() : bridge(bridge_over(host)) {
        called.clear();
        in_callback = nullptr;
        callback_result = 0;
        registers = acquired<AEGP_RegisterSuite4>(bridge, "AEGP Register Suite", 4);
        imports = acquired<AEGP_FileImportManagerSuite2>(bridge, "AEGP File Import Manager Suite", 2);
    }
    ~BridgeCallbacks() override { in_callback = nullptr; }

    A_Err register_importer(const AE_FIM_ImportCallbacks& callbacks) {
        return imports->AEGP_RegisterImportFlavorImportCallbacks(42, 2, &callbacks);
    }
    A_Err register_module(A_Err (*function)(AEIO_BasicData*, A_long, A_long*), AEGP_IORefcon refcon) {
        AEIO_ModuleInfo info{};
        AEIO_FunctionBlock2 functions{};
        functions.AEIO_Idle = function;
        return registers->AEGP_RegisterIO(7, refcon, &info, &functions);
    }

    CurrentHost host;
    SPBasicSuite* bridge;
    const AEGP_RegisterSuite4* registers;
    const AEGP_FileImportManagerSuite2* imports;
};

TEST_F(BridgeCallbacks, ADeathHookGetsTheHostsArguments) {
    EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<1>, refcon_of(11)), 0);
    ASSERT_EQ(host.death_hooks.size(), 1U);
    EXPECT_NE(host.death_hooks[0].first, death_hook<1>);
    EXPECT_EQ(host.death_hooks[0].second, refcon_of(11));
    callback_result = 5;
    EXPECT_EQ(host.death_hooks[0].first(refcon_of(12), refcon_of(13)), 5);
    EXPECT_THAT(called, ElementsAre("death 1 12 13"));
}

TEST_F(BridgeCallbacks, AnImporterGetsUtf8PathsAndItsOwnRefcon) {
    EXPECT_EQ(register_importer({refcon_of(21), import_file<1>, verify_file<1>}), 0);
    ASSERT_EQ(host.importers.size(), 1U);
    const AE_FIM_ImportCallbacks3& importer = host.importers[0];
    EXPECT_EQ(importer.refcon, refcon_of(21));
    EXPECT_THAT(host.calls, ElementsAre("RegisterImportFlavorImportCallbacks(42, 2, {0x15, 1, 1})"));
    A_Boolean importable = 0;
    EXPECT_EQ(importer.verify_cb(u"/\x6620\xD83C\xDFAC.aec", importer.refcon, &importable), 0);
    EXPECT_EQ(importable, 1);
    EXPECT_EQ(importer.verify_cb(u"", importer.refcon, &importable), 0);
    callback_result = 6;
    const std::u16string long_path(3000, u'\x00E9');
    EXPECT_EQ(importer.import_cb(long_path.c_str(), refcon_of(22), -1, some_handle<AEGP_ItemH>(23),
                                 importer.refcon),
              6);
    std::string narrow;
    for (int i = 0; i < 3000; ++i) {
        narrow += "\xC3\xA9";
    }
    EXPECT_THAT(called, ElementsAre("verify 1 /\xE6\x98\xA0\xF0\x9F\x8E\xAC.aec 21", "verify 1  21",
                                    "import 1 " + narrow + " 22 -1 23 21"));
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeCallbacks, AnImporterNeverGetsAnInvalidPath) {
    ASSERT_EQ(register_importer({nullptr, import_file<1>, verify_file<1>}), 0);
    const AE_FIM_ImportCallbacks3& importer = host.importers[0];
    const struct {
        const A_UTF16Char* path;
        std::string report;
    } cases[] = {
        {u"/a\xD83C.aec",
         "A path of the host cannot be used: it is not valid UTF-16 (unit D83C behind \"/a\")."},
        {u"/a\xDFAC", "A path of the host cannot be used: it is not valid UTF-16 (unit DFAC behind \"/a\")."},
        {nullptr, "A path of the host cannot be used: it is missing."},
    };
    for (const auto& c : cases) {
        host.reports.clear();
        EXPECT_EQ(importer.import_cb(c.path, nullptr, -1, nullptr, nullptr), 3);
        EXPECT_THAT(host.reports, ElementsAre(c.report));
        host.reports.clear();
        A_Boolean importable = 1;
        EXPECT_EQ(importer.verify_cb(c.path, nullptr, &importable), 3);
        EXPECT_THAT(host.reports, ElementsAre(c.report));
        EXPECT_EQ(importable, 0);
    }
    EXPECT_THAT(called, IsEmpty());
}

TEST_F(BridgeCallbacks, WithoutMemoryForThePathThePluginIsNotCalled) {
    ASSERT_EQ(register_importer({nullptr, import_file<1>, verify_file<1>}), 0);
    const std::u16string path(100, u'x');
    {
        const OneRefusedAllocation memory(0);
        EXPECT_EQ(host.importers[0].import_cb(path.c_str(), nullptr, -1, nullptr, nullptr), 4);
        EXPECT_TRUE(memory.refused());
    }
    EXPECT_THAT(called, IsEmpty());
}

TEST_F(BridgeCallbacks, NullStaysNull) {
    EXPECT_EQ(register_importer({nullptr, import_file<1>, nullptr}), 0);
    EXPECT_EQ(register_importer({nullptr, nullptr, verify_file<1>}), 0);
    EXPECT_EQ(imports->AEGP_RegisterImportFlavorImportCallbacks(42, 2, nullptr), 0);
    EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, nullptr, nullptr), 0);
    EXPECT_EQ(registers->AEGP_RegisterIO(7, nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(host.importers.size(), 2U);
    EXPECT_EQ(host.importers[0].verify_cb, nullptr);
    EXPECT_EQ(host.importers[1].import_cb, nullptr);
    ASSERT_EQ(host.death_hooks.size(), 1U);
    EXPECT_EQ(host.death_hooks[0].first, nullptr);
    EXPECT_THAT(host.modules, IsEmpty());
}

// ---- several of a kind

TEST_F(BridgeCallbacks, FourRegistrationsAreKeptApartAndAFifthIsRefused) {
    EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<1>, nullptr), 0);
    EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<2>, nullptr), 0);
    EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<3>, nullptr), 0);
    EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<4>, nullptr), 0);
    EXPECT_EQ(register_importer({refcon_of(1), import_file<1>, verify_file<1>}), 0);
    EXPECT_EQ(register_importer({refcon_of(2), import_file<2>, verify_file<2>}), 0);
    EXPECT_EQ(register_importer({refcon_of(3), import_file<3>, verify_file<3>}), 0);
    EXPECT_EQ(register_importer({refcon_of(4), import_file<4>, verify_file<4>}), 0);
    EXPECT_EQ(register_module(idle<1>, refcon_of(1)), 0);
    EXPECT_EQ(register_module(idle<2>, refcon_of(2)), 0);
    EXPECT_EQ(register_module(idle<3>, refcon_of(3)), 0);
    EXPECT_EQ(register_module(idle<4>, refcon_of(4)), 0);
    const std::size_t calls = host.calls.size();

    EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<5>, nullptr), 1);
    EXPECT_EQ(register_importer({nullptr, import_file<5>, verify_file<5>}), 1);
    EXPECT_EQ(register_module(idle<5>, nullptr), 1);
    EXPECT_EQ(host.calls.size(), calls) << "the host is not called";
    EXPECT_THAT(host.reports,
                ElementsAre("This plug-in registers more death hooks than there is room for (4).",
                            "This plug-in registers more importers than there is room for (4).",
                            "This plug-in registers more input modules than there is room for (4)."));

    A_Boolean importable = 0;
    AEIO_BasicData data = *host.basic_data();
    for (std::size_t i = 4; i-- > 0;) {
        host.death_hooks[i].first(nullptr, nullptr);
        host.importers[i].import_cb(u"p", nullptr, 0, nullptr, host.importers[i].refcon);
        host.importers[i].verify_cb(u"p", host.importers[i].refcon, &importable);
        host.modules[i].second.AEIO_Idle(&data, 9, nullptr);
    }
    EXPECT_THAT(called, ElementsAre("death 4 0 0", "import 4 p 0 0 0 4", "verify 4 p 4", "idle 4 9",  //
                                    "death 3 0 0", "import 3 p 0 0 0 3", "verify 3 p 3", "idle 3 9",  //
                                    "death 2 0 0", "import 2 p 0 0 0 2", "verify 2 p 2", "idle 2 9",  //
                                    "death 1 0 0", "import 1 p 0 0 0 1", "verify 1 p 1", "idle 1 9"));
}

TEST_F(BridgeCallbacks, ARefusedRegistrationTakesNoPlace) {
    host.fail_every("RegisterDeathHook", 3);
    host.fail_every("RegisterImportFlavorImportCallbacks", 3);
    host.fail_every("RegisterIO", 3);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<1>, nullptr), 3);
        EXPECT_EQ(register_importer({nullptr, import_file<1>, verify_file<1>}), 3);
        EXPECT_EQ(register_module(idle<1>, nullptr), 3);
    }
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeCallbacks, TheNextHostFindsEveryPlaceFree) {
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<1>, nullptr), 0);
    }
    CurrentHost next;
    const auto* next_registers = acquired<AEGP_RegisterSuite4>(bridge_over(next), "AEGP Register Suite", 4);
    EXPECT_EQ(next_registers->AEGP_RegisterDeathHook(7, death_hook<2>, nullptr), 0);
    next.death_hooks.at(0).first(nullptr, nullptr);
    EXPECT_THAT(called, ElementsAre("death 2 0 0"));
}

// ---- exceptions

TEST_F(BridgeCallbacks, NoExceptionLeavesACallback) {
    ASSERT_EQ(registers->AEGP_RegisterDeathHook(7, death_hook<1>, nullptr), 0);
    ASSERT_EQ(register_importer({nullptr, import_file<1>, verify_file<1>}), 0);
    ASSERT_EQ(register_module(idle<1>, nullptr), 0);
    AEIO_BasicData data = *host.basic_data();
    A_Boolean importable = 0;
    const std::vector<std::pair<std::string, std::function<A_Err()>>> callbacks = {
        {"death hook", [&] { return host.death_hooks[0].first(nullptr, nullptr); }},
        {"import", [&] { return host.importers[0].import_cb(u"p", nullptr, 0, nullptr, nullptr); }},
        {"verify", [&] { return host.importers[0].verify_cb(u"p", nullptr, &importable); }},
        {"module", [&] { return host.modules[0].second.AEIO_Idle(&data, 9, nullptr); }},
    };
    const struct {
        const char* why;
        std::function<void()> thrower;
        A_Err err;
        std::vector<std::string> reports;
    } cases[] = {
        {"a missing suite",
         [this] { AEGP_SuiteHandler(bridge).CompSuite9(); },
         13,
         {"This plug-in needs the suite \"AEGP Comp Suite\" 9, which the host does not offer."}},
        {"no memory", [] { throw std::bad_alloc(); }, 4, {}},
        {"another exception", [] { throw std::logic_error("x"); }, 1, {}},
    };
    const std::vector<std::string> held = host.left_open();
    for (const auto& c : cases) {
        in_callback = c.thrower;
        for (const auto& [name, callback] : callbacks) {
            SCOPED_TRACE(name + ": " + c.why);
            host.reports.clear();
            EXPECT_EQ(callback(), c.err);
            EXPECT_EQ(host.reports, c.reports);
            EXPECT_EQ(host.left_open(), held);
        }
    }
}

TEST_F(BridgeCallbacks, ANestedCallNamesItsOwnMissingSuite) {
    ASSERT_EQ(register_importer({nullptr, import_file<1>, verify_file<1>}), 0);
    ASSERT_EQ(register_module(idle<1>, nullptr), 0);
    AEIO_BasicData data = *host.basic_data();
    // The importer calls the host, which calls the module, which lacks a suite; then the importer lacks
    // another.
    int depth = 0;
    std::optional<A_Err> inner;
    in_callback = [&] {
        if (++depth == 2) {
            AEGP_SuiteHandler(bridge).LightSuite2();
        }
        inner = host.modules[0].second.AEIO_Idle(&data, 9, nullptr);
        AEGP_SuiteHandler(bridge).CompSuite9();
    };
    EXPECT_EQ(host.importers[0].import_cb(u"p", nullptr, 0, nullptr, nullptr), 13);
    EXPECT_EQ(inner, 13);
    EXPECT_THAT(
        host.reports,
        ElementsAre("This plug-in needs the suite \"AEGP Light Suite\" 2, which the host does not offer.",
                    "This plug-in needs the suite \"AEGP Comp Suite\" 9, which the host does not offer."));
}

}  // namespace
