#pragma once

#include <cstddef>

#include "composition/model/double_linked_list.h"
#include "host/host_interface.h"

class AEGP_SuiteHandler;
class ASCIIParser;
class ValueReader;
enum class BlockKind;

inline constexpr float kDefaultTargetDistance = 1000.0F;

/// Numbers behind a KEY of a light or a null: frame, position, rotation.
inline constexpr std::size_t kTransformNumbers = 7;
/// Numbers behind a KEY of a camera: a field of view besides, and a target distance that may be missing.
inline constexpr std::size_t kCameraNumbers = 8;
inline constexpr std::size_t kMostCameraNumbers = 9;

/// One keyframe, exactly as written; units are those of the exporting application.
struct tagKeyFrame {
    A_long frame = 0;        ///< on the scene's timeline
    float rotation[3] = {};  ///< degrees, in the order written; 5th to 7th value of a KEY line
    float position[3] = {};  ///< x, y, z; 2nd to 4th value
    float fov = 0;           ///< degrees, horizontal; cameras only
    float targetDistance = kDefaultTargetDistance;  ///< along the view direction; cameras only, optional
};

/// A camera, light or null of the scene: a name and a track of keyframes. The base itself only serves as a
/// sentinel of the list of objects.
class CSceneObject : public CListItem {
  public:
    CSceneObject() = default;
    ~CSceneObject() override;

    // The order of these two is the order of the slots.
    /// Adds the object to `comp` as a layer. This base operation is the shared second half: `layerH` has been
    /// created, and gets its place in time (when `setTimes` is not 0; offset by `from` when `local` is not 0)
    /// and its transform keyframes. `width`, `height` in pixels; `fps` frames a second; `from` and `to` in
    /// frames. Returns 1 for success and 0 for failure, not a host error code.
    virtual int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps,
                    A_long from, A_long to, int setTimes, int local);
    /// Reads the block that follows the word CAMERA, LIGHT or NULL, up to and with its closing brace. Returns
    /// 1, or 0 on the first failure; what was read until then stays in the object. The base cannot be read:
    /// always 0.
    virtual int Load(ASCIIParser& p);

    /// Appends a new keyframe and returns it, owned by this object; null when memory is short, `keys` being
    /// unchanged. Deliberately grows `keys` by one slot a call: the array is as long as `keyCount` at every
    /// moment, whatever a failure leaves behind (docs/performance.md has what that costs).
    tagKeyFrame* AddKeyframe();
    /// Appends a keyframe, stores it in `*out` and reads its seven numbers: frame, position, rotation.
    /// Returns 1, or 0 at the first token that is no number; the keyframe stays.
    int LoadAndAddKeyframe(ASCIIParser& p, tagKeyFrame** out);

    tagKeyFrame** keys = nullptr;  ///< the keyframes in file order, neither sorted nor checked; owned
    char* name = nullptr;          ///< from array-new, owned; may be empty
    A_long keyCount = 0;
    AEGP_LayerH layerH = nullptr;  ///< the host's layer, once added
    A_long isNull = 0;             ///< 1 for a CNull; set by Load

  protected:
    /// The beginning of every block: name and opening brace. Returns 1 or 0.
    int LoadHead(ASCIIParser& p, BlockKind kind);
    /// Reads entries of the word KEY and at least `least`, at most `most` numbers, as long as the fast reader
    /// takes them. Returns 1, or 0 when memory is short, KEY then being the current token.
    int LoadPlainKeys(ASCIIParser& p, std::size_t least, std::size_t most);
    /// LoadAndAddKeyframe behind a KEY that `values` has taken, so that a kind of object can read more of
    /// them.
    int LoadKeyValues(ASCIIParser& p, ValueReader& values, tagKeyFrame** out);
};
