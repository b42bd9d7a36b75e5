// What differs in current hosts: seven suites, UTF-16 paths, and the memory that passes paths.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <nlohmann/json.hpp>

#include "embedded/json_values.h"
#include "embedded/testing.h"
#include "embedded/text_encoding.h"
#include "support/temporary_folder.h"

namespace {

using embedded::RuleViolation;
using embedded::Utf16String;
using testing::ElementsAre;
using testing::IsEmpty;

embedded::HostOptions today() {
    embedded::HostOptions options;
    options.generation = embedded::HostGeneration::today;
    return options;
}

/// A current host as a bundle sees it. The suites stay acquired.
struct TodaySide {
    TodaySide() {
        register_suite = host.acquire<AEGP_RegisterSuite6>("AEGP Register Suite", 6);
        import_suite = host.acquire<AEGP_FileImportManagerSuite3>("AEGP File Import Manager Suite", 3);
        data_suite = host.acquire<AEGP_PersistentDataSuite3>("AEGP Persistent Data Suite", 3);
        project_suite = host.acquire<AEGP_ProjSuite8>("AEGP Proj Suite", 8);
        footage_suite = host.acquire<AEGP_FootageSuite11>("AEGP Footage Suite", 11);
        io_in_suite = host.acquire<AEGP_IOInSuite5>("AEGP IO In Suite", 5);
        io_out_suite = host.acquire<AEGP_IOOutSuite7>("AEGP IO Out Suite", 7);
        memory_suite = host.acquire<AEGP_MemorySuite1>("AEGP Memory Suite", 1);
    }

    /// The terminated text in a memory handle.
    Utf16String text_in(AEGP_MemHandle handle) const {
        void* address = nullptr;
        EXPECT_EQ(memory_suite->AEGP_LockMemHandle(handle, &address), kHostErrorNone);
        Utf16String text = static_cast<const A_UTF16Char*>(address);
        EXPECT_EQ(memory_suite->AEGP_UnlockMemHandle(handle), kHostErrorNone);
        return text;
    }

    embedded::TestHost host{today()};
    const AEGP_RegisterSuite6* register_suite = nullptr;
    const AEGP_FileImportManagerSuite3* import_suite = nullptr;
    const AEGP_PersistentDataSuite3* data_suite = nullptr;
    const AEGP_ProjSuite8* project_suite = nullptr;
    const AEGP_FootageSuite11* footage_suite = nullptr;
    const AEGP_IOInSuite5* io_in_suite = nullptr;
    const AEGP_IOOutSuite7* io_out_suite = nullptr;
    const AEGP_MemorySuite1* memory_suite = nullptr;
};

struct TwoVersions {
    const char* name;
    A_long classic;
    A_long today;
    std::size_t slots_today;
};

const TwoVersions kNewer[] = {
    {"AEGP Register Suite", 4, 6, 12},        {"AEGP File Import Manager Suite", 2, 3, 4},
    {"AEGP Persistent Data Suite", 1, 3, 18}, {"AEGP Proj Suite", 5, 8, 14},
    {"AEGP Footage Suite", 7, 11, 21},        {"AEGP IO In Suite", 1, 5, 31},
    {"AEGP IO Out Suite", 1, 7, 32},
};

TEST(TodaysSuites, AreOfferedInsteadOfTheClassicOnes) {
    for (const auto generation : {embedded::HostGeneration::classic, embedded::HostGeneration::today}) {
        const bool is_today = generation == embedded::HostGeneration::today;
        embedded::HostOptions options;
        options.generation = generation;
        embedded::TestHost host(options);
        for (const TwoVersions& suite : kNewer) {
            SCOPED_TRACE(suite.name);
            const void* table = nullptr;
            EXPECT_EQ(host.basic_suite()->AcquireSuite(suite.name, suite.classic, &table),
                      is_today ? kHostErrorMissingSuite : kHostErrorNone);
            EXPECT_EQ(host.basic_suite()->AcquireSuite(suite.name, suite.today, &table),
                      is_today ? kHostErrorNone : kHostErrorMissingSuite);
        }
        EXPECT_TRUE(host.conformance().clean());
    }
}

TEST(TodaysSuites, HaveTheirFullLength) {
    TodaySide side;
    for (const TwoVersions& suite : kNewer) {
        SCOPED_TRACE(suite.name);
        const void* table = nullptr;
        ASSERT_EQ(side.host.basic_suite()->AcquireSuite(suite.name, suite.today, &table), kHostErrorNone);
        const auto* slots = static_cast<A_Err (*const*)()>(table);
        for (std::size_t slot = 0; slot < suite.slots_today; ++slot) {
            EXPECT_NE(slots[slot], nullptr) << slot;
        }
        // This host implements no table's last slot.
        EXPECT_EQ(slots[suite.slots_today - 1](), kHostErrorGeneric);
        EXPECT_EQ(side.host.conformance().violations().back().code, RuleViolation::reserved_slot);
        EXPECT_EQ(side.host.conformance().violations().back().reason,
                  "slot " + std::to_string(suite.slots_today - 1) + " of " + suite.name + " " +
                      std::to_string(suite.today) + " was called, which this host does not have");
    }
}

TEST(TodaysFootage, IsNamedInUtf16) {
    const TemporaryFolder folder;
    std::string picture(18 + 3, '\0');
    picture[2] = 2;
    picture[12] = picture[14] = 1;
    picture[16] = 24;
    const std::string path = folder.write("\xD1\x91lka \xF0\x9F\x8E\xAC.tga", picture);
    TodaySide side;
    std::vector<std::string> lines;
    side.host.log_calls([&lines](std::string_view line) { lines.emplace_back(line); });
    AEGP_FootageH footage = nullptr;
    EXPECT_EQ(
        side.footage_suite->AEGP_NewFootage(side.host.plugin_id(), embedded::to_utf16(path)->c_str(), nullptr,
                                            nullptr, kInterpretationGuessWithoutDialog, nullptr, &footage),
        kHostErrorNone);
    ASSERT_EQ(side.host.project().footage.size(), 1U);
    EXPECT_EQ(side.host.project().footage[0].path, path);
    EXPECT_EQ(side.host.project().footage[0].name, "\xD1\x91lka \xF0\x9F\x8E\xAC.tga");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("\"version\":11,\"function\":\"AEGP_NewFootage\""), std::string::npos)
        << lines[0];
    EXPECT_NE(lines[0].find("\"path\":" + embedded::Json(path).dump()), std::string::npos) << lines[0];
}

TEST(TodaysFootage, IsRefusedWhenItsPathIsNotUtf16) {
    TodaySide side;
    const A_UTF16Char half[] = {u'/', u'a', 0xD83C, u'.', u't', u'g', u'a', 0};
    for (const A_UTF16Char* path :
         {static_cast<const A_UTF16Char*>(half), static_cast<const A_UTF16Char*>(nullptr)}) {
        AEGP_FootageH footage = nullptr;
        EXPECT_EQ(side.footage_suite->AEGP_NewFootage(side.host.plugin_id(), path, nullptr, nullptr,
                                                      kInterpretationGuessWithoutDialog, nullptr, &footage),
                  kHostErrorParameter);
        EXPECT_EQ(footage, nullptr);
    }
    EXPECT_THAT(side.host.project().footage, IsEmpty());
    const auto& violations = side.host.conformance().violations();
    ASSERT_EQ(violations.size(), 2U);
    EXPECT_EQ(violations[0].code, RuleViolation::bad_argument);
    EXPECT_EQ(violations[0].reason, "path is not UTF-16: unit 2 is half of a pair without the other half");
    EXPECT_EQ(violations[1].reason, "path is null");
}

TEST(PathsInMemory, MustBeFreedByTheBundle) {
    constexpr char kPath[] = "/r\xC3\xA9sum\xC3\xA9/\xF0\x9F\x8E\xAC.txl";
    TodaySide side;
    const AEIO_OutSpecH out = side.host.new_out_spec(kPath);
    const AEIO_InSpecH in = side.host.in_spec_handle(side.host.new_in_spec(kPath));
    for (const bool frees : {true, false}) {
        const std::size_t before = side.host.conformance().violations().size();
        side.host.run("callback", [&] {
            AEGP_MemHandle output = nullptr;
            AEGP_MemHandle input = nullptr;
            A_Boolean reserved = 7;
            EXPECT_EQ(side.io_out_suite->AEGP_GetOutSpecFilePath(out, &output, &reserved), kHostErrorNone);
            EXPECT_EQ(side.io_in_suite->AEGP_GetInSpecFilePath(in, &input), kHostErrorNone);
            EXPECT_EQ(reserved, 0);
            EXPECT_EQ(embedded::to_utf8(side.text_in(output)), kPath);
            EXPECT_EQ(embedded::to_utf8(side.text_in(input)), kPath);
            if (frees) {
                side.memory_suite->AEGP_FreeMemHandle(output);
                side.memory_suite->AEGP_FreeMemHandle(input);
            }
            return kHostErrorNone;
        });
        EXPECT_EQ(side.host.conformance().violations().size() - before, frees ? 0U : 2U)
            << side.host.conformance().to_text();
    }
    EXPECT_EQ(side.host.conformance().count(RuleViolation::memory_left_alive), 2U);
}

TEST(PathsInMemory, NeedAnAddress) {
    TodaySide side;
    const AEIO_OutSpecH out = side.host.new_out_spec("/a.txl");
    AEGP_MemHandle path = nullptr;
    A_Boolean reserved = 0;
    EXPECT_EQ(side.io_out_suite->AEGP_GetOutSpecFilePath(out, nullptr, &reserved), kHostErrorParameter);
    EXPECT_EQ(side.io_out_suite->AEGP_GetOutSpecFilePath(out, &path, nullptr), kHostErrorParameter);
    EXPECT_EQ(path, nullptr);
    EXPECT_EQ(side.io_out_suite->AEGP_GetOutSpecFilePath(nullptr, &path, &reserved), kHostErrorParameter);
    EXPECT_EQ(side.io_in_suite->AEGP_GetInSpecFilePath(nullptr, &path), kHostErrorParameter);
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 4U);
}

TEST(PathsInMemory, MustBeUtf8) {
    TodaySide side;
    AEGP_MemHandle path = nullptr;
    A_Boolean reserved = 0;
    const AEIO_OutSpecH out = side.host.new_out_spec("/caf\xE9.txl");
    EXPECT_EQ(side.io_out_suite->AEGP_GetOutSpecFilePath(out, &path, &reserved), kHostErrorGeneric);
    EXPECT_EQ(path, nullptr);
}

TEST(TodaysSizes, Have64Bits) {
    TodaySide side;
    const embedded::Id id = side.host.new_in_spec("/a.txl");
    const AEIO_InSpecH in = side.host.in_spec_handle(id);
    for (const AEIO_FileSize size : {AEIO_FileSize{0}, AEIO_FileSize{5} << 30, AEIO_FileSize{INT64_MAX}}) {
        AEIO_FileSize read = 1;
        EXPECT_EQ(side.io_in_suite->AEGP_SetInSpecSize(in, size), kHostErrorNone);
        EXPECT_EQ(side.io_in_suite->AEGP_GetInSpecSize(in, &read), kHostErrorNone);
        EXPECT_EQ(read, size);
        EXPECT_EQ(static_cast<AEIO_FileSize>(side.host.project().in_spec(id).size_bytes), size);
    }
    EXPECT_TRUE(side.host.conformance().clean());
    // A negative 32-bit size, sign-extended.
    EXPECT_EQ(side.io_in_suite->AEGP_SetInSpecSize(in, static_cast<AEIO_FileSize>(std::int64_t{-4})),
              kHostErrorParameter);
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 1U);
}

// --- callbacks

std::vector<std::string> seen;

void see(const char* what, const A_UTF16Char* path) {
    seen.push_back(std::string(what) + " " + embedded::to_utf8(path).value_or("?"));
}

A_Err verify(const A_UTF16Char* path, AE_FIM_Refcon, A_Boolean* importable) {
    see("verify", path);
    *importable = 1;
    return kHostErrorNone;
}

A_Err import(const A_UTF16Char* path, AE_FIM_ImportOptions, AE_FIM_SpecialAction, AEGP_ItemH, AE_FIM_Refcon) {
    see("import", path);
    return kHostErrorNone;
}

A_Err verify_texture(AEIO_BasicData*, A_long, const A_UTF16Char* path, A_Boolean* importable) {
    see("verify texture", path);
    *importable = 1;
    return kHostErrorNone;
}

A_Err init(AEIO_BasicData*, const A_UTF16Char* path, AEIO_InSpecH) {
    see("init", path);
    return kHostErrorStructure;
}

A_Err not_asked_for() {
    seen.emplace_back("something else");
    return kHostErrorGeneric;
}

AEIO_FunctionBlock4 function_block() {
    std::array<ReservedSlot, kFunctionBlock4Fields> slots;
    slots.fill(reinterpret_cast<ReservedSlot>(&not_asked_for));
    auto functions = std::bit_cast<AEIO_FunctionBlock4>(slots);
    functions.AEIO_VerifyFileImportable = verify_texture;
    functions.AEIO_InitInSpecFromFile = init;
    return functions;
}

class TodaysCallbacks : public testing::Test {
  protected:
    TodaysCallbacks() {
        AE_FIM_ImportFlavorRef flavor = kInvalidImportFlavor;
        side.import_suite->AEGP_RegisterImportFlavor("test", &flavor);
        const AE_FIM_ImportCallbacks3 callbacks{nullptr, import, verify};
        side.import_suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, 0, &callbacks);
        info.signature = four_char_code("TEST");
        info.num_extensions = 1;
        info.read_kinds[0].ext = {'.', {'t', 's', 't'}};
        const AEIO_FunctionBlock4 functions = function_block();
        side.register_suite->AEGP_RegisterIO(side.host.plugin_id(), nullptr, &info, &functions);
        seen.clear();
    }
    TodaySide side;
    AEIO_ModuleInfo info{};
};

TEST_F(TodaysCallbacks, GetUtf16Paths) {
    constexpr char kScene[] = "/\xE6\x98\xA0\xE7\x94\xBB/\xF0\x9F\x8E\xAC.aec";
    EXPECT_TRUE(side.host.verify(kScene).importable);
    EXPECT_EQ(side.host.import_file(kScene).code, kHostErrorNone);
    EXPECT_EQ(side.host.open_with_module("/caf\xC3\xA9.tst").callback.code, kHostErrorStructure);
    EXPECT_THAT(seen, ElementsAre(std::string("verify ") + kScene, std::string("import ") + kScene,
                                  "verify texture /caf\xC3\xA9.tst", "init /caf\xC3\xA9.tst"));
    EXPECT_TRUE(side.host.conformance().clean()) << side.host.conformance().to_text();
}

TEST_F(TodaysCallbacks, AreNotCalledForFilesWithoutAUtf16Name) {
    constexpr char kProblem[] =
        "the path is not UTF-8 (byte 0xE9 at offset 4), and current hosts take paths in Unicode; only a "
        "classic "
        "host can take it";
    EXPECT_EQ(side.host.path_problem("/caf\xE9.tst"), kProblem);
    EXPECT_EQ(side.host.path_problem("/caf\xC3\xA9.tst"), "");
    EXPECT_FALSE(side.host.verify("/caf\xE9.aec").importable);
    EXPECT_EQ(side.host.verify("/caf\xE9.aec").callback.code, kHostErrorParameter);
    EXPECT_EQ(side.host.import_file("/caf\xE9.aec").code, kHostErrorParameter);
    const embedded::OpenResult opened = side.host.open_with_module("/caf\xE9.tst");
    EXPECT_EQ(opened.in_spec, 0);
    EXPECT_EQ(opened.error, kProblem);
    EXPECT_THAT(seen, IsEmpty());
}

TEST(ClassicHosts, PassEveryPath) {
    embedded::HostOptions options;
    options.generation = embedded::HostGeneration::classic;
    const embedded::TestHost host(options);
    EXPECT_EQ(host.path_problem("/caf\xE9.aec"), "");
}

TEST_F(TodaysCallbacks, MustAllBeSet) {
    AEIO_FunctionBlock4 functions = function_block();
    functions.AEIO_GetMimeType = nullptr;  // the last of the block
    EXPECT_EQ(side.register_suite->AEGP_RegisterIO(side.host.plugin_id(), nullptr, &info, &functions),
              kHostErrorParameter);
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 1U);
    EXPECT_EQ(side.host.modules().size(), 1U);
}

}  // namespace
