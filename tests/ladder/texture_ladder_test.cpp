// A small texture with every feature of the format, cut at every byte and with every bit turned: the
// plug-in's picture and the tools' texture stay sound and agree with each other.

#include <gtest/gtest.h>

#include <string>

#include "ladder/climbing_file.h"
#include "ladder/rungs.h"
#include "texture/both_loads.h"
#include "texture/txl_load_cases.h"

namespace {

/// An unknown chunk, rows of each coding and of an unknown one, and layers in two colour modes.
Example every_feature() {
    TxlFile file;
    file.before_rows = HyperBytes().Start(777, 3).Block("\x01\x02").Start(778, 0).End().End().bytes();
    file.rows.blocks[1] = {1, "\xFF\x55"};
    file.rows.blocks[2] = {2, "\x01"};
    file.layers = {TxlLayer(), layer_of_mode(4, 3, {"\x01\x02", "\x03\x04", "\x05\x06"})};
    return {"", "every_feature.txl", Kind::texture, file.bytes()};
}

TEST(TextureLadder, CutAtEveryLengthBothReadersAgree) {
    ClimbingFile file(every_feature(), false);
    int loaded = 0;
    for (std::size_t length = 0; length <= file.size_bytes(); ++length) {
        SCOPED_TRACE("cut at " + std::to_string(length));
        file.cut(length);
        loaded += BothLoads(file.path()).loaded ? 1 : 0;
        count_rungs("cuts");
    }
    EXPECT_GT(loaded, 1) << "a cut between two chunks loads what came before it";
}

// Sizes from 65,536 on take seconds under the sanitizers, and the two readers need different amounts of
// memory for them.
bool makes_a_large_size([[maybe_unused]] std::size_t byte) {
#if defined(VXR_SANITIZED)
    constexpr std::size_t kWidth = 27;  // the two higher bytes of each
    constexpr std::size_t kHeight = 32;
    return byte == kWidth || byte == kWidth + 1 || byte == kHeight || byte == kHeight + 1;
#else
    return false;
#endif
}

TEST(TextureLadder, WithAnyBitTurnedBothReadersAgree) {
    ClimbingFile file(every_feature(), false);
    for (std::size_t byte = 0; byte < file.size_bytes(); ++byte) {
        if (makes_a_large_size(byte)) {
            continue;
        }
        for (unsigned bit = 0; bit < 8; ++bit) {
            SCOPED_TRACE("bit " + std::to_string(bit) + " of byte " + std::to_string(byte));
            file.flip(byte, bit);
            const BothLoads both(file.path());
            count_rungs("flips");
        }
    }
}

}  // namespace
