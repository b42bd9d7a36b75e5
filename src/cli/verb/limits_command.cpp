#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "cli/help/help_page.h"
#include "cli/options.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "embedded/json_values.h"
#include "limit/limits.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kLimitsSchema = 1;

struct RuleLabels {
    const char* for_scripts;
    const char* for_people;
};

RuleLabels labels_of(limits::Rule rule) {
    switch (rule) {
        case limits::Rule::format:
            return {"format", "the format's rule"};
        case limits::Rule::ours:
            return {"ours", "our rule"};
        case limits::Rule::file_length:
            break;
    }
    return {"file-length", "no rule other than the file's length"};
}

std::string limit_block(const limits::Limit& limit, const Paint& paint) {
    constexpr std::size_t kIndent = 6;
    return paint(Ink::bold, limit.name) + ": " + grouped(limit.value) + ' ' + limit.unit +
           paint(Ink::dim, std::string(" [") + limit.id + ']') + '\n' +
           wrapped(std::string(labels_of(limit.rule).for_people) + ": " + limit.reason, kIndent) +
           wrapped(std::string("beyond it: ") + limit.beyond, kIndent);
}

Json limit_json(const limits::Limit& limit) {
    return Json{{"id", limit.id},
                {"name", limit.name},
                {"value", limit.value},
                {"unit", limit.unit},
                {"rule", labels_of(limit.rule).for_scripts},
                {"reason", limit.reason},
                {"beyond", limit.beyond}};
}

class LimitsCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        Json documents = Json::array();
        for (const limits::Limit* limit : limits::kAll) {
            if (json_) {
                documents.push_back(limit_json(*limit));
            } else {
                terminal.out << limit_block(*limit, terminal.out_paint);
            }
        }
        if (json_) {
            terminal.out << Json{{"schema", kLimitsSchema},
                                 {"exit_code", static_cast<int>(ExitCode::fine)},
                                 {"limits", documents}}
                                .dump(2)
                         << '\n';
        }
        return ExitCode::fine;
    }

  private:
    bool json_ = false;
};

}  // namespace

Verb limits_verb() {
    return {
        "limits",
        "list the limits on composition files and textures, each with its reason",
        {"Shows each limit, whose rule it is, why it exists, and what happens beyond it. When a file is "
         "refused because of a limit, the message names the limit, and so does `limit` in the JSON of `vxr "
         "check`, `vxr texture` and `vxr import`."},
        {{"vxr limits", "Every limit; the name in brackets is the one for scripts."},
         {"vxr limits --json | jq -r '.limits[] | [.id, .value, .unit] | @tsv'",
          "The limits as columns, for a script."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<LimitsCommand>(); }};
}

}  // namespace cli
