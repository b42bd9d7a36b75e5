#include "texture/txl/txl_image_filter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "texture/exact_buffer.h"
#include "texture/file/filename.h"
#include "texture/txl/base_bitmap.h"

namespace {

struct IdentifyCase {
    const char* name;
    std::vector<unsigned char> probe;
    bool expected;
};

const IdentifyCase kIdentifyCases[] = {
    {"the mark alone", {'T', 'F', 'F', 0}, true},
    {"the mark and more", {'T', 'F', 'F', 0, 1, 2}, true},
    {"no zero behind it", {'T', 'F', 'F', 1}, false},
    {"other letters", {'t', 'f', 'f', 0}, false},
    {"bytes the other way round", {0, 'F', 'F', 'T'}, false},
    {"what texture files begin with", {'T', 'e', 'x', 'a'}, false},
};

TEST(TXLIdentify, LooksAtFourBytes) {
    for (const IdentifyCase& c : kIdentifyCases) {
        ExactBuffer probe(c.probe);
        Filename name("picture.txl");
        EXPECT_EQ(TXLIdentify(nullptr, probe.data(), probe.size()), c.expected) << c.name;
        EXPECT_EQ(TXLIdentify(&name, probe.data(), 0), c.expected) << c.name << ": the size is ignored";
        EXPECT_EQ(TXLIdentify(&name, probe.data(), -1), c.expected) << c.name << ": the size is ignored";
    }
}

TEST(TXLLoadAndSave, DoNothing) {
    const Filename name("no such file.txl");
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(2, 3, 24), 0);
    EXPECT_TRUE(TXLLoad(name, &bitmap, 0));
    EXPECT_TRUE(TXLSave(name, &bitmap, 0));
    EXPECT_TRUE(TXLLoad(name, nullptr, -1));
    EXPECT_TRUE(TXLSave(name, nullptr, -1));
    EXPECT_EQ(bitmap.width(), 2);
    EXPECT_EQ(bitmap.height(), 3);
}

}  // namespace
