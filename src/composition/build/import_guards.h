#pragma once

#include "host/host_interface.h"

class AEGP_SuiteHandler;

// What an import changes in the host for its own length and puts back on every path, a missing suite's
// exception included. Both keep the suite they were made with, which the handler holds for longer: ending
// never has to acquire one, and so never throws.

/// Has the host guess the alpha of unlabelled footage instead of asking for every file; the file's own PREMUL
/// and STRAIGHT are applied afterwards. The first call that fails leaves the preference as it is, and there
/// is nothing to put back; the import goes on with a host that asks.
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

    /// The host's error code of opening the group; only an opened group is closed.
    [[nodiscard]] A_Err Error() const { return error_; }

  private:
    const AEGP_UtilitySuite7* utility_;
    A_Err error_;
};
