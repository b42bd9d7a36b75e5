#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/exit_codes.h"

namespace cli {

class Options;
struct Terminal;

/// One verb of the program while it runs: receives its options, then works once.
class Command {
  public:
    Command() = default;
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// Declares options and arguments, bound to members. Descriptions begin in lower case and have no full
    /// stop; defaults are shown by the option (`show_default`), tasks are its group. Touches no files.
    virtual void add_options(Options& options) = 0;

    /// Does the work. Throws UsageError for options that exclude each other; any other exception becomes an
    /// error message and exit code 3.
    virtual ExitCode run(Terminal& terminal) = 0;
};

/// What is wrong with the command line; exit code 2.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Example {
    std::string command;  ///< as typed: "vxr check shot.aec"
    std::string effect;   ///< what it does, one sentence
};

/// A verb as the program, its help, its manual and its completion know it.
struct Verb {
    std::string name;                     ///< "import"; with its group: "texture info"
    std::string summary;                  ///< half a line: "import a composition file ..."
    std::vector<std::string> paragraphs;  ///< the description, plain text
    std::vector<Example> examples;        ///< at least one
    std::unique_ptr<Command> (*make)() = nullptr;
};

/// Verbs with a first word in common.
struct VerbGroup {
    std::string name;  ///< "texture"
    std::string summary;
};

}  // namespace cli
