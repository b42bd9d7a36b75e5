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
    program.paragraphs = {"'br is none either"};
    EXPECT_NE(cli::manual_page({program}, "1").find("\n\\(aqbr is none either\n"), std::string::npos);
}

TEST(ManualPage, HasItsSectionsAndStraightQuotes) {
    const TemporaryFolder folder;
    const std::string page = folder.write("vxr.1", cli::manual_page(cli::program_help_pages(), "vxr 1"));
    const ProcessResult run =
        run_process({"sh", "-c", "groff -man -Tutf8 -P-cbou -ww \"$0\"", page}, {{"LC_ALL", "C.UTF-8"}});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err, "");
    for (const char* section :
         {"NAME", "SYNOPSIS", "DESCRIPTION", "VERBS", "ENVIRONMENT", "FILES", "SEE ALSO"}) {
        EXPECT_NE(run.out.find("\n" + std::string(section) + "\n"), std::string::npos) << section;
    }
    for (const char* curly : {"\u2018", "\u2019", "\u201C", "\u201D", "\u02C6", "\u02DC"}) {
        EXPECT_EQ(run.out.find(curly), std::string::npos) << curly;
    }
    EXPECT_NE(run.out.find("jq -r '.files[].diagnostics[].code'"), std::string::npos);
    EXPECT_NE(run.out.find("`vxr "), std::string::npos);
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

TEST(BashCompletion, ChangesNoOptionOfTheShell) {
    const TemporaryFolder folder;
    const std::string script = folder.write("vxr.bash", cli::bash_completion(cli::program_help_pages()));
    const ProcessResult run = run_process({"bash", "-c",
                                           "before=$(shopt; set -o); source " + script +
                                               "; COMP_WORDS=(vxr import --ho); COMP_CWORD=2; _vxr; "
                                               "[ \"$before\" = \"$(shopt; set -o)\" ] && echo same"});
    EXPECT_EQ(run.out, "same\n") << run.err;
}

// What fish offers for a command line.
std::string fish_completions(const std::string& line) {
    const TemporaryFolder folder;
    folder.write("shot.aec", "");
    const std::string script = folder.write("vxr.fish", cli::fish_completion(cli::program_help_pages()));
    const ProcessResult run =
        run_process({"env", "-C", folder.folder().string(), "HOME=" + folder.path("home"), "fish", "-c",
                     "source " + script + "; complete -C '" + line + "' | cut -f 1 | tr '\\n' ' '"});
    EXPECT_EQ(run.err, "");
    return run.out;
}

TEST(FishCompletion, VerbsOptionsAndFiles) {
    EXPECT_EQ(fish_completions("vxr imp"), "import ");
    EXPECT_EQ(fish_completions("vxr import --host="), "--host=classic --host=today ");
    EXPECT_EQ(fish_completions("vxr import --host "), "classic today ");
    EXPECT_EQ(fish_completions("vxr import --sav"), "--save ");
    EXPECT_EQ(fish_completions("vxr texture con"), "convert ");
    EXPECT_EQ(fish_completions("vxr texture convert --out-d"), "--out-dir ");
    EXPECT_EQ(fish_completions("vxr check --strict sh"), "shot.aec ");
    EXPECT_EQ(fish_completions("vxr help che"), "check ");
}

// What zsh offers for the last of the words. Its own functions for completion work only while it completes a
// word, so stand-ins print what they are given.
std::string zsh_completions(const std::string& words) {
    const TemporaryFolder folder;
    const std::string script = folder.write("_vxr", cli::zsh_completion(cli::program_help_pages()));
    const ProcessResult run =
        run_process({"zsh", "-f", "-c",
                     "compdef() { :; }; _files() { print files }; compadd() { shift; print -r -- $@ }; "
                     "_describe() { print -rl -- ${${(P)@[-1]}%%:*} }; before=\"$(setopt)\"; source " +
                         script + "; words=(" + words +
                         "); CURRENT=$#words; _vxr; [[ $before == \"$(setopt)\" ]] || print changed"});
    EXPECT_EQ(run.err, "");
    return run.out;
}

TEST(ZshCompletion, VerbsOptionsAndFiles) {
    EXPECT_EQ(zsh_completions("vxr texture ''"), "info\ncheck\nsheet\nview\nthumbnail\nconvert\n");
    EXPECT_EQ(zsh_completions("vxr limits -"), "--json\n-h\n--help\n");
    EXPECT_EQ(zsh_completions("vxr import --host ''"), "classic today\n");
    EXPECT_EQ(zsh_completions("vxr import --save ''"), "files\n");
    EXPECT_EQ(zsh_completions("vxr check --strict ''"), "files\n");
    EXPECT_EQ(zsh_completions("vxr completion ''"), "files\n");
    EXPECT_NE(zsh_completions("vxr help ''").find("completion\n"), std::string::npos);
}

}  // namespace
