#include "composition/model/camera.h"

#include "composition/read/ascii_parser.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"

int CCamera::Load(ASCIIParser& p) {
    isNull = 0;
    if (LoadHead(p, BlockKind::camera) == 0) {
        return 0;
    }
    for (;;) {
        if (LoadPlainKeys(p, kCameraNumbers, kMostCameraNumbers) == 0) {
            return 0;
        }
        if (p.nextsym(0) == kTokenCloseBrace) {
            break;
        }
        if (p.sym != kTokenIdentifier) {
            return fail(p, ReadErrorCode::expected_entry, "KEY or \"}\"");
        }
        if (!is_word(p, "KEY")) {
            return fail(p, ReadErrorCode::unknown_entry, "KEY or \"}\"");
        }
        if (LoadKey(p) == 0) {
            return 0;
        }
    }
    leave_block(p);
    return 1;
}

int CCamera::LoadKey(ASCIIParser& p) {
    ValueReader values(p, "KEY");
    tagKeyFrame* key = nullptr;
    if (LoadKeyValues(p, values, &key) == 0 || values.read_real(key->fov) == 0) {
        return 0;
    }
    // The ninth value is optional: what is no number begins the next entry or ends the block.
    if (p.nextsym(0) == kTokenNumber) {
        return values.take_real(key->targetDistance);
    }
    p.rewindsym();
    key->targetDistance = kDefaultTargetDistance;
    return 1;
}
