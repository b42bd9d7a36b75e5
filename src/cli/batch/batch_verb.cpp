#include "cli/batch/batch_verb.h"

#include <algorithm>
#include <array>

#include "text/ascii.h"

namespace cli {
namespace {

constexpr const char* kScene = ".aec";
constexpr const char* kTexture = ".txl";

constexpr std::array kBatchVerbs{
    BatchVerb{"import", kScene, "--save", false},
    BatchVerb{"check", kScene, nullptr, false},
    BatchVerb{"relink", kScene, "-o", true},
    BatchVerb{"collect", kScene, "-o", true},
    BatchVerb{"export", kScene, "-o", true},
    BatchVerb{"preview", kScene, "-o", true},
    BatchVerb{"proof", kScene, nullptr, false},
    BatchVerb{"report", kScene, "-o", true},
    BatchVerb{"texture info", kTexture, nullptr, false},
    BatchVerb{"texture check", kTexture, nullptr, false},
    BatchVerb{"texture sheet", kTexture, "-o", true},
    BatchVerb{"texture convert", kTexture, "-o", true},
    BatchVerb{"frame", kTexture, "-o", true},
};

constexpr const char* kOneOutput = "every item would write there; out-dir and extension name the outputs";
constexpr const char* kInputs = "files, files-from, null and recursive name the inputs";
constexpr const char* kNoWork = "it does nothing with a file";

struct RefusedOption {
    std::string_view name;
    const char* reason;
};

constexpr std::array kRefused{
    RefusedOption{"--output", kOneOutput},
    RefusedOption{"-o", kOneOutput},
    RefusedOption{"--out-dir", kOneOutput},
    RefusedOption{"--save", kOneOutput},
    RefusedOption{"--to-dir", kOneOutput},
    RefusedOption{"--log", kOneOutput},
    RefusedOption{"--save-map", kOneOutput},
    RefusedOption{"--package", kOneOutput},
    RefusedOption{"--picture", kOneOutput},
    RefusedOption{"--for-after-effects", kOneOutput},
    RefusedOption{"--files-from", kInputs},
    RefusedOption{"--null", kInputs},
    RefusedOption{"-0", kInputs},
    RefusedOption{"--recursive", kInputs},
    RefusedOption{"-r", kInputs},
    RefusedOption{"--", kInputs},
    RefusedOption{"-", kInputs},
    RefusedOption{"--interactive", "nobody answers"},
    RefusedOption{"--list-codes", kNoWork},
    RefusedOption{"--list-corrections", kNoWork},
    RefusedOption{"--help", kNoWork},
    RefusedOption{"-h", kNoWork},
    RefusedOption{"--version", kNoWork},
};

}  // namespace

const BatchVerb* find_batch_verb(std::string_view name) {
    const auto* const found = std::find_if(kBatchVerbs.begin(), kBatchVerbs.end(),
                                           [name](const BatchVerb& verb) { return verb.name == name; });
    return found == kBatchVerbs.end() ? nullptr : &*found;
}

std::vector<std::string> batch_verb_names() {
    std::vector<std::string> names;
    names.reserve(kBatchVerbs.size());
    for (const BatchVerb& verb : kBatchVerbs) {
        names.emplace_back(verb.name);
    }
    return names;
}

std::string refused_batch_option(std::string_view word) {
    if (!word.starts_with('-')) {
        return {};
    }
    const bool is_long = word.starts_with("--");
    const std::string_view name = is_long ? word.substr(0, word.find('=')) : word;
    for (const RefusedOption& refused : kRefused) {
        // "-qr" is "-q -r", and "-ofile" is "-o file".
        const bool among_letters = !is_long && word.size() > 2 && text::is_letter(word[1]) &&
                                   refused.name.size() == 2 && refused.name != "--" &&
                                   word.find(refused.name[1], 1) != std::string_view::npos;
        if (name == refused.name || among_letters) {
            return refused.reason;
        }
    }
    return {};
}

}  // namespace cli
