#include "cli/scene/scene_check.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "cli/scene/written_number.h"
#include "composition/build/host_values.h"

namespace cli {
namespace {

constexpr std::size_t kNameBytes = 31;  // what the host keeps of a name

void check_changes(const SceneReading& reading, WarningList& warnings) {
    for (const SceneChange& change : reading.facts.changes) {
        Diagnostic& warning =
            warnings.add(ToolCode::value_changed, change.first.at,
                         "the number \"" + change.first.text + "\" after " + change.keyword + " is read as " +
                             number_text(change.first.kept),
                         change.within);
        warning.count = change.count;
        if (change.count > 1) {
            warning.effects.push_back("in this block " + std::to_string(change.count) + " numbers after " +
                                      change.keyword + " are changed; this is the first");
        }
    }
}

void check_aspect(const SceneReading& reading, WarningList& warnings) {
    const SceneKeyword* const aspect = find_keyword(reading.facts.settings, "ASPECT");
    if (aspect == nullptr || aspect->values.empty()) {
        return;
    }
    // Out of range it is the error's to explain, and no ratio can be made of it.
    if (!(reading.numbers.aspect >= 0.01F && reading.numbers.aspect <= 100.0F)) {
        return;
    }
    const SceneValue& value = aspect->values.front();
    const A_Ratio ratio = pixel_aspect_ratio(reading.numbers.aspect);
    // What the value is short of a hundredth in single precision is no loss.
    constexpr double kNoLoss = 1e-5;
    if (std::abs(value.kept * ratio.den - ratio.num) > kNoLoss * ratio.den) {
        warnings.add(ToolCode::aspect_cut, value.at,
                     "the pixel aspect " + value.text + " becomes " + std::to_string(ratio.num) + "/" +
                         std::to_string(ratio.den),
                     {});
    }
}

void check_range(const SceneReading& reading, WarningList& warnings) {
    // A setting that is missing, or its number, is the error's to explain: nothing can be compared with it.
    const auto read_setting = [&](std::string_view word) {
        const SceneKeyword* const setting = find_keyword(reading.facts.settings, word);
        return setting != nullptr && !setting->values.empty() ? setting : nullptr;
    };
    const SceneKeyword* const to = read_setting("TO");
    const SceneKeyword* const range = read_setting("RANGE");
    if (read_setting("FROM") == nullptr || to == nullptr || range == nullptr) {
        return;
    }
    const SceneNumbers& numbers = reading.numbers;
    if (numbers.length() < 1) {
        warnings
            .add(ToolCode::range_reversed, to->at,
                 "TO " + std::to_string(numbers.to) + " is before FROM " + std::to_string(numbers.from), {})
            .effects.push_back("layers and placeholders get a length of " + std::to_string(numbers.length()) +
                               " frames, which a host may refuse");
        return;
    }
    const std::int64_t end = (numbers.local ? numbers.from : 0) + numbers.length();
    if (end > numbers.range) {
        warnings
            .add(ToolCode::layer_past_end, range->at,
                 "the composition has " + std::to_string(numbers.range) +
                     " frames, and its layers end at frame " + std::to_string(end),
                 {})
            .effects.push_back("the last " + std::to_string(end - numbers.range) +
                               " frames of the layers are behind the composition's end");
    }
}

void check_names(const SceneReading& reading, WarningList& warnings) {
    for (const auto* const list : {&reading.facts.compositions, &reading.facts.objects}) {
        for (const SceneBlock& block : *list) {
            if (block.name.size() > kNameBytes) {
                warnings.add(ToolCode::name_cut, block.name_at,
                             "the name has " + std::to_string(block.name.size()) +
                                 " bytes; the host keeps \"" + kept_name(block.name) + '"',
                             {});
            }
        }
    }
}

}  // namespace

std::string kept_name(std::string_view name) {
    return std::string(name.substr(0, kNameBytes));
}

void check_settings(const SceneReading& reading, WarningList& warnings) {
    check_changes(reading, warnings);
    check_aspect(reading, warnings);
    check_range(reading, warnings);
    check_names(reading, warnings);
    for (const ScenePassed& passed : reading.facts.passed) {
        warnings.add(ToolCode::word_ignored, passed.at, "\"" + passed.text + "\" is passed over",
                     passed.within);
    }
    if (reading.facts.ignored_from) {
        warnings.add(ToolCode::text_after_end, *reading.facts.ignored_from,
                     "the file ends here; the text from here on is ignored", {});
    }
}

void check_lights(const SceneReading& reading, WarningList& warnings) {
    for (const SceneBlock& object : reading.facts.objects) {
        for (const SceneKeyword& entry : object.entries) {
            if (entry.values.empty()) {
                continue;
            }
            const SceneValue& value = entry.values.front();
            if (entry.word == "ANGLE") {
                warnings
                    .add(ToolCode::angle_not_sent, entry.at,
                         "the angle " + value.text + " does not reach the host", object.within)
                    .effects.emplace_back("the light keeps the host's own cone angle");
            } else if (entry.word == "SHADOW" && value.text != "NONE") {
                warnings
                    .add(ToolCode::shadow_kind_not_sent, value.at,
                         "the kind of shadow " + value.text + " does not reach the host", object.within)
                    .effects.emplace_back("the light casts shadows of the host's own kind");
            } else if (entry.word == "TYPE" && (value.text == "TUBE" || value.text == "AREA")) {
                warnings
                    .add(ToolCode::light_kind_changed, value.at,
                         "the host has no lights of the kind " + value.text, object.within)
                    .effects.emplace_back("it becomes a point light");
            } else if (entry.word == "TYPE" && value.text == "PSPOT") {
                warnings
                    .add(ToolCode::light_kind_changed, value.at, "the host has no lights of the kind PSPOT",
                         object.within)
                    .effects.emplace_back("it becomes a parallel light");
            }
        }
    }
}

std::vector<Diagnostic> scene_warnings(const SceneReading& reading) {
    WarningList warnings(reading);
    check_settings(reading, warnings);
    check_lights(reading, warnings);
    check_keys(reading, warnings);
    check_footage(reading, warnings);
    return warnings.finish();
}

}  // namespace cli
