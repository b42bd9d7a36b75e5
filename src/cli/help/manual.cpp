#include "cli/help/help_page.h"

#include "text/ascii.h"

namespace cli {
namespace {

// Escapes text for troff: a backslash begins an escape sequence, a minus becomes a hyphen, and a full stop or
// quote at the beginning of a line makes it a macro. A grave accent marks code and would become a curly
// quote.
std::string roff(const std::string& text) {
    std::string out = !text.empty() && (text[0] == '.' || text[0] == '\'') ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\') {
            out += "\\e";
        } else if (c == '-') {
            out += "\\-";
        } else if (c == '`') {
            out += "\\(cq";
        } else {
            out += c;
        }
    }
    return out;
}

std::string entry_roff(const HelpEntry& entry) {
    std::string out = ".TP\n";
    for (std::size_t i = 0; i < entry.names.size(); ++i) {
        out += (i > 0 ? ", " : "") + ("\\fB" + roff(entry.names[i])) + "\\fR";
    }
    if (!entry.value.empty()) {
        out += " \\fI" + roff(entry.value) + "\\fR";
    }
    return out + '\n' + roff(entry.text) + '\n';
}

bool is_common(const HelpSection& section) {
    return section.title == "Exit codes" || section.title == "Help";
}

std::string examples_roff(const std::vector<Example>& examples) {
    std::string out;
    for (const Example& example : examples) {
        out += ".TP\n\\fB" + roff(example.command) + "\\fR\n" + roff(example.effect) + '\n';
    }
    return out;
}

// The section of a verb. Exit codes and help are common to all and stand in sections of the program.
std::string verb_roff(const HelpPage& page) {
    std::string out = ".SS \"" + roff(page.usage) + "\"\n" + roff(page.summary) + '\n';
    for (const std::string& paragraph : page.paragraphs) {
        out += ".PP\n" + roff(paragraph) + '\n';
    }
    for (const HelpSection& section : page.sections) {
        if (is_common(section)) {
            continue;
        }
        out += ".PP\n\\fI" + roff(section.title) + "\\fR\n";
        for (const HelpEntry& entry : section.entries) {
            out += entry_roff(entry);
        }
    }
    if (!page.examples.empty()) {
        out += ".PP\n\\fIExamples\\fR\n" + examples_roff(page.examples);
    }
    return out;
}

}  // namespace

std::string manual_page(const std::vector<HelpPage>& pages, const std::string& version) {
    const HelpPage& program = pages.front();
    std::string out = ".TH \"" + text::upper_case(program.command) + "\" 1 \"\" \"" + roff(version) + "\"\n";
    out += ".SH NAME\n" + roff(program.command) + " \\- " + roff(program.summary) + '\n';
    out += ".SH SYNOPSIS\n\\fB" + roff(program.usage) + "\\fR\n.SH DESCRIPTION\n";
    for (const std::string& paragraph : program.paragraphs) {
        out += ".PP\n" + roff(paragraph) + '\n';
    }
    out += ".SH VERBS\n";
    for (auto page = pages.begin() + 1; page != pages.end(); ++page) {
        out += verb_roff(*page);
    }
    for (const HelpSection& section : program.sections) {
        if (section.title == "Verbs") {
            continue;
        }
        out += ".SH \"" + text::upper_case(roff(section.title)) + "\"\n";
        for (const HelpEntry& entry : section.entries) {
            out += entry_roff(entry);
        }
    }
    return out;
}

}  // namespace cli
