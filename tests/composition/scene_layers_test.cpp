// Cameras, lights and nulls: what each kind of layer gets besides timing and transform, which
// scene_object_add_test.cpp tests. For the expected doubles, see there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "composition/model/scene_object.h"
#include "composition/model_builder.h"
#include "host/suite_handler.h"
#include "support/recording_host.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

int add(RecordingHost& host, CSceneObject& object, A_long width = 720, A_long height = 576, A_long from = 0) {
    AEGP_SuiteHandler suites(host.basic());
    return object.Add(&suites, host.handle<AEGP_CompH>("comp"), width, height, 25, from, 99, 0, 0);
}

/// The calls after the shared part, which ends with the last of its disposals.
std::vector<std::string> calls_of_kind(const RecordingHost& host, std::size_t shared_streams = 3) {
    std::size_t disposed = 0;
    for (std::size_t i = 0; i < host.calls.size(); ++i) {
        if (host.calls[i].starts_with("DisposeStream(") && ++disposed == shared_streams) {
            return {host.calls.begin() + static_cast<std::ptrdiff_t>(i) + 1, host.calls.end()};
        }
    }
    return {};
}

// ---- cameras

TEST(CameraAdd, CreatesTransformsAndZooms) {
    RecordingHost host;
    CCamera camera;
    camera.name = owned_text("Cam");
    add_keys(camera, {{.frame = 10, .fov = 40}, {.frame = 20, .fov = 90}});
    EXPECT_EQ(add(host, camera, 720, 577, 10), 1);
    EXPECT_EQ(host.calls.front(), "CreateCameraInComp(\"Cam\", (360, 288), comp) -> camera1");
    EXPECT_EQ(host.calls[1], "GetNewLayerStream(7, camera1, 1) -> camera1/position");
    EXPECT_EQ(host.name_of(camera.layerH), "camera1");
    EXPECT_THAT(
        calls_of_kind(host),
        ElementsAre(
            "GetNewLayerStream(7, camera1, 11) -> camera1/zoom",
            "SetStreamValue(7, camera1/zoom, [989.0918710036641])",  // the first key's, before any key
            "StartAddKeyframes(camera1/zoom) -> keys(camera1/zoom)",
            "AddKeyframes(keys(camera1/zoom), 0, 0@25)",
            "SetAddKeyframe(keys(camera1/zoom), #0, [989.0918710036641])",
            "AddKeyframes(keys(camera1/zoom), 0, 10@25)",
            "SetAddKeyframe(keys(camera1/zoom), #1, [360.00000000000006])",
            "EndAddKeyframes(1, keys(camera1/zoom))", "DisposeStream(camera1/zoom)"));
    EXPECT_THAT(host.left_open(), IsEmpty());
}

TEST(CameraAdd, ZoomIsExactToTheLastBit) {
    const struct {
        const char* why;
        A_long width;
        float fov;
        const char* zoom;
    } cases[] = {
        {"a right angle", 640, 90, "320.00000000000006"},
        {"an odd width is not halved as an integer", 721, 55.5F, "685.1977964146413"},
        {"nearly flat", 1, 179.9F, "0.000436359055391949"},
        {"negative", 1920, -30, "-3582.7687752661222"},
        {"no angle at all: infinitely far, and nothing guards against it", 640, 0, "inf"},
        {"no view from below", 640, -0.0F, "-inf"},
    };
    for (const auto& c : cases) {
        RecordingHost host;
        CCamera camera;
        add_keys(camera, {{.fov = c.fov}});
        EXPECT_EQ(add(host, camera, c.width), 1);
        EXPECT_THAT(
            calls_of_kind(host),
            ::testing::Contains(std::string("SetAddKeyframe(keys(camera1/zoom), #0, [") + c.zoom + "])"))
            << c.why;
    }
}

TEST(CameraAdd, WithoutKeysSetsNoValue) {
    RecordingHost host;
    CCamera camera;
    EXPECT_EQ(add(host, camera), 1);
    EXPECT_THAT(calls_of_kind(host),
                ElementsAre("GetNewLayerStream(7, camera1, 11) -> camera1/zoom",
                            "StartAddKeyframes(camera1/zoom) -> keys(camera1/zoom)",
                            "EndAddKeyframes(1, keys(camera1/zoom))", "DisposeStream(camera1/zoom)"));
}

TEST(CameraAdd, FailingKeysEndTheTrackEarlyWithoutFailure) {
    // The shared part adds two keys to each of three tracks, so the zoom's are the seventh and eighth.
    const struct {
        const char* function;
        int nth;
        std::size_t zoom_keys_begun;
    } cases[] = {
        {"AddKeyframes", 7, 1}, {"SetAddKeyframe", 7, 1}, {"AddKeyframes", 8, 2}, {"SetAddKeyframe", 8, 2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.function) + " " + std::to_string(c.nth));
        RecordingHost host;
        host.fail(c.function, 5, c.nth);
        CCamera camera;
        add_keys(camera, {{.frame = 1, .fov = 40}, {.frame = 2, .fov = 40}});
        EXPECT_EQ(add(host, camera), 1);
        EXPECT_EQ(host.calls_of({"AddKeyframes"}).size(), 6 + c.zoom_keys_begun);
        EXPECT_THAT(host.calls_of({"EndAddKeyframes"}).back(), "EndAddKeyframes(1, keys(camera1/zoom))");
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
}

TEST(CameraAdd, EveryOtherFailingCallIsAFailureAndLeavesNothingOpen) {
    const auto run = [](RecordingHost& host) {
        CCamera camera;
        add_keys(camera, {{.frame = 1, .fov = 40}});
        return add(host, camera);
    };
    std::vector<std::string> clean;
    {
        RecordingHost host;
        ASSERT_EQ(run(host), 1);
        for (const std::string& line : host.calls) {
            if (!line.starts_with("cos(") && !line.starts_with("sin(")) {
                clean.push_back(line);
            }
        }
    }
    ASSERT_EQ(clean.size(), 26U);
    for (std::size_t failing = 1; failing <= clean.size(); ++failing) {
        const std::string& line = clean[failing - 1];
        SCOPED_TRACE(line);
        RecordingHost host;
        host.fail_call(static_cast<int>(failing), 5);
        const bool zoom_key = line.find("Keyframe") != std::string::npos &&
                              line.find("/zoom)") != std::string::npos && !line.starts_with("Start") &&
                              !line.starts_with("End");
        EXPECT_EQ(run(host), zoom_key ? 1 : 0);
        EXPECT_THAT(host.left_open(), IsEmpty());
        EXPECT_THAT(host.reports, IsEmpty());
    }
}

TEST(CameraAdd, SuccessWithoutAHandleIsAFailure) {
    {
        RecordingHost host;
        host.yield_nothing("CreateCameraInComp");
        CCamera camera;
        EXPECT_EQ(add(host, camera), 0);
        EXPECT_EQ(host.calls.size(), 1U);
    }
    {
        RecordingHost host;
        host.yield_nothing("GetNewLayerStream", 4);  // the zoom
        CCamera camera;
        EXPECT_EQ(add(host, camera), 0);
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
    {
        RecordingHost host;
        host.yield_nothing("GetNewLayerStream", 1);  // no transform is no failure, and the zoom still comes
        CCamera camera;
        EXPECT_EQ(add(host, camera), 1);
        EXPECT_THAT(host.calls, ::testing::Contains("GetNewLayerStream(7, camera1, 11) -> camera1/zoom"));
    }
}

// ---- lights

TEST(LightAdd, CreatesTransformsAndSetsTheLight) {
    RecordingHost host;
    CLight light;
    light.name = owned_text("Key light");
    light.lightType = kLightSpot;
    light.shadowType = kShadowSoft;
    light.color[0] = 1.0F;
    light.color[1] = 0.9F;
    light.color[2] = 0.1F;
    light.intensity = 1.2F;
    light.coneAngle = 45.0F;
    EXPECT_EQ(add(host, light, 721, 1), 1);
    EXPECT_EQ(host.calls.front(), "CreateLightInComp(\"Key light\", (360, 0), comp) -> light1");
    EXPECT_EQ(host.name_of(light.layerH), "light1");
    EXPECT_THAT(
        calls_of_kind(host),
        ElementsAre("SetLightType(light1, 1)", "GetNewLayerStream(7, light1, 17) -> light1/color",
                    "SetStreamValue(7, light1/color, [1, 1, 0.8999999761581421, 0.10000000149011612])",
                    "DisposeStream(light1/color)", "GetNewLayerStream(7, light1, 16) -> light1/intensity",
                    "SetStreamValue(7, light1/intensity, [120.00000762939453])",
                    "DisposeStream(light1/intensity)", "GetNewLayerStream(7, light1, 28) -> light1/shadows",
                    "SetStreamValue(7, light1/shadows, [1])", "DisposeStream(light1/shadows)",
                    // the cone angle is fetched and disposed of; it keeps the host's value
                    "GetNewLayerStream(7, light1, 18) -> light1/coneangle",
                    "DisposeStream(light1/coneangle)"));
    EXPECT_THAT(host.left_open(), IsEmpty());
}

TEST(LightAdd, TypesShadowsAndIntensity) {
    const struct {
        const char* why;
        A_long type;
        A_long shadow;
        float intensity;
        const char* host_type;
        const char* host_shadow;
        const char* host_intensity;
    } cases[] = {
        {"OMNI, NONE", kLightOmni, kShadowNone, 0.5F, "2", "0", "50"},
        {"SPOT, SOFT", kLightSpot, kShadowSoft, 1.0F, "1", "1", "100"},
        {"PAR, HARD; 0.7F * 100 is 70 in single precision", kLightParallel, kShadowHard, 0.7F, "0", "1",
         "70"},
        {"PSPOT, AREA", kLightParallelSpot, kShadowArea, 0.0F, "0", "1", "0"},
        {"TUBE", kLightTube, kShadowNone, -1.0F, "2", "0", "-100"},
        {"AREA", kLightArea, kShadowNone, 1.1F, "2", "0", "110"},
        {"negative", -1, kShadowNone, 1.0F, "2", "0", "100"},
        {"beyond the last", 6, -1, 1.0F, "2", "1", "100"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        RecordingHost host;
        CLight light;
        light.lightType = c.type;
        light.shadowType = c.shadow;
        light.intensity = c.intensity;
        EXPECT_EQ(add(host, light), 1);
        EXPECT_THAT(host.calls_of({"SetLightType"}),
                    ElementsAre(std::string("SetLightType(light1, ") + c.host_type + ")"));
        EXPECT_THAT(
            host.calls_of({"SetStreamValue"}),
            ElementsAre("SetStreamValue(7, light1/color, [1, 1, 1, 1])",
                        std::string("SetStreamValue(7, light1/intensity, [") + c.host_intensity + "])",
                        std::string("SetStreamValue(7, light1/shadows, [") + c.host_shadow + "])"));
        EXPECT_EQ(host.calls_of({"GetNewLayerStream"}).size(), c.type == kLightSpot ? 7U : 6U)
            << "only a spot has a cone";
    }
}

TEST(LightAdd, EveryFailingCallExceptTheTypeIsAFailure) {
    const auto run = [](RecordingHost& host) {
        CLight light;
        light.lightType = kLightSpot;
        add_keys(light, {{.frame = 1}});
        return add(host, light);
    };
    std::vector<std::string> clean;
    {
        RecordingHost host;
        ASSERT_EQ(run(host), 1);
        for (const std::string& line : host.calls) {
            if (!line.starts_with("cos(") && !line.starts_with("sin(")) {
                clean.push_back(line);
            }
        }
    }
    ASSERT_EQ(clean.size(), 31U);
    for (std::size_t failing = 1; failing <= clean.size(); ++failing) {
        SCOPED_TRACE(clean[failing - 1]);
        RecordingHost host;
        host.fail_call(static_cast<int>(failing), 5);
        EXPECT_EQ(run(host), clean[failing - 1].starts_with("SetLightType(") ? 1 : 0);
        EXPECT_THAT(host.left_open(), IsEmpty());
        EXPECT_THAT(host.reports, IsEmpty());
    }
}

TEST(LightAdd, EmptyStreamEndsTheStepsWithoutFailure) {
    for (int empty = 4; empty <= 7; ++empty) {  // after the three of the shared part
        RecordingHost host;
        host.yield_nothing("GetNewLayerStream", empty);
        CLight light;
        light.lightType = kLightSpot;
        EXPECT_EQ(add(host, light), 1);
        EXPECT_EQ(host.calls_of({"GetNewLayerStream"}).size(), static_cast<std::size_t>(empty));
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
}

TEST(LightAdd, WithoutALayerFails) {
    RecordingHost host;
    host.yield_nothing("CreateLightInComp");
    CLight light;
    EXPECT_EQ(add(host, light), 0);
    EXPECT_EQ(host.calls.size(), 1U);
}

// ---- nulls

TEST(NullAdd, CreatesA3DLayerAndTransforms) {
    RecordingHost host;
    CNull null_object;
    null_object.isNull = 1;
    null_object.name = owned_text("Target");
    EXPECT_EQ(add(host, null_object), 1);
    ASSERT_GE(host.calls.size(), 3U);
    EXPECT_EQ(host.calls[0], "CreateNullInComp(\"Target\", comp, null) -> null1");
    EXPECT_EQ(host.calls[1], "SetLayerFlag(null1, 2048, 1)");
    EXPECT_EQ(host.calls[2], "GetNewLayerStream(7, null1, 1) -> null1/position");
    EXPECT_THAT(calls_of_kind(host, 4), IsEmpty()) << "nothing comes after the transform";
    EXPECT_EQ(host.name_of(null_object.layerH), "null1");
}

TEST(NullAdd, OnlyTheFlagMayFail) {
    {
        RecordingHost host;
        host.fail("SetLayerFlag", 5);
        CNull null_object;
        null_object.isNull = 1;
        EXPECT_EQ(add(host, null_object), 1);
        EXPECT_EQ(host.calls_of({"GetNewLayerStream"}).size(), 4U);
    }
    {
        RecordingHost host;
        host.fail("CreateNullInComp", 5);
        CNull null_object;
        EXPECT_EQ(add(host, null_object), 0);
        EXPECT_EQ(host.calls.size(), 1U);
    }
    {
        RecordingHost host;
        host.yield_nothing("CreateNullInComp");
        CNull null_object;
        EXPECT_EQ(add(host, null_object), 0);
        EXPECT_EQ(host.calls.size(), 1U);
    }
    {
        RecordingHost host;
        host.fail("EndAddKeyframes", 5);
        CNull null_object;
        null_object.isNull = 1;
        EXPECT_EQ(add(host, null_object), 0);
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
}

// ---- names

TEST(SceneLayerNames, AreTheObjectsNamesOrDefaults) {
    CCamera camera;
    CLight light;
    CNull null_object;
    const std::pair<CSceneObject*, const char*> objects[] = {
        {&camera, "Unknown camera"}, {&light, "Unknown light"}, {&null_object, "Unknown null"}};
    for (const auto& [object, name] : objects) {
        RecordingHost host;
        EXPECT_EQ(add(host, *object), 1);
        EXPECT_THAT(host.calls.front(), ::testing::HasSubstr(std::string("InComp(\"") + name + "\", "));
        object->name = owned_text("");
        EXPECT_EQ(add(host, *object), 1);
        EXPECT_EQ(host.calls_of({"CreateCameraInComp", "CreateLightInComp", "CreateNullInComp"}).size(), 2U);
        EXPECT_THAT(host.calls_of({"CreateCameraInComp", "CreateLightInComp", "CreateNullInComp"}).back(),
                    ::testing::HasSubstr("InComp(\"\", "))
            << "an empty name is a name";
    }
}

}  // namespace
