#include <gtest/gtest.h>

#include <algorithm>

#include "embedded/bundle_side.h"

namespace {

using embedded::RuleViolation;

TEST(MemoryHandles, HaveTheRequestedSizeAndAreZeroedOnRequest) {
    BundleSide bundle;
    void* address = nullptr;
    const AEGP_MemHandle clear = bundle.memory(1000, kMemFlagClear);
    ASSERT_EQ(bundle.memory_suite->AEGP_LockMemHandle(clear, &address), kHostErrorNone);
    auto* bytes = static_cast<unsigned char*>(address);
    EXPECT_EQ(std::count(bytes, bytes + 1000, 0), 1000);
    bytes[999] = 1;  // the sanitizer fails this if the block is too short

    const AEGP_MemHandle raw = bundle.memory(1000, 0);
    ASSERT_EQ(bundle.memory_suite->AEGP_LockMemHandle(raw, &address), kHostErrorNone);
    bytes = static_cast<unsigned char*>(address);
    EXPECT_EQ(std::count(bytes, bytes + 1000, 0), 0) << "memory that is not cleared must not look cleared";
}

TEST(MemoryHandles, KeepTheirAddressWhenUnlocked) {
    BundleSide bundle;
    const AEGP_MemHandle memory = bundle.memory();
    void* first = nullptr;
    void* second = nullptr;
    bundle.memory_suite->AEGP_LockMemHandle(memory, &first);
    EXPECT_EQ(bundle.memory_suite->AEGP_UnlockMemHandle(memory), kHostErrorNone);
    bundle.memory_suite->AEGP_LockMemHandle(memory, &second);
    EXPECT_EQ(first, second);
}

struct Case {
    const char* name;
    RuleViolation violation;
    A_Err result;
    std::function<A_Err(BundleSide&, AEGP_MemHandle)> misuse;
};

const Case kMisuses[] = {
    {"locked after it was freed", RuleViolation::memory_use_after_free, kHostErrorParameter,
     [](BundleSide& b, AEGP_MemHandle memory) {
         void* address = nullptr;
         b.memory_suite->AEGP_FreeMemHandle(memory);
         return b.memory_suite->AEGP_LockMemHandle(memory, &address);
     }},
    {"unlocked after it was freed", RuleViolation::memory_use_after_free, kHostErrorParameter,
     [](BundleSide& b, AEGP_MemHandle memory) {
         b.memory_suite->AEGP_FreeMemHandle(memory);
         return b.memory_suite->AEGP_UnlockMemHandle(memory);
     }},
    {"attached after it was freed", RuleViolation::memory_use_after_free, kHostErrorParameter,
     [](BundleSide& b, AEGP_MemHandle memory) {
         void* old = nullptr;
         b.memory_suite->AEGP_FreeMemHandle(memory);
         return b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")),
                                                           memory, &old);
     }},
    {"freed twice", RuleViolation::memory_double_free, kHostErrorParameter,
     [](BundleSide& b, AEGP_MemHandle memory) {
         b.memory_suite->AEGP_FreeMemHandle(memory);
         return b.memory_suite->AEGP_FreeMemHandle(memory);
     }},
    {"unlocked without a lock", RuleViolation::memory_unlock_without_lock, kHostErrorParameter,
     [](BundleSide& b, AEGP_MemHandle memory) { return b.memory_suite->AEGP_UnlockMemHandle(memory); }},
    {"unlocked more often than locked", RuleViolation::memory_unlock_without_lock, kHostErrorParameter,
     [](BundleSide& b, AEGP_MemHandle memory) {
         void* address = nullptr;
         b.memory_suite->AEGP_LockMemHandle(memory, &address);
         b.memory_suite->AEGP_UnlockMemHandle(memory);
         return b.memory_suite->AEGP_UnlockMemHandle(memory);
     }},
    {"freed while locked", RuleViolation::memory_left_locked, kHostErrorNone,
     [](BundleSide& b, AEGP_MemHandle memory) {
         void* address = nullptr;
         b.memory_suite->AEGP_LockMemHandle(memory, &address);
         return b.memory_suite->AEGP_FreeMemHandle(memory);
     }},
};

TEST(MemoryHandles, ReportEveryMisuse) {
    for (const Case& c : kMisuses) {
        SCOPED_TRACE(c.name);
        BundleSide bundle;
        EXPECT_EQ(c.misuse(bundle, bundle.memory()), c.result);
        ASSERT_EQ(bundle.host.conformance().violations().size(), 1U) << bundle.host.conformance().to_text();
        EXPECT_EQ(bundle.host.conformance().violations()[0].code, c.violation);
    }
}

TEST(MemoryHandles, AreNamedWhenLeftAlive) {
    BundleSide bundle;
    bundle.host.run("callback", [&]() -> A_Err {
        bundle.memory(48);
        return kHostErrorNone;
    });
    ASSERT_EQ(bundle.host.conformance().violations().size(), 1U);
    EXPECT_EQ(bundle.host.conformance().violations()[0].reason, "mem:1 \"block\" of 48 bytes was left alive");
}

}  // namespace
