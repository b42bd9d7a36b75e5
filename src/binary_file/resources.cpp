#include "binary_file/resources.h"

#include "text/ascii.h"

namespace binary_file {
namespace {

constexpr std::uint32_t kHighBit = 0x80000000;

/// Branches may lead anywhere in the tree, even to themselves. No real tree has nearly as many entries.
constexpr std::size_t kMostEntries = 65536;

struct Entry {
    std::uint32_t name = 0;    ///< a number, or with the high bit set, the offset of its text
    std::uint32_t target = 0;  ///< the offset of its data entry, or with the high bit set, of another branch
};

class ResourceTree {
  public:
    ResourceTree(const ByteView& tree, const AtAddress& at_address) : tree_(tree), at_address_(at_address) {}

    [[nodiscard]] std::vector<Resource> of_type(std::string_view type) {
        std::vector<Resource> found;
        for (const Entry& entry : branch(0)) {
            if (!has_name(entry, type)) {
                continue;
            }
            for (const Entry& resource : branch(inner(entry))) {
                for (const Entry& language : branch(inner(resource))) {
                    add(resource, language, found);
                }
            }
        }
        return found;
    }

  private:
    std::vector<Entry> branch(std::uint64_t at) {
        const ByteView head = tree_.part(at, 16);
        const std::size_t count = std::size_t{head.u16(12)} + head.u16(14);
        visited_ += count;
        if (visited_ > kMostEntries) {
            throw Damage(head.start_bytes(),
                         "the resources have more than " + std::to_string(kMostEntries) + " entries");
        }
        const ByteView rows = tree_.part(at + 16, count * 8);
        std::vector<Entry> entries(count);
        for (std::size_t i = 0; i < count; ++i) {
            entries[i] = {rows.u32(i * 8), rows.u32(i * 8 + 4)};
        }
        return entries;
    }

    [[nodiscard]] std::uint64_t inner(const Entry& entry) const {
        if ((entry.target & kHighBit) == 0) {
            throw Damage(tree_.start_bytes() + entry.target, "a branch of the resources is expected here");
        }
        return entry.target & ~kHighBit;
    }

    [[nodiscard]] bool has_name(const Entry& entry, std::string_view name) const {
        if ((entry.name & kHighBit) == 0) {
            return false;
        }
        const std::uint64_t at = entry.name & ~kHighBit;
        if (tree_.u16(at) != name.size()) {
            return false;
        }
        for (std::size_t i = 0; i < name.size(); ++i) {
            const std::uint16_t unit = tree_.u16(at + 2 + i * 2);
            if (unit >= 0x80 || text::to_upper(static_cast<char>(unit)) != name[i]) {
                return false;
            }
        }
        return true;
    }

    void add(const Entry& resource, const Entry& language, std::vector<Resource>& found) const {
        if ((language.target & kHighBit) != 0) {
            throw Damage(tree_.start_bytes() + (language.target & ~kHighBit),
                         "the data of a resource is expected here");
        }
        const ByteView row = tree_.part(language.target, 16);
        Resource one{std::nullopt, at_address_(row.u32(0)).part(0, row.u32(4))};
        if ((resource.name & kHighBit) == 0) {
            one.number = resource.name;
        }
        found.push_back(one);
    }

    const ByteView& tree_;
    const AtAddress& at_address_;
    std::size_t visited_ = 0;
};

}  // namespace

std::vector<Resource> pe_resources(const ByteView& tree, std::string_view type, const AtAddress& at_address) {
    return ResourceTree(tree, at_address).of_type(type);
}

std::vector<Resource> resource_fork(std::string_view bytes, std::string_view type) {
    const ByteView file(bytes, ByteOrder::big);
    const ByteView data = file.part(file.u32(0), file.u32(8));
    const ByteView map = file.part(file.u32(4), file.u32(12));
    const ByteView types = map.from(map.u16(24));
    // Counts are stored minus one, so the largest number means zero.
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
        // Each type is listed once; another row of the same name would be damage and is not read.
        break;
    }
    return found;
}

}  // namespace binary_file
