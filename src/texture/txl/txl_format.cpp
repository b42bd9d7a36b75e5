#include "texture/txl/txl_format.h"

#include <algorithm>
#include <array>

bool TXLIdentify(Filename* /*name*/, unsigned char* probe, std::int32_t /*size*/) {
    constexpr std::array<unsigned char, 4> kMark = {'T', 'F', 'F', 0};
    return std::equal(kMark.begin(), kMark.end(), probe);
}

bool TXLLoad(const Filename& /*name*/, BaseBitmap* /*bitmap*/, std::int32_t /*unused*/) {
    return true;
}

bool TXLSave(const Filename& /*name*/, BaseBitmap* /*bitmap*/, int /*unused*/) {
    return true;
}
