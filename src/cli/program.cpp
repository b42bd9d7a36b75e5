#include "cli/program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <memory>
#include <ostream>
#include <utility>

#include "cli/report/diagnostic.h"
#include "cli/verbs.h"
#include "embedded/image_probe.h"

namespace cli {
namespace {

constexpr const char* kProgram = "vxr";
constexpr const char* kSummary =
    "VORTAN XR composition files and Texalon textures, without a host application";

/// What a build without an image library cannot do; empty with one.
std::string image_note() {
    const std::string note = embedded::image_library_note();
    return note.empty() ? note : note + " Of image formats it writes TGA alone.";
}

/// The program's verbs with their options declared, ready to parse one command line.
class CommandLine {
  public:
    CommandLine() : app_(kSummary, kProgram) {
        // A path that begins with a slash is a path on Windows, too. The verbs take this over.
        app_.allow_windows_style_options(false);
        app_.set_help_flag("-h,--help", "show this help");
        app_.set_version_flag("--version", program_version(), "show the version");
        // One verb a command line: further words are its own, also when they are the name of a verb.
        app_.require_subcommand(0, 1);
        for (const VerbGroup& group : verb_groups()) {
            app_.add_subcommand(group.name, group.summary)->require_subcommand(0, 1);
        }
        for (const Verb& verb : verbs()) {
            add(verb);
        }
    }

    /// Throws CLI::Error, also for help and version.
    void parse(std::vector<std::string> arguments) {
        // The library takes arguments from the back.
        std::reverse(arguments.begin(), arguments.end());
        app_.parse(std::move(arguments));
    }

    /// The command of the verb that was parsed; null when there was none.
    [[nodiscard]] Command* chosen() const {
        const auto one = std::find_if(entries_.begin(), entries_.end(),
                                      [](const Entry& entry) { return entry.app->parsed(); });
        return one == entries_.end() ? nullptr : one->command.get();
    }

    /// The page of what was parsed last: a verb, a group or the program.
    [[nodiscard]] Page chosen_page() const {
        const CLI::App* app = &app_;
        while (!app->get_subcommands().empty()) {
            app = app->get_subcommands().front();
        }
        return page_of(*app);
    }

    [[nodiscard]] std::vector<Page> pages() const {
        std::vector<Page> pages{page_of(app_)};
        for (const VerbGroup& group : verb_groups()) {
            pages.push_back(page_of(*app_.get_subcommand(group.name)));
        }
        for (const Entry& entry : entries_) {
            pages.push_back(verb_page(*entry.verb, *entry.app));
        }
        return pages;
    }

  private:
    struct Entry {
        const Verb* verb;
        CLI::App* app;
        std::unique_ptr<Command> command;
    };

    void add(const Verb& verb) {
        const std::size_t blank = verb.name.find(' ');
        CLI::App* const parent =
            blank == std::string::npos ? &app_ : app_.get_subcommand(verb.name.substr(0, blank));
        CLI::App* const app = parent->add_subcommand(
            verb.name.substr(blank == std::string::npos ? 0 : blank + 1), verb.summary);
        entries_.push_back({&verb, app, verb.make()});
        entries_.back().command->add_options(*app);
    }

    [[nodiscard]] Page page_of(const CLI::App& app) const {
        for (const Entry& entry : entries_) {
            if (entry.app == &app) {
                return verb_page(*entry.verb, app);
            }
        }
        for (const VerbGroup& group : verb_groups()) {
            if (&app == app_.get_subcommand(group.name)) {
                return overview_page(kProgram + (' ' + group.name), group.summary, {},
                                     verb_entries(group.name + ' '), app);
            }
        }
        return program_page(app);
    }

    // The program's examples are the first one of each verb.
    static Page program_page(const CLI::App& app) {
        Page page =
            overview_page(kProgram, kSummary,
                          {"Results go to the standard output, what is said about them to the standard "
                           "error stream. `vxr VERB --help` says more about a verb."},
                          verb_entries({}), app);
        if (std::string note = image_note(); !note.empty()) {
            page.paragraphs.push_back(std::move(note));
        }
        for (const Verb& verb : verbs()) {
            page.examples.push_back(verb.examples.front());
        }
        return page;
    }

    static std::vector<PageEntry> verb_entries(const std::string& prefix) {
        std::vector<PageEntry> entries;
        for (const Verb& verb : verbs()) {
            if (verb.name.compare(0, prefix.size(), prefix) == 0) {
                entries.push_back({{verb.name.substr(prefix.size())}, {}, verb.summary, true});
            }
        }
        return entries;
    }

    // Not const only because the library hands out subcommands of a const app by non-const pointer alone.
    mutable CLI::App app_;
    std::vector<Entry> entries_;
};

ExitCode usage_error(Terminal& terminal, const std::string& text, const std::string& command) {
    complain(terminal, text);
    terminal.err << "See `" << command << " --help`.\n";
    return ExitCode::usage;
}

ExitCode parse_and_run(const std::vector<std::string>& arguments, Terminal& terminal) {
    CommandLine line;
    try {
        line.parse(arguments);
        if (line.chosen() == nullptr) {
            throw UsageError("a verb is required");
        }
        return line.chosen()->run(terminal);
    } catch (const CLI::CallForHelp&) {
        terminal.out << page_text(line.chosen_page());
        return ExitCode::fine;
    } catch (const CLI::CallForVersion& version) {
        terminal.out << version.what() << '\n';
        return ExitCode::fine;
    } catch (const CLI::ExtrasError& error) {
        const bool verb = line.chosen() == nullptr && arguments.back().compare(0, 1, "-") != 0;
        return usage_error(terminal, verb ? "there is no verb \"" + arguments.back() + '"' : error.what(),
                           line.chosen_page().command);
    } catch (const CLI::Error& error) {
        return usage_error(terminal, error.what(), line.chosen_page().command);
    } catch (const UsageError& error) {
        return usage_error(terminal, error.what(), line.chosen_page().command);
    }
}

}  // namespace

std::string program_version() {
    return std::string(kProgram) + ' ' + VXR_VERSION;
}

ExitCode run_program(const std::vector<std::string>& arguments, Terminal& terminal) {
    ExitCode code = ExitCode::cannot_read_or_write;
    try {
        code = parse_and_run(arguments, terminal);
    } catch (const std::exception& error) {
        complain(terminal, error.what());
    } catch (...) {
        complain(terminal, "an exception of no known kind");
    }
    terminal.out.flush();
    if (!terminal.out) {
        complain(terminal, "the result could not be written to the standard output");
        code = most_serious(code, ExitCode::cannot_read_or_write);
    }
    return code;
}

std::vector<Page> program_pages() {
    return CommandLine().pages();
}

}  // namespace cli
