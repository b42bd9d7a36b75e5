#include "composition/read/read_observer.h"

#include <utility>

const char* block_word(BlockKind kind) {
    switch (kind) {
        case BlockKind::composition:
            return "composition";
        case BlockKind::camera:
            return "camera";
        case BlockKind::light:
            return "light";
        case BlockKind::null_object:
            break;
    }
    return "null";
}

void ReadObserver::enter_block(BlockKind kind, const TextPosition& at) {
    blocks_.push_back({kind, at, {}, {}});
}

void ReadObserver::name_block(std::string_view name, const TextPosition& at) {
    blocks_.back().name = name;
    blocks_.back().name_at = at;
    on_block_begin(blocks_.back());
}

void ReadObserver::leave_block(const TextPosition& at) {
    const ReadBlock block = std::move(blocks_.back());
    blocks_.pop_back();
    on_block_end(block, at);
}
