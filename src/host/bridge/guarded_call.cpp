#include "host/bridge/guarded_call.h"

#include <array>
#include <cstdio>
#include <new>

#include "host/bridge/reports.h"
#include "host/suite_handler.h"

namespace bridge {
namespace {

// The suite that a guarded call lacks. Lives on the stack of the call. Calls nest, because the host calls the
// input module while the importer calls the host.
class MissingSuite {
  public:
    MissingSuite();
    ~MissingSuite();
    MissingSuite(const MissingSuite&) = delete;
    MissingSuite& operator=(const MissingSuite&) = delete;

    void note(const A_char* name, A_long version) {
        std::snprintf(name_.data(), name_.size(), "%s", name == nullptr ? "" : name);
        version_ = version;
    }
    void report() const {
        // Without a name, the basic suite itself is missing.
        if (name_.front() != 0) {
            report_missing_suite(name_.data(), version_);
        }
    }

  private:
    static constexpr std::size_t kNameBytes = 64;

    MissingSuite* outer_;
    std::array<A_char, kNameBytes> name_ = {};
    A_long version_ = 0;
};

// Thread-local, because a handler throws on the thread whose acquisition failed. Null while no guarded call
// runs on the thread, so nothing is left behind in the host's threads.
thread_local MissingSuite* innermost = nullptr;

MissingSuite::MissingSuite() : outer_(innermost) {
    innermost = this;
}

MissingSuite::~MissingSuite() {
    innermost = outer_;
}

}  // namespace

A_Err guarded_call(A_Err (*call)(const void* context), const void* context) noexcept {
    const MissingSuite missing_suite;
    try {
        return call(context);
    } catch (long value) {
        if (value != AEGP_SuiteHandler::kMissingSuite) {
            return kHostErrorGeneric;
        }
        missing_suite.report();
        return kHostErrorMissingSuite;
    } catch (const std::bad_alloc&) {
        return kHostErrorAllocation;
    } catch (...) {
        return kHostErrorGeneric;
    }
}

void note_missing_suite(const A_char* name, A_long version) noexcept {
    if (innermost != nullptr) {
        innermost->note(name, version);
    }
}

}  // namespace bridge
