#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <utility>

#include "system/files.h"

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
    option_->check(CLI::IsMember(values));
    return *this;
}

Option& Option::range(int least, int most) {
    option_->check(CLI::Range(least, most));
    return *this;
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
    try {
        // The library takes arguments from the back.
        std::reverse(arguments.begin(), arguments.end());
        app_->parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        line.kind = ParsedLine::Kind::help;
    } catch (const CLI::CallForVersion&) {
        line.kind = ParsedLine::Kind::version;
    } catch (const CLI::ExtrasError& error) {
        line.kind = ParsedLine::Kind::extras;
        line.error = error.what();
    } catch (const CLI::Error& error) {
        line.kind = ParsedLine::Kind::wrong;
        line.error = error.what();
    }
    for (const CLI::App* app = app_.get(); !app->get_subcommands().empty();) {
        app = app->get_subcommands().front();
        line.verb += (line.verb.empty() ? "" : " ") + app->get_name();
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

}  // namespace cli
