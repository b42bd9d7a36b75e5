#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "embedded/host.h"
#include "embedded/json_values.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kModulesSchema = 1;

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + text::printable(word);
    }
    return text;
}

/// Four characters in single quotes, or the number.
std::string code_text(A_long code) {
    const Json value = embedded::json_code(code);
    return value.is_string() ? "'" + value.get<std::string>() + "'" : value.dump();
}

std::string module_text(const embedded::Module& module, const Paint& paint) {
    return paint(Ink::bold, text::printable(module.name())) + '\n' + "  signature    " +
           code_text(module.info.signature) + '\n' + "  extensions   " + joined(module.extensions()) + '\n' +
           "  flags        " + joined(module.flag_labels()) + '\n' + "  creates      type " +
           code_text(module.info.create_kind.type) + ", creator " +
           code_text(module.info.create_kind.creator) + '\n' + "  announces    at most " +
           std::to_string(module.info.max_width) + " x " + std::to_string(module.info.max_height) +
           " pixels\n";
}

Json module_json(const embedded::Module& module) {
    return Json{{"name", embedded::json_text(module.name())},
                {"signature", embedded::json_code(module.info.signature)},
                {"extensions", module.extensions()},
                {"flags", module.info.flags},
                {"flag_words", module.flag_labels()},
                {"create_type", embedded::json_code(module.info.create_kind.type)},
                {"create_creator", embedded::json_code(module.info.create_kind.creator)},
                {"max_width_px", module.info.max_width},
                {"max_height_px", module.info.max_height}};
}

class ModulesCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
        add_bundle_option(options, bundle_);
        add_host_option(options, host_);
    }

    ExitCode run(Terminal& terminal) override {
        embedded::Host host(host_of_kind(host_));
        std::string problem;
        const ExitCode code = load_bundle(host, find_bundle(bundle_), problem);
        if (code != ExitCode::fine) {
            complain(terminal, problem);
        }
        Json documents = Json::array();
        for (const embedded::Module& module : host.modules()) {
            if (json_) {
                documents.push_back(module_json(module));
            } else {
                terminal.out << module_text(module, terminal.out_paint);
            }
        }
        if (json_) {
            terminal.out << Json{{"schema", kModulesSchema},
                                 {"exit_code", static_cast<int>(code)},
                                 {"modules", documents}}
                                .dump(2)
                         << '\n';
        }
        return code;
    }

  private:
    std::string bundle_;
    std::string host_ = kUsualHost;
    bool json_ = false;
};

}  // namespace

Verb modules_verb() {
    return {"modules",
            "list the input modules that the plug-in registers",
            {"Loads the plug-in as After Effects does and shows what it says about its input modules: name, "
             "signature, the extensions that they read, and their flags in words."},
            {{"vxr modules", "The modules of the plug-in that comes with this program."},
             {"vxr modules --json | jq -r '.modules[].extensions[]'", "Only the extensions, for a script."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<ModulesCommand>(); }};
}

}  // namespace cli
