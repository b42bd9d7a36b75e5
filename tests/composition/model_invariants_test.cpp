// Models that were read hold every invariant; each broken model breaks exactly one.

#include "composition/model/model_invariants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>

#include "composition/model/scene_object.h"
#include "composition/model_builder.h"
#include "composition/parsed_text.h"
#include "limit/limits.h"
#include "support/changed_value.h"
#include "support/file_content.h"

namespace {

/// Root with footage and a composition with footage; top-level footage; a camera, a light and a null.
struct Model {
    tagProjectSettings settings;
    CComposition& root = settings.composition;
    CFileItem* plate = nullptr;
    CCompoChild* plate_child = nullptr;
    CComposition* inner = nullptr;
    CCompoChild* inner_child = nullptr;
    CFileItem* shadow = nullptr;
    CFileItem* loose = nullptr;
    CCompoChild* loose_child = nullptr;
    CCamera* camera = nullptr;
    CLight* light = nullptr;
    CNull* null = nullptr;

    Model() {
        settings.width = settings.height = settings.range = settings.fps = 1;
        fill(&root, "Main");
        plate = &fill(root.AddFile(), "plate.tif");
        inner = &fill(root.AddComposition(), "Inner");
        shadow = &fill(inner->AddFile(), "shadow.tif");
        plate_child = root.children.First();
        inner_child = root.children.Next(plate_child);
        loose_child = new CCompoChild;
        loose = &fill(loose_child->CreateFile(), "loose.tif");
        settings.files.AddAtTail(loose_child);
        camera = &added(new CCamera);
        light = &added(new CLight);
        null = &added(new CNull);
        null->isNull = 1;
        add_keys(*camera, {Key{1, {}, {}, 45.0F, 10.0F}, Key{2}});
        add_keys(*null, {Key{1}, Key{2}});
    }

    [[nodiscard]] std::optional<std::string> violation(ModelState state = ModelState::complete) const {
        return validate_model(settings, state);
    }

  private:
    template <class Object>
    Object& added(Object* object) {
        object->name = owned_text("object");
        settings.objects.AddAtHead(object);
        return *object;
    }
};

struct Case {
    const char* name;
    const char* violation;
    Undo (*break_it)(Model&);
    bool complete_only = false;  // allowed in a model whose reading broke off
};

AEGP_ItemH some_item() {
    static int item = 0;
    return reinterpret_cast<AEGP_ItemH>(&item);
}

const Case kCases[] = {
    {"no width", "settings: width or height is below 1",
     [](Model& m) { return changed(m.settings.width, 0); }, true},
    {"no height", "settings: width or height is below 1",
     [](Model& m) { return changed(m.settings.height, 0); }, true},
    {"a negative first frame", "settings: from or to is below 0",
     [](Model& m) { return changed(m.settings.from, -1); }, true},
    {"a negative last frame", "settings: from or to is below 0",
     [](Model& m) { return changed(m.settings.to, -1); }, true},
    {"no frames", "settings: range or frame rate is below 1",
     [](Model& m) { return changed(m.settings.range, 0); }, true},
    {"no frame rate", "settings: range or frame rate is below 1",
     [](Model& m) { return changed(m.settings.fps, 0); }, true},
    {"an aspect below the least", "settings: the pixel aspect is not from 0.01 to 100",
     [](Model& m) { return changed(m.settings.aspect, 0.009F); }, true},
    {"an aspect above the most", "settings: the pixel aspect is not from 0.01 to 100",
     [](Model& m) { return changed(m.settings.aspect, 100.1F); }, true},
    {"an aspect that is not a number", "settings: the pixel aspect is not from 0.01 to 100",
     [](Model& m) { return changed(m.settings.aspect, std::numeric_limits<float>::quiet_NaN()); }, true},
    {"a flag that is neither 0 nor 1", "settings: local 2 is not between 0 and 1",
     [](Model& m) { return changed(m.settings.local, 2); }},
    {"an unknown order of fields", "settings: fields 3 is not between 0 and 2",
     [](Model& m) { return changed(m.settings.fields, 3); }},
    {"a first folder without its composition",
     "settings: only one of the first folder and the first composition is set",
     [](Model& m) { return changed(m.settings.firstFolder, some_item()); }},
    {"a composition without a name", "root, entry 2: it has no name",
     [](Model& m) { return changed(m.inner->name, nullptr); }, true},
    {"an unknown blend mode of a composition", "root, entry 2: blend mode 3 is not between 0 and 2",
     [](Model& m) { return changed(m.inner->blendMode, 3); }},
    {"an unused handle that is set", "root, entry 2: the unused handle is set",
     [](Model& m) { return changed(m.inner->itemH, some_item()); }},
    {"a root with a parent", "root: the parent is not the enclosing composition",
     [](Model& m) { return changed(m.root.parent, m.inner); }},
    {"an orphan", "root, entry 2: the parent is not the enclosing composition",
     [](Model& m) { return changed(m.inner->parent, nullptr); }},
    {"a composition inside itself", "root, entry 2: the composition is in two places",
     [](Model& m) { return changed(m.inner_child->item.composition, &m.root); }},
    {"an entry of an unknown kind", "root, entry 2: kind 2 is not between 0 and 1",
     [](Model& m) { return changed(m.inner_child->type, 2); }},
    {"an entry without a composition", "root, entry 2: it has no composition",
     [](Model& m) { return changed(m.inner_child->item.composition, nullptr); }},
    {"an entry without footage", "root, entry 1: it has no footage",
     [](Model& m) { return changed(m.plate_child->item.file, nullptr); }},
    {"footage without a path", "root, entry 2, entry 1: it has no path",
     [](Model& m) { return changed(m.shadow->path, nullptr); }, true},
    {"an unknown blend mode of footage", "root, entry 1: blend mode -1 is not between 0 and 2",
     [](Model& m) { return changed(m.plate->blendMode, -1); }},
    {"an unknown alpha mode", "root, entry 1: alpha mode 2 is not between 0 and 1",
     [](Model& m) { return changed(m.plate->alphaMode, 2); }},
    {"an unknown kind of sequence", "root, entry 1: sequence 2 is not between 0 and 1",
     [](Model& m) { return changed(m.plate->isSequence, 2); }},
    {"something before the list", "root: the list continues beyond its ends",
     [](Model& m) { return changed(m.root.children.head.prev, m.plate_child); }},
    {"something after the list", "root: the list continues beyond its ends",
     [](Model& m) { return changed(m.root.children.tail.next, m.plate_child); }},
    {"a list that is cut off", "root: the list ends before node 2",
     [](Model& m) { return changed(m.plate_child->next, nullptr); }},
    {"a list that is a circle", "root: node 2 links back to another node",
     [](Model& m) { return changed(m.plate_child->next, m.plate_child); }},
    {"a count that is too small", "root: the list has more nodes than its count of 1",
     [](Model& m) { return changed(m.root.children.count, 1); }},
    {"a count that is too large", "root: the list has fewer nodes than its count of 3",
     [](Model& m) { return changed(m.root.children.count, 3); }},
    {"a missing backward link", "root: node 2 links back to another node",
     [](Model& m) { return changed(m.inner_child->prev, nullptr); }},
    {"a tail that links elsewhere", "root: the end of the list links back to another node",
     [](Model& m) { return changed(m.root.children.tail.prev, m.plate_child); }},
    {"top-level footage that is a composition", "top-level footage 1: it is not footage",
     [](Model& m) { return changed(m.loose_child->type, kChildComposition); }},
    {"top-level footage that is missing", "top-level footage 1: it is not footage",
     [](Model& m) { return changed(m.loose_child->item.file, nullptr); }},
    {"top-level footage with a blend mode",
     "top-level footage 1: it has a blend mode, which the file cannot give it",
     [](Model& m) { return changed(m.loose->blendMode, kBlendAdd); }},
    {"top-level footage with an unknown alpha mode",
     "top-level footage 1: alpha mode 2 is not between 0 and 1",
     [](Model& m) { return changed(m.loose->alphaMode, 2); }},
    {"top-level footage with an empty path", "top-level footage 1: the path is empty",
     [](Model& m) { return changed(m.loose->path[0], '\0'); }},
    {"an object without a name", "object 1: it has no name",
     [](Model& m) { return changed(m.null->name, nullptr); }, true},
    {"an object that links back to the one before it", "objects: node 2 links back to another node",
     [](Model& m) { return changed(m.light->prev, m.null); }},
    {"a tail of the objects that links back to the last one",
     "objects: the end of the list links back to another node",
     [](Model& m) { return changed(m.settings.objects.tail.prev, m.camera); }},
    {"a null whose isNull is 0", "object 1: isNull does not match its class",
     [](Model& m) { return changed(m.null->isNull, 0); }},
    {"a camera whose isNull is 1", "object 3: isNull does not match its class",
     [](Model& m) { return changed(m.camera->isNull, 1); }},
    {"an unknown kind of light", "object 2: kind of light 6 is not between 0 and 5",
     [](Model& m) { return changed(m.light->lightType, 6); }},
    {"an unknown kind of shadow", "object 2: kind of shadow 4 is not between 0 and 3",
     [](Model& m) { return changed(m.light->shadowType, 4); }},
    {"a negative count of keys", "object 2: -1 keys, but the array of keys says otherwise",
     [](Model& m) { return changed(m.light->keyCount, -1); }},
    {"a count without an array of keys", "object 2: 1 keys, but the array of keys says otherwise",
     [](Model& m) { return changed(m.light->keyCount, 1); }},
    {"an array of keys with a count of 0", "object 1: 0 keys, but the array of keys says otherwise",
     [](Model& m) { return changed(m.null->keyCount, 0); }},
    {"a missing key", "object 1: key 2 is missing",
     [](Model& m) { return changed(m.null->keys[1], nullptr); }},
    {"a key that is listed twice", "two records own the same memory",
     [](Model& m) { return changed(m.null->keys[1], m.null->keys[0]); }},
    {"a name with two owners", "two records own the same memory",
     [](Model& m) { return changed(m.null->name, m.camera->name); }},
    {"a field of view without a camera", "object 1: key 1 has values that only cameras have",
     [](Model& m) { return changed(m.null->keys[0]->fov, 1.0F); }},
    {"a target distance without a camera", "object 1: key 1 has values that only cameras have",
     [](Model& m) { return changed(m.null->keys[0]->targetDistance, 1.0F); }},
};

TEST(ModelInvariants, ValidModel) {
    const Model model;
    EXPECT_EQ(model.violation(), std::nullopt);
    EXPECT_EQ(model.violation(ModelState::broken_off), std::nullopt);
}

TEST(ModelInvariants, EveryInvariantAlone) {
    for (const Case& broken : kCases) {
        SCOPED_TRACE(broken.name);
        Model model;
        const Undo restore = broken.break_it(model);
        EXPECT_EQ(model.violation(), broken.violation);
        EXPECT_EQ(model.violation(ModelState::broken_off).has_value(), !broken.complete_only);
        restore();
        EXPECT_EQ(model.violation(), std::nullopt);
    }
}

TEST(ModelInvariants, ObjectOfTheBaseClass) {
    Model model;
    CSceneObject* const object = new CSceneObject;
    object->name = owned_text("object");
    model.settings.objects.AddAtHead(object);
    EXPECT_EQ(model.violation(), "object 1: it is not a camera, light or null");
}

TEST(ModelInvariants, DeepestNestingAndOneLevelDeeper) {
    tagProjectSettings settings;
    CComposition* at = &settings.composition;
    for (A_long level = 1; level < limits::kCompositionNesting.value; ++level) {
        at = at->AddComposition();
    }
    EXPECT_EQ(validate_model(settings, ModelState::broken_off), std::nullopt);
    at->AddComposition();
    const std::optional<std::string> found = validate_model(settings, ModelState::broken_off);
    ASSERT_TRUE(found.has_value());
    EXPECT_NE(found->find(", entry 1: it is nested more than 1024 levels deep"), std::string::npos);
}

TEST(ModelInvariants, EveryModelThatIsRead) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VXR_EXAMPLES_DIR)) {
        if (entry.path().extension() != ".aec") {
            continue;
        }
        SCOPED_TRACE(entry.path());
        const std::string text = content_of(entry.path());
        const ReadText whole(text);
        ASSERT_EQ(whole.result, 1);
        EXPECT_EQ(validate_model(whole.settings, ModelState::complete), std::nullopt);
        // Wherever the file is cut, what was read up to there is valid.
        const std::size_t step = 1 + text.size() / 12;
        for (std::size_t size = 1; size < text.size(); size += step) {
            const ReadText cut(text.substr(0, size));
            EXPECT_EQ(
                validate_model(cut.settings, cut.result != 0 ? ModelState::complete : ModelState::broken_off),
                std::nullopt)
                << "cut after " << size << " bytes";
        }
        ++count;
    }
    EXPECT_GE(count, 4U);
}

}  // namespace
