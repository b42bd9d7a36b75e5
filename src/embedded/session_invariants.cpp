#include <array>
#include <cstddef>
#include <string>

#include "embedded/handles.h"
#include "embedded/invariants.h"
#include "embedded/session.h"

namespace embedded {
namespace {

using BrokenRule = std::optional<std::string>;

std::string named(HandleKind kind, Id id) {
    return handle_label(kind) + (":" + std::to_string(id));
}

/// A kind of handle, and how many objects of that kind exist.
struct Held {
    HandleKind kind;
    std::size_t things;
};

BrokenRule validate_counts(const Session& session) {
    const Project& project = session.project;
    const std::array<Held, static_cast<std::size_t>(HandleKind::count)> all{{
        {HandleKind::project, 1},
        {HandleKind::item, project.items.size()},
        {HandleKind::composition, project.compositions.size()},
        {HandleKind::layer, project.layers.size()},
        {HandleKind::stream, session.stream_refs.size()},
        {HandleKind::additions, session.additions.size()},
        {HandleKind::footage, project.footage.size()},
        {HandleKind::memory, session.memory.blocks().size()},
        {HandleKind::blob, 1},
        {HandleKind::in_spec, project.in_specs.size()},
        {HandleKind::out_spec, session.out_spec_paths.size()},
    }};
    for (const Held& held : all) {
        const auto made = static_cast<std::size_t>(session.handles.made(held.kind));
        if (made != held.things) {
            return std::string(handle_label(held.kind)) + ": " + std::to_string(made) + " handles for " +
                   std::to_string(held.things) + " objects";
        }
    }
    return std::nullopt;
}

/// Every handle of one type is found under its own address and is alive exactly if `is_alive(id)`.
template <class H, class IsAlive>
BrokenRule validate_handles(const Session& session, const IsAlive& is_alive) {
    constexpr HandleKind kKind = HandleKindOf<H>::value;
    for (Id id = 1; id <= session.handles.made(kKind); ++id) {
        const HandleTable::Token* const token = session.handles.find(session.handles.handle<H>(id));
        if (token == nullptr || token->kind != kKind || token->id != id) {
            return named(kKind, id) + ": its handle stands for something else";
        }
        if (token->alive != is_alive(id)) {
            return named(kKind, id) + (token->alive ? ": its handle is alive and it is not"
                                                    : ": it is alive and its handle is not");
        }
    }
    return std::nullopt;
}

BrokenRule validate_all_handles(const Session& session) {
    const auto always = [](Id) { return true; };
    // None of these is open between callbacks: the host closes what a callback leaves open.
    const auto never = [](Id) { return false; };
    BrokenRule found = validate_handles<AEGP_ProjectH>(session, always);
    if (!found) {
        found = validate_handles<AEGP_ItemH>(session, always);
    }
    if (!found) {
        found = validate_handles<AEGP_CompH>(session, always);
    }
    if (!found) {
        found = validate_handles<AEGP_LayerH>(session, always);
    }
    if (!found) {
        found = validate_handles<AEGP_FootageH>(session, always);
    }
    if (!found) {
        found = validate_handles<AEGP_StreamRefH>(session, never);
    }
    if (!found) {
        found = validate_handles<AEGP_AddKeyframesInfoH>(session, never);
    }
    if (!found) {
        found = validate_handles<AEGP_MemHandle>(
            session, [&](Id id) { return session.memory.blocks()[Project::index(id)].alive(); });
    }
    if (!found) {
        found = validate_handles<AEIO_InSpecH>(session,
                                               [&](Id id) { return !session.project.in_spec(id).disposed; });
    }
    return found;
}

BrokenRule validate_streams(const Session& session) {
    for (std::size_t i = 0; i < session.stream_refs.size(); ++i) {
        const Session::StreamRef& ref = session.stream_refs[i];
        const bool known = ref.layer >= 1 && Project::index(ref.layer) < session.project.layers.size() &&
                           session.project.layer(ref.layer).streams.count(ref.kind) == 1;
        if (!known) {
            return named(HandleKind::stream, static_cast<Id>(i) + 1) + ": no layer has it";
        }
    }
    for (std::size_t i = 0; i < session.additions.size(); ++i) {
        const Id ref = session.additions[i].stream_ref;
        if (ref < 1 || Project::index(ref) >= session.stream_refs.size()) {
            return named(HandleKind::additions, static_cast<Id>(i) + 1) + ": their stream does not exist";
        }
    }
    return std::nullopt;
}

BrokenRule validate_memory(const Session& session) {
    const auto& blocks = session.memory.blocks();
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const MemoryBlock& block = blocks[i];
        const std::string here = named(HandleKind::memory, static_cast<Id>(i) + 1);
        if (block.id != static_cast<Id>(i) + 1) {
            return here + ": its id does not match its place";
        }
        if (block.locks < 0) {
            return here + ": its lock count is negative";
        }
        const auto in_specs = static_cast<Id>(session.project.in_specs.size());
        const bool attached = block.in_spec >= 1 && block.in_spec <= in_specs &&
                              session.project.in_spec(block.in_spec).options == block.id;
        if (block.in_spec != 0 && !attached) {
            return here + ": its in-spec has other options";
        }
    }
    for (const InSpec& in_spec : session.project.in_specs) {
        if (in_spec.options == 0) {
            continue;
        }
        const bool there = in_spec.options >= 1 && Project::index(in_spec.options) < blocks.size();
        if (!there || blocks[Project::index(in_spec.options)].in_spec != in_spec.id ||
            !blocks[Project::index(in_spec.options)].alive()) {
            return named(HandleKind::in_spec, in_spec.id) +
                   ": its options do not exist or belong to another in-spec";
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> validate_session(const Session& session) {
    BrokenRule found = validate_counts(session);
    if (!found) {
        found = validate_all_handles(session);
    }
    if (!found) {
        found = validate_streams(session);
    }
    return found ? found : validate_memory(session);
}

}  // namespace embedded
