#include "cli/help/help_page.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "text/printable.h"

namespace cli {
namespace {

constexpr std::size_t kTextColumn = 26;

HelpEntry entry_of(const OptionFacts& option) {
    HelpEntry entry;
    entry.names = option.names;
    entry.value = option.value_name;
    entry.positional = option.positional;
    entry.text = option.description;
    if (!option.default_text.empty()) {
        entry.text += " (default: " + option.default_text + ")";
    }
    if (!option.environment.empty()) {
        entry.text += " (environment: " + option.environment + ")";
    }
    return entry;
}

// One section for each group, in the order of their first options; positional arguments come first, help
// last.
std::vector<HelpSection> option_sections(const std::vector<OptionFacts>& options) {
    std::vector<HelpSection> sections;
    const auto section = [&](const std::string& title) -> HelpSection& {
        const auto found = std::find_if(sections.begin(), sections.end(),
                                        [&](const HelpSection& one) { return one.title == title; });
        return found != sections.end() ? *found : sections.emplace_back(HelpSection{title, {}});
    };
    for (const OptionFacts& option : options) {
        if (option.general) {
            continue;
        }
        if (option.positional) {
            section("Arguments").entries.push_back(entry_of(option));
        } else if (!option.group.empty()) {
            section(option.group).entries.push_back(entry_of(option));
        }
    }
    for (const OptionFacts& option : options) {
        if (option.general) {
            section("Help").entries.push_back(entry_of(option));
        }
    }
    return sections;
}

std::string usage_of(const std::string& command, const std::vector<OptionFacts>& options) {
    std::string usage = command + " [options]";
    for (const OptionFacts& option : options) {
        if (option.positional) {
            const std::string name = option.names.front() + (option.repeatable ? "..." : "");
            usage += option.required ? ' ' + name : " [" + name + ']';
        }
    }
    return usage;
}

HelpSection exit_code_section() {
    HelpSection section{"Exit codes", {}};
    for (const ExitCodeRow& row : kExitCodes) {
        section.entries.push_back({{std::to_string(static_cast<int>(row.code))}, {}, row.meaning, true});
    }
    return section;
}

std::string heading_of(const HelpEntry& entry) {
    std::string heading;
    for (const std::string& name : entry.names) {
        heading += (heading.empty() ? "" : ", ") + name;
    }
    return entry.value.empty() ? heading : heading + ' ' + entry.value;
}

std::string entry_text(const HelpEntry& entry, std::size_t columns) {
    std::string head = "  " + heading_of(entry);
    const std::string text = wrapped(entry.text, kTextColumn, columns);
    if (text::columns_of(head) + 2 > kTextColumn) {
        return head + '\n' + text;
    }
    return head + text.substr(text::columns_of(head));
}

}  // namespace

HelpPage verb_help_page(const Verb& verb, const std::vector<OptionFacts>& options) {
    HelpPage page;
    page.command = "vxr " + verb.name;
    page.summary = verb.summary;
    page.usage = usage_of(page.command, options);
    page.paragraphs = verb.paragraphs;
    page.sections = option_sections(options);
    page.sections.push_back(exit_code_section());
    page.examples = verb.examples;
    return page;
}

HelpPage overview_help_page(const std::string& command, const std::string& summary,
                            std::vector<std::string> paragraphs, std::vector<HelpEntry> entries,
                            const std::vector<OptionFacts>& options) {
    HelpPage page;
    page.command = command;
    page.summary = summary;
    page.usage = command + " VERB [options] ...";
    page.paragraphs = std::move(paragraphs);
    page.sections.push_back({"Verbs", std::move(entries)});
    for (HelpSection& section : option_sections(options)) {
        page.sections.push_back(std::move(section));
    }
    page.sections.push_back(exit_code_section());
    return page;
}

std::string wrapped(const std::string& text, std::size_t indent, std::size_t width) {
    std::string out;
    std::string line;
    std::istringstream words(text);
    const auto end_line = [&] {
        out += std::string(indent, ' ') + line + '\n';
        line.clear();
    };
    for (std::string word; words >> word;) {
        if (!line.empty() && indent + text::columns_of(line) + 1 + text::columns_of(word) > width) {
            end_line();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    end_line();
    return out;
}

std::string help_page_text(const HelpPage& page, std::size_t columns) {
    std::string text =
        wrapped(page.command + " - " + page.summary, 0, columns) + "\nusage: " + page.usage + '\n';
    for (const std::string& paragraph : page.paragraphs) {
        text += '\n' + wrapped(paragraph, 0, columns);
    }
    for (const HelpSection& section : page.sections) {
        text += '\n' + section.title + ":\n";
        for (const HelpEntry& entry : section.entries) {
            text += entry_text(entry, columns);
        }
    }
    if (!page.examples.empty()) {
        text += "\nExamples:\n";
        for (const Example& example : page.examples) {
            text += "  " + example.command + '\n' + wrapped(example.effect, 6, columns);
        }
    }
    return text;
}

}  // namespace cli
