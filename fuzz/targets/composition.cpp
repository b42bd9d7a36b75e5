// Reads a composition file three times: as the plug-in does, with an observer of every token, and with an
// observer of whole keys. All three must read the same model.

#include <string_view>

#include "check.h"
#include "composition/model/model_invariants.h"
#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "composition/read/read_observer.h"
#include "input.h"
#include "model_text.h"

const std::size_t kOptionBytes = 0;

namespace {

class Listener final : public ReadObserver {
  public:
    explicit Listener(bool whole_keys) : whole_keys_(whole_keys) {}
    [[nodiscard]] bool takes_plain_keys() const override { return whole_keys_; }
    void on_failure(const diagnostic::Diagnostic& error) override {
        ++errors_;
        const std::size_t found = error.reason.find(", found ");
        require(error.reason.starts_with("expected ") && found != std::string::npos &&
                    found > std::string_view("expected ").size() &&
                    found + std::string_view(", found ").size() < error.reason.size(),
                "an error says what was expected and found");
    }
    [[nodiscard]] int errors() const { return errors_; }

  private:
    bool whole_keys_;
    int errors_ = 0;
};

std::string read(const std::string& path, Listener* listener) {
    tagProjectSettings settings;
    ASCIIParser p;
    p.SetObserver(listener);
    const bool complete =
        p.Init(Filename(path.c_str()), 1, 0) == 0 && read_composition_file(p, settings) != 0;
    require_sound(validate_model(settings, complete ? ModelState::complete : ModelState::broken_off));
    require(listener == nullptr || listener->errors() == (complete ? 0 : 1), "a failure is told, once");
    return (complete ? "read " : "refused ") + model_text(settings) + std::to_string(p.line);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = scratch().write("scene.aec", Input(data, size).rest_text());
    Listener every_token(false);
    Listener whole_keys(true);
    const std::string as_the_plugin = read(path, nullptr);
    require(as_the_plugin == read(path, &every_token), "who listens changes nothing");
    require(as_the_plugin == read(path, &whole_keys), "keys taken as a whole are the same keys");
    return 0;
}
