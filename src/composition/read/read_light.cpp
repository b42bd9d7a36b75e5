#include "composition/model/light.h"

#include "composition/read/ascii_parser.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"

namespace {

// PAR is a kind of its own beside SPOT and PSPOT, and AREA is both a kind of light and a kind of shadow.
constexpr WordValue kLightWords[] = {{"OMNI", kLightOmni},    {"SPOT", kLightSpot},
                                     {"PAR", kLightParallel}, {"PSPOT", kLightParallelSpot},
                                     {"TUBE", kLightTube},    {"AREA", kLightArea}};
constexpr WordValue kShadowWords[] = {
    {"NONE", kShadowNone}, {"SOFT", kShadowSoft}, {"HARD", kShadowHard}, {"AREA", kShadowArea}};

}  // namespace

int CLight::Load(ASCIIParser& p) {
    isNull = 0;
    if (LoadHead(p, BlockKind::light) == 0) {
        return 0;
    }
    for (;;) {
        if (LoadPlainKeys(p, kTransformNumbers, kTransformNumbers) == 0) {
            return 0;
        }
        if (p.nextsym(0) == kTokenCloseBrace) {
            break;
        }
        if (p.sym != kTokenIdentifier) {
            return fail(p, ReadErrorCode::expected_entry,
                        "TYPE, SHADOW, COLOR, INTENSITY, ANGLE, KEY or \"}\"");
        }
        if (LoadEntry(p) == 0) {
            return 0;
        }
    }
    leave_block(p);
    return 1;
}

int CLight::LoadEntry(ASCIIParser& p) {
    if (is_word(p, "TYPE")) {
        return ValueReader(p, "TYPE").read_word(kLightWords, lightType);
    }
    if (is_word(p, "SHADOW")) {
        return ValueReader(p, "SHADOW").read_word(kShadowWords, shadowType);
    }
    if (is_word(p, "COLOR")) {
        return ValueReader(p, "COLOR").read_reals(color);
    }
    if (is_word(p, "INTENSITY")) {
        return ValueReader(p, "INTENSITY").read_real(intensity);
    }
    if (is_word(p, "KEY")) {
        tagKeyFrame* key = nullptr;
        return LoadAndAddKeyframe(p, &key);
    }
    if (is_word(p, "ANGLE")) {
        return ValueReader(p, "ANGLE").read_real(coneAngle);
    }
    return fail(p, ReadErrorCode::unknown_entry, "TYPE, SHADOW, COLOR, INTENSITY, ANGLE, KEY or \"}\"");
}
