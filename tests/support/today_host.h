#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/today_interface.h"

/// Today's host, as far as the bridge speaks to it: the seven suites in their newer versions, "AEGP Utility
/// Suite" 7 and "AEGP Memory Suite" 1. It writes down every call and answers from a script, like
/// RecordingHost:
///
///     acquire AEGP Footage Suite 11
///     NewFootage(7, u"/a/b.png", null, {0, 1, 2, 3}, 1, null)
///
/// Wide texts are written as JSON would. A call that failed ends in "= CODE". May be called from several
/// threads. One host answers at a time: the one made last.
class TodayHost {
  public:
    TodayHost();
    ~TodayHost();
    TodayHost(const TodayHost&) = delete;
    TodayHost& operator=(const TodayHost&) = delete;

    static constexpr AEGP_PluginID kPluginId = 7;
    using SuiteKey = std::pair<std::string, A_long>;

    SPBasicSuite* basic() { return &basic_; }
    /// As the host gives it to a module's callbacks.
    AEIO_BasicData basic_data(AEGP_IORefcon refcon = nullptr);

    // ---- the script

    /// Acquiring this suite yields nothing and this result.
    void withhold_suite(const std::string& name, A_long version, A_Err result = kHostErrorMissingSuite) {
        withheld_[{name, version}] = result;
    }
    /// A suite that today's hosts do not have.
    void offer_suite(const std::string& name, A_long version, const void* table) {
        tables_[{name, version}] = table;
    }
    /// Every call of `function` fails with `code`; those that make a handle make none.
    void fail(const std::string& function, A_Err code) { failures_[function] = code; }
    /// Calls of `function` succeed and yield null.
    void yield_nothing(const std::string& function) { yielding_nothing_.insert(function); }
    std::u16string in_path = u"/in";
    std::u16string out_path = u"/out";
    AEIO_FileSize in_size = 0;
    /// Called when a memory handle has been locked, if there is one.
    std::function<void()> when_locked;

    // ---- what happened

    std::vector<std::string> calls;    ///< of suite functions, but those of the Memory and Utility suites
    std::vector<std::string> traffic;  ///< "acquire NAME VERSION" and "release NAME VERSION" that succeeded
    std::vector<std::string> reports;
    std::vector<std::pair<AEGP_DeathHook, AEGP_DeathRefcon>> death_hooks;
    std::vector<std::pair<AEGP_IORefcon, AEIO_FunctionBlock4>> modules;
    std::vector<AE_FIM_ImportCallbacks3> importers;

    [[nodiscard]] int held(const std::string& name, A_long version) const;
    /// Suites, memory handles and locks that were not given back.
    [[nodiscard]] std::vector<std::string> left_open() const;
    /// The text in a memory handle that the plug-in made; frees the handle, as hosts do.
    std::u16string take_text(AEGP_MemHandle handle);

    // ---- for the functions of the suites

    A_Err acquire(const char* name, A_long version, const void** suite);
    A_Err release(const char* name, A_long version);
    A_Err call(const std::string& function, const std::string& arguments);
    /// A handle with the text, unless the script says otherwise; exactly as long as it must be.
    A_Err make_text(const std::string& function, std::u16string_view text, AEGP_MemHandle* handle);
    /// The script's result for the function.
    [[nodiscard]] A_Err result_of(const std::string& function) const;
    [[nodiscard]] bool yields(const std::string& function) const {
        return !yielding_nothing_.contains(function);
    }
    A_Err new_handle(std::size_t size_bytes, AEGP_MemHandle* handle);
    A_Err free_handle(AEGP_MemHandle handle);
    A_Err lock_handle(AEGP_MemHandle handle, void** address);
    A_Err unlock_handle(AEGP_MemHandle handle);
    void report(AEGP_PluginID id, const A_char* text);

  private:
    struct Memory {
        std::unique_ptr<char[]> bytes;
        std::size_t size_bytes = 0;
        int locks = 0;
    };
    mutable std::recursive_mutex mutex_;
    SPBasicSuite basic_{};
    std::map<SuiteKey, const void*> tables_;
    std::map<SuiteKey, A_Err> withheld_;
    std::map<SuiteKey, int> held_;
    std::map<std::string, A_Err> failures_;
    std::set<std::string> yielding_nothing_;
    std::map<AEGP_MemHandle, Memory> memory_;
    std::uintptr_t last_handle_ = 0;
};

/// u"text" in ASCII: other units as \uXXXX.
std::string quoted(std::u16string_view text);
