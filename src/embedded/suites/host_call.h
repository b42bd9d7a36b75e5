#pragma once

// Every suite function consists of its arguments, its body and its results. What surrounds these three is
// here: counting, faults, the log, and turning a Refusal into an error code.

#include <filesystem>
#include <new>
#include <optional>

#include "embedded/session.h"
#include "embedded/suites/call_values.h"

namespace embedded {

/// A function, and the version of its suite through which it was called: the one that lists it, if not given.
struct CalledFunction {
    CalledFunction(Fn called) : function(called), suite(function_info(called).suite) {}
    CalledFunction(Fn called, SuiteId of) : function(called), suite(of) {}

    Fn function;
    SuiteId suite;
};

/// One call from begin to end. Calls nest when a host function calls back into the bundle.
class CallScope {
  public:
    CallScope(Session& session, const CalledFunction& called)
        : session_(session),
          function_(called.function),
          suite_(called.suite),
          outer_(session.current_call),
          logged_(session.log.on()) {
        const Fn function = called.function;
        session.passing(Passage::call_begins, function_info(function).name);
        session.current_call = {session.log.begin(), function_info(function).name};
        fault_ = session.count_call(function);
        if (logged_) {
            line_.emplace(session);
        }
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
    /// Writes the line even when an exception passes through; the result is then null.
    ~CallScope() {
        try {
            if (logged_ && session_.log.on()) {
                write_line();
            }
        } catch (...) {
            // A line that cannot be written must not end the bundle's call, and a destructor must not throw.
            logged_ = false;
        }
        session_.current_call = outer_;
        session_.passing(Passage::call_ends, function_info(function_).name);
    }

    [[nodiscard]] bool logged() const { return logged_; }
    /// The code that is returned instead of running the body; null without a fault.
    [[nodiscard]] const A_Err* fault() const { return fault_; }
    /// Only for a logged call, like the functions below.
    CallValues& args() { return line_->args; }
    CallValues& out() { return line_->out; }
    void set_result(A_Err code) { line_->result.integer(kResult, code); }
    void set_result(A_FpLong value) { line_->result.number(kResult, value); }
    void set_result(const A_char* text) { line_->result.text(kResult, text); }

  private:
    /// The line's values. Most calls are made with the log off and have none.
    struct Line {
        explicit Line(const Session& session) : args(session), out(session), result(session) {}
        CallValues args;
        CallValues out;
        CallValues result;  ///< under the name kResult
    };
    static constexpr char kResult[] = "result";

    void write_line();

    Session& session_;
    Fn function_;
    SuiteId suite_;
    Session::CurrentCall outer_;
    bool logged_;
    const A_Err* fault_ = nullptr;
    std::optional<Line> line_;
};

/// One call of a function that returns an error code. `args(CallValues&)` names the arguments and runs only
/// while the log is on; `body(Session&)` does the work and may throw Refusal; `out(CallValues&)` names the
/// results of a call that succeeded. With a fault the body does not run and nothing changes.
template <class Args, class Body, class Out>
A_Err host_call(const CalledFunction& function, const Args& args, const Body& body, const Out& out) {
    Session* session = Session::active();
    if (session == nullptr) {
        return kHostErrorGeneric;
    }
    CallScope call(*session, function);
    if (call.logged()) {
        args(call.args());
    }
    A_Err result = kHostErrorNone;
    if (call.fault() != nullptr) {
        result = *call.fault();
    } else {
        try {
            result = body(*session);
        } catch (const Refusal& refusal) {
            result = refusal.code;
        } catch (const std::bad_alloc&) {
            result = kHostErrorAllocation;
        } catch (const std::filesystem::filesystem_error&) {
            result = kHostErrorGeneric;
        }
    }
    if (call.logged()) {
        if (result == kHostErrorNone) {
            out(call.out());
        }
        call.set_result(result);
    }
    return result;
}

/// For functions without results besides their error code.
template <class Args, class Body>
A_Err host_call(const CalledFunction& function, const Args& args, const Body& body) {
    return host_call(function, args, body, [](CallValues&) {});
}

}  // namespace embedded
