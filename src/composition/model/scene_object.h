#pragma once

#include "composition/model/double_linked_list.h"
#include "host/host_interface.h"

class AEGP_SuiteHandler;
class ASCIIParser;

inline constexpr float kDefaultTargetDistance = 1000.0F;

/// One keyframe, exactly as written; units are those of the exporting application.
struct tagKeyFrame {
    A_long frame = 0;        ///< on the scene's timeline
    float rotation[3] = {};  ///< degrees, in the order written; 5th to 7th value of a KEY line
    float position[3] = {};  ///< x, y, z; 2nd to 4th value
    float fov = 0;           ///< degrees, horizontal; cameras only
    float targetDistance = kDefaultTargetDistance;  ///< along the view direction; cameras only, optional
};

/// A camera, light or null of the scene: a name and a track of keyframes. The base class itself only serves
/// as the sentinel of the list of objects.
class CSceneObject : public CListItem {
  public:
    CSceneObject() = default;
    ~CSceneObject() override;

    // The order of these two is the order of the slots.
    /// Adds the object to `comp` as a layer. This base operation is the shared second half: it places
    /// `layerH`, which has been created, in time (when `setTimes` is not 0; offset by `from` when `local` is
    /// not 0) and adds its transform keyframes. `width`, `height` in pixels; `fps` frames per second; `from`
    /// and `to` in frames. Returns 1 for success and 0 for failure, not a host error code.
    virtual int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps,
                    A_long from, A_long to, int setTimes, int local);
    /// Reads the block that follows the word CAMERA, LIGHT or NULL, up to and including its closing brace.
    /// Returns 1, or 0 on the first failure; what was read until then stays in the object. The base class
    /// cannot be read: always 0.
    virtual int Load(ASCIIParser& p);

    /// Appends a new keyframe and returns it, owned by this object; null when out of memory, with `keys`
    /// unchanged. Deliberately grows `keys` by one slot per call: the array is always exactly `keyCount`
    /// long, whatever a failure leaves behind.
    tagKeyFrame* AddKeyframe();
    /// Appends a keyframe, stores it in `*out` and reads its seven numbers: frame, position, rotation.
    /// Returns 1, or 0 at the first token that is not a number; the keyframe stays.
    int LoadAndAddKeyframe(ASCIIParser& p, tagKeyFrame** out);

    tagKeyFrame** keys =
        nullptr;           ///< the keyframes in file order, neither sorted nor checked; owned, from realloc
    char* name = nullptr;  ///< from array-new, owned; may be empty
    A_long keyCount = 0;
    AEGP_LayerH layerH = nullptr;  ///< the host's layer, once added
    A_long isNull = 0;             ///< 1 for a CNull; set by Load
};

/// A camera: keyframes with a field of view and a target distance each.
class CCamera : public CSceneObject {
  public:
    int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps, A_long from,
            A_long to, int setTimes, int local) override;
    int Load(ASCIIParser& p) override;

    float zoom = 30.0F;  ///< no word of the file sets it; the layer's zoom comes from the keys
};

/// Words after TYPE: the values of CLight::lightType.
enum LightKind : A_long {
    kLightOmni = 0,
    kLightSpot = 1,
    kLightParallel = 2,
    kLightParallelSpot = 3,
    kLightTube = 4,
    kLightArea = 5,
};
/// Words after SHADOW: the values of CLight::shadowType.
enum ShadowKind : A_long { kShadowNone = 0, kShadowSoft = 1, kShadowHard = 2, kShadowArea = 3 };

/// A light: kind, shadow, colour, intensity and cone angle, which do not change over time, and keyframes.
class CLight : public CSceneObject {
  public:
    int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps, A_long from,
            A_long to, int setTimes, int local) override;
    int Load(ASCIIParser& p) override;

    A_long lightType = kLightOmni;
    A_long shadowType = kShadowNone;
    float color[3] = {1.0F, 1.0F, 1.0F};  ///< red, green, blue; usually 0 to 1, not checked
    float intensity = 1.0F;
    float coneAngle = 30.0F;  ///< degrees
};

/// A null: keyframes and nothing else.
class CNull : public CSceneObject {
  public:
    int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps, A_long from,
            A_long to, int setTimes, int local) override;
    int Load(ASCIIParser& p) override;
};
