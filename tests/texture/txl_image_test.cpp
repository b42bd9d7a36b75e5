#include "texture/txl/txl_image.h"

#include <gtest/gtest.h>

#include "support/virtual_slot.h"

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

// The order of the virtual operations is part of the interface.
TEST(TXLImage, OperationsHaveTheirSlots) {
    EXPECT_EQ(virtual_slot(&TXLImage::Init), 0U);
    EXPECT_EQ(virtual_slot(&TXLImage::InitAlphaChannel), 1U);
    EXPECT_EQ(virtual_slot(&TXLImage::SetPixelCount), 2U);
    EXPECT_EQ(virtual_slot(&TXLImage::SetAlphaPixel), 3U);
    EXPECT_EQ(virtual_slot(&TXLImage::GetBw), 4U);
    EXPECT_EQ(virtual_slot(&TXLImage::GetBh), 5U);
    EXPECT_EQ(virtual_slot(&TXLImage::GetColorMode), 6U);
    EXPECT_EQ(virtual_slot(&TXLImage::GetPixelCount), 7U);
    EXPECT_EQ(virtual_slot(&TXLImage::GetAlphaCount), 8U);
    EXPECT_EQ(virtual_slot(&TXLImage::GetAlphaPixel), 9U);
}

}  // namespace
