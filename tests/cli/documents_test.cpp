#include <gtest/gtest.h>

#include <string>

#include "cli/console_blocks.h"
#include "support/child_process.h"
#include "support/file_content.h"

namespace {

// Every command in a document, run in the project's folder, prints what the document shows.
void expect_true(const std::string& document) {
    std::size_t own_commands = 0;
    for (const ConsoleCommand& shown : console_commands(content_of(VXR_PROJECT_DIR "/" + document))) {
        if (shown.command.compare(0, 4, "vxr ") != 0) {
            continue;
        }
        ++own_commands;
        const std::string path = std::string("PATH=") + VXR_PROGRAM_DIR + ":/usr/bin:/bin";
        // As in a terminal, both streams come in the order in which they are written.
        const ProcessResult run =
            run_process({"env", "-C", VXR_PROJECT_DIR, path, "sh", "-c", "exec 2>&1; " + shown.command});
        EXPECT_EQ(run.out, shown.output) << document << ':' << shown.line << ": $ " << shown.command;
        EXPECT_NE(run.exit_code, -1) << shown.command;
    }
    EXPECT_GT(own_commands, 0U) << document << " shows no command of the program";
}

TEST(Documents, ReadmeShowsWhatTheProgramPrints) {
    expect_true("README.md");
}

TEST(Documents, CommandLineShowsWhatTheProgramPrints) {
    expect_true("docs/command-line.md");
}

}  // namespace
