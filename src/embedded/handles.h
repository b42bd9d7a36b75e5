#pragma once

// The handles that the bundle holds: opaque addresses that the host looks up. It never dereferences one to do
// so, and never gives out an address twice, so it recognises dead and foreign handles.

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "embedded/project.h"
#include "host/host_interface.h"

namespace embedded {

enum class HandleKind : std::size_t {
    project,
    item,
    composition,
    layer,
    stream,
    additions,
    footage,
    memory,
    blob,
    in_spec,
    out_spec,
    count
};

/// "item", "comp": what stands before the colon of "comp:1".
const char* handle_label(HandleKind kind);

template <class H>
struct HandleKindOf;
template <>
struct HandleKindOf<AEGP_ProjectH> {
    static constexpr HandleKind value = HandleKind::project;
};
template <>
struct HandleKindOf<AEGP_ItemH> {
    static constexpr HandleKind value = HandleKind::item;
};
template <>
struct HandleKindOf<AEGP_CompH> {
    static constexpr HandleKind value = HandleKind::composition;
};
template <>
struct HandleKindOf<AEGP_LayerH> {
    static constexpr HandleKind value = HandleKind::layer;
};
template <>
struct HandleKindOf<AEGP_StreamRefH> {
    static constexpr HandleKind value = HandleKind::stream;
};
template <>
struct HandleKindOf<AEGP_AddKeyframesInfoH> {
    static constexpr HandleKind value = HandleKind::additions;
};
template <>
struct HandleKindOf<AEGP_FootageH> {
    static constexpr HandleKind value = HandleKind::footage;
};
template <>
struct HandleKindOf<AEGP_MemHandle> {
    static constexpr HandleKind value = HandleKind::memory;
};
template <>
struct HandleKindOf<AEGP_PersistentBlobH> {
    static constexpr HandleKind value = HandleKind::blob;
};
template <>
struct HandleKindOf<AEIO_InSpecH> {
    static constexpr HandleKind value = HandleKind::in_spec;
};
template <>
struct HandleKindOf<AEIO_OutSpecH> {
    static constexpr HandleKind value = HandleKind::out_spec;
};

class HandleTable {
  public:
    struct Token {
        void* content =
            nullptr;  ///< the interface makes an in-spec's handle a pointer to a pointer: this one
        HandleKind kind = HandleKind::item;
        Id id = 0;
        bool alive = true;
    };

    /// The next handle of its kind; ids count from 1.
    template <class H>
    H make() {
        return reinterpret_cast<H>(make_token(HandleKindOf<H>::value));
    }

    /// The handle with this id, which must have been made.
    template <class H>
    [[nodiscard]] H handle(Id id) const {
        return reinterpret_cast<H>(token(HandleKindOf<H>::value, id));
    }

    /// What the address stands for; null for one that the host never gave out.
    [[nodiscard]] const Token* find(const void* handle) const {
        const Token* const recent = recent_[recent_place(handle)];
        return recent == handle && recent != nullptr ? recent : look_up(handle);
    }

    [[nodiscard]] bool alive(HandleKind kind, Id id) const { return token(kind, id)->alive; }
    void kill(HandleKind kind, Id id) { token(kind, id)->alive = false; }

    /// How many handles of this kind were made: the highest id.
    [[nodiscard]] Id made(HandleKind kind) const { return static_cast<Id>(of(kind).size()); }

    /// "layer:2", or "foreign" for an address that the host never gave out. `handle` is not null.
    [[nodiscard]] std::string text(const void* handle) const;

  private:
    /// Consecutive calls use the same few handles; this finds them without the map.
    static constexpr std::size_t kRecent = 64;
    static std::size_t recent_place(const void* handle) {
        return reinterpret_cast<std::uintptr_t>(handle) / sizeof(Token) % kRecent;
    }
    [[nodiscard]] const Token* look_up(const void* handle) const;
    Token* make_token(HandleKind kind);
    [[nodiscard]] Token* token(HandleKind kind, Id id) const { return of(kind).at(Project::index(id)); }
    [[nodiscard]] const std::vector<Token*>& of(HandleKind kind) const {
        return by_kind_[static_cast<std::size_t>(kind)];
    }

    std::deque<Token> tokens_;
    std::array<std::vector<Token*>, static_cast<std::size_t>(HandleKind::count)> by_kind_;
    std::unordered_map<const void*, const Token*> by_address_;
    mutable std::array<const Token*, kRecent> recent_{};
};

}  // namespace embedded
