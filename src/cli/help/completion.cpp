#include "cli/help/help_page.h"

#include <algorithm>
#include <sstream>

namespace cli {
namespace {

/// What may follow the command of a help page.
struct Candidate {
    std::vector<std::string> words;  ///< a verb, or an option under all of its names
    std::string text;                ///< its description
    std::string value;  ///< what an option takes; empty for a verb and for an option without a value
    bool is_verb = false;
};

std::string first_word(const std::string& text) {
    return text.substr(0, text.find(' '));
}

std::vector<Candidate> candidates_of(const std::vector<HelpPage>& pages, const HelpPage& page) {
    std::vector<Candidate> candidates;
    const auto add = [&](const HelpPage& of, bool verbs_alone) {
        for (const HelpSection& section : of.sections) {
            const bool is_verb = section.title == "Verbs";
            for (const HelpEntry& entry : section.entries) {
                if (is_verb) {
                    candidates.push_back({{first_word(entry.names.front())}, entry.text, {}, true});
                } else if (!verbs_alone && !entry.positional) {
                    candidates.push_back({entry.names, entry.text, entry.value, false});
                }
            }
        }
    };
    // `vxr help` takes what `vxr` takes.
    if (page.command == pages.front().command + " help") {
        add(pages.front(), true);
    }
    add(page, false);
    return candidates;
}

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
        std::string verbs;
        std::string options;
        std::string values;
        std::string choices;
        for (const Candidate& one : candidates_of(pages, page)) {
            const std::string fixed = choices_of(one.value);
            for (const std::string& word : one.words) {
                (one.is_verb ? verbs : options) += word + ' ';
                values += one.value.empty() ? "" : word + ' ';
                if (!fixed.empty()) {
                    choices.append("            choices[")
                        .append(word)
                        .append("]=\"")
                        .append(fixed)
                        .append("\"\n");
                }
            }
        }
        script.append("        \"").append(page.command).append("\")\n            verbs=\"").append(verbs);
        script.append("\"\n            options=\"").append(options);
        script.append("\"\n            values=\"").append(values).append("\"\n");
        script.append(choices).append("            ;;\n");
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
        for (const Candidate& one : candidates_of(pages, page)) {
            const std::string fixed = choices_of(one.value);
            for (const std::string& word : one.words) {
                const std::string described = zsh_quoted(word + ':' + short_text(one.text));
                (one.is_verb ? verbs : options).append("                ").append(described).append("\n");
                values += one.value.empty() ? "" : word + ' ';
                if (!fixed.empty()) {
                    choices.append("                ")
                        .append(word)
                        .append(") choices=(")
                        .append(fixed)
                        .append(") ;;\n");
                }
            }
        }
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
    for (const HelpPage& page : pages) {
        for (const Candidate& one : candidates_of(pages, page)) {
            script += "complete -c vxr -n 'string match -q -- \"" + page.command + "\" (__vxr_command)'";
            for (const std::string& word : one.words) {
                script += one.is_verb              ? " -f -a " + fish_quoted(word)
                          : word.starts_with("--") ? " -l " + word.substr(2)
                                                   : " -s " + word.substr(1);
            }
            if (const std::string fixed = choices_of(one.value); !fixed.empty()) {
                script += " -x -a " + fish_quoted(fixed.substr(0, fixed.size() - 1));
            } else if (!one.value.empty()) {
                script += " -r";
            }
            script += " -d " + fish_quoted(short_text(one.text)) + '\n';
        }
    }
    return script;
}

}  // namespace cli
