#pragma once

// What there is to say about the program or one of its verbs. Help, manual and completion are three ways of
// writing the same pages.

#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/options.h"

namespace cli {

/// One option, positional, verb or exit code.
struct PageEntry {
    std::vector<std::string> names;  ///< "-o", "--save"; a positional's or verb's own name
    std::string value;               ///< "FILE"; empty for flags
    std::string text;                ///< what it does, with default and environment variable
    bool positional = false;
};

struct PageSection {
    std::string title;
    std::vector<PageEntry> entries;
};

struct Page {
    std::string command;  ///< "vxr", "vxr import"
    std::string summary;
    std::string usage;  ///< "vxr import [options] FILE"
    std::vector<std::string> paragraphs;
    std::vector<PageSection> sections;
    std::vector<Example> examples;
};

/// The page of a verb; `options` are its own.
Page verb_page(const Verb& verb, const std::vector<OptionFacts>& options);

/// A page that lists `entries` as verbs: the program itself or a group. `options` are its own.
Page overview_page(const std::string& command, const std::string& summary,
                   std::vector<std::string> paragraphs, std::vector<PageEntry> entries,
                   const std::vector<OptionFacts>& options);

/// For a terminal of 80 columns.
std::string page_text(const Page& page);

/// Breaks `text` at blanks into lines of at most `width` columns, the first included, each with `indent`
/// blanks before it. A word longer than that stays whole.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t width = 80);

}  // namespace cli
