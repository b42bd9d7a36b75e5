// The record that the bundle registers with AEGP_RegisterIO, byte for byte, and its callbacks, called through
// the registered block: 46 in a classic host, 49 in a current one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

#include "embedded/host_path.h"
#include "support/loaded_bundle.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const embedded::Module& registered(LoadedBundle& bundle) {
    if (bundle.host().modules().size() != 1) {
        throw std::runtime_error("not one module");
    }
    return bundle.host().modules()[0];
}

// The record as the host's documentation lays it out, written by offsets and not by members.
class InfoBytes {
  public:
    void number(std::size_t offset, std::uint32_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i) {
            bytes_[offset + i] = static_cast<unsigned char>(value >> (8 * i));
        }
    }
    void text(std::size_t offset, const std::string& text) {
        std::copy(text.begin(), text.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    [[nodiscard]] const std::array<unsigned char, 396>& bytes() const { return bytes_; }

  private:
    std::array<unsigned char, 396> bytes_{};
};

TEST(ModuleInfo, IsTheExpectedRecord) {
    LoadedBundle bundle;
    InfoBytes expected;
    expected.number(0, 0x54584C20, 4);  // 'TXL '
    expected.text(4, "Texalon 3D");
    expected.number(36, 33620045, 4);  // bits 0, 2, 3, 6, 16, 25
    expected.number(44, 320, 4);
    expected.number(48, 240, 4);
    expected.number(52, 1, 2);           // file types
    expected.number(54, 1, 2);           // extensions
    expected.number(60, 0x54584C20, 4);  // makes 'TXL '
    expected.number(64, 0x56585231, 4);  // of 'VXR1'
    expected.text(68, ".txl");
    expected.number(72, 0x54584C20, 4);  // reads 'TXL '
    expected.number(76, 0xFFFFFFFF, 4);  // of any creator
    expected.text(80, ".txl");
    expected.text(88, ".txl");  // beyond the counts

    std::array<unsigned char, 396> made{};
    static_assert(sizeof(AEIO_ModuleInfo) == sizeof(made));
    std::memcpy(made.data(), &registered(bundle).info, made.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(int{made[i]}, int{expected.bytes()[i]}) << "byte " << i;
    }
    static_assert((1 << 0 | 1 << 2 | 1 << 3 | 1 << 6 | 1 << 16 | 1 << 25) == 33620045);
}

TEST(ModuleInfo, IsListedAndFoundByTheHost) {
    LoadedBundle bundle;
    const embedded::Module& module = registered(bundle);
    EXPECT_EQ(module.name(), "Texalon 3D");
    EXPECT_THAT(module.extensions(), ElementsAre(".txl"));
    EXPECT_EQ(module.refcon, nullptr);
    EXPECT_EQ(bundle.host().module_for("a/cloth.txl"), &module);
    EXPECT_EQ(bundle.host().module_for("a/CLOTH.TXL"), &module);
    EXPECT_EQ(bundle.host().module_for("a/cloth.tif"), nullptr);
    EXPECT_EQ(bundle.host().module_for("a.txl/cloth"), nullptr);
}

TEST(ModuleFunctions, AreAllPresentAndAllDifferent) {
    LoadedBundle bundle;
    std::set<void*> different;
    registered(bundle).with_functions([&](const auto& functions) -> A_Err {
        std::array<void*, sizeof functions / sizeof(void*)> fields{};
        std::memcpy(fields.data(), &functions, sizeof fields);
        different.insert(fields.begin(), fields.end());
        return kHostErrorNone;
    });
    EXPECT_FALSE(different.contains(nullptr));
    EXPECT_EQ(different.size(), tests_today() ? 49U : 46U);
}

// Memory for every pointer argument of a callback, filled with a known byte.
class Rooms {
  public:
    Rooms() { memory_.fill(kKnown); }

    /// The next room for pointers and handles, 1 for numbers.
    template <typename Parameter>
    Parameter next() {
        if constexpr (std::is_pointer_v<Parameter>) {
            return reinterpret_cast<Parameter>(memory_.data() + kRoom_bytes * used_++);
        } else {
            return Parameter{1};
        }
    }

    /// Offsets of changed bytes, room * 1000 + byte. In a current host, bytes that became 0 do not count: the
    /// bridge clears every output before it asks the module.
    [[nodiscard]] std::vector<std::size_t> changed() const {
        std::vector<std::size_t> offsets;
        for (std::size_t i = 0; i < memory_.size(); ++i) {
            if (memory_[i] != kKnown && (memory_[i] != 0 || !tests_today())) {
                offsets.push_back(i / kRoom_bytes * 1000 + i % kRoom_bytes);
            }
        }
        return offsets;
    }
    [[nodiscard]] unsigned char byte(std::size_t room, std::size_t offset) const {
        return memory_[room * kRoom_bytes + offset];
    }

    static constexpr unsigned char kKnown = 0xA5;

  private:
    static constexpr std::size_t kRoom_bytes = 512;
    alignas(16) std::array<unsigned char, kRoom_bytes * 16> memory_{};
    std::size_t used_ = 0;
};

template <typename... Parameters>
A_Err call_with(Rooms& rooms, AEIO_BasicData* basic, A_Err (*callback)(AEIO_BasicData*, Parameters...)) {
    const std::tuple<Parameters...> arguments{rooms.next<Parameters>()...};  // braces: from left to right
    return std::apply([&](auto... values) { return callback(basic, values...); }, arguments);
}

using Call = std::function<A_Err(Rooms&, AEIO_BasicData*, const embedded::Module&)>;

struct Callback {
    const char* name;
    Call call;
    A_Err code;
};

#define VXR_CALLBACK(name, code)                                                     \
    Callback {                                                                       \
#name, [](Rooms & rooms, AEIO_BasicData * basic, const embedded::Module& module) { \
            return module.with_functions([&](const auto& functions) {                                     \
                return call_with(rooms, basic, functions.AEIO_##name);                                     \
            });                                                                                            \
        }, code \
    }

// Those of the 35 functions without an effect that take no path.
const Callback kFixed[] = {
    VXR_CALLBACK(GetDimensions, 9992),
    VXR_CALLBACK(GetDuration, 9992),
    VXR_CALLBACK(GetActiveExtent, 9992),
    VXR_CALLBACK(GetOutputSuffix, 9992),
    VXR_CALLBACK(GetSizes, 9992),
    VXR_CALLBACK(GetTime, 9992),
    VXR_CALLBACK(InqNextFrameTime, 9992),
    VXR_CALLBACK(SynchInSpec, 9992),
    VXR_CALLBACK(WriteLabels, 9992),
    VXR_CALLBACK(InitOutputSpec, 9992),
    VXR_CALLBACK(GetFlatOutputOptions, 9992),
    VXR_CALLBACK(OutputInfoChanged, 9992),
    VXR_CALLBACK(FlattenOptions, 9992),
    VXR_CALLBACK(UserAudioOptionsDialog, 9992),
    VXR_CALLBACK(GetSound, 9992),
    VXR_CALLBACK(AddFrame, 0),
    VXR_CALLBACK(AddMarker, 0),
    VXR_CALLBACK(AddSoundChunk, 0),
    VXR_CALLBACK(CloseSourceFiles, 0),
    VXR_CALLBACK(CountUserData, 0),
    VXR_CALLBACK(DrawAuxChannel, 0),
    VXR_CALLBACK(EndAdding, 0),
    VXR_CALLBACK(Flush, 0),
    VXR_CALLBACK(FreeAuxChannel, 0),
    VXR_CALLBACK(GetAuxChannelDesc, 0),
    VXR_CALLBACK(GetNumAuxChannels, 0),
    VXR_CALLBACK(GetUserData, 0),
    VXR_CALLBACK(Idle, 0),
    VXR_CALLBACK(InflateOptions, 0),
    VXR_CALLBACK(InitInSpecInteractive, 0),
    VXR_CALLBACK(OutputFrame, 0),
    VXR_CALLBACK(SetUserData, 0),
    VXR_CALLBACK(StartAdding, 0),
};
static_assert(std::size(kFixed) == 33);

TEST(ModuleFunctions, WithoutAnEffectTouchNothing) {
    LoadedBundle bundle;
    bundle.take_calls();
    for (const Callback& callback : kFixed) {
        Rooms rooms;
        EXPECT_EQ(callback.call(rooms, bundle.host().basic_data(), registered(bundle)), callback.code)
            << callback.name;
        EXPECT_THAT(rooms.changed(), IsEmpty()) << callback.name;
    }
    EXPECT_THAT(bundle.take_calls(), IsEmpty()) << "none of them calls the host";
}

TEST(ModuleFunctions, VerifyAcceptsEveryFile) {
    LoadedBundle bundle;
    for (const char* path : {"/no/such/file.txl", "", "a.tif", "/dev/zero"}) {
        std::array<A_Boolean, 3> importable = {9, 0, 9};
        const embedded::HostPath named(bundle.host().generation(), path);
        EXPECT_EQ(registered(bundle).with_functions([&](const auto& functions) {
            return functions.AEIO_VerifyFileImportable(bundle.host().basic_data(), four_char_code("TXL "),
                                                       named.given_to(functions), &importable[1]);
        }),
                  0);
        EXPECT_THAT(importable, ElementsAre(9, 1, 9));
    }
}

TEST(ModuleFunctions, OutputFilesAreLeftToTheHost) {
    LoadedBundle bundle;
    const embedded::HostPath named(bundle.host().generation(), "C:\\out\\cloth.txl");
    EXPECT_EQ(registered(bundle).with_functions([&](const auto& functions) {
        return functions.AEIO_SetOutputFile(bundle.host().basic_data(),
                                            bundle.host().new_out_spec("C:\\out\\cloth.txl"),
                                            named.given_to(functions));
    }),
              9992);
}

// The module does not say where its one file is. A classic host's buffer does not change; a current host gets
// an empty path in a memory handle, which it frees.
A_Err expect_no_auxiliary_path(embedded::TestHost& host, const AEIO_FunctionBlock2& functions) {
    std::array<A_char, kClassicPathBytes> path{};
    path.fill('x');
    EXPECT_EQ(functions.AEIO_GetNthAuxFileSpec(host.basic_data(), nullptr, 0, 0, path.data()), 0);
    EXPECT_EQ(std::count(path.begin(), path.end(), 'x'), std::ptrdiff_t{kClassicPathBytes});
    return kHostErrorNone;
}

A_Err expect_no_auxiliary_path(embedded::TestHost& host, const AEIO_FunctionBlock4& functions) {
    const void* table = nullptr;
    EXPECT_EQ(host.basic_suite()->AcquireSuite("AEGP Memory Suite", 1, &table), 0);
    const auto* memory = static_cast<const AEGP_MemorySuite1*>(table);
    AEGP_MemHandle path = nullptr;
    void* units = nullptr;
    EXPECT_EQ(functions.AEIO_GetNthAuxFileSpec(host.basic_data(), nullptr, 0, 0, &path), 0);
    EXPECT_EQ(memory->AEGP_LockMemHandle(path, &units), 0);
    EXPECT_EQ(*static_cast<const A_UTF16Char*>(units), u'\0');
    EXPECT_EQ(memory->AEGP_UnlockMemHandle(path), 0);
    EXPECT_EQ(memory->AEGP_FreeMemHandle(path), 0);
    return host.basic_suite()->ReleaseSuite("AEGP Memory Suite", 1);
}

TEST(ModuleFunctions, AuxiliaryFilesHaveNoPath) {
    LoadedBundle bundle;
    const auto result = bundle.host().run("AEIO_GetNthAuxFileSpec", [&] {
        return registered(bundle).with_functions(
            [&](const auto& functions) { return expect_no_auxiliary_path(bundle.host(), functions); });
    });
    EXPECT_EQ(result.code, 0);
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST(ModuleFunctions, OfCurrentHostsAloneRequestTheDefault) {
    LoadedBundle bundle;
    const auto* functions = std::get_if<AEIO_FunctionBlock4>(&registered(bundle).functions);
    ASSERT_EQ(functions != nullptr, tests_today());
    if (functions == nullptr) {
        return;
    }
    AEIO_BasicData* basic = bundle.host().basic_data();
    const AEIO_OutSpecH out = bundle.host().new_out_spec("/a.txl");
    std::array<A_char, 4> mime_type = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(functions->AEIO_AddMarker2(basic, out, 0, nullptr, nullptr), 9992);
    EXPECT_EQ(functions->AEIO_AddMarker3(basic, out, 0, nullptr, 0, nullptr), 9992);
    EXPECT_EQ(functions->AEIO_GetMimeType(basic, out, 4, mime_type.data()), 9992);
    EXPECT_THAT(mime_type, ElementsAre('\0', 'x', 'x', 'x')) << "the empty text";
}

TEST(ModuleFunctions, InSpecInfoEmptiesTypeAndSubTypeOnly) {
    LoadedBundle bundle;
    Rooms rooms;
    EXPECT_EQ(registered(bundle).with_functions([&](const auto& functions) {
        return call_with(rooms, bundle.host().basic_data(), functions.AEIO_GetInSpecInfo);
    }),
              0);
    // The second room holds the verbiage, with the type at 32 and the sub-type at 64.
    if (tests_today()) {
        EXPECT_THAT(rooms.changed(), IsEmpty());
        EXPECT_EQ(rooms.byte(1, 0), 0) << "the bridge has cleared the name";
    } else {
        EXPECT_THAT(rooms.changed(), ElementsAre(1032, 1064));
    }
    EXPECT_EQ(rooms.byte(1, 32), 0);
    EXPECT_EQ(rooms.byte(1, 64), 0);
}

TEST(ModuleFunctions, NumbersOfAuxiliaryFilesAndOfDepths) {
    LoadedBundle bundle;
    A_long aux_files[3] = {-5, -5, -5};
    A_long depths[3] = {-5, -5, -5};
    registered(bundle).with_functions([&](const auto& functions) -> A_Err {
        EXPECT_EQ(functions.AEIO_NumAuxFiles(bundle.host().basic_data(), nullptr, &aux_files[1]), 0);
        EXPECT_EQ(functions.AEIO_GetDepths(bundle.host().basic_data(), nullptr, &depths[1]), 0);
        return kHostErrorNone;
    });
    EXPECT_THAT(aux_files, ElementsAre(-5, 1, -5));
    EXPECT_THAT(depths, ElementsAre(-5, 0x80, -5));
}

TEST(ModuleFunctions, DialogsUseTheHostsMessageFunction) {
    LoadedBundle bundle;
    Rooms rooms;
    registered(bundle).with_functions([&](const auto& functions) -> A_Err {
        EXPECT_EQ(call_with(rooms, bundle.host().basic_data(), functions.AEIO_SeqOptionsDlg), 0);
        EXPECT_EQ(call_with(rooms, bundle.host().basic_data(), functions.AEIO_UserOptionsDialog), 0);
        return kHostErrorNone;
    });
    EXPECT_THAT(rooms.changed(), IsEmpty());
    const auto& messages = bundle.host().messages();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].code, 0);
    EXPECT_EQ(messages[0].text, "IO: Here's my sequence options dialog!");
    EXPECT_EQ(messages[1].code, 1);
    EXPECT_EQ(messages[1].text, "Use the message func hanging off the AEIO_BasicData!");
}

TEST(ModuleFunctions, DisposeOfOutputOptionsDeletesThem) {
    LoadedBundle bundle;
    registered(bundle).with_functions([&](const auto& functions) -> A_Err {
        // The sanitizer sees whether the memory is freed, and by the delete that belongs to its new.
        EXPECT_EQ(functions.AEIO_DisposeOutputOptions(bundle.host().basic_data(), ::operator new(100)), 0);
        EXPECT_EQ(functions.AEIO_DisposeOutputOptions(bundle.host().basic_data(), nullptr), 0);
        return kHostErrorNone;
    });
}

struct OutputPath {
    const char* description;
    std::string path;
    std::string name;
};

const OutputPath kOutputPaths[] = {
    {"what follows the last backslash", "C:\\out\\cloth.txl", "cloth.txl"},
    {"only the backslash separates", "/out/cloth.txl", "???"},
    {"no separator at all", "cloth.txl", "???"},
    {"nothing after the backslash", "C:\\", ""},
    {"a slash after the backslash is part of the name", "C:\\a/b", "a/b"},
    {"31 characters fit", "C:\\" + std::string(31, 'a'), std::string(31, 'a')},
    {"the 32nd is cut", "C:\\" + std::string(32, 'a'), std::string(31, 'a')},
    {"an empty path", "", "???"},
    {"letters and pictures of any script", "C:\\\u0444\\\u00E9toffe \U0001F3AC.txl",
     "\u00E9toffe \U0001F3AC.txl"},
    {"259 bytes fit the module's buffer", "C:\\" + std::string(252, 'a') + "\\b.c", "b.c"},
};

TEST(ModuleFunctions, OutputInfoNamesTheFileAndTheModule) {
    for (const OutputPath& output : kOutputPaths) {
        SCOPED_TRACE(output.description);
        LoadedBundle bundle;
        AEIO_Verbiage verbiage;
        std::memset(&verbiage, 'x', sizeof verbiage);
        const AEIO_OutSpecH out = bundle.host().new_out_spec(output.path);
        const auto result = bundle.host().run("AEIO_GetOutputInfo", [&] {
            return registered(bundle).with_functions([&](const auto& functions) {
                return functions.AEIO_GetOutputInfo(bundle.host().basic_data(), out, &verbiage);
            });
        });
        EXPECT_EQ(result.code, 0);
        EXPECT_STREQ(verbiage.name, output.name.c_str());
        EXPECT_STREQ(verbiage.type, "Texalon 3D");
        EXPECT_STREQ(verbiage.sub_type, "Texalon 3D");
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
        EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
    }
}

// An output that was 'x' and that the module did not touch: for a current host the bridge clears outputs.
const A_char kUntouched = tests_today() ? '\0' : 'x';

// A classic host does not yield such a path. A current host does, and the bridge reports why it cannot pass
// it on.
TEST(ModuleFunctions, OutputInfoOfAPathThatDoesNotFit) {
    LoadedBundle bundle;
    AEIO_Verbiage verbiage;
    std::memset(&verbiage, 'x', sizeof verbiage);
    const AEIO_OutSpecH out = bundle.host().new_out_spec("C:\\" + std::string(253, 'a') + "\\b.c");
    const auto result = bundle.host().run("AEIO_GetOutputInfo", [&] {
        return registered(bundle).with_functions([&](const auto& functions) {
            return functions.AEIO_GetOutputInfo(bundle.host().basic_data(), out, &verbiage);
        });
    });
    EXPECT_EQ(result.code, tests_today() ? kHostErrorParameter : kHostErrorGeneric);
    std::vector<std::string> messages = {"Unable to get file data"};
    if (tests_today()) {
        messages.insert(messages.begin(),
                        "A path of the host cannot be used: in UTF-8 it is longer than 259 bytes.");
    }
    EXPECT_EQ(bundle.message_texts(), messages);
    EXPECT_EQ(verbiage.name[0], kUntouched);
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST(ModuleFunctions, OutputInfoIfTheHostDoesNotKnowThePath) {
    for (const A_Err code : {1, 4, 13}) {
        embedded::HostOptions options;
        options.faults = {{"AEGP_GetOutSpecFilePath", 1, code}};
        LoadedBundle bundle(options);
        AEIO_Verbiage verbiage;
        std::memset(&verbiage, 'x', sizeof verbiage);
        const AEIO_OutSpecH out = bundle.host().new_out_spec("C:\\a.txl");
        const auto result = bundle.host().run("AEIO_GetOutputInfo", [&] {
            return registered(bundle).with_functions([&](const auto& functions) {
                return functions.AEIO_GetOutputInfo(bundle.host().basic_data(), out, &verbiage);
            });
        });
        EXPECT_EQ(result.code, code);
        EXPECT_THAT(bundle.message_texts(), ElementsAre("Unable to get file data"));
        EXPECT_EQ(verbiage.name[0], kUntouched);
        EXPECT_EQ(verbiage.type[0], kUntouched);
        EXPECT_EQ(verbiage.sub_type[0], kUntouched);
    }
}

}  // namespace
