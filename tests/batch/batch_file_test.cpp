// What a batch file may say, and what a result is read back as.

#include "cli/batch/batch_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "cli/batch/item_result.h"
#include "cli/verb/batch_inputs.h"

namespace {

using cli::ItemResult;
using cli::ItemStanding;

std::string mistake_in(const std::string& text) {
    try {
        (void)cli::parse_batch_file(text);
    } catch (const cli::TomlError& error) {
        return std::to_string(error.line) + ':' + std::to_string(error.column) + ": " + error.reason;
    }
    return "none";
}

TEST(BatchFile, MistakesAreNamedWithLineAndColumn) {
    const struct {
        const char* name;
        const char* text;
        const char* mistake;
    } cases[] = {
        {"nothing is wrong", "[[task]]\nverb = 'check'\nfiles = ['a']\n", "none"},
        {"empty", "", "1:1: there is no [[task]]"},
        {"a list that is no list of tables", "task = [1]\n", "1:9: task is not a table"},
        {"one bracket too few", "[task]\nverb = 'check'\n", "1:2: task is one table; write [[task]]"},
        {"an unknown part", "\n[limit]\n", "2:2: nothing is called \"limit\" here; did you mean \"limits\"?"},
        {"an unknown key", "[[task]]\n  verbs = 'check'\n",
         "2:3: nothing is called \"verbs\" here; did you mean \"verb\"?"},
        {"an unknown verb", "[[task]]\nverb = 'chek'\n",
         "2:1: a batch has no verb \"chek\"; did you mean \"check\"?"},
        {"a verb that takes no files", "[[task]]\nverb = 'limits'\n", "2:1: a batch has no verb \"limits\""},
        {"no verb", "[[task]]\nfiles = ['a']\n", "1:1: the task has no verb"},
        {"no files", "[[task]]\nverb = 'check'\n", "1:1: the task has neither files nor files-from"},
        {"a number as a file", "[[task]]\nverb = 'check'\nfiles = ['a', 7]\n",
         "3:15: an entry of files is not a text"},
        {"the standard input", "[[task]]\nverb = 'check'\nfiles = ['-']\n",
         "3:10: \"-\" is not the name of a file"},
        {"a text for a list", "[[task]]\nverb = 'check'\nfiles = 'a'\n", "3:1: files is not a list of texts"},
        {"a NUL", "[[task]]\nverb = 'check'\nfiles = [\"a\\u0000\"]\n",
         "3:10: an entry of files holds a NUL character"},
        {"a text for a truth", "[[task]]\nrecursive = 'yes'\n", "2:1: recursive is neither true nor false"},
        {"NUL without a list", "[[task]]\nverb = 'check'\nfiles = ['a']\nnull = true\n",
         "1:1: null needs files-from"},
        {"an output for a verb without", "[[task]]\nverb = 'check'\nfiles = ['a']\nextension = 'x'\n",
         "1:1: check writes no files"},
        {"no name for the output", "[[task]]\nverb = 'frame'\nfiles = ['a']\n",
         "1:1: frame writes a file for each input: extension is missing"},
        {"a folder without names", "[[task]]\nverb = 'import'\nfiles = ['a']\nout-dir = 'o'\n",
         "1:1: out-dir needs extension"},
        {"an extension with a folder", "[[task]]\nextension = 'a/b'\n",
         "2:1: \"a/b\" is not the extension of a file"},
        {"all items to one file", "[[task]]\nverb = 'frame'\noptions = ['--fill', '1', '-o', 'x.png']\n",
         "3:27: \"-o\" is not for a batch: every item would write there"},
        {"a time of nothing", "[limits]\nseconds = 0\n",
         "2:1: seconds is not a whole number from 1 to 604800"},
        {"the shortest time", "[limits]\nseconds = 1\n[[task]]\nverb = 'check'\nfiles = ['a']\n", "none"},
        {"a fraction", "[limits]\nmemory-mib = 1.5\n",
         "2:1: memory-mib is not a whole number from 0 to 1048576"},
        {"no TOML", "[[task]]\nverb = \n", "2:8: "},
    };
    for (const auto& one : cases) {
        EXPECT_THAT(mistake_in(one.text), testing::StartsWith(one.mistake)) << one.name;
    }
}

TEST(BatchFile, OptionsThatAreNotForABatchAreRefused) {
    const struct {
        const char* name;
        const char* word;
        bool refused;
    } cases[] = {
        {"a long option", "--out-dir", true},
        {"a long option with its value", "--output=a.png", true},
        {"a short option", "-o", true},
        {"a short option with its value", "-oa.png", true},
        {"a letter among others", "-qr", true},
        {"what begins as one", "--overlay", false},
        {"a negative number is a value", "-10", false},
        {"a value", "o", false},
        {"other letters", "-qv", false},
        {"the end of options", "--", true},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(!cli::refused_batch_option(one.word).empty(), one.refused) << one.name;
    }
}

TEST(BatchFile, OutputsAreNamedAfterTheirInputs) {
    const struct {
        const char* name;
        const char* out_dir;
        const char* extension;
        const char* input;
        const char* below;
        const char* output;
    } cases[] = {
        {"nothing is written", "", "", "/t/a.txl", "", ""},
        {"beside the input", "", "png", "/t/a.txl", "/t", "/t/a.png"},
        {"a named file", "/o", "png", "/t/b/a.txl", "", "/o/a.png"},
        {"a file of a folder keeps the folders between", "/o", "png", "/t/b/a.txl", "/t", "/o/b/a.png"},
        {"only the last extension is replaced", "/o", "tif", "/t/a.b.txl", "/t", "/o/a.b.tif"},
        {"numbers of frames", "/o", "####.png", "/t/a.aec", "", "/o/a.####.png"},
        {"bytes that are not UTF-8", "/o", "png", "/t/\xff\n'.txl", "/t", "/o/\xff\n'.png"},
    };
    for (const auto& one : cases) {
        cli::BatchTask task;
        task.out_dir = one.out_dir;
        task.extension = one.extension;
        EXPECT_EQ(cli::output_name(task, one.input, one.below), one.output) << one.name;
    }
}

TEST(BatchFile, PatternsMatchWholeNames) {
    const struct {
        const char* name;
        const char* file;
        const char* pattern;
        bool matches;
    } cases[] = {
        {"any text", "bark.txl", "*.txl", true},
        {"no text", ".txl", "*.txl", true},
        {"the first try is not the right one", "a.txl.txl", "*.txl", true},
        {"one character", "a1.txl", "a?.txl", true},
        {"one character of several bytes", "a\xc3\xa4.txl", "a?.txl", true},
        {"a byte that is no UTF-8", "a\xff.txl", "a?.txl", true},
        {"one character is not none", "a.txl", "a?.txl", false},
        {"more than the pattern", "a.txl2", "*.txl", false},
        {"less than the pattern", "a.tx", "*.txl", false},
        {"two stars", "cloth_red_01.txl", "cloth*_0*.txl", true},
        {"nothing", "", "", true},
        {"a line end", "a\nb", "a*b", true},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(cli::matches_pattern(one.file, one.pattern), one.matches) << one.name;
    }
}

TEST(ItemResultFile, IsReadBackWholeOrNotAtAll) {
    ItemResult result;
    result.key = "k";
    result.input_sha256 = "s";
    result.state = cli::InputState{7, -8, "0x9 0x0"};
    result.standing = ItemStanding::too_large;
    result.signal = "SIGABRT";
    result.wrote = true;
    result.has_log = true;
    result.out = "a\n\"\xff\x01";
    const std::string text = cli::item_result_text(result);
    const auto again = cli::parse_item_result(text);
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(cli::item_result_text(*again), text);
    EXPECT_EQ(again->out, result.out);
    EXPECT_EQ(again->state, result.state);
    EXPECT_EQ(again->standing, ItemStanding::too_large);
    EXPECT_FALSE(again->exit_code.has_value());
    // Its line end may be missing; anything more is a file that was not written completely.
    for (std::size_t length = 0; length + 1 < text.size(); ++length) {
        EXPECT_FALSE(cli::parse_item_result(text.substr(0, length)).has_value()) << length;
    }
    EXPECT_FALSE(cli::parse_item_result("{\"schema\":2}").has_value());
}

TEST(ItemResultFile, IsOfOneVersionOneCommandAndOneInput) {
    const std::string key = cli::item_key("vxr 1", {"check", "a"}, "input");
    EXPECT_EQ(key, cli::item_key("vxr 1", {"check", "a"}, "input"));
    EXPECT_NE(key, cli::item_key("vxr 2", {"check", "a"}, "input")) << "another version";
    EXPECT_NE(key, cli::item_key("vxr 1", {"checka"}, "input")) << "words that are joined";
    EXPECT_NE(key, cli::item_key("vxr 1", {"check", "a"}, "other")) << "another input";
}

}  // namespace
