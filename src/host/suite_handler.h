#pragma once

#include <cstddef>

#include "host/host_interface.h"
#include "host/suite_rows.h"

#define VXR_DECLARE_SUITE_TYPE(name, version, accessor, type) struct type;
VXR_RELEASED_SUITE_ROWS(VXR_DECLARE_SUITE_TYPE)
VXR_KEPT_SUITE_ROWS(VXR_DECLARE_SUITE_TYPE)
#undef VXR_DECLARE_SUITE_TYPE

/// Hands out the host's suites during one call of the host into the plug-in. It acquires each suite the first
/// time it is asked for, keeps it for the rest of the call and releases it in the destructor. It lives on the
/// stack of that call and is used by its thread alone.
///
/// If the host cannot supply a suite, MissingSuiteError throws. Nothing in the plug-in catches the exception,
/// so it ends the call. Unwinding runs the destructor, which releases the suites acquired before.
class AEGP_SuiteHandler {
  public:
    /// Throws MissingSuiteError at once when `basic` is null.
    explicit AEGP_SuiteHandler(const SPBasicSuite* basic);
    ~AEGP_SuiteHandler();
    AEGP_SuiteHandler(const AEGP_SuiteHandler&) = delete;
    AEGP_SuiteHandler& operator=(const AEGP_SuiteHandler&) = delete;

    // One accessor for each row, named after the suite's words and its version: UtilitySuite7() is "AEGP
    // Utility Suite" 7. Never null; the table belongs to the host and is valid as long as this object.
#define VXR_SUITE_ACCESSOR(name, version, accessor, type)                            \
    const type* accessor() {                                                         \
        return static_cast<const type*>(suite_in_slot(k_##accessor, name, version)); \
    }
    VXR_RELEASED_SUITE_ROWS(VXR_SUITE_ACCESSOR)
    VXR_KEPT_SUITE_ROWS(VXR_SUITE_ACCESSOR)
#undef VXR_SUITE_ACCESSOR

    /// Gives one suite back to the host. Returns the host's error code.
    A_Err ReleaseSuite(const A_char* name, A_long version);

    /// Releases every acquired suite of the released rows, in their order, and ignores the results. Does not
    /// clear the slots: only the destructor calls it, once.
    void ReleaseAllSuites();

    /// The value that a missing suite throws, as a `long`: the only exception that the plug-in throws on
    /// purpose.
    static constexpr long kMissingSuite = 516;

    /// Throws kMissingSuite.
    [[noreturn]] void MissingSuiteError() const;

  private:
#define VXR_SUITE_SLOT(name, version, accessor, type) k_##accessor,
    enum Slot : std::size_t {
        VXR_RELEASED_SUITE_ROWS(VXR_SUITE_SLOT) kReleasedSuites,
        kLastReleased = kReleasedSuites - 1,
        VXR_KEPT_SUITE_ROWS(VXR_SUITE_SLOT) kUsedSlots
    };
#undef VXR_SUITE_SLOT

    /// Five slots more than there are rows. They never hold a suite and are deliberately kept, with the
    /// table's length.
    static constexpr std::size_t kSuiteSlots = 101;
    static_assert(kReleasedSuites == 94 && kUsedSlots + 5 == kSuiteSlots);

    const void* suite_in_slot(Slot slot_index, const A_char* name, A_long version) {
        const void*& suite = suites_[slot_index];
        if (suite == nullptr) {
            suite = acquire(name, version);
        }
        return suite;
    }
    const void* acquire(const A_char* name, A_long version) const;

    const SPBasicSuite* basic_;
    const void* suites_[kSuiteSlots];
};
static_assert(sizeof(AEGP_SuiteHandler) == 102 * sizeof(void*));
