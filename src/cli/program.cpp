#include "cli/program.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <ostream>
#include <utility>

#include "cli/options.h"
#include "cli/report/diagnostic_text.h"
#include "cli/verbs.h"
#include "image/image.h"
#include "system/signal_cleanup.h"

namespace cli {
namespace {

constexpr const char* kProgram = "vxr";
constexpr const char* kSummary =
    "VORTAN XR composition files and Texalon textures, without a host application";

/// The program's verbs with their options declared, ready to parse one command line.
class CommandLine {
  public:
    CommandLine() : parser_(kProgram, kSummary, program_version()) {
        for (const VerbGroup& group : verb_groups()) {
            parser_.add_group(group.name, group.summary);
        }
        for (const Verb& verb : verbs()) {
            Options options = parser_.add_verb(verb.name, verb.summary);
            commands_.push_back(verb.make());
            commands_.back()->add_options(options);
        }
    }

    ParsedLine parse(const std::vector<std::string>& arguments) { return parser_.parse(arguments); }

    /// The command of a verb; null for anything else.
    [[nodiscard]] Command* command_of(const std::string& verb) const {
        for (std::size_t i = 0; i < commands_.size(); ++i) {
            if (verbs()[i].name == verb) {
                return commands_[i].get();
            }
        }
        return nullptr;
    }

    /// The page of a verb or group by its name; of the program for "".
    [[nodiscard]] HelpPage page_of(const std::string& name) const {
        const std::vector<OptionFacts> options = parser_.options_of(name).facts();
        for (const Verb& verb : verbs()) {
            if (verb.name == name) {
                return verb_help_page(verb, options);
            }
        }
        for (const VerbGroup& group : verb_groups()) {
            if (group.name == name) {
                return overview_help_page(kProgram + (' ' + name), group.summary, {},
                                          verb_entries(name + ' '), options);
            }
        }
        return program_page(options);
    }

    [[nodiscard]] std::vector<HelpPage> pages() const {
        std::vector<HelpPage> pages{page_of({})};
        for (const VerbGroup& group : verb_groups()) {
            pages.push_back(page_of(group.name));
        }
        for (const Verb& verb : verbs()) {
            pages.push_back(page_of(verb.name));
        }
        return pages;
    }

  private:
    // The program's examples are the first of each verb.
    static HelpPage program_page(const std::vector<OptionFacts>& options) {
        HelpPage page = overview_help_page(kProgram, kSummary,
                                           {"Results go to standard output, messages about them to standard "
                                            "error. `vxr VERB --help` explains a verb."},
                                           verb_entries({}), options);
        if (std::string note = image::build_note(); !note.empty()) {
            page.paragraphs.push_back(std::move(note));
        }
        for (const Verb& verb : verbs()) {
            page.examples.push_back(verb.examples.front());
        }
        return page;
    }

    static std::vector<HelpEntry> verb_entries(const std::string& prefix) {
        std::vector<HelpEntry> entries;
        for (const Verb& verb : verbs()) {
            if (verb.name.compare(0, prefix.size(), prefix) == 0) {
                entries.push_back({{verb.name.substr(prefix.size())}, {}, verb.summary, true});
            }
        }
        return entries;
    }

    OptionParser parser_;
    std::vector<std::unique_ptr<Command>> commands_;  // one for each of verbs()
};

ExitCode usage_error(Terminal& terminal, const std::string& text, const std::string& verb) {
    complain(terminal, text);
    terminal.err << "See `" << kProgram << (verb.empty() ? "" : " ") << verb << " --help`.\n";
    return ExitCode::usage;
}

ExitCode parse_and_run(const std::vector<std::string>& arguments, Terminal& terminal,
                       const BuildIdentity& identity) {
    CommandLine line;
    const ParsedLine parsed = line.parse(arguments);
    Command* const command = line.command_of(parsed.verb);
    switch (parsed.kind) {
        case ParsedLine::Kind::help:
            terminal.out << help_page_text(line.page_of(parsed.verb), help_columns(terminal));
            return ExitCode::fine;
        case ParsedLine::Kind::version:
            terminal.out << program_version() << "\ncommit " << identity.commit << ", " << identity.build
                         << '\n';
            return ExitCode::fine;
        case ParsedLine::Kind::wrong:
            return usage_error(terminal, parsed.error, parsed.verb);
        case ParsedLine::Kind::complete:
            break;
    }
    if (command == nullptr) {
        return usage_error(terminal, "a verb is required", parsed.verb);
    }
    try {
        return command->run(terminal);
    } catch (const UsageError& error) {
        return usage_error(terminal, error.what(), parsed.verb);
    }
}

}  // namespace

std::string program_version() {
    return std::string(kProgram) + ' ' + VXR_VERSION;
}

ExitCode run_program(const std::vector<std::string>& arguments, Terminal& terminal,
                     const BuildIdentity& identity) {
    ExitCode code = ExitCode::cannot_read_or_write;
    try {
        code = parse_and_run(arguments, terminal, identity);
    } catch (const std::exception& error) {
        complain(terminal, error.what());
    } catch (...) {
        complain(terminal, "an exception of unknown type");
    }
    for (const std::string& notice : os::take_notices()) {
        remark(terminal, notice);
    }
    terminal.out.flush();
    if (!terminal.out) {
        complain(terminal, "the result could not be written to standard output");
        code = most_serious(code, ExitCode::cannot_read_or_write);
    }
    return code;
}

std::vector<HelpPage> program_help_pages() {
    return CommandLine().pages();
}

}  // namespace cli
