#include "composition/model/null_object.h"

#include "composition/read/ascii_parser.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"

int CNull::Load(ASCIIParser& p) {
    isNull = 1;
    if (LoadHead(p, BlockKind::null_object) == 0) {
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
            return fail(p, ReadErrorCode::expected_entry, "KEY or \"}\"");
        }
        if (!is_word(p, "KEY")) {
            return fail(p, ReadErrorCode::unknown_entry, "KEY or \"}\"");
        }
        tagKeyFrame* key = nullptr;
        if (LoadAndAddKeyframe(p, &key) == 0) {
            return 0;
        }
    }
    leave_block(p);
    return 1;
}
