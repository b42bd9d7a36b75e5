#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "composition/model_builder.h"
#include "host/suite_handler.h"
#include "support/recording_host.h"

// scene_values.py computed the expected doubles below, independently of the code and of the C library; they
// have enough digits to give back the same bits.

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct Scene {
    A_long fps = 25;
    A_long from = 0;
    A_long to = 99;
    int set_times = 0;
    int local = 0;
};

int add(RecordingHost& host, CSceneObject& object, const Scene& scene = {}) {
    AEGP_SuiteHandler suites(host.basic());
    object.layerH = host.handle<AEGP_LayerH>("layer");
    return object.CSceneObject::Add(&suites, host.handle<AEGP_CompH>("comp"), 720, 576, scene.fps, scene.from,
                                    scene.to, scene.set_times, scene.local);
}

std::vector<std::string> values_of(const RecordingHost& host) {
    return host.calls_of({"SetAddKeyframe"});
}

TEST(SceneObjectAdd, CameraOrLightGetsThreeTracks) {
    RecordingHost host;
    CSceneObject object;
    add_keys(object, {{.frame = 10, .position = {0, 100, 0}}, {.frame = 5, .rotation = {90, 0, 7}}});
    EXPECT_EQ(add(host, object, {.from = 10, .to = 59, .set_times = 1, .local = 1}), 1);
    const std::string expected[] = {
        "SetLayerOffset(layer, 10@25)",
        "SetLayerInPointAndDuration(layer, 0, 0@25, 50@25)",
        "GetNewLayerStream(7, layer, 1) -> layer/position",
        "GetNewLayerStream(7, layer, 10) -> layer/orientation",
        "GetNewLayerStream(7, layer, 0) -> layer/anchor",
        "StartAddKeyframes(layer/position) -> keys(layer/position)",
        "StartAddKeyframes(layer/orientation) -> keys(layer/orientation)",
        "StartAddKeyframes(layer/anchor) -> keys(layer/anchor)",
        // the first frame is the layer's time 0
        "AddKeyframes(keys(layer/position), 0, 0@25)",
        "AddKeyframes(keys(layer/orientation), 0, 0@25)",
        "AddKeyframes(keys(layer/anchor), 0, 0@25)",
        "cos(0)",
        "sin(0)",
        "sin(0)",
        "cos(0)",
        "cos(0)",
        "SetAddKeyframe(keys(layer/position), #0, [0, -100, 0])",
        "SetAddKeyframe(keys(layer/anchor), #0, [0, -100, 1000])",
        "SetAddKeyframe(keys(layer/orientation), #0, [0, 0, 0])",
        // an earlier key has a negative time; 90 degrees are the double nearest to pi / 2
        "AddKeyframes(keys(layer/position), 0, -5@25)",
        "AddKeyframes(keys(layer/orientation), 0, -5@25)",
        "AddKeyframes(keys(layer/anchor), 0, -5@25)",
        "cos(0)",
        "sin(1.5707963267948966)",
        "sin(0)",
        "cos(0)",
        "cos(1.5707963267948966)",
        "SetAddKeyframe(keys(layer/position), #1, [0, 0, 0])",
        "SetAddKeyframe(keys(layer/anchor), #1, [-1000, 0, 6.123233995736766e-14])",
        "SetAddKeyframe(keys(layer/orientation), #1, [0, 0, 7])",
        "EndAddKeyframes(1, keys(layer/position))",
        "EndAddKeyframes(1, keys(layer/orientation))",
        "EndAddKeyframes(1, keys(layer/anchor))",
        "DisposeStream(layer/position)",
        "DisposeStream(layer/orientation)",
        "DisposeStream(layer/anchor)",
    };
    EXPECT_THAT(host.calls, ElementsAreArray(expected));
    EXPECT_THAT(host.left_open(), IsEmpty());
}

TEST(SceneObjectAdd, NullGetsFourTracks) {
    RecordingHost host;
    CSceneObject object;
    object.isNull = 1;
    add_keys(object, {{.frame = 3, .position = {1, 2, 3}, .rotation = {10, 20, 30}}});
    EXPECT_EQ(add(host, object), 1);
    const std::string expected[] = {
        "GetNewLayerStream(7, layer, 1) -> layer/position",
        "GetNewLayerStream(7, layer, 9) -> layer/yrotation",
        "GetNewLayerStream(7, layer, 8) -> layer/xrotation",
        "GetNewLayerStream(7, layer, 3) -> layer/zrotation",
        "StartAddKeyframes(layer/position) -> keys(layer/position)",
        "StartAddKeyframes(layer/yrotation) -> keys(layer/yrotation)",
        "StartAddKeyframes(layer/xrotation) -> keys(layer/xrotation)",
        "StartAddKeyframes(layer/zrotation) -> keys(layer/zrotation)",
        "AddKeyframes(keys(layer/position), 0, 3@25)",
        "AddKeyframes(keys(layer/yrotation), 0, 3@25)",
        "AddKeyframes(keys(layer/xrotation), 0, 3@25)",
        "AddKeyframes(keys(layer/zrotation), 0, 3@25)",
        "SetAddKeyframe(keys(layer/position), #0, [1, -2, 3])",
        "SetAddKeyframe(keys(layer/xrotation), #0, [10])",
        "SetAddKeyframe(keys(layer/yrotation), #0, [-20])",
        "SetAddKeyframe(keys(layer/zrotation), #0, [30])",
        "EndAddKeyframes(1, keys(layer/position))",
        "EndAddKeyframes(1, keys(layer/yrotation))",
        "EndAddKeyframes(1, keys(layer/xrotation))",
        "EndAddKeyframes(1, keys(layer/zrotation))",
        "DisposeStream(layer/position)",
        "DisposeStream(layer/yrotation)",
        "DisposeStream(layer/xrotation)",
        "DisposeStream(layer/zrotation)",
    };
    EXPECT_THAT(host.calls, ElementsAreArray(expected));
    EXPECT_THAT(host.left_open(), IsEmpty());
}

TEST(SceneObjectAdd, ViewValuesAreExactToTheLastBit) {
    const struct {
        const char* why;
        Key key;
        const char* position;
        const char* point_of_interest;
        const char* orientation;
    } cases[] = {
        {"looking ahead", {.position = {0, 100, 0}}, "[0, -100, 0]", "[0, -100, 1000]", "[0, 0, 0]"},
        {"turned left",
         {.rotation = {90, 0, 0}},
         "[0, 0, 0]",
         "[-1000, 0, 6.123233995736766e-14]",
         "[0, 0, 0]"},
        {"looking up",
         {.rotation = {0, 90, 0}},
         "[0, 0, 0]",
         "[0, -1000, 6.123233995736766e-14]",
         "[0, 0, 0]"},
        {"anywhere",
         {.position = {12.5F, -340.25F, 77.1F},
          .rotation = {33.3F, -12.7F, 5.5F},
          .target_distance = 812.75F},
         "[12.5, 340.25, 77.0999984741211]",
         "[-422.8013527354904, 518.9299999483574, 739.7829938988621]",
         "[0, 0, 5.5]"},
        {"near and far",
         {.position = {-250.4F, 1.1F, -9000}, .rotation = {-200.5F, 61, -3}, .target_distance = 0.1F},
         "[-250.39999389648438, -1.100000023841858, -9000]",
         "[-250.41697228748896, -1.1874619958590824, -9000.045410769513]",
         "[0, 0, -3]"},
        {"more than a full turn",
         {.rotation = {720, 0, 0}, .target_distance = 1e6F},
         "[0, 0, 0]",
         "[4.898587196589413e-10, 0, 1e+06]",
         "[0, 0, 0]"},
        {"x and y lose the sign of a negative 0, z and bank keep it",
         {.position = {-0.0F, -0.0F, -0.0F}, .rotation = {0, 0, -0.0F}, .target_distance = 0},
         "[0, 0, -0]",
         "[0, 0, 0]",
         "[0, 0, -0]"},
    };
    for (const auto& c : cases) {
        RecordingHost host;
        CSceneObject object;
        add_keys(object, {c.key});
        EXPECT_EQ(add(host, object), 1);
        EXPECT_THAT(
            values_of(host),
            ElementsAre(std::string("SetAddKeyframe(keys(layer/position), #0, ") + c.position + ")",
                        std::string("SetAddKeyframe(keys(layer/anchor), #0, ") + c.point_of_interest + ")",
                        std::string("SetAddKeyframe(keys(layer/orientation), #0, ") + c.orientation + ")"))
            << c.why;
    }
}

TEST(SceneObjectAdd, NullValuesAreExactToTheLastBit) {
    RecordingHost host;
    CSceneObject object;
    object.isNull = 1;
    add_keys(object, {{.position = {0.1F, 33.3F, 0.9F}, .rotation = {0.1F, 33.3F, -0.9F}}, {}});
    EXPECT_EQ(add(host, object), 1);
    EXPECT_THAT(
        values_of(host),
        ElementsAre("SetAddKeyframe(keys(layer/position), #0, [0.10000000149011612, -33.29999923706055, "
                    "0.8999999761581421])",
                    "SetAddKeyframe(keys(layer/xrotation), #0, [0.10000000149011612])",
                    "SetAddKeyframe(keys(layer/yrotation), #0, [-33.29999923706055])",
                    "SetAddKeyframe(keys(layer/zrotation), #0, [-0.8999999761581421])",
                    "SetAddKeyframe(keys(layer/position), #1, [0, 0, 0])",
                    "SetAddKeyframe(keys(layer/xrotation), #1, [0])",
                    "SetAddKeyframe(keys(layer/yrotation), #1, [-0])",  // deliberate, see SetNullKey
                    "SetAddKeyframe(keys(layer/zrotation), #1, [0])"));
}

TEST(SceneObjectAdd, WithoutKeysStartsAndEndsTheTracksWithoutMathematics) {
    RecordingHost host;
    host.withhold_suite("PF ANSI Suite", 1);
    CSceneObject object;
    EXPECT_EQ(add(host, object), 1);
    EXPECT_EQ(host.calls_of({"StartAddKeyframes"}).size(), 3U);
    EXPECT_EQ(host.calls_of({"EndAddKeyframes"}).size(), 3U);
    EXPECT_THAT(host.calls_of({"AddKeyframes", "SetAddKeyframe"}), IsEmpty());
    EXPECT_THAT(host.left_open(), IsEmpty());
}

TEST(SceneObjectAdd, TimingIsOptionalAndOffsetOnlyWhenLocal) {
    const struct {
        Scene scene;
        std::vector<std::string> calls;
    } cases[] = {
        {{.from = 10, .to = 59}, {}},
        {{.from = 10, .to = 59, .set_times = 1},
         {"SetLayerOffset(layer, 0@25)", "SetLayerInPointAndDuration(layer, 0, 0@25, 50@25)"}},
        {{.from = 10, .to = 59, .set_times = 1, .local = 1},
         {"SetLayerOffset(layer, 10@25)", "SetLayerInPointAndDuration(layer, 0, 0@25, 50@25)"}},
        {{.fps = 1, .from = 0, .to = 2147483647, .set_times = 1},
         {"SetLayerOffset(layer, 0@1)", "SetLayerInPointAndDuration(layer, 0, 0@1, 2147483647@1)"}},
    };
    for (const auto& c : cases) {
        RecordingHost host;
        CSceneObject object;
        EXPECT_EQ(add(host, object, c.scene), 1);
        EXPECT_EQ(host.calls_of({"SetLayerOffset", "SetLayerInPointAndDuration"}), c.calls);
    }
}

TEST(SceneObjectAdd, KeyTimesAreClampedTo32Bits) {
    RecordingHost host;
    CSceneObject object;
    object.isNull = 1;
    add_keys(object, {{.frame = -2147483647}});
    EXPECT_EQ(add(host, object, {.from = 10}), 1);
    EXPECT_EQ(host.calls_of({"AddKeyframes"}).front(),
              "AddKeyframes(keys(layer/position), 0, -2147483648@25)");
}

TEST(SceneObjectAdd, EveryFailingCallStopsAndDisposesOfTheStreams) {
    for (const A_long is_null : {0, 1}) {
        const auto run = [&](RecordingHost& host) {
            CSceneObject object;
            object.isNull = is_null;
            add_keys(object, {{.frame = 1}, {.frame = 2}});
            return add(host, object, {.set_times = 1});
        };
        std::vector<std::string> clean;
        int calls = 0;
        {
            RecordingHost host;
            ASSERT_EQ(run(host), 1);
            clean = host.calls;
            calls = host.call_count();
        }
        ASSERT_EQ(calls, is_null != 0 ? 34 : 26);

        for (int failing = 1; failing <= calls; ++failing) {
            RecordingHost host;
            host.fail_call(failing, 5);
            EXPECT_EQ(run(host), 0);
            // Expected: the clean run up to the failing call, then disposals of the streams fetched so far,
            // in the order of fetching. At the normal end the disposals continue after one that fails.
            std::vector<std::string> expected;
            std::vector<std::string> fetched;
            int counted = 0;
            for (const std::string& line : clean) {
                expected.push_back(line);
                if (line.starts_with("cos(") || line.starts_with("sin(")) {
                    continue;
                }
                if (++counted == failing) {
                    break;
                }
                if (line.starts_with("GetNewLayerStream(")) {
                    fetched.push_back("DisposeStream(" + line.substr(line.find("-> ") + 3) + ")");
                }
                if (line.starts_with("DisposeStream(")) {
                    fetched.erase(fetched.begin());
                }
            }
            std::string& last = expected.back();
            SCOPED_TRACE(last);
            if (last.starts_with("DisposeStream(")) {
                fetched.erase(fetched.begin());
            }
            last = last.substr(0, last.find(" -> ")) + " = 5";
            expected.insert(expected.end(), fetched.begin(), fetched.end());
            EXPECT_EQ(host.calls, expected);
            EXPECT_THAT(host.left_open(), IsEmpty());
        }
    }
}

TEST(SceneObjectAdd, EmptyStreamEndsTheWorkWithoutFailure) {
    for (const int empty : {1, 2, 3}) {
        RecordingHost host;
        host.yield_nothing("GetNewLayerStream", empty);
        CSceneObject object;
        add_keys(object, {{.frame = 1}});
        EXPECT_EQ(add(host, object), 1);
        EXPECT_EQ(host.calls_of({"GetNewLayerStream"}).size(), static_cast<std::size_t>(empty));
        EXPECT_EQ(host.calls_of({"DisposeStream"}).size(), static_cast<std::size_t>(empty - 1));
        EXPECT_THAT(host.calls_of({"StartAddKeyframes"}), IsEmpty());
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
}

TEST(SceneObjectAdd, AdditionsWithoutAHandleAreAFailure) {
    RecordingHost host;
    host.yield_nothing("StartAddKeyframes", 2);
    CSceneObject object;
    EXPECT_EQ(add(host, object), 0);
    EXPECT_EQ(host.calls_of({"DisposeStream"}).size(), 3U);
}

TEST(SceneObjectAdd, MissingSuiteStillDisposesOfTheStreams) {
    const std::pair<const char*, A_long> suites[] = {{"AEGP Keyframe Suite", 3}, {"PF ANSI Suite", 1}};
    for (const auto& [name, version] : suites) {
        RecordingHost host;
        host.withhold_suite(name, version);
        CSceneObject object;
        add_keys(object, {{.frame = 1}});
        EXPECT_THROW(add(host, object), long) << name;
        EXPECT_EQ(host.calls_of({"DisposeStream"}).size(), 3U) << name;
        EXPECT_THAT(host.left_open(), IsEmpty()) << name;
    }
}

}  // namespace
