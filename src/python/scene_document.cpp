#include "python/scene_document.h"

#include <array>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include "cli/report/diagnostic_json.h"
#include "composition/model/composition.h"
#include "composition/model/scene_object.h"
#include "embedded/json_values.h"

namespace python {
namespace {

using embedded::Json;
using embedded::json_number;
using embedded::json_text;

// The words of the classes' attributes, in the order of the model's enumerations.
constexpr std::array kBlendWords{"normal", "add", "multiply"};
constexpr std::array kAlphaWords{"premultiplied", "straight"};
constexpr std::array kFieldWords{"none", "even", "odd"};
constexpr std::array kLightWords{"omni", "spot", "parallel", "parallel-spot", "tube", "area"};
constexpr std::array kShadowWords{"none", "soft", "hard", "area"};

template <std::size_t kCount>
const char* word_of(const std::array<const char*, kCount>& words, A_long value) {
    return words.at(static_cast<std::size_t>(value));
}

Json text_or_null(const char* text) {
    return text == nullptr ? Json() : json_text(text);
}

Json finding_json(const cli::Finding& finding) {
    Json candidates = Json::array();
    for (const cli::FootageCandidate& candidate : finding.candidates) {
        candidates.push_back(json_text(candidate.path));
    }
    return Json{{"outcome", cli::label(finding.outcome)},
                {"rule", finding.is_found() ? Json(cli::label(finding.rule)) : Json()},
                {"path", finding.is_found() ? json_text(finding.path) : Json()},
                {"candidates", candidates}};
}

// The footage of a scene, and what was found for the entries whose path could be read.
Json footage_json(const cli::SceneReading& reading, const std::vector<cli::SoughtFootage>& sought) {
    Json list = Json::array();
    auto next = sought.begin();
    for (const cli::SceneFootage& footage : reading.facts.footage) {
        Json entry{
            {"written", footage.problem ? Json() : json_text(footage.written)},
            {"is_sequence", footage.file->isSequence != 0},
            {"top_level", footage.top_level},
            {"blend", footage.top_level ? Json() : Json(word_of(kBlendWords, footage.file->blendMode))},
            {"alpha", word_of(kAlphaWords, footage.file->alphaMode)},
            {"line", footage.path_at.line},
            {"column", footage.path_at.column},
            {"finding", Json()}};
        if (next != sought.end() && next->at.offset_bytes == footage.path_at.offset_bytes) {
            entry["finding"] = finding_json(next->finding);
            ++next;
        }
        list.push_back(std::move(entry));
    }
    return list;
}

// The entries of a composition by their places in the lists of the scene.
Json compositions_json(const cli::SceneReading& reading) {
    std::unordered_map<const CComposition*, std::size_t> place_of;
    for (const cli::SceneBlock& block : reading.facts.compositions) {
        place_of.emplace(block.composition, place_of.size());
    }
    std::unordered_map<const CFileItem*, std::size_t> footage_of;
    for (const cli::SceneFootage& footage : reading.facts.footage) {
        footage_of.emplace(footage.file, footage_of.size());
    }
    Json list = Json::array();
    for (const cli::SceneBlock& block : reading.facts.compositions) {
        Json entries = Json::array();
        auto& children =
            const_cast<CComposition*>(block.composition)->children;  // the list has no other way through
        for (CCompoChild* child = children.First(); child != nullptr; child = children.Next(child)) {
            const bool nested = child->type == kChildComposition;
            entries.push_back(nested ? Json{{"composition", place_of.at(child->item.composition)}}
                                     : Json{{"footage", footage_of.at(child->item.file)}});
        }
        const CComposition* const parent = block.composition->parent;
        list.push_back(Json{{"name", text_or_null(block.composition->name)},
                            {"blend", word_of(kBlendWords, block.composition->blendMode)},
                            {"parent", parent == nullptr ? Json() : Json(place_of.at(parent))},
                            {"entries", entries},
                            {"line", block.name_at.line},
                            {"column", block.name_at.column}});
    }
    return list;
}

Json objects_json(const cli::SceneReading& reading) {
    Json list = Json::array();
    for (const cli::SceneBlock& block : reading.facts.objects) {
        Json object{{"kind", block_word(block.kind)},
                    {"name", text_or_null(block.object->name)},
                    {"line", block.name_at.line},
                    {"column", block.name_at.column}};
        if (block.kind == BlockKind::light) {
            const auto& light = static_cast<const CLight&>(*block.object);
            object["type"] = word_of(kLightWords, light.lightType);
            object["shadow"] = word_of(kShadowWords, light.shadowType);
            object["color"] = Json::array(
                {json_number(light.color[0]), json_number(light.color[1]), json_number(light.color[2])});
            object["intensity"] = json_number(light.intensity);
            object["cone_angle"] = json_number(light.coneAngle);
        }
        list.push_back(std::move(object));
    }
    return list;
}

}  // namespace

Json scene_json(const cli::SceneReading& reading, const std::vector<cli::SoughtFootage>& sought) {
    const tagProjectSettings& settings = *reading.settings;
    return Json{{"path", json_text(reading.full_path)},
                {"width", settings.width},
                {"height", settings.height},
                {"first_frame", settings.from},
                {"last_frame", settings.to},
                {"frame_range", settings.range},
                {"fps", settings.fps},
                {"pixel_aspect", json_number(settings.aspect)},
                {"local", settings.local != 0},
                {"fields", word_of(kFieldWords, settings.fields)},
                {"compositions", compositions_json(reading)},
                {"footage", footage_json(reading, sought)},
                {"objects", objects_json(reading)}};
}

}  // namespace python
