#include "handover/scene3d/gltf_data.h"

#include <algorithm>
#include <bit>

#include "handover/scene3d/scene3d_options.h"

namespace handover {
namespace {

// The binary form counts its bytes in 32 bits. The rest is for the JSON.
constexpr std::uint64_t kMostData_bytes = 0xC0000000;

void append_little_endian(std::string& bytes, float number) {
    auto bits = std::bit_cast<std::uint32_t>(number);
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(bits & 0xFF);
        bits >>= 8;
    }
}

}  // namespace

std::size_t GltfData::add(std::span<const float> numbers, std::size_t components, bool needs_range) {
    if (std::uint64_t{bytes_.size()} + std::uint64_t{numbers.size()} * sizeof(float) > kMostData_bytes) {
        throw CannotWrite(
            "the keys need more than 3 GiB, which a glTF file cannot hold; hand over fewer objects");
    }
    GltfAccessor accessor{bytes_.size(), numbers.size() / components, components, {}, {}, needs_range};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        float& least = accessor.least[i % components];
        float& most = accessor.most[i % components];
        least = i < components ? numbers[i] : std::min(least, numbers[i]);
        most = i < components ? numbers[i] : std::max(most, numbers[i]);
        append_little_endian(bytes_, numbers[i]);
    }
    // Times of one object's place, turn and angle of view are often the same.
    const std::string_view all = bytes_;
    const std::string_view added = all.substr(accessor.offset_bytes);
    constexpr std::size_t kCompared = 3;
    const std::size_t from = accessors_.size() > kCompared ? accessors_.size() - kCompared : 0;
    for (std::size_t i = from; i < accessors_.size(); ++i) {
        const GltfAccessor& other = accessors_[i];
        if (other.components == components && other.count == accessor.count &&
            other.needs_range == needs_range && all.substr(other.offset_bytes, added.size()) == added) {
            bytes_.resize(accessor.offset_bytes);
            return i;
        }
    }
    accessors_.push_back(accessor);
    return accessors_.size() - 1;
}

}  // namespace handover
