#include "cli/help/help_page.h"

#include "text/ascii.h"

namespace cli {
namespace {

// Escapes text for troff: a backslash begins an escape sequence, a minus becomes a hyphen, and a full stop or
// quote at the beginning of a line makes it a macro. Quotes, accents and tildes would become typographic
// characters, which no shell understands.
std::string roff(const std::string& text) {
    std::string out = !text.empty() && text[0] == '.' ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\') {
            out += "\\e";
        } else if (c == '-') {
            out += "\\-";
        } else if (c == '`') {
            out += "\\(ga";
        } else if (c == '\'') {
            out += "\\(aq";
        } else if (c == '"') {
            out += "\\(dq";
        } else if (c == '^') {
            out += "\\(ha";
        } else if (c == '~') {
            out += "\\(ti";
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

// What no verb's help says in one place. The names of installed files are those of the usual folders.
std::string environment_roff() {
    const HelpEntry kEntries[] = {
        {{"VXR_BUNDLE"}, {}, "The plug-in to load where --bundle does not name one."},
        {{"NO_COLOR"}, {}, "If it is set and not empty, output has no colour."},
        {{"TERM"}, {}, "If it is unset or \"dumb\", output has no colour."},
    };
    std::string out = ".SH ENVIRONMENT\n";
    for (const HelpEntry& entry : kEntries) {
        out += entry_roff(entry);
    }
    return out;
}

std::string files_roff() {
    const HelpEntry kEntries[] = {
        {{"*.aec"}, {}, "Composition files of VORTAN XR."},
        {{"*.txl"}, {}, "Textures of Texalon."},
        {{".vxr.toml"},
         {},
         "What `vxr check` refuses and ignores in its folder and below it, unless a nearer one says "
         "something else."},
        {{"VORTANXR_AE.so, VORTANXR_AE.aex, VORTANXR_AE.plugin"},
         {},
         "The plug-in: in lib/vortanxr below the folder in which this program is in bin, or beside this "
         "program."},
        {{".NAME.XXXXXXXX.EXT"},
         {},
         "An output NAME.EXT while it is written, in its folder. It takes its place when it is complete and "
         "is removed when that fails or SIGINT, SIGTERM or SIGHUP ends the program, with 130, 143 or 129."},
    };
    std::string out = ".SH FILES\n";
    for (const HelpEntry& entry : kEntries) {
        out += entry_roff(entry);
    }
    return out;
}

constexpr const char* kSeeAlso = ".SH \"SEE ALSO\"\n.BR jq (1),\n.BR iinfo (1),\n.BR oiiotool (1)\n";

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
    return out + environment_roff() + files_roff() + kSeeAlso;
}

}  // namespace cli
