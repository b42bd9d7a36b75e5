#include "host/bridge/guarded_call.h"

#include <array>
#include <cstdio>
#include <new>

#include "host/bridge/reports.h"
#include "host/suite_handler.h"

namespace bridge {
namespace {

// What a guarded call must remember: the suite that it lacks, and the error that stands for an exception of
// the host. Lives on the stack of the call. Calls nest, because the host calls the input module while the
// importer calls the host.
class CallRecord {
  public:
    CallRecord();
    ~CallRecord();
    CallRecord(const CallRecord&) = delete;
    CallRecord& operator=(const CallRecord&) = delete;

    [[nodiscard]] bool is_outermost() const { return outer_ == nullptr; }
    void note_host_exception(A_Err err) { host_exception_ = err; }
    // The exception of a host turns a success into an error.
    [[nodiscard]] A_Err result(A_Err err) const { return err == kHostErrorNone ? host_exception_ : err; }

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

    CallRecord* outer_;
    std::array<A_char, kNameBytes> name_ = {};
    A_long version_ = 0;
    A_Err host_exception_ = kHostErrorNone;
};

// Thread-local, because a handler throws on the thread whose acquisition failed. Null while no guarded call
// runs on the thread, so nothing is left behind in the host's threads.
thread_local CallRecord* innermost = nullptr;

CallRecord::CallRecord() : outer_(innermost) {
    innermost = this;
}

CallRecord::~CallRecord() {
    innermost = outer_;
}

}  // namespace

A_Err guarded_call(A_Err (*call)(const void* context), const void* context) noexcept {
    const CallRecord record;
    if (record.is_outermost()) {
        show_waiting_reports();
    }
    try {
        return record.result(call(context));
    } catch (long value) {
        if (value != AEGP_SuiteHandler::kMissingSuite) {
            return kHostErrorGeneric;
        }
        record.report();
        return kHostErrorMissingSuite;
    } catch (const std::bad_alloc&) {
        return kHostErrorAllocation;
    } catch (...) {
        return kHostErrorGeneric;
    }
}

A_Err host_answer(A_Err (*call)(const void* context), const void* context) noexcept {
    A_Err err = kHostErrorGeneric;
    try {
        return call(context);
    } catch (const std::bad_alloc&) {
        err = kHostErrorAllocation;
    } catch (...) {
        err = kHostErrorGeneric;
    }
    if (innermost != nullptr) {
        innermost->note_host_exception(err);
    }
    return err;
}

void note_missing_suite(const A_char* name, A_long version) noexcept {
    if (innermost != nullptr) {
        innermost->note(name, version);
    }
}

}  // namespace bridge
