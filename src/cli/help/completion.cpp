#include "cli/help/help_page.h"

#include <algorithm>
#include <sstream>

namespace cli {
namespace {

// What may follow the command of a help page: its verbs and its options.
struct Completions {
    std::string verbs;
    std::string options;
    std::string with_value;  ///< options that take a value, as a pattern: "--save|--log"
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
                    completions.with_value +=
                        entry.value.empty() ? "" : (completions.with_value.empty() ? "" : "|") + name;
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
    elif [[ -n $values && $previous == @($values) ]]; then
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
shopt -s extglob
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

}  // namespace cli
