// The functions of the classic suites that call the current ones: equal arguments arrive unchanged, others
// converted.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include "host/bridged_plugin.h"
#include "host/one_refused_allocation.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr A_long kLargest = std::numeric_limits<A_long>::max();
constexpr A_Err kHostsError = 4711;

const std::string kFilm = "\xE6\x98\xA0\xE5\x83\x8F \xF0\x9F\x8E\xAC";
const std::u16string kWideFilm = u"\x6620\x50CF \xD83C\xDFAC";

class BridgeSuites : public ::testing::Test {
  protected:
    BridgeSuites() : bridge(bridge_over(host)) {
        persistent_data = acquired<AEGP_PersistentDataSuite1>(bridge, "AEGP Persistent Data Suite", 1);
        proj = acquired<AEGP_ProjSuite5>(bridge, "AEGP Proj Suite", 5);
        footage = acquired<AEGP_FootageSuite7>(bridge, "AEGP Footage Suite", 7);
        io_in = acquired<AEGP_IOInSuite1>(bridge, "AEGP IO In Suite", 1);
        io_out = acquired<AEGP_IOOutSuite1>(bridge, "AEGP IO Out Suite", 1);
        imports = acquired<AEGP_FileImportManagerSuite2>(bridge, "AEGP File Import Manager Suite", 2);
        registers = acquired<AEGP_RegisterSuite4>(bridge, "AEGP Register Suite", 4);
        held_at_first = host.left_open();
    }
    void release_all() {
        bridge->ReleaseSuite("AEGP Persistent Data Suite", 1);
        bridge->ReleaseSuite("AEGP Proj Suite", 5);
        bridge->ReleaseSuite("AEGP Footage Suite", 7);
        bridge->ReleaseSuite("AEGP IO In Suite", 1);
        bridge->ReleaseSuite("AEGP IO Out Suite", 1);
        bridge->ReleaseSuite("AEGP File Import Manager Suite", 2);
        bridge->ReleaseSuite("AEGP Register Suite", 4);
    }

    CurrentHost host;
    SPBasicSuite* bridge;
    const AEGP_PersistentDataSuite1* persistent_data;
    const AEGP_ProjSuite5* proj;
    const AEGP_FootageSuite7* footage;
    const AEGP_IOInSuite1* io_in;
    const AEGP_IOOutSuite1* io_out;
    const AEGP_FileImportManagerSuite2* imports;
    const AEGP_RegisterSuite4* registers;
    std::vector<std::string> held_at_first;
};

// Every function of the seven suites that the plug-in uses, with distinct arguments.
struct SuiteCall {
    std::string function;  ///< as the host records it
    std::string arguments;
    std::function<A_Err(const BridgeSuites&)> call;
};

class BridgeSuiteCalls : public BridgeSuites {
  public:
    std::vector<SuiteCall> suite_calls() {
        const auto blob = some_handle<AEGP_PersistentBlobH>(0x10);
        const auto project = some_handle<AEGP_ProjectH>(0x20);
        const auto item = some_handle<AEGP_ItemH>(0x30);
        const auto made = some_handle<AEGP_FootageH>(0x40);
        const auto in = some_handle<AEIO_InSpecH>(0x50);
        const auto out = some_handle<AEIO_OutSpecH>(0x60);
        const auto key = some_handle<const AEGP_FootageLayerKey*>(0x70);
        const auto a = [](std::uintptr_t address) { return reinterpret_cast<void*>(address); };
        static const AEGP_FileSequenceImportOptions kSequence = {1, 2, 3, 4};
        // clang-format off
        return {
            {"GetApplicationBlob", "0x1", [=, this](auto&) { return persistent_data->AEGP_GetApplicationBlob(static_cast<AEGP_PersistentBlobH*>(a(1))); }},
            {"DoesKeyExist", R"(0x10, "s", "k", 0x1)", [=, this](auto&) { return persistent_data->AEGP_DoesKeyExist(blob, "s", "k", static_cast<A_Boolean*>(a(1))); }},
            {"GetData", R"(0x10, "s", "k", 9, 0x1, 0x2)", [=, this](auto&) { return persistent_data->AEGP_GetData(blob, "s", "k", 9, a(1), a(2)); }},
            {"SetData", R"(0x10, "s", "k", 9, 0x1)", [=, this](auto&) { return persistent_data->AEGP_SetData(blob, "s", "k", 9, a(1)); }},
            {"GetProjectByIndex", "8, 0x1", [=, this](auto&) { return proj->AEGP_GetProjectByIndex(8, static_cast<AEGP_ProjectH*>(a(1))); }},
            {"GetProjectRootFolder", "0x20, 0x1", [=, this](auto&) { return proj->AEGP_GetProjectRootFolder(project, static_cast<AEGP_ItemH*>(a(1))); }},
            {"NewFootage", R"(6, u"/a/b.png", 0x70, {1, 2, 3, 4}, 5, 0x1, 0x2)", [=, this](auto&) { return footage->AEGP_NewFootage(6, "/a/b.png", key, &kSequence, 5, a(1), static_cast<AEGP_FootageH*>(a(2))); }},
            {"AddFootageToProject", "0x40, 0x30, null", [=, this](auto&) { return footage->AEGP_AddFootageToProject(made, item, nullptr); }},
            {"GetFootageInterpretation", "0x30, 1, 0x1", [=, this](auto&) { return footage->AEGP_GetFootageInterpretation(item, 1, static_cast<AEGP_FootageInterp*>(a(1))); }},
            {"SetFootageInterpretation", "0x30, 1, 0x1", [=, this](auto&) { return footage->AEGP_SetFootageInterpretation(item, 1, static_cast<const AEGP_FootageInterp*>(a(1))); }},
            {"NewPlaceholderFootage", "6, \"\xE9\", 7, 8, 0x1, null", [=, this](auto&) { return footage->AEGP_NewPlaceholderFootage(6, "\xE9", 7, 8, static_cast<const A_Time*>(a(1)), nullptr); }},
            {"GetInSpecOptionsHandle", "0x50, 0x1", [=, this](auto&) { return io_in->AEGP_GetInSpecOptionsHandle(in, static_cast<void**>(a(1))); }},
            {"SetInSpecOptionsHandle", "0x50, 0x1, 0x2", [=, this](auto&) { return io_in->AEGP_SetInSpecOptionsHandle(in, a(1), static_cast<void**>(a(2))); }},
            {"SetInSpecNativeFPS", "0x50, 1966080", [=, this](auto&) { return io_in->AEGP_SetInSpecNativeFPS(in, 30 << 16); }},
            {"SetInSpecDepth", "0x50, 32", [=, this](auto&) { return io_in->AEGP_SetInSpecDepth(in, 32); }},
            {"SetInSpecSize", "0x50, 2147483647", [=, this](auto&) { return io_in->AEGP_SetInSpecSize(in, kLargest); }},
            {"SetInSpecAlphaLabel", "0x50, 0x1", [=, this](auto&) { return io_in->AEGP_SetInSpecAlphaLabel(in, static_cast<const AEIO_AlphaLabel*>(a(1))); }},
            {"SetInSpecDuration", "0x50, 0x1", [=, this](auto&) { return io_in->AEGP_SetInSpecDuration(in, static_cast<const A_Time*>(a(1))); }},
            {"SetInSpecDimensions", "0x50, 3, 4", [=, this](auto&) { return io_in->AEGP_SetInSpecDimensions(in, 3, 4); }},
            {"GetInSpecSize", "0x50", [=, this](auto&) { A_long size = 0; return io_in->AEGP_GetInSpecSize(in, &size); }},
            {"GetInSpecFilePath", "0x50", [=, this](auto&) { A_char path[kClassicPathBytes]; return io_in->AEGP_GetInSpecFilePath(in, path); }},
            {"GetOutSpecFilePath", "0x60", [=, this](auto&) { A_char path[kClassicPathBytes]; return io_out->AEGP_GetOutSpecFilePath(out, path); }},
            {"RegisterImportFlavor", R"("n", 5)", [=, this](auto&) { AE_FIM_ImportFlavorRef flavor = 5; return imports->AEGP_RegisterImportFlavor("n", &flavor); }},
            {"RegisterImportFlavorFileTypes", "5, 1, 0x1, 2, 0x2", [=, this](auto&) { return imports->AEGP_RegisterImportFlavorFileTypes(5, 1, static_cast<const AEIO_FileKind*>(a(1)), 2, static_cast<const AEIO_FileKind*>(a(2))); }},
            {"RegisterImportFlavorImportCallbacks", "5, 2, null", [=, this](auto&) { return imports->AEGP_RegisterImportFlavorImportCallbacks(5, 2, nullptr); }},
            {"RegisterDeathHook", "6, 0, 0x1", [=, this](auto&) { return registers->AEGP_RegisterDeathHook(6, nullptr, a(1)); }},
            {"RegisterIO", "6, 0x1, null, 0", [=, this](auto&) { return registers->AEGP_RegisterIO(6, a(1), nullptr, nullptr); }},
        };
        // clang-format on
    }
};

TEST_F(BridgeSuiteCalls, ReachTheHostWithEveryArgument) {
    for (const SuiteCall& c : suite_calls()) {
        host.calls.clear();
        EXPECT_EQ(c.call(*this), 0) << c.function;
        EXPECT_THAT(host.calls, ElementsAre(c.function + "(" + c.arguments + ")"));
    }
    EXPECT_EQ(host.left_open(), held_at_first);
}

TEST_F(BridgeSuiteCalls, ReturnTheHostsError) {
    for (const SuiteCall& c : suite_calls()) {
        host.fail_every(c.function, kHostsError);
        EXPECT_EQ(c.call(*this), kHostsError) << c.function;
    }
    EXPECT_EQ(host.left_open(), held_at_first);
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeSuiteCalls, ReturnMissingSuiteIfTheirSuiteIsNotHeld) {
    release_all();
    for (const SuiteCall& c : suite_calls()) {
        EXPECT_EQ(c.call(*this), 13) << c.function;
    }
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_THAT(host.left_open(), IsEmpty());
}

// ---- paths to the host

TEST_F(BridgeSuites, FootageIsMadeFromTheUtf16Path) {
    const struct {
        const char* why;
        std::string narrow;
        std::string wide;
    } cases[] = {
        {"ASCII", "C:\\a b\\\"'.png.", "u\"C:\\a b\\\"'.png.\""},
        {"empty", "", "u\"\""},
        {"accents", "/caf\xC3\xA9", "u\"/caf\\u00e9\""},
        {"Japanese and a picture beyond the basic plane", "/" + kFilm, "u\"/\\u6620\\u50cf \\ud83c\\udfac\""},
        {"300 characters", "/" + std::string(300, 'x'), "u\"/" + std::string(300, 'x') + "\""},
    };
    for (const auto& c : cases) {
        host.calls.clear();
        EXPECT_EQ(footage->AEGP_NewFootage(7, c.narrow.c_str(), nullptr, nullptr, 0, nullptr, nullptr), 0);
        EXPECT_THAT(host.calls, ElementsAre("NewFootage(7, " + c.wide + ", null, null, 0, null, null)"))
            << c.why;
    }
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeSuites, AnInvalidPathNeverReachesTheHost) {
    const struct {
        std::string path;
        std::string report;
    } cases[] = {
        {"/caf\xE9.png", "(byte E9 behind \"/caf\")"},
        {"\x80", "(byte 80 behind \"\")"},
        {"/" + kFilm + "\n/\xED\xA0\x80",
         "(byte ED behind \"/" + std::string(6, '?') + " " + std::string(5, '?') + "/\")"},
        {std::string(100, 'a') + std::string(60, 'b') + "\xFF",
         "(byte FF behind \"" + std::string(60, 'b') + "\")"},
    };
    for (const auto& c : cases) {
        host.reports.clear();
        EXPECT_EQ(footage->AEGP_NewFootage(7, c.path.c_str(), nullptr, nullptr, 0, nullptr, nullptr), 3);
        EXPECT_THAT(host.reports,
                    ElementsAre("A path cannot be given to the host: it is not valid UTF-8 " + c.report +
                                ", and no file has this name read as Windows-1252 or as Mac "
                                "Roman."));
    }
    host.reports.clear();
    EXPECT_EQ(footage->AEGP_NewFootage(7, nullptr, nullptr, nullptr, 0, nullptr, nullptr), 3);
    EXPECT_THAT(host.reports, IsEmpty()) << "a null path is the plug-in's error, not the user's";
    EXPECT_THAT(host.calls, IsEmpty());
}

// The encoding is the one in which a file on disk has the name.
TEST_F(BridgeSuites, APathInAnotherEncodingIsTheFileThatItFinds) {
    const struct {
        const char* why;
        std::vector<std::string> on_disk;
        std::string named;  ///< below the folder
        std::string wide;   ///< below the folder, as the host records it
    } cases[] = {
        {"Windows-1252", {"caf\xC3\xA9.tga"}, "caf\xE9.tga", "caf\\u00e9.tga"},
        {"Mac Roman", {"caf\xC3\xA9.tga"}, "caf\x8E.tga", "caf\\u00e9.tga"},
        {"both are there: Windows-1252", {"\xC5\xBD.tga", "\xC3\xA9.tga"}, "\x8E.tga", "\\u017d.tga"},
        {"a folder in UTF-8 keeps its name",
         {"\xC3\xBC/\xC3\xA9.tga"},
         "\xC3\xBC/\xE9.tga",
         "\\u00fc/\\u00e9.tga"},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        for (const std::string& name : c.on_disk) {
            const std::size_t slash = name.find('/');
            if (slash != std::string::npos) {
                folder.make_folder(name.substr(0, slash));
            }
            folder.write(name, "");
        }
        host.calls.clear();
        const std::string path = folder.path(c.named);
        EXPECT_EQ(footage->AEGP_NewFootage(7, path.c_str(), nullptr, nullptr, 0, nullptr, nullptr), 0)
            << c.why;
        EXPECT_THAT(host.calls,
                    ElementsAre("NewFootage(7, u\"" + folder.path(c.wide) + "\", null, null, 0, null, null)"))
            << c.why;
    }
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeSuites, WithoutMemoryForTheUtf16PathThereIsNoFootage) {
    const std::string path(100, 'x');
    const OneRefusedAllocation memory(0);
    EXPECT_EQ(footage->AEGP_NewFootage(7, path.c_str(), nullptr, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_TRUE(memory.refused());
    EXPECT_THAT(host.calls, IsEmpty());
}

// ---- paths from the host. The two functions that copy one into a classic buffer must behave alike.

struct PathFunction {
    std::string name;
    std::u16string RecordingHost::*path;
    std::function<A_Err(const AEGP_IOInSuite1*, const AEGP_IOOutSuite1*, A_char*)> call;
};
const PathFunction kPathFunctions[] = {
    {"GetInSpecFilePath", &RecordingHost::in_path,
     [](const AEGP_IOInSuite1* in, const AEGP_IOOutSuite1*, A_char* path) {
         return in->AEGP_GetInSpecFilePath(some_handle<AEIO_InSpecH>(1), path);
     }},
    {"GetOutSpecFilePath", &RecordingHost::out_path,
     [](const AEGP_IOInSuite1*, const AEGP_IOOutSuite1* out, A_char* path) {
         return out->AEGP_GetOutSpecFilePath(some_handle<AEIO_OutSpecH>(1), path);
     }},
};

// The classic buffer, with bytes after it that must not change.
struct PathBuffer {
    std::array<A_char, kClassicPathBytes> path;
    std::array<A_char, 16> behind;
    PathBuffer() {
        path.fill('#');
        behind.fill('#');
    }
    [[nodiscard]] bool untouched() const {
        return std::string(path.data(), path.size()) == std::string(kClassicPathBytes, '#') && kept();
    }
    [[nodiscard]] bool kept() const {
        return std::string(behind.data(), behind.size()) == std::string(16, '#');
    }
};

std::u16string repeated(const std::u16string& part, int times) {
    std::u16string text;
    for (int i = 0; i < times; ++i) {
        text += part;
    }
    return text;
}
std::string repeated(const std::string& part, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += part;
    }
    return text;
}

TEST_F(BridgeSuites, AHostsPathIsCopiedAndItsHandleFreed) {
    const struct {
        const char* why;
        std::u16string wide;
        std::string narrow;
    } cases[] = {
        {"empty", u"", ""},
        {"ASCII", u"C:\\out\\a.avi", "C:\\out\\a.avi"},
        {"beyond the basic plane", u"/" + kWideFilm, "/" + kFilm},
        {"259 bytes", std::u16string(259, u'x'), std::string(259, 'x')},
        {"259 bytes in 130 units", u"x" + repeated(u"\x00E9", 129), "x" + repeated("\xC3\xA9", 129)},
        {"259 bytes in 131 units", u"xxx" + repeated(u"\xD83C\xDFAC", 64),
         "xxx" + repeated("\xF0\x9F\x8E\xAC", 64)},
    };
    for (const PathFunction& function : kPathFunctions) {
        for (const auto& c : cases) {
            SCOPED_TRACE(function.name + ": " + c.why);
            host.*function.path = c.wide;
            PathBuffer buffer;
            EXPECT_EQ(function.call(io_in, io_out, buffer.path.data()), 0);
            EXPECT_STREQ(buffer.path.data(), c.narrow.c_str());
            EXPECT_TRUE(buffer.kept());
            EXPECT_EQ(host.left_open(), held_at_first);
        }
    }
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeSuites, AHostsPathThatDoesNotFitOrIsNotValidIsRefused) {
    const std::string too_long = "A path of the host cannot be used: in UTF-8 it is longer than 259 bytes.";
    const std::string invalid = "A path of the host cannot be used: it is not valid UTF-16 ";
    const struct {
        const char* why;
        std::u16string wide;
        std::string report;
    } cases[] = {
        {"260 bytes", std::u16string(260, u'x'), too_long},
        {"260 bytes in 130 units", repeated(u"\x00E9", 130), too_long},
        {"260 bytes in 87 units", repeated(u"\x6620", 86) + u"xx", too_long},
        {"more units than the buffer has bytes", std::u16string(5000, u'x'), too_long},
        {"a surrogate pair that does not fit the buffer", std::u16string(259, u'x') + u"\xD83C\xDFAC",
         too_long},
        {"a high surrogate on its own", u"/a\xD83C/b", invalid + "(unit D83C behind \"/a\")."},
        {"a low surrogate on its own", u"\xDFAC", invalid + "(unit DFAC behind \"\")."},
    };
    for (const PathFunction& function : kPathFunctions) {
        for (const auto& c : cases) {
            SCOPED_TRACE(function.name + ": " + c.why);
            host.reports.clear();
            host.*function.path = c.wide;
            PathBuffer buffer;
            EXPECT_EQ(function.call(io_in, io_out, buffer.path.data()), 3);
            EXPECT_TRUE(buffer.untouched());
            EXPECT_THAT(host.reports, ElementsAre(c.report));
            EXPECT_EQ(host.left_open(), held_at_first);
        }
    }
}

TEST_F(BridgeSuites, AFailureOfTheHostsMemoryIsAnError) {
    for (const PathFunction& function : kPathFunctions) {
        const struct {
            const char* why;
            std::function<void(RecordingHost&)> script;
            A_Err err;
            std::vector<std::string> reports = {};
            std::vector<std::string> kept_memory = {};
        } cases[] = {
            {"no handle", [&](RecordingHost& h) { h.always_yield_nothing(function.name); }, 1, {}},
            {"no lock", [](RecordingHost& h) { h.fail_every("LockMemHandle", 31); }, 31, {}},
            {"a lock without an address",
             [](RecordingHost& h) { h.always_yield_nothing("LockMemHandle"); },
             1,
             {}},
            {"no unlocking", [](RecordingHost& h) { h.fail_every("UnlockMemHandle", 32); }, 32, {}},
            {"no freeing",
             [](RecordingHost& h) { h.fail_every("FreeMemHandle", 33); },
             33,
             {},
             {"memory handle, locks 0"}},
            {"the first of several errors counts",
             [](RecordingHost& h) {
                 h.fail_every("UnlockMemHandle", 32);
                 h.fail_every("FreeMemHandle", 33);
             },
             32,
             {},
             {"memory handle, locks 0"}},
            {"no memory suite",
             [](RecordingHost& h) { h.withhold_suite("AEGP Memory Suite", 1); },
             13,
             {"This plug-in needs the suite \"AEGP Memory Suite\" 1, which the host does not offer."}},
        };
        for (const auto& c : cases) {
            SCOPED_TRACE(function.name + ": " + c.why);
            CurrentHost other;
            const SPBasicSuite* other_bridge = bridge_over(other);
            const auto* in = acquired<AEGP_IOInSuite1>(other_bridge, "AEGP IO In Suite", 1);
            const auto* out = acquired<AEGP_IOOutSuite1>(other_bridge, "AEGP IO Out Suite", 1);
            c.script(other);
            PathBuffer buffer;
            EXPECT_EQ(function.call(in, out, buffer.path.data()), c.err);
            EXPECT_TRUE(buffer.untouched());
            EXPECT_EQ(other.reports, c.reports);
            std::vector<std::string> left_open = {"AEGP IO In Suite 5 x 1", "AEGP IO Out Suite 7 x 1"};
            left_open.insert(left_open.end(), c.kept_memory.begin(), c.kept_memory.end());
            EXPECT_EQ(other.left_open(), left_open);
        }
    }
}

TEST_F(BridgeSuites, WithoutMemoryForTheUtf8PathTheHandleIsStillFreed) {
    for (const PathFunction& function : kPathFunctions) {
        host.*function.path = std::u16string(100, u'x');
        // The first allocation after locking the handle is the bridge's own.
        std::optional<OneRefusedAllocation> memory;
        host.when_locked = [&memory] { memory.emplace(0); };
        PathBuffer buffer;
        EXPECT_EQ(function.call(io_in, io_out, buffer.path.data()), 4) << function.name;
        EXPECT_TRUE(memory && memory->refused());
        memory.reset();
        EXPECT_TRUE(buffer.untouched());
        EXPECT_EQ(host.left_open(), held_at_first);
    }
}

TEST_F(BridgeSuites, ANullBufferIsRefusedBeforeTheHostIsCalled) {
    for (const PathFunction& function : kPathFunctions) {
        EXPECT_EQ(function.call(io_in, io_out, nullptr), 3) << function.name;
    }
    EXPECT_THAT(host.calls, IsEmpty());
}

// ---- sizes

TEST_F(BridgeSuites, ANegativeSizeNeverReachesTheHost) {
    EXPECT_EQ(io_in->AEGP_SetInSpecSize(some_handle<AEIO_InSpecH>(1), -1), 3);
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_EQ(io_in->AEGP_SetInSpecSize(some_handle<AEIO_InSpecH>(1), 0), 0);
    EXPECT_THAT(host.calls, ElementsAre("SetInSpecSize(0x1, 0)"));
}

TEST_F(BridgeSuites, ASizeBeyond32BitsBecomesTheLargestValue) {
    const struct {
        AEIO_FileSize host_size;
        A_long size;
    } cases[] = {
        {0, 0},
        {0x7FFFFFFF, kLargest},
        {0x80000000, kLargest},
        {0x100000001, kLargest},
        {std::numeric_limits<AEIO_FileSize>::max(), kLargest},
    };
    for (const auto& c : cases) {
        host.in_size = c.host_size;
        A_long size = -1;
        EXPECT_EQ(io_in->AEGP_GetInSpecSize(some_handle<AEIO_InSpecH>(1), &size), 0);
        EXPECT_EQ(size, c.size);
    }
    host.fail_every("GetInSpecSize", 9);
    A_long size = -1;
    EXPECT_EQ(io_in->AEGP_GetInSpecSize(some_handle<AEIO_InSpecH>(1), &size), 9);
    EXPECT_EQ(size, -1) << "nothing is written on an error";
    EXPECT_EQ(io_in->AEGP_GetInSpecSize(some_handle<AEIO_InSpecH>(1), nullptr), 3);
}

}  // namespace
