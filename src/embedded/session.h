#pragma once

// The state behind a Host, on which the suite functions work. Internal to src/embedded.

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "embedded/call_log.h"
#include "embedded/conformance.h"
#include "embedded/handles.h"
#include "embedded/host.h"
#include "embedded/host_options.h"
#include "embedded/memory_store.h"
#include "embedded/project.h"
#include "embedded/sequence.h"
#include "embedded/suites/functions.h"
#include "embedded/testing.h"
#include "embedded/text_encoding.h"
#include "system/dynamic_library.h"

namespace embedded {

/// Thrown by the checks below to end a host function with an error; never leaves the function.
struct Refusal {
    A_Err code = kHostErrorParameter;
};

/// The longest narrow name that the host keeps, in bytes.
inline constexpr std::size_t kMaxNameLength = 31;

/// A name as it arrived.
struct GivenName {
    std::string text;
    bool unicode = false;  ///< it came in UTF-16, and `text` is UTF-8 of any length
};

class Session {
  public:
    explicit Session(HostOptions host_options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The session of the living host; null without one.
    static Session* active();

    HostOptions options;
    Project project = empty_project();
    ConformanceReport conformance;
    CallLog log;
    Watcher watcher;
    HandleTable handles;
    MemoryStore memory;

    AEGP_PluginID plugin_id = 1;
    AEIO_BasicData basic_data{};
    std::vector<ImportFlavor> flavors;
    std::vector<Module> modules;
    std::vector<std::string> out_spec_paths;  ///< by id - 1
    std::vector<std::pair<AEGP_DeathHook, AEGP_DeathRefcon>> death_hooks;
    AEGP_GlobalRefcon global_refcon = nullptr;
    std::unique_ptr<os::DynamicLibrary> bundle;

    /// What a stream handle stands for. In `stream_refs` at id - 1.
    struct StreamRef {
        Id layer = 0;
        AEGP_LayerStream kind = 0;
    };
    std::vector<StreamRef> stream_refs;

    /// Keys that are being added through one key-additions handle. In `additions` at id - 1.
    struct Additions {
        struct Key {
            A_Time time{0, 1};  ///< in layer time
            std::optional<StreamComponents> value;
        };
        Id stream_ref = 0;
        std::vector<Key> keys;
    };
    std::vector<Additions> additions;

    /// The folders of sequences, as the callback that runs found them first.
    SequenceIndex sequences;
    int callbacks_running = 0;

    /// Items and compositions for which HostOptions::layers_refused made AEGP_IsAddLayerValid answer no.
    std::set<std::pair<Id, Id>> refused_layers;
    int layers_asked_for = 0;

    std::array<int, kSuiteCount> suites_acquired{};
    int undo_depth = 0;

    /// The thread that made the host.
    std::thread::id main_thread = std::this_thread::get_id();
    /// The copy of an in-spec that is being drawn, which nobody may change; 0 for none.
    Id drawn_copy = 0;

    // --- calls of the bundle into the host

    struct CurrentCall {
        std::int64_t n = 0;
        const char* function = "";
    };
    CurrentCall current_call;
    std::array<std::int64_t, kFunctionCount> call_counts{};

    /// Counts the call. Returns the code of the fault set for it, or null.
    const A_Err* count_call(Fn function) {
        const std::int64_t nth = ++call_counts[static_cast<std::size_t>(function)];
        return faults_.empty() ? nullptr : fault_of(function, nth);
    }

    void passing(Passage passage, std::string_view what) const {
        if (watcher) {
            watcher(passage, what);
        }
    }

    // --- calls of the host into the bundle

    CallbackResult run(const std::string& name, const std::function<A_Err()>& body);
    /// `path` is what a classic host says the bundle's file is.
    LoadResult call_entry(AEGP_PluginInitFunc entry, const std::string& path);
    LoadResult call_entry(AEGP_PluginInitFuncCurrent entry);
    void unload();
    /// Forgets what the bundle registered.
    void forget_registrations();

    // --- rule violations

    /// Reports a finding in the current call.
    void found(RuleViolation violation, std::string text);
    [[noreturn]] void refuse(RuleViolation violation, std::string text, A_Err code = kHostErrorParameter);

    /// Reports a block that has no owner any more.
    void left_memory(Id block, const std::string& callback);

    // --- checks of arguments; each reports a violation and throws Refusal when it fails

    template <class T>
    T& require(T* pointer, const char* argument) {
        if (pointer == nullptr) {
            refuse(RuleViolation::bad_argument, std::string(argument) + " is null");
        }
        return *pointer;
    }
    /// The id behind a handle, which must be alive and of its own kind.
    template <class H>
    Id id(H handle, const char* argument) {
        constexpr HandleKind kKind = HandleKindOf<H>::value;
        const HandleTable::Token* const token = handles.find(handle);
        if (token == nullptr || token->kind != kKind || !token->alive) {
            refuse_handle(kKind, handle, argument);
        }
        return token->id;
    }
    /// As above, for an item that must be a folder.
    Id folder_id(AEGP_ItemH handle, const char* argument);
    /// The parent of a new item. For suites with names in UTF-16, null is the root folder; `name` only tells
    /// the two kinds of suites apart.
    Id parent_folder_id(AEGP_ItemH handle, const A_char* name, const char* argument);
    Id parent_folder_id(AEGP_ItemH handle, const A_UTF16Char* name, const char* argument);
    void require_plugin(AEGP_PluginID id_given);
    /// Refuses a call off the main thread, in a current host.
    void require_main_thread();
    /// The in-spec behind a handle, for a change; refuses a copy that is being drawn.
    InSpec& in_spec_to_change(AEIO_InSpecH handle);
    void require_true(bool holds, const char* argument, const char* rule) {
        if (!holds) {
            refuse(RuleViolation::bad_argument, std::string(argument) + " " + rule);
        }
    }
    const A_Time& require_time(const A_Time* time, const char* argument);
    const A_Ratio& require_positive(const A_Ratio* ratio, const char* argument);
    /// A narrow name, cut at kMaxNameLength and noted if it is longer.
    GivenName name(const A_char* text, const char* argument);
    /// A name in UTF-16, of any length.
    GivenName name(const A_UTF16Char* text, const char* argument);
    /// A path as this host keeps it: the bytes as they are in a classic host, else as UTF-8.
    std::string path(const A_char* text, const char* argument) { return &require(text, argument); }
    std::string path(const A_UTF16Char* text, const char* argument) { return unicode(text, argument); }

    /// A path in memory that the bundle must free: UTF-16, terminated.
    AEGP_MemHandle lend_path(const std::string& path);

    // --- changes

    /// Counts a change in the open undo step, or reports that none is open.
    void changed();
    Item& add_item(ItemKind kind, GivenName name, Id parent_folder, Id content);

    Item& item(Id item_id) { return project.items.at(Project::index(item_id)); }
    Footage& footage(Id footage_id) { return project.footage.at(Project::index(footage_id)); }
    Composition& composition(Id comp_id) { return project.compositions.at(Project::index(comp_id)); }
    Layer& layer(Id layer_id) { return project.layers.at(Project::index(layer_id)); }
    InSpec& in_spec(Id in_spec_id) { return project.in_specs.at(Project::index(in_spec_id)); }

    // --- suites

    /// The function table of a suite; null when this host does not have it.
    [[nodiscard]] const void* suite_table(const std::string& name, A_long version, SuiteId& suite) const;
    /// The suite's name and the version that this host offers: "AEGP Comp Suite 9".
    [[nodiscard]] std::string suite_text(SuiteId suite) const;

  private:
    /// What existed when a callback began. The callback left behind whatever was opened later and is open at
    /// its end.
    struct Marks {
        Id streams = 0;
        Id additions = 0;
        std::size_t footage = 0;
        std::size_t memory = 0;
        std::array<int, kSuiteCount> suites{};
        int undo_depth = 0;
    };
    LoadResult finish_loading(const CallbackResult& entry);
    [[nodiscard]] Marks marks() const;
    void check_left_behind(const Marks& since, const std::string& callback);
    void check_suites(const Marks& since, const std::string& callback);
    void check_memory(const Marks& since, const std::string& callback);
    void left(RuleViolation violation, const std::string& callback, std::string text);
    /// A text in UTF-16, as UTF-8.
    std::string unicode(const A_UTF16Char* text, const char* argument);
    [[noreturn]] void refuse_handle(HandleKind kind, const void* handle, const char* argument);
    [[nodiscard]] const A_Err* fault_of(Fn function, std::int64_t nth) const;

    std::vector<std::pair<Fn, Fault>> faults_;
    std::vector<bool> footage_reported_;
};

/// The basic suite, whose first function acquires all others.
SPBasicSuite* basic_suite_table();
/// The message function in an input module's basic data.
void message_function(A_Err code, const A_char* text);

}  // namespace embedded
