#include "cli/scene/scene_check.h"

#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "cli/scene/value_effect.h"
#include "cli/scene/written_number.h"
#include "composition/build/host_values.h"

namespace cli {
namespace {

void check_changes(const SceneReading& reading, WarningList& warnings) {
    for (const SceneChange& change : reading.facts.changes) {
        Diagnostic& warning = warnings.add(ToolCode::value_changed, change.first.at,
                                           "the number \"" + change.first.text + "\" after " +
                                               change.keyword + " is read as " + shortest_text(change.kept),
                                           change.within);
        warning.count = change.count;
        std::string effect = change_effect(change, *reading.settings);
        if (!effect.empty()) {
            warning.effects.push_back(std::move(effect));
        }
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
    // An aspect out of range is an error already, and no ratio can be made of it.
    if (!(reading.settings->aspect >= 0.01F && reading.settings->aspect <= 100.0F)) {
        return;
    }
    const SceneValue& value = aspect->values.front();
    const A_Ratio ratio = pixel_aspect_ratio(reading.settings->aspect);
    // The rounding error of single precision does not count.
    constexpr double kNoLoss = 1e-5;
    if (std::abs(double{reading.settings->aspect} * ratio.den - ratio.num) > kNoLoss * ratio.den) {
        Diagnostic& warning = warnings.add(ToolCode::aspect_cut, value.at,
                                           "the pixel aspect " + value.text + " becomes " +
                                               std::to_string(ratio.num) + "/" + std::to_string(ratio.den),
                                           {});
        const double written_px = reading.settings->width * double{reading.settings->aspect};
        const double kept_px = static_cast<double>(reading.settings->width) * ratio.num / ratio.den;
        if (written_px > 0) {
            warning.effects.push_back("with square pixels the picture is shown " + measured_text(kept_px) +
                                      " pixels wide instead of " + measured_text(written_px) + ", which is " +
                                      measured_text((written_px - kept_px) / 2) +
                                      " pixels less on each side");
        }
    }
}

void check_range(const SceneReading& reading, WarningList& warnings) {
    // A missing setting or number is an error already, and there is nothing to compare.
    const auto read_setting = [&](std::string_view word) {
        const SceneKeyword* const setting = find_keyword(reading.facts.settings, word);
        return setting != nullptr && !setting->values.empty() ? setting : nullptr;
    };
    const SceneKeyword* const to = read_setting("TO");
    const SceneKeyword* const range = read_setting("RANGE");
    if (read_setting("FROM") == nullptr || to == nullptr || range == nullptr) {
        return;
    }
    const tagProjectSettings& settings = *reading.settings;
    const std::int64_t length = layer_length(settings);
    if (length < 1) {
        warnings
            .add(ToolCode::range_reversed, to->at,
                 "TO " + std::to_string(settings.to) + " is before FROM " + std::to_string(settings.from), {})
            .effects.push_back("layers and placeholders get a length of " + std::to_string(length) +
                               " frames, which After Effects may refuse");
        return;
    }
    const std::int64_t end = (settings.local != 0 ? settings.from : 0) + length;
    if (end > settings.range) {
        warnings
            .add(ToolCode::layer_past_end, range->at,
                 "the composition has " + std::to_string(settings.range) +
                     " frames, and its layers end at frame " + std::to_string(end),
                 {})
            .effects.push_back("the last " + std::to_string(end - settings.range) +
                               " frames of the layers are after the end of the composition");
    }
}

// What the host makes of a kind of light that it lacks; null for the kinds that it has.
const char* replacing_light(A_long kind) {
    switch (kind) {
        case kLightTube:
        case kLightArea:
            return "a point light";
        case kLightParallelSpot:
            return "a parallel light";
        default:
            return nullptr;
    }
}

void check_light(const SceneBlock& block, const CLight& light, WarningList& warnings) {
    for (const SceneKeyword& entry : block.entries) {
        if (entry.values.empty()) {
            continue;
        }
        const SceneValue& value = entry.values.front();
        if (entry.word == "ANGLE") {
            warnings
                .add(ToolCode::angle_not_sent, entry.at,
                     "the angle " + value.text + " does not reach After Effects", block.within)
                .effects.emplace_back("the light keeps the default cone angle of After Effects");
        } else if (entry.word == "SHADOW" && light.shadowType != kShadowNone) {
            warnings
                .add(ToolCode::shadow_kind_not_sent, value.at,
                     "the kind of shadow " + value.text + " does not reach After Effects", block.within)
                .effects.emplace_back("the light casts the only kind of shadow that After Effects has");
        } else if (entry.word == "TYPE" && replacing_light(light.lightType) != nullptr) {
            warnings
                .add(ToolCode::light_kind_changed, value.at,
                     "After Effects has no lights of the kind " + value.text, block.within)
                .effects.emplace_back(std::string("it becomes ") + replacing_light(light.lightType));
        }
    }
}

}  // namespace

void check_settings(const SceneReading& reading, WarningList& warnings) {
    check_changes(reading, warnings);
    check_aspect(reading, warnings);
    check_range(reading, warnings);
    for (const ScenePassed& passed : reading.facts.passed) {
        warnings.add(ToolCode::word_ignored, passed.at, "\"" + passed.text + "\" is skipped", passed.within);
    }
    if (reading.facts.ignored_from) {
        warnings.add(ToolCode::text_after_end, *reading.facts.ignored_from,
                     "the file ends here; the text from here on is ignored", {});
    }
}

void check_lights(const SceneReading& reading, WarningList& warnings) {
    for (const SceneBlock& object : reading.facts.objects) {
        if (object.kind == BlockKind::light) {
            check_light(object, static_cast<const CLight&>(*object.object), warnings);
        }
    }
}

std::vector<Diagnostic> scene_warnings(const SceneReading& reading) {
    FootageSurvey survey;
    return scene_warnings(reading, survey);
}

std::vector<Diagnostic> scene_warnings(const SceneReading& reading, FootageSurvey& survey) {
    WarningList warnings(reading);
    check_settings(reading, warnings);
    check_host_range(reading, warnings);
    check_names(reading, warnings);
    check_lights(reading, warnings);
    check_keys(reading, warnings);
    check_pixel_aspect(reading, warnings);
    check_footage(reading, survey, warnings);
    return warnings.finish();
}

}  // namespace cli
