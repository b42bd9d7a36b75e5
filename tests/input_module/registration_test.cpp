#include "texture/input_module/registration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "input_module/object_bytes.h"
#include "support/recording_host.h"
#include "texture/input_module/frame_reading.h"
#include "texture/input_module/input_callbacks.h"
#include "texture/input_module/output_callbacks.h"

namespace {

constexpr unsigned char kBefore = 0xA5;

// The expected bytes of the record on a little-endian machine: what the module sets, and `kBefore` elsewhere.
std::vector<unsigned char> expected_bytes() {
    std::string bytes(sizeof(AEIO_ModuleInfo), static_cast<char>(kBefore));
    const auto put = [&bytes](std::size_t offset, const std::string& value) {
        bytes.replace(offset, value.size(), value);
    };
    using namespace std::string_literals;
    put(0, " LXT");                   // signature 'TXL '
    put(4, "Texalon 3D\0"s);          // name
    put(36, "\x4D\x00\x01\x02"s);     // flags 33620045
    put(44, "\x40\x01\x00\x00"s);     // 320
    put(48, "\xF0\x00\x00\x00"s);     // 240
    put(52, "\x01\x00"s);             // one file type
    put(54, "\x01\x00"s);             // one extension
    put(56, "\x00\x00"s);             // no clips
    put(60, " LXT");                  // creates 'TXL '
    put(64, "1RXV");                  // by 'VXR1'
    put(68, ".txl");                  // named so
    put(72, " LXT\xFF\xFF\xFF\xFF");  // reads 'TXL ' of any creator
    put(80, ".txl");
    put(88, ".txl\0"s);
    put(200, "\x00\x00"s);  // no auxiliary extensions
    return {bytes.begin(), bytes.end()};
}

TEST(TexalonConstructModuleInfo, SetsOnlyItsFields) {
    auto info = filled_with<AEIO_ModuleInfo>(kBefore);
    EXPECT_EQ(TexalonConstructModuleInfo(&info), 0);
    const std::vector<unsigned char> bytes = bytes_of(info);
    const std::vector<unsigned char> expected = expected_bytes();
    ASSERT_EQ(bytes.size(), expected.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        EXPECT_EQ(int{bytes[i]}, int{expected[i]}) << "byte " << i;
    }
}

TEST(TexalonConstructModuleInfo, FlagsAreTheSumOfTheirBits) {
    AEIO_ModuleInfo info = {};
    ASSERT_EQ(TexalonConstructModuleInfo(&info), 0);
    EXPECT_EQ(info.flags, 33620045);
    EXPECT_EQ(info.flags, 1 << 0 | 1 << 2 | 1 << 3 | 1 << 6 | 1 << 16 | 1 << 25);
    EXPECT_STREQ(info.name, "Texalon 3D");
}

// The memory behind every pointer that is passed to a callback: each pointer has its own room, and all bytes
// are known beforehand.
class Canaries {
  public:
    Canaries() { memory_.fill(kBefore); }

    // A value for one parameter: the next room for pointers and handles, 1 for numbers.
    template <typename Parameter>
    Parameter Next() {
        if constexpr (std::is_pointer_v<Parameter>) {
            return reinterpret_cast<Parameter>(memory_.data() + kRoom * rooms_++);
        } else {
            return Parameter{1};
        }
    }

    [[nodiscard]] std::size_t rooms() const { return rooms_; }
    [[nodiscard]] bool Untouched() const {
        return std::all_of(memory_.begin(), memory_.end(),
                           [](unsigned char byte) { return byte == kBefore; });
    }

  private:
    static constexpr std::size_t kRoom = 512;
    alignas(16) std::array<unsigned char, kRoom * 16> memory_;
    std::size_t rooms_ = 0;
};

template <typename... Parameters>
A_Err call_with(Canaries& canaries, AEIO_BasicData* basic,
                A_Err (*callback)(AEIO_BasicData*, Parameters...)) {
    // Braces guarantee that the rooms are handed out from left to right.
    const std::tuple<Parameters...> arguments{canaries.Next<Parameters>()...};
    return std::apply([&](auto... values) { return callback(basic, values...); }, arguments);
}

AEIO_FunctionBlock2 made_block() {
    auto block = filled_with<AEIO_FunctionBlock2>(0xFF);
    EXPECT_EQ(TexalonConstructFunctionBlock(&block), 0);
    return block;
}

// The callbacks that only return a code, and that code.
#define VXR_FIXED_CALLBACKS(ROW)      \
    ROW(GetDimensions, 9992)          \
    ROW(GetDuration, 9992)            \
    ROW(GetActiveExtent, 9992)        \
    ROW(GetOutputSuffix, 9992)        \
    ROW(GetSizes, 9992)               \
    ROW(GetTime, 9992)                \
    ROW(InqNextFrameTime, 9992)       \
    ROW(SetOutputFile, 9992)          \
    ROW(SynchInSpec, 9992)            \
    ROW(WriteLabels, 9992)            \
    ROW(InitOutputSpec, 9992)         \
    ROW(GetFlatOutputOptions, 9992)   \
    ROW(OutputInfoChanged, 9992)      \
    ROW(FlattenOptions, 9992)         \
    ROW(UserAudioOptionsDialog, 9992) \
    ROW(GetSound, 9992)               \
    ROW(AddFrame, 0)                  \
    ROW(AddMarker, 0)                 \
    ROW(AddSoundChunk, 0)             \
    ROW(CloseSourceFiles, 0)          \
    ROW(CountUserData, 0)             \
    ROW(DrawAuxChannel, 0)            \
    ROW(EndAdding, 0)                 \
    ROW(Flush, 0)                     \
    ROW(FreeAuxChannel, 0)            \
    ROW(GetAuxChannelDesc, 0)         \
    ROW(GetNthAuxFileSpec, 0)         \
    ROW(GetNumAuxChannels, 0)         \
    ROW(GetUserData, 0)               \
    ROW(Idle, 0)                      \
    ROW(InflateOptions, 0)            \
    ROW(InitInSpecInteractive, 0)     \
    ROW(OutputFrame, 0)               \
    ROW(SetUserData, 0)               \
    ROW(StartAdding, 0)

// All other callbacks whose function is named My_ and the field's name.
#define VXR_OTHER_CALLBACKS(ROW) \
    ROW(VerifyFileImportable, 0) \
    ROW(GetInSpecInfo, 0)        \
    ROW(SeqOptionsDlg, 0)        \
    ROW(UserOptionsDialog, 0)    \
    ROW(GetDepths, 0)            \
    ROW(NumAuxFiles, 0)          \
    ROW(DisposeOutputOptions, 0) \
    ROW(GetOutputInfo, 0)        \
    ROW(DrawSparseFrame, 0)      \
    ROW(DisposeInSpec, 0)

TEST(FunctionBlock, EveryFieldHoldsTheCallbackOfItsName) {
    const AEIO_FunctionBlock2 block = made_block();
    std::size_t fields = 1;
    EXPECT_EQ(block.AEIO_InitInSpecFromFile, &InitInSpecFromFile);
#define VXR_EXPECT_NAMED(name, code)                   \
    EXPECT_EQ(block.AEIO_##name, &My_##name) << #name; \
    ++fields;
    VXR_FIXED_CALLBACKS(VXR_EXPECT_NAMED)
    VXR_OTHER_CALLBACKS(VXR_EXPECT_NAMED)
#undef VXR_EXPECT_NAMED
    EXPECT_EQ(fields, kFunctionBlockFields);
}

TEST(FunctionBlock, NoFieldIsLeftNull) {
    const AEIO_FunctionBlock2 block = made_block();
    std::array<void*, kFunctionBlockFields> fields = {};
    static_assert(sizeof(fields) == sizeof(block));
    std::memcpy(fields.data(), &block, sizeof(block));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_NE(fields[i], nullptr) << i;
        EXPECT_EQ(std::count(fields.begin(), fields.end(), fields[i]), 1) << i;
    }
}

TEST(FunctionBlock, FixedCallbacksReturnTheirCodeAndChangeNothing) {
    const AEIO_FunctionBlock2 block = made_block();
    RecordingHost host;
    std::size_t callbacks = 0;
#define VXR_EXPECT_FIXED(name, code)                                                       \
    {                                                                                      \
        SCOPED_TRACE(#name);                                                               \
        Canaries canaries;                                                                 \
        EXPECT_EQ(call_with(canaries, host.basic_data(), block.AEIO_##name), A_Err{code}); \
        EXPECT_TRUE(canaries.Untouched());                                                 \
        ++callbacks;                                                                       \
    }
    VXR_FIXED_CALLBACKS(VXR_EXPECT_FIXED)
#undef VXR_EXPECT_FIXED
    EXPECT_EQ(callbacks, 35U);
    EXPECT_TRUE(host.calls.empty());
    EXPECT_TRUE(host.messages.empty());
    EXPECT_TRUE(host.suites_held().empty());
}

TEST(FunctionBlock, AnyFileIsImportable) {
    const AEIO_FunctionBlock2 block = made_block();
    RecordingHost host;
    for (const char* path : {"picture.txl", "no such file", "", "notes.txt"}) {
        for (const A_Boolean before : {A_Boolean{0}, A_Boolean{1}, A_Boolean{7}}) {
            A_Boolean importable = before;
            EXPECT_EQ(
                block.AEIO_VerifyFileImportable(host.basic_data(), four_char_code("TXL "), path, &importable),
                0);
            EXPECT_EQ(importable, 1) << path;
        }
    }
    EXPECT_TRUE(host.calls.empty());
}

TEST(FunctionBlock, InSpecInfoIsEmptyExceptForTheName) {
    const AEIO_FunctionBlock2 block = made_block();
    RecordingHost host;
    auto verbiage = filled_with<AEIO_Verbiage>(kBefore);
    EXPECT_EQ(block.AEIO_GetInSpecInfo(host.basic_data(), host.in_spec(), &verbiage), 0);
    std::vector<unsigned char> expected(sizeof(verbiage), kBefore);
    expected[offsetof(AEIO_Verbiage, type)] = 0;
    expected[offsetof(AEIO_Verbiage, sub_type)] = 0;
    EXPECT_EQ(bytes_of(verbiage), expected);
}

TEST(FunctionBlock, DialogsShowAFixedText) {
    const AEIO_FunctionBlock2 block = made_block();
    RecordingHost host;
    A_Boolean interacted = kBefore;
    EXPECT_EQ(block.AEIO_SeqOptionsDlg(host.basic_data(), host.in_spec(), &interacted), 0);
    EXPECT_EQ(block.AEIO_UserOptionsDialog(host.basic_data(), host.out_spec(), nullptr, &interacted), 0);
    EXPECT_THAT(host.messages, testing::ElementsAre(
                                   testing::Pair(0, "IO: Here's my sequence options dialog!"),
                                   testing::Pair(1, "Use the message func hanging off the AEIO_BasicData!")));
    EXPECT_EQ(interacted, kBefore);
    EXPECT_TRUE(host.calls.empty());
}

TEST(FunctionBlock, DepthsAndAuxiliaryFilesAreFixed) {
    const AEIO_FunctionBlock2 block = made_block();
    RecordingHost host;
    A_long depths = -1;
    EXPECT_EQ(block.AEIO_GetDepths(host.basic_data(), host.out_spec(), &depths), 0);
    EXPECT_EQ(depths, 128);
    A_long files = -1;
    EXPECT_EQ(block.AEIO_NumAuxFiles(host.basic_data(), host.in_spec(), &files), 0);
    EXPECT_EQ(files, 1);
}

TEST(FunctionBlock, OutputOptionsAreDeleted) {
    const AEIO_FunctionBlock2 block = made_block();
    RecordingHost host;
    EXPECT_EQ(block.AEIO_DisposeOutputOptions(host.basic_data(), nullptr), 0);
    // The leak checker of the sanitizer detects whether it was freed.
    EXPECT_EQ(block.AEIO_DisposeOutputOptions(host.basic_data(), ::operator new(1000)), 0);
}

}  // namespace
