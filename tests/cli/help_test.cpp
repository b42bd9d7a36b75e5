#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/help/help_page.h"
#include "cli/program.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"
#include "text/printable.h"

namespace {

using cli::HelpPage;

// Every option, argument and exit code of every verb, with its help page.
struct Documented {
    std::string command;
    cli::HelpEntry entry;
};

std::vector<Documented> documented() {
    std::vector<Documented> all;
    for (const HelpPage& page : cli::program_help_pages()) {
        for (const cli::HelpSection& section : page.sections) {
            if (section.title == "Verbs") {
                continue;
            }
            for (const cli::HelpEntry& entry : section.entries) {
                all.push_back({page.command, entry});
            }
        }
    }
    return all;
}

TEST(HelpPages, EveryVerbHasExamplesThatBeginWithTheNameOfAProgram) {
    for (const HelpPage& page : cli::program_help_pages()) {
        const bool group = page.usage.find(" VERB ") != std::string::npos && page.command != "vxr";
        EXPECT_TRUE(group || !page.examples.empty()) << page.command;
        for (const cli::Example& example : page.examples) {
            EXPECT_NE(example.command.find("vxr "), std::string::npos) << example.command;
            EXPECT_EQ(example.effect.back(), '.') << example.effect;
        }
    }
}

TEST(HelpPages, DescribeEveryOption) {
    for (const Documented& one : documented()) {
        EXPECT_FALSE(one.entry.text.empty()) << one.command << ' ' << one.entry.names.front();
    }
}

TEST(HelpPages, ShowDefaultsAndEnvironmentVariables) {
    bool host = false;
    bool bundle = false;
    for (const Documented& one : documented()) {
        host = host || one.entry.text.find("(default: today)") != std::string::npos;
        bundle = bundle || one.entry.text.find("(environment: VXR_BUNDLE)") != std::string::npos;
    }
    EXPECT_TRUE(host);
    EXPECT_TRUE(bundle);
}

TEST(HelpPages, FitATerminalExceptForLongExamples) {
    for (const HelpPage& page : cli::program_help_pages()) {
        std::istringstream lines(cli::help_page_text(page));
        for (std::string line; std::getline(lines, line);) {
            const bool example = line.compare(0, 6, "  vxr ") == 0;
            EXPECT_TRUE(example || text::columns_of(line) <= 88) << line;
        }
    }
}

TEST(Wrapped, Lines) {
    EXPECT_EQ(cli::wrapped("aa bb cc", 0, 5), "aa bb\ncc\n");
    EXPECT_EQ(cli::wrapped("aa bb cc", 2, 7), "  aa bb\n  cc\n");
    EXPECT_EQ(cli::wrapped("unbreakable a", 0, 5), "unbreakable\na\n");
    EXPECT_EQ(cli::wrapped("", 2, 5), "  \n");
}

TEST(ManualPage, ContainsEveryOption) {
    const std::string manual = cli::manual_page(cli::program_help_pages(), "vxr 1");
    EXPECT_EQ(manual.compare(0, 10, ".TH \"VXR\" "), 0);
    for (const Documented& one : documented()) {
        for (const std::string& name : one.entry.names) {
            std::string escaped;
            for (const char c : name) {
                escaped += c == '-' ? std::string("\\-") : std::string(1, c);
            }
            EXPECT_NE(manual.find("\\fB" + escaped + "\\fR"), std::string::npos)
                << one.command << ' ' << name;
        }
    }
}

TEST(ManualPage, TextIsNeverAMacro) {
    HelpPage program{"vxr", "summary", "vxr", {".TH is not a macro here, nor is a \\fB"}, {}, {}};
    EXPECT_NE(cli::manual_page({program}, "1").find("\n\\&.TH is not a macro here, nor is a \\efB\n"),
              std::string::npos);
}

// What bash offers for the last of the words of a command line.
std::string completions(const std::vector<std::string>& words) {
    const TemporaryFolder folder;
    folder.write("shot.aec", "");
    const std::string script = folder.write("vxr.bash", cli::bash_completion(cli::program_help_pages()));
    std::string array;
    for (const std::string& word : words) {
        array += " '" + word + "'";
    }
    // compopt works only while bash completes a word, which it does not do here.
    const ProcessResult run =
        run_process({"env", "-C", folder.folder().string(), "bash", "-c",
                     "compopt() { :; }; source " + script + "; COMP_WORDS=(" + array +
                         "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vxr; echo \"${COMPREPLY[*]}\""});
    EXPECT_EQ(run.err, "");
    return run.out;
}

TEST(BashCompletion, VerbsOptionsAndFiles) {
    EXPECT_EQ(completions({"vxr", "imp"}), "import\n");
    EXPECT_EQ(completions({"vxr", "--v"}), "--version\n");
    EXPECT_EQ(completions({"vxr", "import", "--host"}), "--host --host-version\n");
    EXPECT_EQ(completions({"vxr", "import", "--host", ""}), "classic today\n");
    EXPECT_EQ(completions({"vxr", "frame", "--host-version", "t"}), "today\n");
    EXPECT_EQ(completions({"vxr", "check", "--host", "sh"}), "shot.aec\n");
    EXPECT_EQ(completions({"vxr", "import", "--save", "sh"}), "shot.aec\n");
    EXPECT_EQ(completions({"vxr", "check", "--strict", "sh"}), "shot.aec\n");
    EXPECT_EQ(completions({"vxr", "help", "che"}), "check\n");
}

}  // namespace
