#include "composition/model/model_invariants.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <unordered_set>
#include <vector>

#include "composition/model/composition.h"
#include "composition/model/project_settings.h"
#include "composition/model/scene_object.h"
#include "limit/limits.h"

namespace {

using Violation = std::optional<std::string>;

constexpr float kLeastAspect = 0.01F;
constexpr float kMostAspect = 100.0F;

/// Which end of a list its nodes were linked at.
enum class FilledAt { head, tail };

std::string value_text(const char* what, A_long value, A_long least, A_long most) {
    return std::string(what) + " " + std::to_string(value) + " is not between " + std::to_string(least) +
           " and " + std::to_string(most);
}

bool among(A_long value, A_long least, A_long most) {
    return value >= least && value <= most;
}

/// One check of a model.
class ModelWalk {
  public:
    ModelWalk(const tagProjectSettings& settings, ModelState state)
        : settings_(settings), complete_(state == ModelState::complete) {}

    Violation Run() {
        Violation found = Settings();
        if (!found) {
            found = Compositions();
        }
        if (!found) {
            found = TopLevelFootage();
        }
        if (!found) {
            found = Objects();
        }
        return found ? found : OwnedOnce();
    }

  private:
    /// A composition, checked or still to be checked, and its place in the tree.
    struct Place {
        const CComposition* composition;
        std::size_t above;   // index of its parent in places_; the root has its own
        std::int64_t entry;  // number in its parent, from 1
        A_long level;
    };

    [[nodiscard]] std::string PathOf(std::size_t place) const {
        std::vector<std::int64_t> entries;
        for (; place != 0; place = places_[place].above) {
            entries.push_back(places_[place].entry);
        }
        std::string path = "root";
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            path += ", entry " + std::to_string(*entry);
        }
        return path;
    }

    static Violation At(const std::string& place, const std::string& what) { return place + ": " + what; }

    /// Notes a block of memory that a record owns, so that a second owner is found.
    void Own(const void* block) {
        if (block != nullptr) {
            owned_.push_back(block);
        }
    }

    /// Reads a text to its end. Returns whether it exists and is not empty.
    bool HasText(const char* text) {
        Own(text);
        return text != nullptr && std::strlen(text) > 0;
    }

    Violation OwnedOnce() {
        std::sort(owned_.begin(), owned_.end(), std::less<>());
        const bool twice = std::adjacent_find(owned_.begin(), owned_.end()) != owned_.end();
        return twice ? Violation("two records own the same memory") : std::nullopt;
    }

    [[nodiscard]] Violation Settings() const {
        const auto wrong = [](const char* what) { return At("settings", what); };
        if (!among(settings_.local, 0, 1)) {
            return At("settings", value_text("local", settings_.local, 0, 1));
        }
        if (!among(settings_.fields, kFieldsNone, kFieldsOdd)) {
            return At("settings", value_text("fields", settings_.fields, kFieldsNone, kFieldsOdd));
        }
        if ((settings_.firstFolder == nullptr) != (settings_.firstCompItem == nullptr)) {
            return wrong("only one of the first folder and the first composition is set");
        }
        if (!complete_) {
            return std::nullopt;
        }
        if (settings_.width < 1 || settings_.height < 1) {
            return wrong("width or height is below 1");
        }
        if (settings_.from < 0 || settings_.to < 0) {
            return wrong("from or to is below 0");
        }
        if (settings_.range < 1 || settings_.fps < 1) {
            return wrong("range or frame rate is below 1");
        }
        const bool allowed = settings_.aspect >= kLeastAspect && settings_.aspect <= kMostAspect;
        return allowed ? std::nullopt : wrong("the pixel aspect is not from 0.01 to 100");
    }

    /// Follows the links of `list` and calls `visit` with every node and its number, from 1. `here` returns
    /// the list's place; it is called for a violation only, because the place of a deep composition is long.
    template <class T, class Here, class Visit>
    Violation List(const CDoubleLinkedList<T>& list, FilledAt end, const Here& here, Visit visit) {
        if (list.head.prev != nullptr || list.tail.next != nullptr) {
            return At(here(), "the list continues beyond its ends");
        }
        const CListItem* previous = &list.head;
        std::int64_t number = 0;
        for (const CListItem* node = list.head.next; node != &list.tail; node = node->next) {
            ++number;
            if (node == nullptr) {
                return At(here(), "the list ends before node " + std::to_string(number));
            }
            if (number > list.count) {
                return At(here(), "the list has more nodes than its count of " + std::to_string(list.count));
            }
            if (node->prev != (end == FilledAt::tail ? previous : &list.head)) {
                return At(here(), "node " + std::to_string(number) + " links back to another node");
            }
            Own(node);
            if (Violation found = visit(*static_cast<const T*>(node), number)) {
                return found;
            }
            previous = node;
        }
        if (number != list.count) {
            return At(here(), "the list has fewer nodes than its count of " + std::to_string(list.count));
        }
        if (list.tail.prev != (end == FilledAt::tail ? previous : &list.head)) {
            return At(here(), "the end of the list links back to another node");
        }
        return std::nullopt;
    }

    Violation Compositions() {
        places_.push_back({&settings_.composition, 0, 0, 1});
        std::unordered_set<const CComposition*> seen{&settings_.composition};
        for (std::size_t i = 0; i < places_.size(); ++i) {
            const Place at = places_[i];
            if (Violation found = Head(at, i)) {
                return found;
            }
            Violation found = List(
                at.composition->children, FilledAt::tail, [&] { return PathOf(i); },
                [&](const CCompoChild& child, std::int64_t entry) -> Violation {
                    if (Violation wrong = Child(child, i, entry)) {
                        return wrong;
                    }
                    if (child.type != kChildComposition) {
                        return std::nullopt;
                    }
                    places_.push_back({child.item.composition, i, entry, at.level + 1});
                    Own(child.item.composition);
                    return seen.insert(child.item.composition).second
                               ? std::nullopt
                               : At(PathOf(places_.size() - 1), "the composition is in two places");
                });
            if (found) {
                return found;
            }
        }
        return std::nullopt;
    }

    Violation Head(const Place& at, std::size_t place) {
        const CComposition& composition = *at.composition;
        const CComposition* const parent = place == 0 ? nullptr : places_[at.above].composition;
        if (composition.parent != parent) {
            return At(PathOf(place), "the parent is not the enclosing composition");
        }
        if (at.level > limits::kCompositionNesting.value) {
            return At(PathOf(place), "it is nested more than " +
                                         std::to_string(limits::kCompositionNesting.value) + " levels deep");
        }
        if (!among(composition.blendMode, kBlendNormal, kBlendMultiply)) {
            return At(PathOf(place),
                      value_text("blend mode", composition.blendMode, kBlendNormal, kBlendMultiply));
        }
        if (composition.itemH != nullptr) {
            return At(PathOf(place), "the unused handle is set");
        }
        HasText(composition.name);
        return complete_ && composition.name == nullptr ? At(PathOf(place), "it has no name") : std::nullopt;
    }

    Violation Child(const CCompoChild& child, std::size_t place, std::int64_t entry) {
        const auto here = [&] { return PathOf(place) + ", entry " + std::to_string(entry); };
        if (!among(child.type, kChildFile, kChildComposition)) {
            return At(here(), value_text("kind", child.type, kChildFile, kChildComposition));
        }
        if (child.type == kChildComposition) {
            return child.item.composition == nullptr ? At(here(), "it has no composition") : std::nullopt;
        }
        if (child.item.file == nullptr) {
            return At(here(), "it has no footage");
        }
        const bool has_path = HasText(child.item.file->path);
        return complete_ && !has_path ? At(here(), "it has no path") : File(*child.item.file, here);
    }

    template <class Here>
    Violation File(const CFileItem& file, const Here& here) {
        Own(&file);
        if (!among(file.blendMode, kBlendNormal, kBlendMultiply)) {
            return At(here(), value_text("blend mode", file.blendMode, kBlendNormal, kBlendMultiply));
        }
        if (!among(file.alphaMode, kAlphaPremultiplied, kAlphaStraight)) {
            return At(here(), value_text("alpha mode", file.alphaMode, kAlphaPremultiplied, kAlphaStraight));
        }
        return among(file.isSequence, 0, 1) ? std::nullopt
                                            : At(here(), value_text("sequence", file.isSequence, 0, 1));
    }

    Violation TopLevelFootage() {
        return List(
            settings_.files, FilledAt::tail, [] { return "top-level footage"; },
            [this](const CCompoChild& child, std::int64_t entry) -> Violation {
                const auto here = [entry] { return "top-level footage " + std::to_string(entry); };
                if (child.type != kChildFile || child.item.file == nullptr) {
                    return At(here(), "it is not footage");
                }
                const CFileItem& file = *child.item.file;
                // A path that could not be read is null, never empty.
                if (!HasText(file.path) && file.path != nullptr) {
                    return At(here(), "the path is empty");
                }
                return file.blendMode != kBlendNormal
                           ? At(here(), "it has a blend mode, which the file cannot give it")
                           : File(file, here);
            });
    }

    Violation Objects() {
        return List(
            settings_.objects, FilledAt::head, [] { return "objects"; },
            [this](const CSceneObject& object, std::int64_t number) -> Violation {
                const std::string here = "object " + std::to_string(number);
                if (Violation found = Kind(object, here)) {
                    return found;
                }
                HasText(object.name);
                if (complete_ && object.name == nullptr) {
                    return At(here, "it has no name");
                }
                return Keys(object, here);
            });
    }

    [[nodiscard]] Violation Kind(const CSceneObject& object, const std::string& here) const {
        const bool is_null = dynamic_cast<const CNull*>(&object) != nullptr;
        const auto* const light = dynamic_cast<const CLight*>(&object);
        if (light != nullptr && !among(light->lightType, kLightOmni, kLightArea)) {
            return At(here, value_text("kind of light", light->lightType, kLightOmni, kLightArea));
        }
        if (light != nullptr && !among(light->shadowType, kShadowNone, kShadowArea)) {
            return At(here, value_text("kind of shadow", light->shadowType, kShadowNone, kShadowArea));
        }
        if (!is_null && light == nullptr && dynamic_cast<const CCamera*>(&object) == nullptr) {
            return At(here, "it is not a camera, light or null");
        }
        return object.isNull == (is_null ? 1 : 0) ? std::nullopt
                                                  : At(here, "isNull does not match its class");
    }

    Violation Keys(const CSceneObject& object, const std::string& here) {
        if (object.keyCount < 0 || (object.keyCount > 0) != (object.keys != nullptr)) {
            return At(here, std::to_string(object.keyCount) + " keys, but the array of keys says otherwise");
        }
        Own(object.keys);
        const bool is_camera = dynamic_cast<const CCamera*>(&object) != nullptr;
        for (A_long i = 0; i < object.keyCount; ++i) {
            const tagKeyFrame* const key = object.keys[i];
            if (key == nullptr) {
                return At(here, "key " + std::to_string(i + 1) + " is missing");
            }
            Own(key);
            if (!is_camera && (key->fov != 0.0F || key->targetDistance != kDefaultTargetDistance)) {
                return At(here, "key " + std::to_string(i + 1) + " has values that only cameras have");
            }
        }
        return std::nullopt;
    }

    const tagProjectSettings& settings_;
    bool complete_;
    std::vector<Place> places_;  // breadth first
    std::vector<const void*> owned_;
};

}  // namespace

std::optional<std::string> validate_model(const tagProjectSettings& settings, ModelState state) {
    return ModelWalk(settings, state).Run();
}
