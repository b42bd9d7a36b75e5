// What a terminal answers, as it arrives: in pieces, with keys of the user in between, or not at all. The
// answers of a pseudo-terminal are in tests/desktop.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "cli/picture/terminal_screen.h"

namespace {

using cli::TerminalAnswer;

TEST(TerminalAnswer, SaysWhatTheTerminalKnows) {
    struct Case {
        const char* name;
        std::string answer;
        bool whole, kitty, sixel;
        int cell_width_px, cell_height_px;
    };
    const Case cases[] = {
        {"nothing", "", false, false, false, 0, 0},
        {"attributes alone", "\x1b[?1;2c", true, false, false, 0, 0},
        {"a single attribute", "\x1b[?6c", true, false, false, 0, 0},
        {"sixels are attribute 4", "\x1b[?62;4c", true, false, true, 0, 0},
        {"the level of the terminal is no attribute of ours, but 4 is asked for anywhere", "\x1b[?4;6c", true,
         false, true, 0, 0},
        {"64 and 14 are not 4", "\x1b[?64;14c", true, false, false, 0, 0},
        {"kitty", "\x1b_Gi=31;OK\x1b\\\x1b[?62c", true, true, false, 0, 0},
        {"kitty with an error", "\x1b_Gi=31;EINVAL:bad\x1b\\\x1b[?62c", true, false, false, 0, 0},
        {"kitty about another picture", "\x1b_Gi=32;OK\x1b\\\x1b[?62c", true, false, false, 0, 0},
        {"the size of a character is height, then width", "\x1b[6;20;10t\x1b[?62c", true, false, false, 10,
         20},
        {"the largest character", "\x1b[6;200;200t\x1b[?62c", true, false, false, 200, 200},
        {"larger than any", "\x1b[6;201;10t\x1b[?62c", true, false, false, 0, 0},
        {"without height", "\x1b[6;0;10t\x1b[?62c", true, false, false, 0, 0},
        {"the size of the window is another answer", "\x1b[4;600;800t\x1b[?62c", true, false, false, 0, 0},
        {"a number beyond 32 bits", "\x1b[6;99999999999;10t\x1b[?99999999999c", false, false, false, 0, 0},
        {"a negative number", "\x1b[6;-20;10t\x1b[?-4c", false, false, false, 0, 0},
        {"keys before and between", "q\x1b[A\x1b[6;20;10tq\x1b[?62;4c", true, false, true, 10, 20},
        {"a cut answer before a whole one", "\x1b[?62;\x1b[?62;4c", true, false, true, 0, 0},
        {"two attributes without a separator", "\x1b[?6 2c", false, false, false, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TerminalAnswer answer = cli::parse_terminal_answer(c.answer);
        EXPECT_EQ(cli::is_whole_answer(c.answer), c.whole);
        EXPECT_EQ(answer.kitty, c.kitty);
        EXPECT_EQ(answer.sixel, c.sixel);
        EXPECT_EQ(answer.cell_width_px, c.cell_width_px);
        EXPECT_EQ(answer.cell_height_px, c.cell_height_px);
    }
}

TEST(TerminalAnswer, IsWholeWithItsLastByteAndNotBefore) {
    const std::string answer = "\x1b_Gi=31;OK\x1b\\\x1b[6;20;10t\x1b[?62;4;22c";
    for (std::size_t bytes = 0; bytes < answer.size(); ++bytes) {
        EXPECT_FALSE(cli::is_whole_answer(answer.substr(0, bytes))) << bytes;
    }
    EXPECT_TRUE(cli::is_whole_answer(answer));
}

}  // namespace
