#include "texture/txl_load_cases.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace {

std::string text_of(const PixelBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.data()), buffer.size()};
}

}  // namespace

void expect_picture(const LoadCase& load) {
    TxlFile file;
    load.change(file);
    const TemporaryFolder folder;
    const BothLoads both(folder.write("case.txl", file.bytes()));
    ASSERT_TRUE(both.reading.texture.has_value()) << both.reading.error->reason;
    EXPECT_EQ(text_of(both.reading.texture->pixels), load.pixels);
    std::vector<std::string> alphas;
    for (const AlphaChannel& alpha : both.reading.texture->alphas) {
        alphas.push_back(text_of(alpha.values));
    }
    EXPECT_EQ(alphas, load.alphas);
}
