#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/host_interface.h"

/// A footage item's description, as the module sets it.
struct AEIO_SeqSpec {
    void* options = nullptr;
    std::optional<A_short> depth;
    std::optional<A_Time> duration;
    std::optional<std::pair<A_long, A_long>> dimensions;
    std::optional<A_long> size_bytes;
    std::optional<A_Fixed> fps;
    std::optional<AEIO_AlphaLabel> alpha_label;
};

/// An output file; the path is written to the module with everything in it, zeros and all.
struct AEIO_OutSpec {
    std::string path;
};

/// A memory handle. Its bytes go back to the heap when it is freed, so that the sanitizer sees a use after
/// that.
struct AEGP_Mem {
    std::string what;
    std::size_t size_bytes = 0;
    std::unique_ptr<std::byte[]> bytes;
    int locks = 0;
};

/// The part of a host that an input module sees: suites, memory handles and one in-spec and out-spec. Records
/// every call, and fails the running test on a misuse of handles. One at a time is alive; the suites'
/// functions find it on their own.
class SmallHost {
  public:
    static constexpr AEGP_PluginID kPluginId = 4711;

    /// Sets the globals of the plug-in as its entry point does for a host of version 9.32.
    SmallHost();
    ~SmallHost();
    SmallHost(const SmallHost&) = delete;
    SmallHost& operator=(const SmallHost&) = delete;

    [[nodiscard]] AEIO_BasicData* basic() { return &basic_; }
    [[nodiscard]] AEIO_InSpecH in_spec() { return &in_spec_pointer_; }
    [[nodiscard]] AEIO_OutSpecH out_spec() { return &out_spec_pointer_; }
    [[nodiscard]] AEIO_SeqSpec& footage() { return in_spec_; }
    [[nodiscard]] AEIO_OutSpec& output() { return out_spec_; }

    /// Every call of a suite's function in order, as "Function" or "Function(argument)".
    std::vector<std::string> calls;
    /// Texts shown through the utility suite, and through the message function with their codes.
    std::vector<std::string> reports;
    std::vector<std::pair<A_Err, std::string>> messages;

    /// The n-th call from now on, counted from 1 over all functions that return an error, fails; or those of
    /// one function.
    void FailCall(int n, A_Err code) { failing_call_ = {n, code}; }
    void FailFunction(const std::string& function, A_Err code) { failing_functions_[function] = code; }
    /// A function succeeds but stores null.
    void YieldNothing(const std::string& function) { yielding_nothing_.insert(function); }
    void WithholdSuite(const std::string& name) { withheld_.insert(name); }
    /// Takes back all faults.
    void Behave();

    /// Calls since the last faults were set that could have failed.
    [[nodiscard]] int fallible_calls() const { return fallible_calls_; }
    [[nodiscard]] const std::multiset<std::string>& suites_in_use() const { return suites_in_use_; }
    [[nodiscard]] const std::vector<std::unique_ptr<AEGP_Mem>>& handles() const { return handles_; }

    // For the suites' functions.
    [[nodiscard]] static SmallHost& current();
    A_Err Enter(const std::string& function, const std::string& argument = "");
    [[nodiscard]] bool YieldsNothing(const std::string& function) const {
        return yielding_nothing_.count(function) > 0;
    }
    A_Err AcquireSuite(const std::string& name, A_long version, const void** suite);
    void ReleaseSuite(const std::string& name);
    [[nodiscard]] AEGP_MemHandle NewHandle(const char* what, std::size_t size_bytes, bool clear);
    void FreeHandle(AEGP_MemHandle handle);
    /// Whether the handle is alive; fails the test when it is not.
    [[nodiscard]] bool Alive(AEGP_MemHandle handle) const;

  private:
    SPBasicSuite basic_suite_ = {};
    AEIO_BasicData basic_ = {};
    AEIO_SeqSpec in_spec_;
    AEIO_SeqSpec* in_spec_pointer_ = &in_spec_;
    AEIO_OutSpec out_spec_;
    AEIO_OutSpec* out_spec_pointer_ = &out_spec_;
    std::vector<std::unique_ptr<AEGP_Mem>> handles_;
    std::multiset<std::string> suites_in_use_;
    std::set<std::string> withheld_;
    std::set<std::string> yielding_nothing_;
    std::map<std::string, A_Err> failing_functions_;
    std::pair<int, A_Err> failing_call_ = {0, 0};
    int fallible_calls_ = 0;
};

/// Runs a callback for which the host lacks a suite; whether it threw the one value that the suite handler
/// throws.
template <typename Call>
[[nodiscard]] bool ThrowsMissingSuite(Call call) {
    try {
        call();
    } catch (long value) {
        return value == 516;
    }
    return false;
}
