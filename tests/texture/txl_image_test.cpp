#include "texture/txl/txl_image.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace {

// A picture that overrides no operation.
class PlainPicture final : public TXLImage {};

TEST(TXLImage, AcceptsEverythingAndHoldsNothing) {
    PlainPicture picture;
    unsigned char byte = 9;
    EXPECT_TRUE(picture.Init(1, 2, 3));
    EXPECT_TRUE(picture.InitAlphaChannel(0, 1, 2));
    EXPECT_TRUE(picture.SetPixelCount(0, 0, 1, &byte, 1));
    EXPECT_TRUE(picture.SetAlphaPixel(0, 0, 0, 1, &byte));
    EXPECT_EQ(picture.GetBw(), 0);
    EXPECT_EQ(picture.GetBh(), 0);
    EXPECT_EQ(picture.GetColorMode(), 0);
    EXPECT_EQ(picture.GetPixelCount(0, 0, 1, &byte), 0);
    EXPECT_EQ(picture.GetAlphaCount(), 0);
    EXPECT_EQ(picture.GetAlphaPixel(0, 0, 0, 1, &byte), 0);
    EXPECT_EQ(byte, 9);
}

// The order of the virtual operations is part of the interface. Returns an operation's slot in the table of
// virtual functions, counted from 1, as the platform encodes it in member pointers.
template <typename Operation>
std::ptrdiff_t slot_of(Operation operation) {
    static_assert(sizeof(operation) == 2 * sizeof(std::ptrdiff_t));
    std::array<std::ptrdiff_t, 2> parts = {};
    std::memcpy(parts.data(), &operation, sizeof(operation));
    return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)) + 1;
}

TEST(TXLImage, OperationsHaveTheirSlots) {
    EXPECT_EQ(slot_of(&TXLImage::Init), 1);
    EXPECT_EQ(slot_of(&TXLImage::InitAlphaChannel), 2);
    EXPECT_EQ(slot_of(&TXLImage::SetPixelCount), 3);
    EXPECT_EQ(slot_of(&TXLImage::SetAlphaPixel), 4);
    EXPECT_EQ(slot_of(&TXLImage::GetBw), 5);
    EXPECT_EQ(slot_of(&TXLImage::GetBh), 6);
    EXPECT_EQ(slot_of(&TXLImage::GetColorMode), 7);
    EXPECT_EQ(slot_of(&TXLImage::GetPixelCount), 8);
    EXPECT_EQ(slot_of(&TXLImage::GetAlphaCount), 9);
    EXPECT_EQ(slot_of(&TXLImage::GetAlphaPixel), 10);
}

}  // namespace
