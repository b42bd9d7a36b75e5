#pragma once

#include "host/host_interface.h"

class AEGP_SuiteHandler;

// What an import changes in the host while it runs and restores on every path, including a missing suite's
// exception. Both guards keep the suite they were constructed with, which the handler holds for longer, so
// their destructors never acquire a suite and never throw.

/// Makes the host guess the alpha of unlabelled footage instead of asking for every file; the file's own
/// PREMUL and STRAIGHT are applied afterwards. If a call fails, the preference stays as it is, nothing is
/// restored, and the import continues with a host that asks.
class AlphaPreferenceGuard {
  public:
    explicit AlphaPreferenceGuard(AEGP_SuiteHandler& suites);
    ~AlphaPreferenceGuard();
    AlphaPreferenceGuard(const AlphaPreferenceGuard&) = delete;
    AlphaPreferenceGuard& operator=(const AlphaPreferenceGuard&) = delete;

  private:
    bool Change();

    const AEGP_PersistentDataSuite1* persistent_data_;
    AEGP_PersistentBlobH blob_ = nullptr;
    A_u_char saved_ = 0;
    bool changed_ = false;
};

/// One undo step around everything that is built.
class UndoGroup {
  public:
    UndoGroup(AEGP_SuiteHandler& suites, const A_char* name);
    ~UndoGroup();
    UndoGroup(const UndoGroup&) = delete;
    UndoGroup& operator=(const UndoGroup&) = delete;

    /// The host's error code from opening the group. A group that was not opened is not closed.
    [[nodiscard]] A_Err Error() const { return error_; }

  private:
    const AEGP_UtilitySuite7* utility_;
    A_Err error_;
};
