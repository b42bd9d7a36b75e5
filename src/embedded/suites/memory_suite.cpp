// "AEGP Memory Suite" 1: memory that the host lends to the bundle.

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

A_Err new_handle(AEGP_PluginID plugin_id, const A_char* what, AEGP_MemSize size, AEGP_MemFlag flags,
                 AEGP_MemHandle* handle) {
    return host_call(
        Fn::AEGP_NewMemHandle,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.text("what", what);
            args.integer("size", size);
            args.integer("flags", flags);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            session.require(what, "what");
            session.require_true(size >= 1, "size", "is below 1");
            session.require_true((flags & ~kMemFlagClear) == 0, "flags", "has unknown bits");
            session.require(handle, "handle");
            if (session.memory.allocate(what, size, (flags & kMemFlagClear) != 0) == nullptr) {
                return kHostErrorAllocation;
            }
            *handle = session.handles.make<AEGP_MemHandle>();
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("handle", *handle); });
}

A_Err free_handle(AEGP_MemHandle handle) {
    return host_call(
        Fn::AEGP_FreeMemHandle, [&](CallValues& args) { args.handle("handle", handle); },
        [&](Session& session) -> A_Err {
            const HandleTable::Token* token = session.handles.find(handle);
            if (token != nullptr && token->kind == HandleKind::memory && !token->alive) {
                session.refuse(RuleViolation::memory_double_free,
                               session.handles.text(handle) + " was freed before");
            }
            MemoryBlock& block = session.memory.block(session.id(handle, "handle"));
            if (block.locks > 0) {
                session.found(RuleViolation::memory_left_locked,
                              session.handles.text(handle) + " was freed while it was locked");
            }
            if (block.in_spec != 0) {
                session.in_spec(block.in_spec).options = 0;
            }
            block.in_spec = 0;
            block.bytes.reset();
            session.handles.kill(HandleKind::memory, block.id);
            return kHostErrorNone;
        });
}

A_Err lock_handle(AEGP_MemHandle handle, void** address) {
    return host_call(
        Fn::AEGP_LockMemHandle, [&](CallValues& args) { args.handle("handle", handle); },
        [&](Session& session) -> A_Err {
            MemoryBlock& block = session.memory.block(session.id(handle, "handle"));
            session.require(address, "address") = block.bytes.get();
            ++block.locks;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.pointer("address", *address); });
}

A_Err unlock_handle(AEGP_MemHandle handle) {
    return host_call(
        Fn::AEGP_UnlockMemHandle, [&](CallValues& args) { args.handle("handle", handle); },
        [&](Session& session) -> A_Err {
            MemoryBlock& block = session.memory.block(session.id(handle, "handle"));
            if (block.locks == 0) {
                session.refuse(RuleViolation::memory_unlock_without_lock,
                               session.handles.text(handle) + " is not locked");
            }
            --block.locks;
            return kHostErrorNone;
        });
}

}  // namespace

const AEGP_MemorySuite1* memory_suite() {
    static const AEGP_MemorySuite1 table = [] {
        auto suite = reserved_table<AEGP_MemorySuite1, SuiteId::memory>();
        suite.AEGP_NewMemHandle = new_handle;
        suite.AEGP_FreeMemHandle = free_handle;
        suite.AEGP_LockMemHandle = lock_handle;
        suite.AEGP_UnlockMemHandle = unlock_handle;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
