#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>
#include <sstream>
#include <utility>

#include "system/files.h"
#include "text/plain_number.h"
#include "text/similar.h"

namespace cli {
namespace {

OptionFacts facts_of(const CLI::Option& option) {
    OptionFacts facts;
    facts.positional = option.get_positional();
    if (facts.positional) {
        facts.names.push_back(option.get_name());
    }
    for (const std::string& name : option.get_snames()) {
        facts.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        facts.names.push_back("--" + name);
    }
    if (!facts.positional && option.get_type_size_max() > 0) {
        facts.value_name = option.get_type_name();
    }
    facts.description = option.get_description();
    facts.default_text = option.get_default_str();
    facts.environment = option.get_envname();
    facts.group = option.get_group();
    facts.required = option.get_required();
    facts.repeatable = option.get_expected_max() > 1;
    return facts;
}

/// "bash", "bash or zsh", "bash, fish or zsh"
std::string either_of(const std::vector<std::string>& values) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == values.size() ? " or " : ", ") + values[i];
    }
    return text;
}

/// The verb or group of `app` that is called `word`; null if there is none.
const CLI::App* find_verb(const CLI::App& app, const std::string& word) {
    for (const CLI::App* const verb : app.get_subcommands({})) {
        if (verb->get_name() == word) {
            return verb;
        }
    }
    return nullptr;
}

/// The verb that a command line names, as far as there is one: "", "texture", "texture info".
std::string verb_of(const CLI::App& program, const std::vector<std::string>& words) {
    std::string name;
    const CLI::App* app = &program;
    for (const std::string& word : words) {
        if (word[0] == '-') {
            continue;
        }
        app = find_verb(*app, word);
        if (app == nullptr) {
            break;
        }
        name += (name.empty() ? "" : " ") + word;
    }
    return name;
}

/// Goes over the words of a command line before the library does, which complains about a missing argument
/// before an unknown option, offers help on verbs that do not exist, and words errors for programmers.
class LineScan {
  public:
    LineScan(const CLI::App& program, const std::vector<std::string>& words)
        : app_(&program), words_(words) {}

    /// What is wrong; empty when nothing is that this class looks for.
    std::string problem() {
        while (at_ < words_.size() && problem_.empty() && !only_arguments_) {
            const std::string& word = words_[at_++];
            if (word.size() > 1 && word[0] == '-') {
                scan_option(word);
            } else if (has_verbs()) {
                scan_verb(word);
            }
        }
        return problem_;
    }

  private:
    [[nodiscard]] bool has_verbs() const { return !app_->get_subcommands({}).empty(); }

    void scan_verb(const std::string& word) {
        if (const CLI::App* const verb = find_verb(*app_, word)) {
            app_ = verb;
            path_ += word + ' ';
            return;
        }
        std::vector<std::string> names;
        for (const CLI::App* const verb : app_->get_subcommands({})) {
            names.push_back(verb->get_name());
        }
        problem_ = "there is no verb \"" + path_ + word + '"' + text::did_you_mean(word, names);
    }

    void scan_option(const std::string& word) {
        if (word == "--") {
            only_arguments_ = true;
            return;
        }
        if (word[1] != '-') {
            scan_short_options(word);
            return;
        }
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const CLI::Option* const option = app_->get_option_no_throw(name);
        if (option == nullptr) {
            unknown(name);
        } else if (takes_value(*option)) {
            scan_value(*option, name, equals != std::string::npos);
        } else if (equals != std::string::npos) {
            problem_ = name + " takes no value";
        }
    }

    /// "-qj4" is "-q -j 4".
    void scan_short_options(const std::string& word) {
        for (std::size_t i = 1; i < word.size() && problem_.empty(); ++i) {
            const std::string name{'-', word[i]};
            const CLI::Option* const option = app_->get_option_no_throw(name);
            if (option == nullptr) {
                unknown(i == 1 ? word : name);
            } else if (takes_value(*option)) {
                scan_value(*option, name, i + 1 < word.size());
                return;
            }
        }
    }

    void scan_value(const CLI::Option& option, const std::string& name, bool given) {
        if (!given) {
            const std::string next = at_ < words_.size() ? words_[at_] : "--";
            if (next == "--" || (next[0] == '-' && app_->get_option_no_throw(next) != nullptr)) {
                problem_ = name + " needs a value: " + option.get_type_name();
                return;
            }
            ++at_;
        }
        if (!given_.insert(&option).second && option.get_expected_max() == 1) {
            problem_ = name + " is given twice";
        }
    }

    static bool takes_value(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

    void unknown(const std::string& name) {
        std::vector<std::string> names;
        for (const CLI::Option* const option : app_->get_options()) {
            for (const std::string& known : option->get_lnames()) {
                names.push_back("--" + known);
            }
        }
        problem_ = "there is no option \"" + name + '"' + text::did_you_mean(name, names);
    }

    const CLI::App* app_;  ///< the program, or the group or verb that was named last
    const std::vector<std::string>& words_;
    std::size_t at_ = 0;
    bool only_arguments_ = false;
    std::string path_;  ///< of the verb: "texture "
    std::string problem_;
    std::set<const CLI::Option*> given_;
};

}  // namespace

Option& Option::group(const std::string& title) {
    option_->group(title);
    return *this;
}

Option& Option::value_name(const std::string& name) {
    option_->type_name(name);
    return *this;
}

Option& Option::required() {
    option_->required();
    return *this;
}

Option& Option::environment(const std::string& variable) {
    option_->envname(variable);
    return *this;
}

Option& Option::show_default() {
    option_->capture_default_str();
    return *this;
}

Option& Option::one_value_at_a_time() {
    option_->allow_extra_args(false);
    return *this;
}

Option& Option::count(int least, int most) {
    option_->expected(least, most);
    return *this;
}

Option& Option::choices(const std::vector<std::string>& values) {
    return check([values](const std::string& text) {
        if (std::find(values.begin(), values.end(), text) != values.end()) {
            return std::string();
        }
        return '"' + text + "\" is not " + either_of(values) + text::did_you_mean(text, values);
    });
}

Option& Option::range(int least, int most) {
    return check([least, most](const std::string& text) {
        const std::optional<int> number = parse_option_integer(text);
        return number && *number >= least && *number <= most
                   ? std::string()
                   : '"' + text + "\" is not a number from " + std::to_string(least) + " to " +
                         std::to_string(most);
    });
}

Option& Option::decimal_range(double least, double most) {
    return check([least, most](const std::string& text) {
        const std::optional<double> value = parse_option_decimal(text);
        return value && *value >= least && *value <= most
                   ? std::string()
                   : '"' + text + "\" is not a number from " + text::plain_number(least) + " to " +
                         text::plain_number(most);
    });
}

Option& Option::check(Check check) {
    option_->check([check = std::move(check)](const std::string& text) { return check(text); });
    return *this;
}

Option Options::flag(const std::string& names, bool& value, const std::string& description) {
    return Option(*app_->add_flag(names, value, description));
}

Option Options::option(const std::string& names, std::string& value, const std::string& description) {
    return Option(*app_->add_option(names, value, description));
}

Option Options::option(const std::string& names, int& value, const std::string& description) {
    return Option(*app_->add_option(names, value, description));
}

Option Options::option(const std::string& names, std::vector<std::string>& values,
                       const std::string& description) {
    return Option(*app_->add_option(names, values, description));
}

Option Options::argument(const std::string& name, std::string& value, const std::string& description) {
    return option(name, value, description);
}

Option Options::argument(const std::string& name, std::vector<std::string>& values,
                         const std::string& description) {
    return option(name, values, description);
}

Option Options::file_argument(const std::string& name, std::string& path, const std::string& description) {
    app_->callback([name, &path] {
        const std::vector<std::string> files = os::matching_files(path);
        if (files.size() > 1) {
            throw CLI::ValidationError(
                name, path + " matches " + std::to_string(files.size()) + " files; one is needed");
        }
        path = files.front();
    });
    return argument(name, path, description);
}

Option Options::file_argument(const std::string& name, std::vector<std::string>& paths,
                              const std::string& description) {
    app_->callback([&paths] {
        std::vector<std::string> all;
        for (const std::string& path : paths) {
            const std::vector<std::string> files = os::matching_files(path);
            all.insert(all.end(), files.begin(), files.end());
        }
        paths = std::move(all);
    });
    return argument(name, paths, description);
}

std::vector<OptionFacts> Options::facts() const {
    std::vector<OptionFacts> all;
    for (const CLI::Option* option : std::as_const(*app_).get_options()) {
        all.push_back(facts_of(*option));
        all.back().general = option == app_->get_help_ptr() || option == app_->get_version_ptr();
    }
    return all;
}

OptionParser::OptionParser(const std::string& program, const std::string& summary, const std::string& version)
    : app_(std::make_unique<CLI::App>(summary, program)) {
    // A path that begins with a slash is a path on Windows, too. The verbs inherit this.
    app_->allow_windows_style_options(false);
    app_->set_help_flag("-h,--help", "show this help");
    app_->set_version_flag("--version", version, "show the version");
    // One verb a command line: further words belong to it, even when they are the name of a verb.
    app_->require_subcommand(0, 1);
}

OptionParser::~OptionParser() = default;

void OptionParser::add_group(const std::string& name, const std::string& summary) {
    app_->add_subcommand(name, summary)->require_subcommand(0, 1);
}

Options OptionParser::add_verb(const std::string& name, const std::string& summary) {
    const std::size_t blank = name.find(' ');
    if (blank == std::string::npos) {
        return Options(*app_->add_subcommand(name, summary));
    }
    CLI::App* const group = app_->get_subcommand(name.substr(0, blank));
    return Options(*group->add_subcommand(name.substr(blank + 1), summary));
}

ParsedLine OptionParser::parse(std::vector<std::string> arguments) {
    ParsedLine line;
    line.verb = verb_of(*app_, arguments);
    line.error = LineScan(*app_, arguments).problem();
    if (!line.error.empty()) {
        line.kind = ParsedLine::Kind::wrong;
        return line;
    }
    try {
        // The library takes arguments from the back.
        std::reverse(arguments.begin(), arguments.end());
        app_->parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        line.kind = ParsedLine::Kind::help;
    } catch (const CLI::CallForVersion&) {
        line.kind = ParsedLine::Kind::version;
    } catch (const CLI::ExtrasError&) {
        line.kind = ParsedLine::Kind::wrong;
        for (const std::string& word : app_->remaining(true)) {
            line.error += (line.error.empty() ? "nothing takes \"" : "\", \"") + word;
        }
        line.error += '"';
    } catch (const CLI::Error& error) {
        line.kind = ParsedLine::Kind::wrong;
        line.error = error.what();
    }
    return line;
}

Options OptionParser::options_of(const std::string& name) const {
    CLI::App* app = app_.get();
    std::istringstream words(name);
    for (std::string word; words >> word;) {
        app = app->get_subcommand(word);
    }
    return Options(*app);
}

std::optional<int> parse_option_integer(const std::string& text) {
    int value = 0;
    return CLI::detail::lexical_cast(text, value) ? std::optional(value) : std::nullopt;
}

std::optional<double> parse_option_decimal(const std::string& text) {
    constexpr std::size_t kMostDigits = 15;  // exact in a double, as are the powers of ten below
    double digits = 0;
    double scale = 1;
    std::size_t count = 0;
    bool after_point = false;
    for (const char c : text) {
        if (c == '.' && !after_point) {
            after_point = true;
        } else if (c >= '0' && c <= '9' && ++count <= kMostDigits) {
            digits = digits * 10 + (c - '0');
            scale *= after_point ? 10 : 1;
        } else {
            return std::nullopt;
        }
    }
    return count > 0 ? std::optional(digits / scale) : std::nullopt;
}

}  // namespace cli
