#pragma once

// What there is to say about the program and each of its verbs, and the three ways of writing it out: help on
// a terminal, a manual page, and completion for shells.

#include <cstddef>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/options.h"

namespace cli {

/// One option, positional argument, verb or exit code.
struct HelpEntry {
    std::vector<std::string> names;  ///< "-o", "--save"; a positional's or verb's own name
    std::string value;               ///< "FILE"; empty for flags
    std::string text;                ///< what it does, with default and environment variable
    bool positional = false;
};

struct HelpSection {
    std::string title;
    std::vector<HelpEntry> entries;
};

struct HelpPage {
    std::string command;  ///< "vxr", "vxr import"
    std::string summary;
    std::string usage;  ///< "vxr import [options] FILE"
    std::vector<std::string> paragraphs;
    std::vector<HelpSection> sections;
    std::vector<Example> examples;
};

/// The page of a verb with these options.
HelpPage verb_help_page(const Verb& verb, const std::vector<OptionFacts>& options);

/// The page of the program or of a group of verbs with these options: lists `entries` as verbs.
HelpPage overview_help_page(const std::string& command, const std::string& summary,
                            std::vector<std::string> paragraphs, std::vector<HelpEntry> entries,
                            const std::vector<OptionFacts>& options);

/// Help for a terminal of this width.
std::string help_page_text(const HelpPage& page, std::size_t columns = 80);

/// The manual page vxr(1) in man macros: `pages` as from program_help_pages(), the program's first; each of
/// the others becomes a section. `version` is "vxr 1.0.0".
std::string manual_page(const std::vector<HelpPage>& pages, const std::string& version);

/// A bash script that completes verbs, options, their fixed values and file names; `pages` as for
/// manual_page(). Changes no option of the shell.
std::string bash_completion(const std::vector<HelpPage>& pages);

/// The same for zsh and fish, which also show what each verb and option does.
std::string zsh_completion(const std::vector<HelpPage>& pages);
std::string fish_completion(const std::vector<HelpPage>& pages);

/// Breaks `text` at spaces into lines of at most `width` columns, each indented by `indent` spaces, the first
/// one too. A longer word is not broken.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t width = 80);

}  // namespace cli
