#include "embedded/handles.h"

namespace embedded {

const char* handle_label(HandleKind kind) {
    switch (kind) {
        case HandleKind::project:
            return "project";
        case HandleKind::item:
            return "item";
        case HandleKind::composition:
            return "comp";
        case HandleKind::layer:
            return "layer";
        case HandleKind::stream:
            return "stream";
        case HandleKind::additions:
            return "additions";
        case HandleKind::footage:
            return "footage";
        case HandleKind::memory:
            return "mem";
        case HandleKind::blob:
            return "blob";
        case HandleKind::in_spec:
            return "inspec";
        case HandleKind::out_spec:
            return "outspec";
        case HandleKind::count:
            break;
    }
    return "handle";
}

HandleTable::Token* HandleTable::make_token(HandleKind kind) {
    std::vector<Token*>& same_kind = by_kind_[static_cast<std::size_t>(kind)];
    Token& token = tokens_.emplace_back();
    token.kind = kind;
    token.id = static_cast<Id>(same_kind.size()) + 1;
    same_kind.push_back(&token);
    by_address_.emplace(&token, &token);
    return &token;
}

const HandleTable::Token* HandleTable::look_up(const void* handle) const {
    const auto found = by_address_.find(handle);
    if (found == by_address_.end()) {
        return nullptr;
    }
    return recent_[recent_place(handle)] = found->second;
}

std::string HandleTable::text(const void* handle) const {
    const Token* token = find(handle);
    return token == nullptr ? "foreign" : handle_label(token->kind) + (":" + std::to_string(token->id));
}

}  // namespace embedded
