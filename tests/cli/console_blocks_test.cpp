#include "cli/console_blocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

TEST(ConsoleBlocks, CommandsWithTheirOutput) {
    EXPECT_THAT(
        console_commands("# Title\n\n```console\n$ vxr --version\nvxr 1\n$ vxr a\nx\n\ny\n```\ntext\n"),
        ElementsAre(FieldsAre("vxr --version", "vxr 1\n", 4U), FieldsAre("vxr a", "x\n\ny\n", 6U)));
}

TEST(ConsoleBlocks, CommandWithoutOutput) {
    EXPECT_THAT(console_commands("```console\n$ vxr quiet\n```\n"),
                ElementsAre(FieldsAre("vxr quiet", "", 2U)));
}

TEST(ConsoleBlocks, OtherBlocksAndProseAreNoCommands) {
    EXPECT_THAT(console_commands("$ prose\n```sh\n$ vxr no\n```\n```\n$ vxr no\n```\n"), IsEmpty());
}

TEST(ConsoleBlocks, LinesBeforeTheFirstCommandBelongToNone) {
    EXPECT_THAT(console_commands("```console\nstray\n$ vxr\nout\n```\n"),
                ElementsAre(FieldsAre("vxr", "out\n", 3U)));
}

}  // namespace
