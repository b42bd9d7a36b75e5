#pragma once

// The one way to the option library: verbs declare what they take here, the program parses, and the help
// reads back what was declared. Only options.cpp knows the library, whose headers take longer to compile than
// most verbs.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace cli {

/// An option or argument that has just been declared. A handle: every function changes the declaration and
/// returns the same handle.
class Option {
  public:
    explicit Option(CLI::Option& option) : option_(&option) {}

    /// What is wrong with a value; empty for a good one.
    using Check = std::function<std::string(const std::string&)>;

    /// The task under whose title the help lists the option.
    Option& group(const std::string& title);
    /// What the value is called: "FILE".
    Option& value_name(const std::string& name);
    Option& required();
    /// The environment variable that is read when the option is not given.
    Option& environment(const std::string& variable);
    /// Shows the present value of the bound member as the default.
    Option& show_default();
    /// One value each time the option is given; without this, a list takes every word up to the next option.
    Option& one_value_at_a_time();
    /// How many values are accepted.
    Option& count(int least, int most);
    Option& choices(const std::vector<std::string>& values);
    Option& range(int least, int most);
    /// A decimal number, as parse_option_decimal reads it.
    Option& decimal_range(double least, double most);
    Option& check(Check check);

  private:
    CLI::Option* option_;
};

/// What was declared about one option or argument.
struct OptionFacts {
    std::vector<std::string> names;  ///< "-o", "--output"; an argument's own name
    std::string value_name;          ///< "FILE"; empty for flags and arguments
    std::string description;
    std::string default_text;  ///< empty when none is shown
    std::string environment;   ///< empty without a variable
    std::string group;         ///< empty for what no group lists
    bool positional = false;
    bool required = false;
    bool repeatable = false;  ///< accepts more than one value
    bool general = false;     ///< --help or --version
};

/// The options and arguments of one verb, of a group or of the program itself. The members that are bound
/// must live as long as the parser.
class Options {
  public:
    explicit Options(CLI::App& app) : app_(&app) {}

    /// `names` as typed, separated by commas: "-q,--quiet". The description begins in lower case and has no
    /// full stop.
    Option flag(const std::string& names, bool& value, const std::string& description);
    Option option(const std::string& names, std::string& value, const std::string& description);
    Option option(const std::string& names, int& value, const std::string& description);
    Option option(const std::string& names, std::vector<std::string>& values, const std::string& description);
    /// An argument without a dash: "FILE".
    Option argument(const std::string& name, std::string& value, const std::string& description);
    Option argument(const std::string& name, std::vector<std::string>& values,
                    const std::string& description);
    /// The argument that names the verb's files, at most one argument of each verb. Once the line is parsed,
    /// a name with wildcards is replaced by the files that it matches (os::matching_files); a verb that takes
    /// one file refuses several.
    Option file_argument(const std::string& name, std::string& path, const std::string& description);
    Option file_argument(const std::string& name, std::vector<std::string>& paths,
                         const std::string& description);

    /// Everything declared, in that order, --help and --version among it.
    [[nodiscard]] std::vector<OptionFacts> facts() const;

  private:
    CLI::App* app_;
};

/// How a command line was understood.
struct ParsedLine {
    enum class Kind {
        complete,  ///< every bound member has its value
        help,      ///< --help was given
        version,   ///< --version was given
        wrong,     ///< wrong usage, as `error` says
    };
    Kind kind = Kind::complete;
    std::string verb;   ///< as far as it was given: "", "texture", "texture info"
    std::string error;  ///< without a full stop
};

/// The program's verbs, ready to parse one command line.
class OptionParser {
  public:
    OptionParser(const std::string& program, const std::string& summary, const std::string& version);
    ~OptionParser();
    OptionParser(const OptionParser&) = delete;
    OptionParser& operator=(const OptionParser&) = delete;

    void add_group(const std::string& name, const std::string& summary);
    /// `name` of a verb in a group begins with the group's: "texture info". The group must exist.
    Options add_verb(const std::string& name, const std::string& summary);

    /// For one command line only. `arguments` are without the program's own name.
    [[nodiscard]] ParsedLine parse(std::vector<std::string> arguments);

    /// The options of a verb or group by its name; of the program for "".
    [[nodiscard]] Options options_of(const std::string& name) const;

  private:
    std::unique_ptr<CLI::App> app_;
};

/// An integer as every option with an integer value reads it; nothing for any other text.
[[nodiscard]] std::optional<int> parse_option_integer(const std::string& text);

/// A decimal number of at most 15 digits, without a sign or an exponent; nothing for any other text.
[[nodiscard]] std::optional<double> parse_option_decimal(const std::string& text);

}  // namespace cli
