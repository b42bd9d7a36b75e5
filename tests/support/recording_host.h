#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/current_interface.h"
#include "support/host_generation.h"

/// A footage item, as the input module describes it to a classic host.
struct AEIO_SeqSpec {
    void* options = nullptr;
    std::optional<A_short> depth;
    std::optional<A_Time> duration;
    std::optional<std::pair<A_long, A_long>> dimensions;
    std::optional<A_long> size_bytes;
    std::optional<A_Fixed> fps;
    std::optional<AEIO_AlphaLabel> alpha_label;
};

/// An output file of a classic host. The module gets every byte of the path, zeros included, and no
/// terminator.
struct AEIO_OutSpec {
    std::string path;
};

/// A memory handle. Its bytes return to the heap when it is freed, so a sanitizer sees a later use.
struct AEGP_Mem {
    std::string what;
    std::size_t size_bytes = 0;
    std::unique_ptr<std::byte[]> bytes;
    int locks = 0;
};

/// A host that records every call and answers from a script. It keeps no project: its handles are names, so
/// an expected sequence reads like the rules that it is written from:
///
///     CreateNewFolder("Main", root) -> folder1
///     CreateComp(folder1, "Main", 720, 576, 106/100, 100@25, 2500/100) -> comp1
///     GetItemFromComp(comp1) -> item(comp1)
///
/// Times are written value@scale, ratios num/den, doubles with as many digits as give back the same bits,
/// wide texts as in JSON, and other pointers as addresses. A call that fails ends in "= CODE" instead of its
/// result, one that yields nothing in "-> null".
///
/// A classic host offers every suite that the plug-in acquires. A current host offers the seven suites behind
/// the bridge, "AEGP Utility Suite" 7 and "AEGP Memory Suite" 1; the functions of the seven look at no
/// pointer, so that any address may be passed through the bridge.
///
/// Only one host answers at a time, the one made last, because a host's functions are plain C functions. As
/// long as it lives, it is the plug-in's host (g_pBasicSuite, g_PluginID, version55); then the one before is.
/// Suites, calls, memory and reports may be used on several threads.
class RecordingHost {
  public:
    explicit RecordingHost(HostGeneration generation = HostGeneration::classic);
    /// Fails the running test if a classic host gets a suite back too rarely or too often.
    ~RecordingHost();
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;

    static constexpr AEGP_PluginID kPluginId = 7;

    SPBasicSuite* basic() { return &basic_; }
    /// What an input module's callbacks are given. Its plug-in id is not the plug-in's: the plug-in goes by
    /// the id that its entry point was given.
    AEIO_BasicData* basic_data() { return &basic_data_; }
    [[nodiscard]] AEIO_InSpecH in_spec() { return &in_spec_pointer_; }
    [[nodiscard]] AEIO_OutSpecH out_spec() { return &out_spec_pointer_; }
    [[nodiscard]] AEIO_SeqSpec& footage() { return in_spec_; }
    [[nodiscard]] AEIO_OutSpec& output() { return out_spec_; }

    // ---- the script

    /// The `nth` call (from 1) of `function` fails with `code`.
    void fail(const std::string& function, A_Err code, int nth = 1) { failures_[{function, nth}] = code; }
    void fail_every(const std::string& function, A_Err code) { failures_[{function, kEvery}] = code; }
    /// The call with this number (from 1, of all calls that can fail) fails with `code`.
    void fail_call(int number, A_Err code) { numbered_failures_[number] = code; }
    /// The `nth` call of `function` succeeds and yields null.
    void yield_nothing(const std::string& function, int nth = 1) { yielding_nothing_.emplace(function, nth); }
    void always_yield_nothing(const std::string& function) { yielding_nothing_.emplace(function, kEvery); }
    /// Acquiring this suite yields no table and this result.
    void withhold_suite(const std::string& name, A_long version, A_Err result = kHostErrorMissingSuite) {
        withheld_[{name, version}] = result;
    }
    /// A suite that hosts of this generation lack.
    void offer_suite(const std::string& name, A_long version, const void* table) {
        extra_suites_[{name, version}] = table;
    }
    /// The suites of current hosts for names in UTF-16, cameras and lights, which this host lacks otherwise.
    void offer_named_suites();
    /// Takes back every failure, null result and withheld suite. Calls count from 1 again.
    void clear_script();

    A_Err release_result = kHostErrorNone;
    /// "Pref_DEFAULT_UNLABELED_ALPHA" in "Main Pref Section"; empty when the host lacks the key.
    std::optional<A_u_char> alpha_preference;
    /// The answer of AEGP_GetFootageInterpretation.
    AEGP_FootageInterp interpretation{};
    /// The answer of AEGP_GetLayerTransferMode.
    AEGP_LayerTransferMode transfer_mode{11, 12, 13};
    A_Boolean add_layer_valid = 1;
    AE_FIM_ImportFlavorRef flavor = 42;
    // The answers of a current host's I/O suites.
    std::u16string in_path = u"/in";
    std::u16string out_path = u"/out";
    AEIO_FileSize in_size = 0;
    /// Called when a memory handle has been locked.
    std::function<void()> when_locked;

    // ---- what happened

    /// Calls of suite functions. A current host leaves out those of the Memory and Utility suites, which the
    /// bridge also calls on its own account.
    std::vector<std::string> calls;
    /// The calls, with "acquire NAME VERSION" (where it yields a table) and "release NAME VERSION" between
    /// them.
    std::vector<std::string> traffic;
    /// Texts shown through AEGP_ReportInfo; a prefix marks those under another plug-in's id.
    std::vector<std::string> reports;
    /// Texts shown through the message function of the basic data, with their codes.
    std::vector<std::pair<A_Err, std::string>> messages;
    std::vector<std::pair<AEGP_DeathHook, AEGP_DeathRefcon>> death_hooks;
    // Registered with a classic host.
    AE_FIM_ImportCallbacks registered_callbacks{};
    AEIO_ModuleInfo registered_module{};
    AEIO_FunctionBlock2 registered_functions{};
    // Registered with a current host.
    std::vector<std::pair<AEGP_IORefcon, AEIO_FunctionBlock4>> modules;
    std::vector<AE_FIM_ImportCallbacks3> importers;

    /// Calls so far that could have failed: all but mathematics, copies of texts and acquisitions.
    [[nodiscard]] int call_count() const { return call_count_; }
    /// The calls of these functions alone, in order.
    [[nodiscard]] std::vector<std::string> calls_of(std::initializer_list<std::string_view> functions) const;
    /// The functions called, in order, without their arguments.
    [[nodiscard]] std::vector<std::string> functions_called() const;
    /// How often a suite was acquired and not yet released.
    [[nodiscard]] int held(const std::string& name, A_long version) const;
    /// Suites that are held, as "NAME VERSION x TIMES"; without the two that the plug-in deliberately keeps
    /// from a classic host.
    [[nodiscard]] std::vector<std::string> suites_held() const;
    /// Everything that is open: suites, undo groups, streams, memory handles. A name that was closed once too
    /// often is marked so.
    [[nodiscard]] std::vector<std::string> left_open() const;
    /// The memory handles that are alive.
    [[nodiscard]] const std::vector<std::unique_ptr<AEGP_Mem>>& handles() const { return handles_; }
    /// The text in a memory handle that the plug-in made for the host. Frees the handle, as hosts do.
    std::u16string take_text(AEGP_MemHandle handle);

    // ---- handles made outside of any call, to begin with

    template <typename Handle>
    Handle handle(std::string name) {
        return static_cast<Handle>(untyped_handle(std::move(name)));
    }
    /// The name behind a handle; "null", or an address for a pointer that this host never made.
    [[nodiscard]] std::string name_of(const void* handle) const;

    // ---- for the functions of the suites

    [[nodiscard]] static RecordingHost& current();
    A_Err acquire(const std::string& name, A_long version, const void** suite);
    A_Err release(const std::string& name, A_long version);
    A_Err call(const std::string& function, const std::string& arguments);
    template <typename Handle>
    A_Err call(const std::string& function, const std::string& arguments, Handle* out,
               const std::string& name) {
        const Outcome outcome = next_outcome(function);
        if (outcome.err == kHostErrorNone) {
            *out = outcome.yields ? static_cast<Handle>(untyped_handle(name)) : nullptr;
        }
        record(function + "(" + arguments + ")", outcome.err, outcome.yields ? name : "null");
        return outcome.err;
    }
    /// A call of the Memory or Utility suite.
    A_Err service_call(const std::string& function, const std::string& arguments);
    void note(const std::string& line);
    void report(AEGP_PluginID id, const A_char* text);
    void remember_open(const std::string& what) { open_.push_back(what); }
    void remember_closed(const std::string& what);
    std::string numbered(const std::string& kind) { return kind + std::to_string(++numbers_[kind]); }
    A_Err new_handle(const std::string& arguments, const A_char* what, AEGP_MemSize size_bytes,
                     AEGP_MemFlag flags, AEGP_MemHandle* handle);
    A_Err free_handle(AEGP_MemHandle handle);
    A_Err lock_handle(AEGP_MemHandle handle, void** address);
    A_Err unlock_handle(AEGP_MemHandle handle);
    /// Calls `function`, which yields the text in a memory handle that the caller frees.
    A_Err call(const std::string& function, const std::string& arguments, std::u16string_view text,
               AEGP_MemHandle* handle);
    std::map<std::string, A_long> key_counts;

  private:
    using SuiteKey = std::pair<std::string, A_long>;
    static constexpr int kEvery = 0;
    // A handle points to its name; converting through an incomplete type's pointer keeps the types apart.
    struct Opaque {
        template <typename Handle>
        explicit operator Handle() const {
            return reinterpret_cast<Handle>(address);
        }
        std::string* address;
    };
    struct Outcome {
        A_Err err = kHostErrorNone;
        bool yields = true;
    };
    Opaque untyped_handle(std::string name);
    /// Counts the call and looks it up in the script.
    Outcome next_outcome(const std::string& function);
    Outcome service_outcome(const std::string& function, const std::string& arguments);
    void record(const std::string& call, A_Err err, const std::string& yielded);
    AEGP_MemHandle add_handle(const std::string& what, std::size_t size_bytes, std::byte fill);
    /// Whether the handle is alive; fails the running test when it is not.
    bool alive(AEGP_MemHandle handle) const;
    [[nodiscard]] const void* find_suite(const SuiteKey& key) const;

    const HostGeneration generation_;
    const struct {
        RecordingHost* host;
        SPBasicSuite* basic;
        AEGP_PluginID plugin_id;
        bool version55;
    } before_;
    mutable std::recursive_mutex mutex_;
    SPBasicSuite basic_{};
    AEIO_BasicData basic_data_{};
    AEIO_SeqSpec in_spec_;
    AEIO_SeqSpec* in_spec_pointer_ = &in_spec_;
    AEIO_OutSpec out_spec_;
    AEIO_OutSpec* out_spec_pointer_ = &out_spec_;

    std::map<std::pair<std::string, int>, A_Err> failures_;
    std::map<int, A_Err> numbered_failures_;
    std::set<std::pair<std::string, int>> yielding_nothing_;
    std::map<SuiteKey, A_Err> withheld_;
    std::map<SuiteKey, const void*> extra_suites_;

    std::deque<std::string> names_;
    std::map<std::string, std::string*> by_name_;
    std::map<std::string, int> numbers_;
    std::map<std::string, int> calls_by_function_;
    int call_count_ = 0;
    std::map<SuiteKey, int> held_;
    std::vector<std::string> open_;
    std::vector<std::unique_ptr<AEGP_Mem>> handles_;
};

struct CurrentHost : RecordingHost {
    CurrentHost() : RecordingHost(HostGeneration::current) {}
};

/// `number` with as many digits as give back the same bits; "-0", "inf" and "nan" where they apply.
std::string shortest(double number);

/// Whether `call` throws the one value that a suite handler throws for a missing suite.
template <typename Call>
[[nodiscard]] bool throws_missing_suite(const Call& call) {
    try {
        call();
    } catch (long value) {
        return value == 516;
    }
    return false;
}
