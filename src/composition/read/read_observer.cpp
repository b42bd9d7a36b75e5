#include "composition/read/read_observer.h"

#include "composition/model/composition.h"
#include "composition/model/scene_object.h"

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

std::string_view ReadBlock::name() const {
    const char* const text = kind == BlockKind::composition ? composition->name : object->name;
    return text == nullptr ? std::string_view() : std::string_view(text);
}

void ReadObserver::fail(const diagnostic::Diagnostic& error) {
    on_failure(error);
    blocks_.clear();
}

void ReadObserver::enter_block(const ReadBlock& block) {
    blocks_.push_back(block);
}

void ReadObserver::name_block(const TextPosition& at) {
    blocks_.back().name_at = at;
    on_block_begin(blocks_.back());
}

void ReadObserver::leave_block(const TextPosition& at) {
    const ReadBlock block = blocks_.back();
    blocks_.pop_back();
    on_block_end(block, at);
}
