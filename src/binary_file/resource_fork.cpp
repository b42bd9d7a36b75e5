#include "binary_file/resource_fork.h"

namespace binary_file {

std::vector<Resource> resource_fork(std::string_view bytes, std::string_view type) {
    const ByteView file(bytes, ByteOrder::big);
    const ByteView data = file.part(file.u32(0), file.u32(8));
    const ByteView map = file.part(file.u32(4), file.u32(12));
    const ByteView types = map.from(map.u16(24));
    // Counts are stored one less, so none is the largest number.
    const std::uint32_t type_count = (types.u16(0) + 1U) & 0xFFFFU;
    std::vector<Resource> found;
    for (std::uint32_t i = 0; i < type_count; ++i) {
        const ByteView row = types.part(2 + std::uint64_t{i} * 8, 8);
        if (row.bytes(0, 4) != type) {
            continue;
        }
        const std::uint32_t count = row.u16(4) + 1U;
        for (std::uint32_t j = 0; j < count; ++j) {
            const ByteView reference = types.part(row.u16(6) + std::uint64_t{j} * 12, 12);
            const std::uint32_t at = reference.u32(4) & 0xFFFFFFU;
            found.push_back({reference.u16(0), data.part(std::uint64_t{at} + 4, data.u32(at))});
        }
        // A type is listed once; another row of the same name would be damage, and takes no time here.
        break;
    }
    return found;
}

}  // namespace binary_file
