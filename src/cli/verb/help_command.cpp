#include <algorithm>
#include <ostream>

#include "cli/help/help_page.h"
#include "cli/options.h"
#include "cli/program.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"

namespace cli {
namespace {

class HelpCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("VERB", verb_, "the verb to explain; without one, the program").count(0, 2);
        options.flag("--man", man_, "write the manual page vxr(1) instead");
    }

    ExitCode run(Terminal& terminal) override {
        const std::vector<HelpPage> pages = program_help_pages();
        if (man_) {
            terminal.out << manual_page(pages, program_version());
            return ExitCode::fine;
        }
        std::string command = "vxr";
        for (const std::string& word : verb_) {
            command += ' ' + word;
        }
        const auto page = std::find_if(pages.begin(), pages.end(),
                                       [&](const HelpPage& one) { return one.command == command; });
        if (page == pages.end()) {
            throw UsageError("there is no verb \"" + command.substr(4) + '"');
        }
        terminal.out << help_page_text(*page, help_columns(terminal));
        return ExitCode::fine;
    }

  private:
    std::vector<std::string> verb_;
    bool man_ = false;
};

class CompletionCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("SHELL", shell_, "the shell: bash, fish or zsh")
            .required()
            .choices({"bash", "fish", "zsh"});
    }

    ExitCode run(Terminal& terminal) override {
        const std::vector<HelpPage> pages = program_help_pages();
        terminal.out << (shell_ == "zsh"    ? zsh_completion(pages)
                         : shell_ == "fish" ? fish_completion(pages)
                                            : bash_completion(pages));
        return ExitCode::fine;
    }

  private:
    std::string shell_;
};

template <class T>
std::unique_ptr<Command> make() {
    return std::make_unique<T>();
}

}  // namespace

Verb help_verb() {
    return {"help",
            "explain a verb, or write the manual page",
            {"The manual page has the same text as this help."},
            {{"vxr help import", "The same as `vxr import --help`."},
             {"vxr help --man | man -l -", "The manual page, formatted."}},
            make<HelpCommand>};
}

Verb completion_verb() {
    return {"completion",
            "write the completion script for a shell",
            {"The script completes verbs, options, their fixed values and file names, and changes no option "
             "of the shell."},
            {{"source <(vxr completion bash)", "Completion for the running bash, or with zsh for zsh."},
             {"vxr completion fish | source", "Completion for the running fish."}},
            make<CompletionCommand>};
}

}  // namespace cli
