#include "cli/help/help_page.h"

#include <algorithm>
#include <sstream>

namespace cli {
namespace {

// What may follow the command of a help page: its verbs and its options.
struct Completions {
    std::string verbs;
    std::string options;
    std::string with_value;  ///< options that take a value, each followed by a blank
    std::string choices;     ///< assignments of the fixed values of each option
};

/// The lower-case alternatives of a value like "classic|today|MAJOR.MINOR", each followed by a space.
std::string choices_of(const std::string& value) {
    std::string choices;
    std::istringstream alternatives(value);
    for (std::string one; std::getline(alternatives, one, '|');) {
        if (std::all_of(one.begin(), one.end(), [](char c) { return c >= 'a' && c <= 'z'; })) {
            choices += one + ' ';
        }
    }
    return choices;
}

Completions completions_of(const HelpPage& page) {
    Completions completions;
    for (const HelpSection& section : page.sections) {
        for (const HelpEntry& entry : section.entries) {
            for (const std::string& name : entry.names) {
                if (section.title == "Verbs") {
                    completions.verbs += name.substr(0, name.find(' ')) + ' ';
                } else if (!entry.positional) {
                    completions.options += name + ' ';
                    completions.with_value += entry.value.empty() ? "" : name + ' ';
                    if (const std::string choices = choices_of(entry.value); !choices.empty()) {
                        completions.choices.append("            choices[")
                            .append(name)
                            .append("]=\"")
                            .append(choices)
                            .append("\"\n");
                    }
                }
            }
        }
    }
    return completions;
}

constexpr const char* kHead = R"(# bash completion for vxr; written by `vxr completion bash`
_vxr() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local command=vxr verbs= options= values= word i
    local -A choices=()
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case "$command $word" in
)";

constexpr const char* kMiddle = R"(        esac
    done
    case "$command" in
)";

constexpr const char* kTail = R"(    esac
    if [[ -n $previous && -n ${choices[$previous]-} ]]; then
        mapfile -t COMPREPLY < <(compgen -W "${choices[$previous]}" -- "$current")
    elif [[ -n $previous && " $values" == *" $previous "* ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    elif [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    elif [[ -n $verbs ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$verbs" -- "$current")
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F _vxr vxr
)";

}  // namespace

std::string bash_completion(const std::vector<HelpPage>& pages) {
    std::string script = kHead;
    for (const HelpPage& page : pages) {
        if (page.command.find(' ') != std::string::npos) {
            script += "            \"" + page.command + "\") command=\"" + page.command + "\" ;;\n";
        }
    }
    script += kMiddle;
    for (const HelpPage& page : pages) {
        Completions completions = completions_of(page);
        if (page.command == pages.front().command + " help") {
            completions.verbs = completions_of(pages.front()).verbs;
        }
        script += "        \"" + page.command + "\")\n            verbs=\"" + completions.verbs +
                  "\"\n            options=\"" + completions.options + "\"\n            values=\"" +
                  completions.with_value + "\"\n" + completions.choices + "            ;;\n";
    }
    return script + kTail;
}

namespace {

/// The first part of a description, up to a semicolon, a bracket or a full stop.
std::string short_text(const std::string& text) {
    return text.substr(0, std::min({text.find(';'), text.find(" ("), text.find(". "), text.size()}));
}

/// In single quotes, in which `escaped` stands for a single quote.
std::string single_quoted(const std::string& text, const char* escaped) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string(escaped) : std::string(1, c);
    }
    return quoted + '\'';
}

std::string zsh_quoted(const std::string& text) {
    return single_quoted(text, R"('\'')");
}

std::string fish_quoted(const std::string& text) {
    std::string backslashes_doubled;
    for (const char c : text) {
        backslashes_doubled += c == '\\' ? "\\\\" : std::string(1, c);
    }
    return single_quoted(backslashes_doubled, R"(\')");
}

/// Calls `take(page, entry, verb)` for everything that may follow the commands of `pages`: `verb` is true for
/// verbs, false for options.
template <typename Take>
void for_each_entry(const std::vector<HelpPage>& pages, const Take& take) {
    for (const HelpPage& page : pages) {
        // `vxr help` takes what `vxr` takes.
        const bool help = page.command == pages.front().command + " help";
        for (const HelpSection& section : pages.front().sections) {
            for (const HelpEntry& entry : section.entries) {
                if (help && section.title == "Verbs") {
                    take(page, entry, true);
                }
            }
        }
        for (const HelpSection& section : page.sections) {
            for (const HelpEntry& entry : section.entries) {
                if (section.title == "Verbs" || !entry.positional) {
                    take(page, entry, section.title == "Verbs");
                }
            }
        }
    }
}

std::string first_word(const std::string& text) {
    return text.substr(0, text.find(' '));
}

constexpr const char* kZshHead = R"(#compdef vxr
# zsh completion for vxr; written by `vxr completion zsh`
_vxr() {
    local command=vxr previous=${words[CURRENT-1]}
    local -a verbs options values choices
    local -i i
    for ((i = 2; i < CURRENT; i++)); do
        case "$command ${words[i]}" in
)";

constexpr const char* kZshTail = R"(    esac
    if (( $#choices )); then
        compadd -- $choices
    elif (( ${values[(Ie)$previous]} )); then
        _files
    elif [[ ${words[CURRENT]} == -* ]]; then
        _describe -o option options
    elif (( $#verbs )); then
        _describe verb verbs
    else
        _files
    fi
}
if [[ ${funcstack[1]} == _vxr ]]; then
    _vxr "$@"
else
    compdef _vxr vxr
fi
)";

constexpr const char* kFishHead = R"(# fish completion for vxr; written by `vxr completion fish`
function __vxr_command
    set -l command vxr
    for word in (commandline -opc)[2..-1]
        switch "$command $word"
)";

constexpr const char* kFishMiddle = R"(                set command "$command $word"
        end
    end
    echo $command
end
)";

}  // namespace

std::string zsh_completion(const std::vector<HelpPage>& pages) {
    std::string script = kZshHead;
    for (const HelpPage& page : pages) {
        if (page.command.find(' ') != std::string::npos) {
            script += "            \"" + page.command + "\") command=\"" + page.command + "\" ;;\n";
        }
    }
    script += "        esac\n    done\n    case \"$command\" in\n";
    for (const HelpPage& page : pages) {
        std::string verbs;
        std::string options;
        std::string values;
        std::string choices;
        for_each_entry(pages, [&](const HelpPage& of, const HelpEntry& entry, bool verb) {
            if (of.command != page.command) {
                return;
            }
            for (const std::string& name : entry.names) {
                std::string shown = verb ? first_word(name) : name;
                shown.append(":").append(short_text(entry.text));
                (verb ? verbs : options).append("                ").append(zsh_quoted(shown)).append("\n");
                values += entry.value.empty() ? "" : name + ' ';
                if (const std::string fixed = choices_of(entry.value); !fixed.empty()) {
                    choices.append("                ")
                        .append(name)
                        .append(") choices=(")
                        .append(fixed)
                        .append(") ;;\n");
                }
            }
        });
        script.append("        \"").append(page.command).append("\")\n            verbs=(\n").append(verbs);
        script.append("            )\n            options=(\n").append(options);
        script.append("            )\n            values=(").append(values);
        script.append(")\n            case $previous in\n").append(choices);
        script += "            esac\n            ;;\n";
    }
    return script + kZshTail;
}

std::string fish_completion(const std::vector<HelpPage>& pages) {
    std::string script = kFishHead;
    script += "            case";
    for (const HelpPage& page : pages) {
        script += page.command.find(' ') == std::string::npos ? "" : " '" + page.command + "'";
    }
    script += '\n' + std::string(kFishMiddle);
    for_each_entry(pages, [&](const HelpPage& page, const HelpEntry& entry, bool verb) {
        std::string line = "complete -c vxr -n 'string match -q -- \"" + page.command + "\" (__vxr_command)'";
        if (verb) {
            line += " -f -a " + fish_quoted(first_word(entry.names.front()));
        }
        for (const std::string& name : verb ? std::vector<std::string>() : entry.names) {
            line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
        }
        if (const std::string fixed = choices_of(entry.value); !fixed.empty()) {
            line += " -x -a " + fish_quoted(fixed.substr(0, fixed.size() - 1));
        } else if (!entry.value.empty()) {
            line += " -r";
        }
        script += line + " -d " + fish_quoted(short_text(entry.text)) + '\n';
    });
    return script;
}

}  // namespace cli
