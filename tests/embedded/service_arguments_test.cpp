// Bad arguments of the suites that serve a bundle as a whole: suites, registration, messages, preferences,
// memory.

#include <cstring>

#include "embedded/argument_checks.h"

namespace {

using embedded::RuleViolation;

A_Err register_module(BundleSide& b, const AEIO_ModuleInfo& info) {
    AEIO_FunctionBlock2 functions;
    std::memset(static_cast<void*>(&functions), 1, sizeof functions);
    return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, &info, &functions);
}

const BadArgument kSuiteCases[] = {
    {"acquire without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const void* table = nullptr;
         return b.host.basic_suite()->AcquireSuite(nullptr, 1, &table);
     }},
    {"acquire without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.host.basic_suite()->AcquireSuite("AEGP Proj Suite", 5, nullptr); }},
    {"release without a name", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.host.basic_suite()->ReleaseSuite(nullptr, 1); }},
    {"release of a suite that was not acquired", RuleViolation::suite_not_acquired,
     [](BundleSide& b) { return b.host.basic_suite()->ReleaseSuite("PF AE Adv App Suite", 1); }},
    {"release of a suite that does not exist", RuleViolation::suite_not_acquired,
     [](BundleSide& b) { return b.host.basic_suite()->ReleaseSuite("No Suite", 1); }},
};

TEST(ArgumentChecks, RefuseEveryBadSuiteRequest) {
    expect_refused(kSuiteCases);
}

const BadArgument kRegistrationCases[] = {
    {"null death hook", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.register_suite->AEGP_RegisterDeathHook(b.host.plugin_id(), nullptr, nullptr);
     }},
    {"death hook of another plug-in", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.register_suite->AEGP_RegisterDeathHook(
             b.host.plugin_id() + 1, [](AEGP_GlobalRefcon, AEGP_DeathRefcon) -> A_Err { return 0; }, nullptr);
     }},
    {"module without its description", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_FunctionBlock2 functions{};
         return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, nullptr, &functions);
     }},
    {"module without functions", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, &info, nullptr);
     }},
    {"module with a null function", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         AEIO_FunctionBlock2 functions{};
         return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, &info, &functions);
     }},
    {"module with an unterminated name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         std::memset(info.name, 'x', sizeof info.name);
         return register_module(b, info);
     }},
    {"module with more kinds than the table holds", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         info.num_filetypes = 9;
         info.num_extensions = 8;
         return register_module(b, info);
     }},
    {"module with a negative count", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         info.num_extensions = -1;
         return register_module(b, info);
     }},
    {"importer without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         return b.import_suite->AEGP_RegisterImportFlavor(nullptr, &flavor);
     }},
    {"importer without an output pointer for its number", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.import_suite->AEGP_RegisterImportFlavor("x", nullptr); }},
    {"file types of an unknown importer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.import_suite->AEGP_RegisterImportFlavorFileTypes(kInvalidImportFlavor, 0, nullptr, 0,
                                                                   nullptr);
     }},
    {"null file types with a count of 1", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         return b.import_suite->AEGP_RegisterImportFlavorFileTypes(flavor, 1, nullptr, 0, nullptr);
     }},
    {"a negative number of extensions", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         return b.import_suite->AEGP_RegisterImportFlavorFileTypes(flavor, 0, nullptr, -1, nullptr);
     }},
    {"null callbacks", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         return b.import_suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, 2, nullptr);
     }},
    {"callbacks without the import callback", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         const AE_FIM_ImportCallbacks callbacks{};
         return b.import_suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, 2, &callbacks);
     }},
};

TEST(ArgumentChecks, RefuseEveryBadRegistration) {
    expect_refused(kRegistrationCases);
}

const BadArgument kUtilityCases[] = {
    {"message without a text", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.utility_suite->AEGP_ReportInfo(b.host.plugin_id(), nullptr); }},
    {"message of another plug-in", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.utility_suite->AEGP_ReportInfo(99, "text"); }},
    {"undo group without a name", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.utility_suite->AEGP_StartUndoGroup(nullptr); }},
    {"undo group closed without being open", RuleViolation::undo_group_unbalanced,
     [](BundleSide& b) { return b.utility_suite->AEGP_EndUndoGroup(); }},
};

TEST(ArgumentChecks, RefuseEveryBadMessageOrUndoGroup) {
    expect_refused(kUtilityCases);
}

const BadArgument kPreferenceCases[] = {
    {"blob without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_GetApplicationBlob(nullptr); }},
    {"key in a null blob", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(nullptr, "s", "k", &exists);
     }},
    {"key in a foreign blob", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(foreign<AEGP_PersistentBlobH>(), "s", "k", &exists);
     }},
    {"key without a section", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(b.blob(), nullptr, "k", &exists);
     }},
    {"key without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(b.blob(), "s", nullptr, &exists);
     }},
    {"key without an output pointer for the answer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_DoesKeyExist(b.blob(), "s", "k", nullptr); }},
    {"preference of size 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         char value = 0;
         return b.data_suite->AEGP_GetData(b.blob(), "s", "k", 0, nullptr, &value);
     }},
    {"preference of a size other than the stored one", RuleViolation::bad_argument,
     [](BundleSide& b) {
         char value[2] = {};
         b.data_suite->AEGP_SetData(b.blob(), "s", "k", 1, value);
         return b.data_suite->AEGP_GetData(b.blob(), "s", "k", 2, nullptr, value);
     }},
    {"preference without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_GetData(b.blob(), "s", "k", 1, nullptr, nullptr); }},
    {"preference set to null", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_SetData(b.blob(), "s", "k", 1, nullptr); }},
};

TEST(ArgumentChecks, RefuseEveryBadPreference) {
    expect_refused(kPreferenceCases);
}

const BadArgument kMemoryCases[] = {
    {"memory without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_MemHandle made = nullptr;
         return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), nullptr, 1, 0, &made);
     }},
    {"memory of size 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_MemHandle made = nullptr;
         return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), "m", 0, 0, &made);
     }},
    {"memory with unknown flags", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_MemHandle made = nullptr;
         return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), "m", 1, 6, &made);
     }},
    {"memory without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), "m", 1, 0, nullptr); }},
    {"memory locked without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.memory_suite->AEGP_LockMemHandle(b.memory(), nullptr); }},
    {"foreign memory freed", RuleViolation::foreign_handle,
     [](BundleSide& b) { return b.memory_suite->AEGP_FreeMemHandle(foreign<AEGP_MemHandle>()); }},
};

TEST(ArgumentChecks, RefuseEveryBadMemoryHandle) {
    expect_refused(kMemoryCases);
}

TEST(ReservedSlots, FailAndAreReportedWithTheirPlace) {
    BundleSide bundle;
    const auto call = [](ReservedSlot slot) { return reinterpret_cast<A_Err (*)()>(slot)(); };
    EXPECT_EQ(call(bundle.comp_suite->reserved_2[0]), kHostErrorGeneric);
    EXPECT_EQ(call(bundle.layer_suite->reserved_26[19]), kHostErrorGeneric);
    const auto* app = bundle.host.acquire<PF_AEAdvAppSuite1>("PF AE Adv App Suite", 1);
    EXPECT_EQ(call(app->reserved_0[9]), kHostErrorGeneric);
    const auto& violations = bundle.host.conformance().violations();
    ASSERT_EQ(violations.size(), 3U);
    EXPECT_EQ(violations[0].code, RuleViolation::reserved_slot);
    EXPECT_NE(violations[0].reason.find("slot 2 of AEGP Comp Suite 9"), std::string::npos)
        << violations[0].reason;
    EXPECT_NE(violations[1].reason.find("slot 45 of AEGP Layer Suite 11"), std::string::npos)
        << violations[1].reason;
    EXPECT_NE(violations[2].reason.find("slot 9 of PF AE Adv App Suite 1"), std::string::npos)
        << violations[2].reason;
}

}  // namespace
