#include "texture/input_module/registration.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "input_module/object_bytes.h"

namespace {

constexpr unsigned char kBefore = 0xA5;

// The record's bytes on a little-endian machine, written by hand: what the module sets, and `kBefore`
// elsewhere.
std::vector<unsigned char> ExpectedBytes() {
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
    put(72, " LXT\xFF\xFF\xFF\xFF");  // reads 'TXL ' by anybody
    put(80, ".txl");
    put(88, ".txl\0"s);
    put(200, "\x00\x00"s);  // no auxiliary extensions
    return {bytes.begin(), bytes.end()};
}

TEST(TexalonConstructModuleInfo, SetsItsFieldsAndNoOthers) {
    auto info = filled_with<AEIO_ModuleInfo>(kBefore);
    EXPECT_EQ(TexalonConstructModuleInfo(&info), 0);
    const std::vector<unsigned char> bytes = bytes_of(info);
    const std::vector<unsigned char> expected = ExpectedBytes();
    ASSERT_EQ(bytes.size(), expected.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        EXPECT_EQ(int{bytes[i]}, int{expected[i]}) << "byte " << i;
    }
}

TEST(TexalonConstructModuleInfo, FlagsHaveTheirBits) {
    AEIO_ModuleInfo info = {};
    ASSERT_EQ(TexalonConstructModuleInfo(&info), 0);
    EXPECT_EQ(info.flags, 33620045);
    EXPECT_EQ(info.flags, 1 << 0 | 1 << 2 | 1 << 3 | 1 << 6 | 1 << 16 | 1 << 25);
    EXPECT_STREQ(info.name, "Texalon 3D");
}

}  // namespace
