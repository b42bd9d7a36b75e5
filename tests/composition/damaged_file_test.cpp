// One small file that uses every construct, read with too little memory and with too little stack. The result
// is a refusal or a sound model; the sanitizers of the development build watch the rest. tests/ladder cuts
// and changes the same file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "composition/parsed_text.h"
#include "composition/read/composition_file.h"
#include "composition/recording_observer.h"
#include "composition/refused_memory.h"
#include "support/small_stack.h"

namespace {

const std::string kSmallFile =
    "VORTAN XR COMPOSITION RESOLUTION 7 5 FROM 0 TO 9 RANGE 10 FPS 25 ASPECT 1.5 FIELDS ODD LOCAL\n"
    "COMPOSITION NRM \"M$\"\" { / c\n FILE ADD PREMUL \"a.tif\"\n COMPOSITION MUL \"N\" { } }\r\n"
    "FSEQ <-> STRAIGHT \"a-path-of-more-than-twenty-bytes.tif\"\n"
    "CAMERA \"C\" { KEY 0 1 2 3 4 5 6 40 KEY 1 1 2 3 4 5 6 40 900 }\n"
    "LIGHT \"L\" { TYPE SPOT SHADOW HARD COLOR 1 1 1 INTENSITY 2 ANGLE 3 KEY 0 1 2 3 4 5 6 }\n"
    "NULL \"a name that is longer than fifty characters, so that it grows\" { KEY 0 1 2 3 4 5 6 }\n";

void check_children(CDoubleLinkedList<CCompoChild>& children, const CComposition* parent, bool whole) {
    const std::vector<CCompoChild*> nodes = nodes_of(children);
    ASSERT_EQ(nodes.size(), static_cast<std::size_t>(children.count));
    for (const CCompoChild* const child : nodes) {
        if (child->type == kChildComposition) {
            CComposition& nested = *child->item.composition;
            EXPECT_EQ(nested.parent, parent);
            EXPECT_TRUE(!whole || nested.name != nullptr);
            check_children(nested.children, &nested, whole);
        } else {
            const CFileItem& file = *child->item.file;
            EXPECT_TRUE(file.isSequence == 0 || file.isSequence == 1);
            EXPECT_TRUE(!whole || parent == nullptr || file.path != nullptr);
            EXPECT_TRUE(file.path == nullptr || std::strlen(file.path) > 0);
        }
    }
}

// Visits every node, number and text of a model. A complete one has everything that a file must have.
void check_model(tagProjectSettings& settings, bool whole) {
    if (whole) {
        EXPECT_GT(settings.width, 0);
        EXPECT_GT(settings.height, 0);
        EXPECT_GE(settings.from, 0);
        EXPECT_GE(settings.to, 0);
        EXPECT_GT(settings.range, 0);
        EXPECT_GT(settings.fps, 0);
        EXPECT_GE(settings.aspect, 0.01F);
        EXPECT_LE(settings.aspect, 100.0F);
        EXPECT_NE(settings.composition.name, nullptr);
    }
    check_children(settings.composition.children, &settings.composition, whole);
    check_children(settings.files, nullptr, whole);
    ASSERT_EQ(nodes_of(settings.objects).size(), static_cast<std::size_t>(settings.objects.count));
    for (const CSceneObject* const object : nodes_of(settings.objects)) {
        EXPECT_TRUE(!whole || object->name != nullptr);
        for (A_long i = 0; i < object->keyCount; ++i) {
            const tagKeyFrame& key = *object->keys[i];
            EXPECT_EQ(key.targetDistance, key.targetDistance) << "no number of a file is NaN";
        }
    }
}

TEST(DamagedFile, EveryAllocationRefused) {
    const TemporaryFolder folder;
    const std::string path = folder.write("shot.aec", kSmallFile);
    const auto read = [&](long first_refused) {
        auto settings = std::make_unique<tagProjectSettings>();
        int result = 0;
        {
            const RefusedMemory refused(first_refused);
            ASCIIParser p;
            result = p.Init(Filename(path.c_str()), 1, 0) == 0 ? read_composition_file(p, *settings) : 0;
        }
        check_model(*settings, result == 1);
        return result;
    };
    ASSERT_EQ(read(1000000), 1);
    const long asked = RefusedMemory::asked();
    ASSERT_GT(asked, 30) << "the operators of this program were not used";
    int accepted = 0;
    for (long first_refused = 0; first_refused < asked; ++first_refused) {
        SCOPED_TRACE(first_refused);
        accepted += read(first_refused);
    }
    EXPECT_EQ(accepted, 0);
}

TEST(DamagedFile, ObserverLearnsOfRefusedAllocations) {
    const TemporaryFolder folder;
    const std::string path = folder.write("shot.aec", kSmallFile);
    std::vector<diagnostic::Code> codes;
    for (long first_refused = 0; first_refused < 200; ++first_refused) {
        RecordingObserver observer;
        tagProjectSettings settings;
        const RefusedMemory refused(first_refused);
        ASCIIParser p;
        p.SetObserver(&observer);
        if (p.Init(Filename(path.c_str()), 1, 0) == 0) {
            read_composition_file(p, settings);
        }
        if (!observer.errors.empty()) {
            codes.push_back(observer.errors[0].code);
        }
    }
    EXPECT_THAT(codes, testing::Contains(diagnostic::Code(ReadErrorCode::out_of_memory)));
}

std::string nested(int levels) {
    std::string text = file_with("");
    for (int i = 0; i < levels; ++i) {
        text += "COMPOSITION NRM \"level\" { FILE NRM PREMUL \"x\"\n";
    }
    for (int i = 0; i < levels; ++i) {
        text += "}";
    }
    return text + "\n";
}

// Everything that one import needs, kept off the measured stack.
struct DeepRead {
    explicit DeepRead(std::string file_path) : path(std::move(file_path)) {}

    std::string path;
    ASCIIParser p;
    std::optional<tagProjectSettings> settings{std::in_place};
    int result = -1;
};

void read_deep(DeepRead& deep) {
    if (deep.p.Init(Filename(deep.path.c_str()), 1, 0) == 0) {
        deep.result = read_composition_file(deep.p, *deep.settings);
    }
    deep.settings.reset();
}

// Reads and deletes the deepest tree on a thread with little stack.
TEST(DamagedFile, NestingNeedsLittleStack) {
    const TemporaryFolder folder;
    const std::pair<int, int> cases[] = {{1024, 1}, {1025, 0}, {100000, 0}};
    for (const auto& [levels, result] : cases) {
        const auto deep = std::make_unique<DeepRead>(folder.write("shot.aec", nested(levels)));
        run_on_small_stack([&] { read_deep(*deep); });
        EXPECT_EQ(deep->result, result) << levels;
    }
}

}  // namespace
