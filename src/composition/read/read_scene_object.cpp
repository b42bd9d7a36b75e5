#include "composition/model/scene_object.h"

#include <algorithm>
#include <new>
#include <span>

#include "composition/read/ascii_parser.h"
#include "composition/read/plain_keys.h"
#include "composition/read/read_observer.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"

CSceneObject::~CSceneObject() {
    for (A_long i = 0; i < keyCount; ++i) {
        delete keys[i];
    }
    delete[] keys;
    delete[] name;
}

int CSceneObject::Load(ASCIIParser& /*p*/) {
    return 0;
}

tagKeyFrame* CSceneObject::AddKeyframe() {
    tagKeyFrame* const key = new (std::nothrow) tagKeyFrame;
    if (key == nullptr) {
        return nullptr;
    }
    const auto old_count = static_cast<std::size_t>(keyCount);
    tagKeyFrame** const grown = new (std::nothrow) tagKeyFrame*[old_count + 1];
    if (grown == nullptr) {
        delete key;
        return nullptr;
    }
    std::copy_n(keys, old_count, grown);
    grown[old_count] = key;
    delete[] keys;
    keys = grown;
    ++keyCount;
    return key;
}

int CSceneObject::LoadHead(ASCIIParser& p, BlockKind kind) {
    enter_block(p, kind);
    if (read_name(p, name) == 0) {
        return 0;
    }
    return p.nextsym(0) == kTokenOpenBrace ? 1
                                           : fail(p, ReadErrorCode::expected_block, "\"{\" behind the name");
}

int CSceneObject::LoadPlainKeys(ASCIIParser& p, std::size_t least, std::size_t most) {
    ReadObserver* const observer = p.Observer();
    if (observer != nullptr && !observer->takes_plain_keys()) {
        return 1;
    }
    PlainKeyReader reader(p);
    PlainKey read;
    tagKeyFrame* key = nullptr;
    bool fits = true;
    while (fits && reader.Next(least, most, read)) {
        key = AddKeyframe();
        fits = key != nullptr;
        if (fits) {
            key->frame = read.frame;
            std::copy_n(read.others.begin(), 3, key->position);
            std::copy_n(read.others.begin() + 3, 3, key->rotation);
            if (least == kCameraNumbers) {
                key->fov = read.others[6];
            }
            if (read.count == kMostCameraNumbers) {
                key->targetDistance = read.others[7];
            }
            if (observer != nullptr) {
                observer->on_plain_key(read.at, read.frame, std::span(read.others).first(read.count - 1));
            }
            reader.Take();
        }
    }
    reader.Finish();
    if (!fits) {
        p.nextsym(0);
        return fail(p, ReadErrorCode::out_of_memory, "a keyframe that fits into memory");
    }
    return 1;
}

int CSceneObject::LoadAndAddKeyframe(ASCIIParser& p, tagKeyFrame** out) {
    ValueReader values(p, "KEY");
    return LoadKeyValues(p, values, out);
}

int CSceneObject::LoadKeyValues(ASCIIParser& p, ValueReader& values, tagKeyFrame** out) {
    *out = AddKeyframe();
    if (*out == nullptr) {
        return fail(p, ReadErrorCode::out_of_memory, "a keyframe that fits into memory");
    }
    tagKeyFrame& key = **out;
    return values.read_long(key.frame) != 0 && values.read_reals(key.position) != 0 &&
                   values.read_reals(key.rotation) != 0
               ? 1
               : 0;
}
