#include "texture/file/byte_order.h"

#include <algorithm>
#include <bit>

namespace {

template <int Size>
void convert(void* values, std::int32_t count) {
    if constexpr (std::endian::native == std::endian::little) {
        auto* bytes = static_cast<unsigned char*>(values);
        for (std::int32_t i = 0; i < count; ++i, bytes += Size) {
            std::reverse(bytes, bytes + Size);
        }
    }
}

}  // namespace

void LMotor(void* values, std::int32_t count) {
    convert<4>(values, count);
}

void WMotor(void* values, std::int32_t count) {
    convert<2>(values, count);
}

void DMotor(void* value) {
    convert<8>(value, 1);
}
