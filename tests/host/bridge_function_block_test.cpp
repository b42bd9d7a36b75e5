// The function block that current hosts get, field by field.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/bridged_plugin.h"
#include "host/one_refused_allocation.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr A_Err kModulesResult = 4711;

std::optional<AEIO_BasicData> seen_data;  ///< the argument of the module's function, if it was called

AEIO_FunctionBlock4 registered_block(RecordingHost& host, const AEIO_FunctionBlock2& functions) {
    const auto* registers = acquired<AEGP_RegisterSuite4>(bridge_over(host), "AEGP Register Suite", 4);
    AEIO_ModuleInfo info{};
    EXPECT_EQ(registers->AEGP_RegisterIO(7, nullptr, &info, &functions), 0);
    seen_data.reset();
    return host.modules.at(0).second;
}

// The types that modules write through a pointer, texts included. Stated again here, apart from the bridge.
template <typename Value>
constexpr bool is_output(Value* /*pointer*/) {
    return std::is_same_v<Value, A_Boolean> || std::is_same_v<Value, A_long> ||
           std::is_same_v<Value, A_u_long> || std::is_same_v<Value, std::uint64_t> ||
           std::is_same_v<Value, A_Time> || std::is_same_v<Value, A_LRect> ||
           std::is_same_v<Value, AEIO_Verbiage> || std::is_same_v<Value, AEIO_Handle> ||
           std::is_same_v<Value, A_char>;
}
template <typename Value>
constexpr bool is_output(Value /*no pointer*/) {
    return false;
}

std::size_t outputs_seen = 0;

// An output is cleared before the module is called; a text, in its first byte.
template <typename Value>
void expect_cleared(Value value) {
    if constexpr (is_output(Value{})) {
        ASSERT_NE(value, nullptr);
        const auto* bytes = reinterpret_cast<const unsigned char*>(value);
        const std::size_t size = std::is_same_v<Value, A_char*> ? 1 : sizeof *value;
        EXPECT_EQ(std::count(bytes, bytes + size, 0), static_cast<std::ptrdiff_t>(size));
        ++outputs_seen;
    }
}

// A different value for each argument. The memory of outputs is not 0.
template <typename Value>
Value nth_value(std::size_t n) {
    if constexpr (is_output(Value{})) {
        static std::array<std::remove_pointer_t<Value>, 8> outputs;
        std::memset(&outputs.at(n), 0xCD, sizeof outputs[n]);
        return &outputs.at(n);
    } else if constexpr (std::is_pointer_v<Value>) {
        return reinterpret_cast<Value>(0x1000 + n);
    } else {
        return static_cast<Value>(100 + n);
    }
}

// A field that is the same in both blocks: the module's function records its arguments.
template <auto Classic, auto Today>
struct SameField;

template <typename... Arguments, A_Err (*AEIO_FunctionBlock2::*Classic)(AEIO_BasicData*, Arguments...),
          A_Err (*AEIO_FunctionBlock4::*Today)(AEIO_BasicData*, Arguments...)>
struct SameField<Classic, Today> {
    static inline std::optional<std::tuple<Arguments...>> seen;

    static A_Err module_function(AEIO_BasicData* data, Arguments... arguments) {
        seen_data = *data;
        seen = {arguments...};
        (expect_cleared(arguments), ...);
        return kModulesResult;
    }

    static void check() {
        CurrentHost host;
        AEIO_FunctionBlock2 functions{};
        functions.*Classic = module_function;
        const AEIO_FunctionBlock4 block = registered_block(host, functions);
        ASSERT_NE(block.*Today, nullptr);
        AEIO_BasicData data = *host.basic_data();
        data.refcon = reinterpret_cast<AEGP_IORefcon>(0x77);
        const auto arguments = []<std::size_t... N>(std::index_sequence<N...>) {
            return std::tuple<Arguments...>(nth_value<Arguments>(N)...);
        }
        (std::index_sequence_for<Arguments...>());
        const A_Err err =
            std::apply([&](Arguments... values) { return (block.*Today)(&data, values...); }, arguments);
        EXPECT_EQ(err, kModulesResult);
        EXPECT_EQ(seen, arguments);
        ASSERT_TRUE(seen_data);
        EXPECT_EQ(seen_data->basic_suite, BridgedPlugin::arguments.basic);
        EXPECT_EQ(seen_data->msg_func, data.msg_func);
        EXPECT_EQ(seen_data->plugin_id, data.plugin_id);
        EXPECT_EQ(seen_data->refcon, data.refcon);
        EXPECT_EQ(data.basic_suite, host.basic()) << "the host's own record does not change";
        // Null for every pointer: the module gets a stand-in for an output, and null for the rest.
        seen.reset();
        EXPECT_EQ((block.*Today)(&data, Arguments{}...), kModulesResult);
        ASSERT_TRUE(seen);
        std::apply([](auto... values) { (expect_null_unless_output(values), ...); }, *seen);
    }

    template <typename Value>
    static void expect_null_unless_output(Value value) {
        if constexpr (std::is_pointer_v<Value>) {
            EXPECT_EQ(value == nullptr, !is_output(value));
        }
    }
};

TEST(BridgeFunctionBlock, EqualFieldsAreForwardedWithTheBridge) {
#define VXR_CHECK(field)                                                              \
    {                                                                                 \
        SCOPED_TRACE(#field);                                                         \
        SameField<&AEIO_FunctionBlock2::field, &AEIO_FunctionBlock4::field>::check(); \
        ++checked;                                                                    \
    }
    std::size_t checked = 0;
    VXR_CHECK(AEIO_InitInSpecInteractive)
    VXR_CHECK(AEIO_DisposeInSpec)
    VXR_CHECK(AEIO_FlattenOptions)
    VXR_CHECK(AEIO_InflateOptions)
    VXR_CHECK(AEIO_SynchInSpec)
    VXR_CHECK(AEIO_GetActiveExtent)
    VXR_CHECK(AEIO_GetInSpecInfo)
    VXR_CHECK(AEIO_GetDimensions)
    VXR_CHECK(AEIO_GetDuration)
    VXR_CHECK(AEIO_GetTime)
    VXR_CHECK(AEIO_GetSound)
    VXR_CHECK(AEIO_InqNextFrameTime)
    VXR_CHECK(AEIO_InitOutputSpec)
    VXR_CHECK(AEIO_GetFlatOutputOptions)
    VXR_CHECK(AEIO_DisposeOutputOptions)
    VXR_CHECK(AEIO_UserOptionsDialog)
    VXR_CHECK(AEIO_GetOutputInfo)
    VXR_CHECK(AEIO_OutputInfoChanged)
    VXR_CHECK(AEIO_StartAdding)
    VXR_CHECK(AEIO_AddFrame)
    VXR_CHECK(AEIO_EndAdding)
    VXR_CHECK(AEIO_OutputFrame)
    VXR_CHECK(AEIO_WriteLabels)
    VXR_CHECK(AEIO_GetSizes)
    VXR_CHECK(AEIO_Flush)
    VXR_CHECK(AEIO_AddSoundChunk)
    VXR_CHECK(AEIO_Idle)
    VXR_CHECK(AEIO_GetDepths)
    VXR_CHECK(AEIO_GetOutputSuffix)
    VXR_CHECK(AEIO_SeqOptionsDlg)
    VXR_CHECK(AEIO_GetNumAuxChannels)
    VXR_CHECK(AEIO_GetAuxChannelDesc)
    VXR_CHECK(AEIO_DrawAuxChannel)
    VXR_CHECK(AEIO_FreeAuxChannel)
    VXR_CHECK(AEIO_NumAuxFiles)
    VXR_CHECK(AEIO_CloseSourceFiles)
    VXR_CHECK(AEIO_CountUserData)
    VXR_CHECK(AEIO_SetUserData)
    VXR_CHECK(AEIO_GetUserData)
    VXR_CHECK(AEIO_AddMarker)
    VXR_CHECK(AEIO_UserAudioOptionsDialog)
#undef VXR_CHECK
    EXPECT_EQ(checked, kFunctionBlockFields - 5) << "four of the others take or return paths, one draws";
    EXPECT_EQ(outputs_seen, 2U * 26) << "each field was called twice";
}

using ClassicFields = std::array<ReservedSlot, kFunctionBlockFields>;
using CurrentFields = std::array<ReservedSlot, kFunctionBlock4Fields>;

void do_nothing() {}

TEST(BridgeFunctionBlock, AFieldIsNullIfThePluginsIs) {
    for (std::size_t null_field = 0; null_field < kFunctionBlockFields; ++null_field) {
        ClassicFields fields;
        fields.fill(do_nothing);
        fields[null_field] = nullptr;
        CurrentHost host;
        const auto block =
            std::bit_cast<CurrentFields>(registered_block(host, std::bit_cast<AEIO_FunctionBlock2>(fields)));
        for (std::size_t field = 0; field < block.size(); ++field) {
            EXPECT_EQ(block[field] == nullptr, field == null_field) << field;
        }
    }
}

TEST(BridgeFunctionBlock, TheThreeNewFieldsRequestTheDefault) {
    CurrentHost host;
    const AEIO_FunctionBlock4 block = registered_block(host, {});
    AEIO_BasicData data = *host.basic_data();
    EXPECT_EQ(block.AEIO_AddMarker2(&data, nullptr, 1, nullptr, nullptr), 9992);
    EXPECT_EQ(block.AEIO_AddMarker3(&data, nullptr, 1, nullptr, 2, nullptr), 9992);
    A_char type[] = "before";
    EXPECT_EQ(block.AEIO_GetMimeType(&data, nullptr, sizeof type, type), 9992);
    EXPECT_STREQ(type, "") << "an output is cleared";
    EXPECT_EQ(block.AEIO_GetMimeType(&data, nullptr, 0, nullptr), 9992);
}

TEST(BridgeFunctionBlock, WithoutBasicDataTheModuleIsNotCalled) {
    CurrentHost host;
    AEIO_FunctionBlock2 functions{};
    functions.AEIO_Idle = [](AEIO_BasicData* data, A_long, A_long*) {
        seen_data = *data;
        return A_Err{0};
    };
    const AEIO_FunctionBlock4 block = registered_block(host, functions);
    EXPECT_EQ(block.AEIO_Idle(nullptr, 1, nullptr), 3);
    EXPECT_FALSE(seen_data);
}

// ---- the fields that take a path

struct SeenPath {
    std::string path;
    const void* spec = nullptr;
    A_long signature = 0;
    int calls = 0;
};
SeenPath seen_path;

A_Err note_path(AEIO_BasicData* data, const A_char* path, const void* spec, A_long signature) {
    seen_data = *data;
    seen_path = {path, spec, signature, seen_path.calls + 1};
    return kModulesResult;
}

AEIO_FunctionBlock2 path_functions() {
    AEIO_FunctionBlock2 functions{};
    functions.AEIO_InitInSpecFromFile = [](AEIO_BasicData* data, const A_char* path, AEIO_InSpecH spec) {
        return note_path(data, path, spec, 0);
    };
    functions.AEIO_SetOutputFile = [](AEIO_BasicData* data, AEIO_OutSpecH spec, const A_char* path) {
        return note_path(data, path, spec, 0);
    };
    functions.AEIO_VerifyFileImportable = [](AEIO_BasicData* data, A_long signature, const A_char* path,
                                             A_Boolean* importable) {
        *importable = 1;
        return note_path(data, path, nullptr, signature);
    };
    return functions;
}

struct PathField {
    std::string name;
    const void* spec;
    A_long signature;
    std::function<A_Err(const AEIO_FunctionBlock4&, AEIO_BasicData*, const A_UTF16Char*)> call;
};
A_Boolean importable = 0;
const PathField kPathFields[] = {
    {"InitInSpecFromFile", some_handle<AEIO_InSpecH>(5), 0,
     [](const AEIO_FunctionBlock4& block, AEIO_BasicData* data, const A_UTF16Char* path) {
         return block.AEIO_InitInSpecFromFile(data, path, some_handle<AEIO_InSpecH>(5));
     }},
    {"SetOutputFile", some_handle<AEIO_OutSpecH>(6), 0,
     [](const AEIO_FunctionBlock4& block, AEIO_BasicData* data, const A_UTF16Char* path) {
         return block.AEIO_SetOutputFile(data, some_handle<AEIO_OutSpecH>(6), path);
     }},
    {"VerifyFileImportable", nullptr, 88,
     [](const AEIO_FunctionBlock4& block, AEIO_BasicData* data, const A_UTF16Char* path) {
         return block.AEIO_VerifyFileImportable(data, 88, path, &importable);
     }},
};

TEST(BridgeFunctionBlock, PathsArriveInUtf8) {
    for (const PathField& field : kPathFields) {
        SCOPED_TRACE(field.name);
        CurrentHost host;
        const AEIO_FunctionBlock4 block = registered_block(host, path_functions());
        AEIO_BasicData data = *host.basic_data();
        seen_path = {};
        importable = 0;
        EXPECT_EQ(field.call(block, &data, u"/caf\x00E9/\x6620 \xD83C\xDFAC.txl"), kModulesResult);
        EXPECT_EQ(seen_path.path, "/caf\xC3\xA9/\xE6\x98\xA0 \xF0\x9F\x8E\xAC.txl");
        EXPECT_EQ(seen_path.spec, field.spec);
        EXPECT_EQ(seen_path.signature, field.signature);
        EXPECT_EQ(importable, field.name == "VerifyFileImportable" ? 1 : 0);
        ASSERT_TRUE(seen_data);
        EXPECT_EQ(seen_data->basic_suite, BridgedPlugin::arguments.basic);
        EXPECT_THAT(host.reports, IsEmpty());
    }
}

TEST(BridgeFunctionBlock, APathThatCannotBeConvertedNeverReachesTheModule) {
    const std::u16string long_path(100, u'x');
    const struct {
        const char* why;
        const A_UTF16Char* path;
        bool memory;
        A_Err err;
        std::vector<std::string> reports;
    } cases[] = {
        {"a surrogate on its own",
         u"/a/\xD83C",
         true,
         3,
         {"A path of the host cannot be used: it is not valid UTF-16 (unit D83C behind \"/a/\")."}},
        {"no path", nullptr, true, 3, {"A path of the host cannot be used: it is missing."}},
        {"no memory", long_path.c_str(), false, 4, {}},
    };
    for (const PathField& field : kPathFields) {
        for (const auto& c : cases) {
            SCOPED_TRACE(field.name + ": " + c.why);
            CurrentHost host;
            const AEIO_FunctionBlock4 block = registered_block(host, path_functions());
            AEIO_BasicData data = *host.basic_data();
            seen_path = {};
            importable = 1;
            std::optional<OneRefusedAllocation> memory;
            if (!c.memory) {
                memory.emplace(0);
            }
            const A_Err err = field.call(block, &data, c.path);
            memory.reset();
            EXPECT_EQ(err, c.err);
            EXPECT_EQ(seen_path.calls, 0);
            EXPECT_EQ(host.reports, c.reports);
            EXPECT_EQ(importable, field.name == "VerifyFileImportable" ? 0 : 1);
        }
    }
}

// ---- the field that returns a path

std::string given_path;
A_Err given_result = 0;

AEIO_FunctionBlock2 giving_functions() {
    AEIO_FunctionBlock2 functions{};
    functions.AEIO_GetNthAuxFileSpec = [](AEIO_BasicData* data, AEIO_InSpecH spec, A_long frame, A_long n,
                                          A_char* path) {
        seen_data = *data;
        EXPECT_EQ(spec, some_handle<AEIO_InSpecH>(5));
        EXPECT_EQ(frame, 6);
        EXPECT_EQ(n, 7);
        std::memcpy(path, given_path.data(), given_path.size());
        return given_result;
    };
    return functions;
}

A_Err ask_for_path(RecordingHost& host, AEGP_MemHandle* path) {
    const AEIO_FunctionBlock4 block = host.modules.at(0).second;
    AEIO_BasicData data = *host.basic_data();
    return block.AEIO_GetNthAuxFileSpec(&data, some_handle<AEIO_InSpecH>(5), 6, 7, path);
}

TEST(BridgeFunctionBlock, AModulesPathBecomesAHandleForTheHost) {
    std::string longest;
    std::u16string longest_wide;
    for (int i = 0; i < 32767; ++i) {
        longest += "\xE6\x98\xA0";
        longest_wide += u'\x6620';
    }
    const struct {
        const char* why;
        std::string narrow;
        std::u16string wide;
    } cases[] = {
        {"nothing written", "", u""},
        {"a path", "/caf\xC3\xA9 \xF0\x9F\x8E\xAC", u"/caf\x00E9 \xD83C\xDFAC"},
        {"longer than a classic one", std::string(300, 'x'), std::u16string(300, u'x')},
        {"the longest", longest, longest_wide},
    };
    for (const auto& c : cases) {
        CurrentHost host;
        registered_block(host, giving_functions());
        given_path = c.narrow;
        given_result = 0;
        AEGP_MemHandle handle = nullptr;
        EXPECT_EQ(ask_for_path(host, &handle), 0) << c.why;
        ASSERT_NE(handle, nullptr) << c.why;
        EXPECT_EQ(host.take_text(handle), c.wide) << c.why;
        EXPECT_EQ(seen_data->basic_suite, BridgedPlugin::arguments.basic);
        EXPECT_THAT(host.left_open(), ElementsAre("AEGP Register Suite 6 x 1"));
    }
}

TEST(BridgeFunctionBlock, WithoutAPathThereIsNoHandle) {
    const struct {
        const char* why;
        std::string path;
        A_Err result;
        std::function<void(RecordingHost&)> script;
        A_Err err;
        std::vector<std::string> reports;
    } cases[] = {
        {"the module wants the default", "", 9992, [](RecordingHost&) {}, 9992, {}},
        {"the path is not valid",
         "/a\xE9",
         0,
         [](RecordingHost&) {},
         3,
         {"A path cannot be given to the host: it is not valid UTF-8 (byte E9 behind \"/a\"), and no "
          "file has this name read as Windows-1252 or as Mac Roman."}},
        {"the host has no memory", "/a", 0, [](RecordingHost& h) { h.fail_every("NewMemHandle", 4); }, 4, {}},
        {"the host makes no handle",
         "/a",
         0,
         [](RecordingHost& h) { h.always_yield_nothing("NewMemHandle"); },
         1,
         {}},
        {"no lock", "/a", 0, [](RecordingHost& h) { h.fail_every("LockMemHandle", 31); }, 31, {}},
        {"a lock without an address",
         "/a",
         0,
         [](RecordingHost& h) { h.always_yield_nothing("LockMemHandle"); },
         1,
         {}},
        {"no unlocking", "/a", 0, [](RecordingHost& h) { h.fail_every("UnlockMemHandle", 32); }, 32, {}},
        {"no memory suite",
         "/a",
         0,
         [](RecordingHost& h) { h.withhold_suite("AEGP Memory Suite", 1); },
         13,
         {"This plug-in needs the suite \"AEGP Memory Suite\" 1, which the host does not offer."}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        CurrentHost host;
        registered_block(host, giving_functions());
        c.script(host);
        given_path = c.path;
        given_result = c.result;
        AEGP_MemHandle handle = nullptr;
        EXPECT_EQ(ask_for_path(host, &handle), c.err);
        EXPECT_EQ(handle, nullptr);
        EXPECT_EQ(host.reports, c.reports);
        EXPECT_THAT(host.left_open(), ElementsAre("AEGP Register Suite 6 x 1"));
    }
    CurrentHost host;
    registered_block(host, giving_functions());
    given_path = "/a";
    given_result = 0;
    EXPECT_EQ(ask_for_path(host, nullptr), 3);
    EXPECT_THAT(host.left_open(), ElementsAre("AEGP Register Suite 6 x 1"));
}

TEST(BridgeFunctionBlock, WithoutMemoryForThePathTheModuleIsNotCalled) {
    CurrentHost host;
    registered_block(host, giving_functions());
    AEGP_MemHandle handle = nullptr;
    const OneRefusedAllocation memory(0);
    EXPECT_EQ(ask_for_path(host, &handle), 4);
    EXPECT_TRUE(memory.refused());
    EXPECT_FALSE(seen_data);
}

}  // namespace
