#include <algorithm>
#include <cstddef>
#include <span>

#include "composition/model/scene_object.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/plain_keys.h"
#include "composition/read/read_observer.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"

namespace {

/// How many numbers a KEY has: frame, position and rotation, and for cameras a field of view and a target
/// distance, which may be missing.
struct KeyNumbers {
    std::size_t least;
    std::size_t most;
};
constexpr KeyNumbers kTransformKey = {7, 7};
constexpr KeyNumbers kCameraKey = {8, 9};

/// What is different about the blocks of cameras, lights and nulls.
struct BlockRules {
    BlockKind kind;
    KeyNumbers key;
    const char* expected;  ///< what may be at the beginning of an entry
};

enum class EntryResult { read, failed, unknown };

EntryResult result_of(int read) {
    return read != 0 ? EntryResult::read : EntryResult::failed;
}

// A light's words. PAR is a kind of its own beside SPOT and PSPOT, and AREA is both a kind of light and a
// kind of shadow.
constexpr WordValue kLightWords[] = {{"OMNI", kLightOmni},    {"SPOT", kLightSpot},
                                     {"PAR", kLightParallel}, {"PSPOT", kLightParallelSpot},
                                     {"TUBE", kLightTube},    {"AREA", kLightArea}};
constexpr WordValue kShadowWords[] = {
    {"NONE", kShadowNone}, {"SOFT", kShadowSoft}, {"HARD", kShadowHard}, {"AREA", kShadowArea}};

int read_head(ASCIIParser& p, CSceneObject& object, BlockKind kind) {
    enter_block(p, kind, object);
    if (read_name(p, object.name) == 0) {
        return 0;
    }
    return p.nextsym(0) == kTokenOpenBrace ? 1
                                           : fail(p, ReadErrorCode::expected_block, "\"{\" after the name");
}

// Adds keys that are read as a whole to an object, and tells the observer.
class KeyframeSink final : public PlainKeySink {
  public:
    KeyframeSink(CSceneObject& object, ReadObserver* observer) : object_(object), observer_(observer) {}

    bool take(const PlainKey& read) override {
        tagKeyFrame* const key = object_.AddKeyframe();
        fits_ = key != nullptr;
        if (!fits_) {
            return false;
        }
        key->frame = read.frame;
        std::copy_n(read.others.begin(), 3, key->position);
        std::copy_n(read.others.begin() + 3, 3, key->rotation);
        if (read.count >= kCameraKey.least) {
            key->fov = read.others[6];
        }
        if (read.count == kCameraKey.most) {
            key->targetDistance = read.others[7];
        }
        if (observer_ != nullptr) {
            observer_->on_plain_key(read.at, read.frame, std::span(read.others).first(read.count - 1));
        }
        return true;
    }
    [[nodiscard]] bool fits() const { return fits_; }

  private:
    CSceneObject& object_;
    ReadObserver* observer_;
    bool fits_ = true;
};

// Reads KEY entries as long as they are plain. Returns 0 when out of memory, with KEY as the current
// token.
int read_plain_keys(ASCIIParser& p, CSceneObject& object, const KeyNumbers& numbers) {
    ReadObserver* const observer = p.Observer();
    if (observer != nullptr && !observer->takes_plain_keys()) {
        return 1;
    }
    KeyframeSink sink(object, observer);
    p.ReadPlainKeys(numbers.least, numbers.most, sink);
    if (!sink.fits()) {
        p.nextsym(0);
        return fail(p, ReadErrorCode::out_of_memory, "a keyframe that fits into memory");
    }
    return 1;
}

// LoadAndAddKeyframe after a KEY that `values` has taken.
int read_key_values(ASCIIParser& p, CSceneObject& object, ValueReader& values, tagKeyFrame** out) {
    *out = object.AddKeyframe();
    if (*out == nullptr) {
        return fail(p, ReadErrorCode::out_of_memory, "a keyframe that fits into memory");
    }
    tagKeyFrame& key = **out;
    return values.read_long(key.frame) != 0 && values.read_reals(key.position) != 0 &&
                   values.read_reals(key.rotation) != 0
               ? 1
               : 0;
}

int read_camera_key(ASCIIParser& p, CSceneObject& camera) {
    ValueReader values(p, "KEY");
    tagKeyFrame* key = nullptr;
    if (read_key_values(p, camera, values, &key) == 0 || values.read_real(key->fov) == 0) {
        return 0;
    }
    // The ninth value is optional: any token but a number begins the next entry or ends the block.
    if (p.nextsym(0) == kTokenNumber) {
        return values.take_real(key->targetDistance);
    }
    p.rewindsym();
    key->targetDistance = kDefaultTargetDistance;
    return 1;
}

EntryResult read_light_entry(ASCIIParser& p, CLight& light) {
    if (is_word(p, "TYPE")) {
        return result_of(ValueReader(p, "TYPE").read_word(kLightWords, light.lightType));
    }
    if (is_word(p, "SHADOW")) {
        return result_of(ValueReader(p, "SHADOW").read_word(kShadowWords, light.shadowType));
    }
    if (is_word(p, "COLOR")) {
        return result_of(ValueReader(p, "COLOR").read_reals(light.color));
    }
    if (is_word(p, "INTENSITY")) {
        return result_of(ValueReader(p, "INTENSITY").read_real(light.intensity));
    }
    if (is_word(p, "ANGLE")) {
        return result_of(ValueReader(p, "ANGLE").read_real(light.coneAngle));
    }
    return EntryResult::unknown;
}

int read_transform_key(ASCIIParser& p, CSceneObject& object) {
    tagKeyFrame* key = nullptr;
    return object.LoadAndAddKeyframe(p, &key);
}

// Name, opening brace and entries up to the closing brace. `read_key` reads what follows the word KEY,
// `read_other_entry` an entry of any other word.
template <class ReadKey, class ReadOtherEntry>
int read_block(ASCIIParser& p, CSceneObject& object, const BlockRules& rules, ReadKey read_key,
               ReadOtherEntry read_other_entry) {
    if (read_head(p, object, rules.kind) == 0) {
        return 0;
    }
    for (;;) {
        if (read_plain_keys(p, object, rules.key) == 0) {
            return 0;
        }
        if (p.nextsym(0) == kTokenCloseBrace) {
            leave_block(p);
            return 1;
        }
        if (p.sym != kTokenIdentifier) {
            return fail(p, ReadErrorCode::expected_entry, rules.expected);
        }
        const EntryResult result = is_word(p, "KEY") ? result_of(read_key(p, object)) : read_other_entry(p);
        if (result == EntryResult::unknown) {
            return fail(p, ReadErrorCode::unknown_entry, rules.expected);
        }
        if (result == EntryResult::failed) {
            return 0;
        }
    }
}

EntryResult no_other_entry(ASCIIParser& /*p*/) {
    return EntryResult::unknown;
}

}  // namespace

int CSceneObject::Load(ASCIIParser& /*p*/) {
    return 0;
}

int CSceneObject::LoadAndAddKeyframe(ASCIIParser& p, tagKeyFrame** out) {
    ValueReader values(p, "KEY");
    return read_key_values(p, *this, values, out);
}

int CCamera::Load(ASCIIParser& p) {
    isNull = 0;
    return read_block(p, *this, {BlockKind::camera, kCameraKey, "KEY or \"}\""}, read_camera_key,
                      no_other_entry);
}

int CLight::Load(ASCIIParser& p) {
    isNull = 0;
    return read_block(
        p, *this, {BlockKind::light, kTransformKey, "TYPE, SHADOW, COLOR, INTENSITY, ANGLE, KEY or \"}\""},
        read_transform_key, [this](ASCIIParser& parser) { return read_light_entry(parser, *this); });
}

int CNull::Load(ASCIIParser& p) {
    isNull = 1;
    return read_block(p, *this, {BlockKind::null_object, kTransformKey, "KEY or \"}\""}, read_transform_key,
                      no_other_entry);
}
