#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/host_interface.h"

/// A host that writes down every call and answers from a script. It offers the suites that this system
/// acquires and keeps no project: what it hands out are names, so that an expected sequence reads like the
/// rules it is written from:
///
///     CreateNewFolder("Main", root) -> folder1
///     CreateComp(folder1, "Main", 720, 576, 106/100, 100@25, 2500/100) -> comp1
///     GetItemFromComp(comp1) -> item(comp1)
///
/// Times are written value@scale, ratios num/den, doubles with as many digits as bring back the same bits. A
/// call that failed ends in "= CODE" instead of what it yielded, one that yielded nothing in "-> null".
///
/// The host's functions are plain C functions, so one recording host answers at a time: the one made last. It
/// makes itself the plug-in's host (g_pBasicSuite, g_PluginID 7, version55) as long as it lives, and puts
/// back what was before.
class RecordingHost {
  public:
    RecordingHost();
    ~RecordingHost();
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;

    static constexpr AEGP_PluginID kPluginId = 7;

    SPBasicSuite* basic() { return &basic_; }

    // ---- the script

    /// The `nth` call (from 1) of `function` fails with `code`.
    void fail(std::string_view function, A_Err code, int nth = 1);
    /// The call with this number (from 1, of all calls that can fail) fails with `code`.
    void fail_call(int number, A_Err code);
    /// The `nth` call of `function` succeeds and yields no handle.
    void yield_nothing(std::string_view function, int nth = 1);
    /// Acquiring this suite fails with the host's missing-suite error.
    void withhold_suite(std::string_view name, A_long version);
    /// Acquiring this suite succeeds and yields nothing.
    void empty_suite(std::string_view name, A_long version);
    A_Err release_result = kHostErrorNone;
    /// "Pref_DEFAULT_UNLABELED_ALPHA" in "Main Pref Section"; none when the host has no such key.
    std::optional<A_u_char> alpha_preference;
    /// What AEGP_GetFootageInterpretation answers with.
    AEGP_FootageInterp interpretation{};
    /// What AEGP_GetLayerTransferMode answers with.
    AEGP_LayerTransferMode transfer_mode{11, 12, 13};
    A_Boolean add_layer_valid = 1;
    AE_FIM_ImportFlavorRef flavor = 42;

    // ---- what happened

    std::vector<std::string> calls;  ///< of suite functions
    std::vector<std::string>
        traffic;  ///< the calls, with "acquire NAME VERSION" and "release NAME VERSION" between
    std::vector<std::string> reports;  ///< texts shown through AEGP_ReportInfo by this plug-in's id
    AE_FIM_ImportCallbacks registered_callbacks{};
    AEGP_DeathHook registered_death_hook = nullptr;
    AEIO_ModuleInfo registered_module{};
    AEIO_FunctionBlock2 registered_functions{};

    /// Calls so far that could have failed: all but mathematics and acquisitions.
    [[nodiscard]] int call_count() const { return call_count_; }
    /// The calls of these functions alone, in order.
    [[nodiscard]] std::vector<std::string> calls_of(std::initializer_list<std::string_view> functions) const;
    /// What is left open: undo groups, streams that were not disposed, and suites that were not released.
    [[nodiscard]] std::vector<std::string> left_open() const;

    // ---- handles made outside of any call, to begin with

    template <typename Handle>
    Handle handle(std::string name) {
        return static_cast<Handle>(untyped_handle(std::move(name)));
    }

    // ---- for the functions of the suites

    A_Err call(std::string_view function, const std::string& arguments);
    template <typename Handle>
    A_Err call(std::string_view function, const std::string& arguments, Handle* out,
               const std::string& name) {
        bool yields = true;
        const A_Err err = begin_call(function, arguments, &yields);
        if (err == kHostErrorNone)
            *out = yields ? static_cast<Handle>(untyped_handle(name)) : nullptr;
        end_call(err, yields ? name : "null");
        return err;
    }
    void remember_open(const std::string& what) { open_.push_back(what); }
    void remember_closed(const std::string& what);
    std::string numbered(const std::string& kind) { return kind + std::to_string(++numbers_[kind]); }
    /// The name behind a handle; "null", or "UNKNOWN" for a pointer that this host never made.
    [[nodiscard]] std::string name_of(const void* handle) const;
    A_Err acquire(const char* name, A_long version, const void** suite);
    A_Err release(const char* name, A_long version);
    void note(const std::string& line);
    std::map<std::string, A_long> key_counts;

  private:
    // A handle points to its name; converting through an incomplete type's pointer keeps the types apart.
    struct Opaque {
        template <typename Handle>
        explicit operator Handle() const {
            return reinterpret_cast<Handle>(address);
        }
        std::string* address;
    };
    Opaque untyped_handle(std::string name);
    A_Err begin_call(std::string_view function, const std::string& arguments, bool* yields);
    void end_call(A_Err err, const std::string& yielded);

    const struct {
        RecordingHost* host;
        SPBasicSuite* basic;
        AEGP_PluginID plugin_id;
        bool version55;
    } before_;
    SPBasicSuite basic_{};
    std::deque<std::string> names_;
    std::map<std::string, std::string*> by_name_;
    std::map<std::string, int> numbers_;
    std::map<std::string, int> calls_by_function_;
    std::map<std::pair<std::string, int>, A_Err> failures_;
    std::map<int, A_Err> numbered_failures_;
    std::set<std::pair<std::string, int>> yielding_nothing_;
    std::set<std::pair<std::string, A_long>> withheld_;
    std::set<std::pair<std::string, A_long>> empty_;
    std::vector<std::string> open_;
    int call_count_ = 0;
};

/// `number` with as many digits as bring back the same bits; "-0", "inf" and "nan" where they apply.
std::string shortest(double number);
