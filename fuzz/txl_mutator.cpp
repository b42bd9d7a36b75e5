// Mutates texture files by whole items, so that tags, lengths and nesting stay well-formed.

#include <algorithm>
#include <iterator>
#include <vector>

#include "input.h"
#include "mutator.h"
#include "texture/container/hyper_file.h"
#include "texture/txl/txl_ids.h"

namespace {

constexpr std::size_t kHeaderBytes = 8;

constexpr std::int32_t kChunks[] = {kChunkTexture,
                                    kChunkTextureHeader,
                                    kChunkPixelRows,
                                    kChunkLayerList,
                                    kChunkAlphaChannels,
                                    kChunkLayer,
                                    kChunkLayerHeader,
                                    0,
                                    -1};

constexpr std::int32_t kNumbers[] = {
    0,       1,          2,     3,     4,
    5,       6,          7,     8,     64,
    127,     128,        129,   255,   256,
    1024,    32768,      46341, 65536, 1 << 24,
    1 << 30, 2147483647, -1,    -2,    -2147483647 - 1,
};

// A tag and its payload.
using Item = MutatedBytes;
using Items = std::vector<Item>;

Item with_value(std::uint8_t tag, std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    return {tag, static_cast<std::uint8_t>(bits >> 24), static_cast<std::uint8_t>(bits >> 16 & 0xFF),
            static_cast<std::uint8_t>(bits >> 8 & 0xFF), static_cast<std::uint8_t>(bits & 0xFF)};
}

Item block_of(std::uint8_t tag, const MutatedBytes& content) {
    Item item = with_value(tag, static_cast<std::int32_t>(content.size()));
    item.insert(item.end(), content.begin(), content.end());
    return item;
}

Item chunk_start(std::int32_t id) {
    Item item(1 + 8, 0);  // the version behind the identifier is 0
    const Item begin = with_value(PrivateHyperFile::kTagChunkStart, id);
    std::copy(begin.begin(), begin.end(), item.begin());
    return item;
}

bool is_block(std::uint8_t tag) {
    return tag == PrivateHyperFile::kTagMemory || tag == PrivateHyperFile::kTagString;
}

// The number of payload bytes after the tag; for blocks, without the block itself.
std::size_t fixed_bytes(std::uint8_t tag) {
    switch (tag) {
        case PrivateHyperFile::kTagChunkStart:
        case PrivateHyperFile::kTagLReal:
            return 8;
        case PrivateHyperFile::kTagChar:
        case PrivateHyperFile::kTagUChar:
        case PrivateHyperFile::kTagBool:
            return 1;
        case PrivateHyperFile::kTagWord:
        case PrivateHyperFile::kTagUWord:
            return 2;
        case PrivateHyperFile::kTagLong:
        case PrivateHyperFile::kTagULong:
        case PrivateHyperFile::kTagReal:
        case PrivateHyperFile::kTagMemory:
        case PrivateHyperFile::kTagString:
            return 4;
        default:
            return 0;
    }
}

std::size_t block_bytes(const std::uint8_t* count) {
    return std::size_t{count[0]} << 24 | std::size_t{count[1]} << 16 | std::size_t{count[2]} << 8 | count[3];
}

Items items_of(const MutatedBytes& bytes) {
    Items items;
    std::size_t at = std::min(kHeaderBytes, bytes.size());
    items.emplace_back(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    while (at < bytes.size()) {
        std::size_t length = 1 + fixed_bytes(bytes[at]);
        if (is_block(bytes[at]) && bytes.size() - at >= length) {
            length += block_bytes(&bytes[at + 1]);
        }
        length = std::min(length, bytes.size() - at);
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        items.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(length));
        at += length;
    }
    return items;
}

// The index past the last item of the chunk that starts at `begin`.
Items::iterator end_of_chunk(Items& items, Items::iterator begin) {
    std::size_t depth = 0;
    for (auto item = begin; item != items.end(); ++item) {
        if (item->front() == PrivateHyperFile::kTagChunkStart) {
            ++depth;
        } else if (item->front() == PrivateHyperFile::kTagChunkEnd && --depth == 0) {
            return item + 1;
        }
    }
    return items.end();
}

// A row of `count` equal bytes, packed or raw.
MutatedBytes row_of(Dice& dice, std::size_t count) {
    if (dice.one_in(2)) {
        return MutatedBytes(count, static_cast<std::uint8_t>(dice.below(256)));
    }
    MutatedBytes packed;
    for (; count >= 2; count -= std::min<std::size_t>(count, 128)) {
        packed.push_back(static_cast<std::uint8_t>(257 - std::min<std::size_t>(count, 128)));
        packed.push_back(static_cast<std::uint8_t>(dice.below(256)));
    }
    return packed;
}

Item new_item(Dice& dice) {
    switch (dice.below(6)) {
        case 0:
            return chunk_start(dice.one_of(kChunks));
        case 1:
            return {PrivateHyperFile::kTagChunkEnd};
        case 2:
            return with_value(PrivateHyperFile::kTagLong, dice.one_of(kNumbers));
        case 3:
            return {PrivateHyperFile::kTagUChar, static_cast<std::uint8_t>(dice.below(3))};
        case 4:
            return block_of(PrivateHyperFile::kTagString, MutatedBytes(2 * dice.below(6), 'n'));
        default:
            return block_of(PrivateHyperFile::kTagMemory, row_of(dice, dice.below(200)));
    }
}

void change_item(Item& item, Dice& dice) {
    const std::uint8_t tag = item.front();
    if (tag == PrivateHyperFile::kTagChunkStart) {
        item = chunk_start(dice.one_of(kChunks));
    } else if (is_block(tag) && item.size() >= 5) {
        const MutatedBytes content(item.begin() + 5, item.end());
        item = block_of(tag, dice.one_in(3) ? row_of(dice, content.size()) : changed_by_fuzzer(content, 8));
    } else if (fixed_bytes(tag) == 4) {
        item = with_value(
            tag, dice.one_in(3) ? static_cast<std::int32_t>(dice.below(1000)) : dice.one_of(kNumbers));
    } else if (item.size() > 1) {
        item.back() = static_cast<std::uint8_t>(dice.below(dice.one_in(2) ? 6 : 256));
    } else {
        item = new_item(dice);
    }
}

void change_items(Items& items, Dice& dice) {
    const auto at = [&] { return items.begin() + static_cast<std::ptrdiff_t>(dice.below(items.size())); };
    const auto place = at();
    const auto behind =
        place->front() == PrivateHyperFile::kTagChunkStart ? end_of_chunk(items, place) : place + 1;
    switch (dice.below(6)) {
        case 0:
        case 1:
            change_item(*place, dice);
            return;
        case 2:
            items.insert(place, new_item(dice));
            return;
        case 3:
            items.erase(place, behind);
            return;
        case 4: {
            const Items copy(place, behind);
            items.insert(at(), copy.begin(), copy.end());
            return;
        }
        default: {
            Items wrapped{chunk_start(dice.one_of(kChunks))};
            wrapped.insert(wrapped.end(), place, behind);
            wrapped.push_back({PrivateHyperFile::kTagChunkEnd});
            items.insert(items.erase(place, behind), wrapped.begin(), wrapped.end());
        }
    }
}

MutatedBytes changed_file(const MutatedBytes& before, Dice& dice) {
    Items items = items_of(before);
    for (std::size_t changes = 1 + dice.below(3); changes > 0 && !items.empty(); --changes) {
        change_items(items, dice);
    }
    MutatedBytes after;
    for (const Item& item : items) {
        after.insert(after.end(), item.begin(), item.end());
    }
    return after;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
    Dice dice(seed);
    return mutate(data, size, max_size, kOptionBytes, dice,
                  [&dice](const MutatedBytes& before) { return changed_file(before, dice); });
}
