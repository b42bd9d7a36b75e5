#include "embedded/session.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "embedded/module_driver.h"

namespace embedded {
namespace {

Session*& active_session() {
    static Session* session = nullptr;
    return session;
}

/// The bundle deliberately never releases these two: what it registered through them stays reachable, and
/// each of its handlers acquires them anew.
bool is_kept_suite(std::size_t suite) {
    return suite == static_cast<std::size_t>(SuiteId::registration) ||
           suite == static_cast<std::size_t>(SuiteId::persistent_data);
}

constexpr char kPreferenceSection[] = "Main Pref Section";
constexpr char kAlphaPreference[] = "Pref_DEFAULT_UNLABELED_ALPHA";

std::string memory_text(const MemoryBlock& block) {
    return "mem:" + std::to_string(block.id) + " \"" + block.what + "\"";
}

/// No real path is longer; every system's own limit is far below.
constexpr std::size_t kMaxLent_bytes = 1U << 20U;

/// Counts the callbacks that run, and tells the watcher when control passes to the bundle and back.
class CallbackScope {
  public:
    CallbackScope(Session& session, const std::string& name) : session_(session), name_(name) {
        if (session.callbacks_running++ == 0) {
            session.sequences.forget();
        }
        session.passing(Passage::callback_begins, name);
    }
    ~CallbackScope() {
        session_.passing(Passage::callback_ends, name_);
        --session_.callbacks_running;
    }
    CallbackScope(const CallbackScope&) = delete;
    CallbackScope& operator=(const CallbackScope&) = delete;

  private:
    Session& session_;
    const std::string& name_;
};

/// The value that the bundle throws when the host does not supply a suite.
constexpr long kMissingSuiteException = 516;

}  // namespace

Session* Session::active() {
    return active_session();
}

Session::Session(HostOptions host_options) : options(std::move(host_options)) {
    if (active_session() != nullptr) {
        throw std::logic_error("another host exists in this process");
    }
    for (const Fault& fault : options.faults) {
        const auto known = std::find_if(kFunctions.begin(), kFunctions.end(), [&fault](const auto& function) {
            return function.can_fail && fault.function == function.name;
        });
        if (known == kFunctions.end()) {
            throw std::invalid_argument("no host function \"" + fault.function + "\" that can fail");
        }
        faults_.emplace_back(static_cast<Fn>(known - kFunctions.begin()), fault);
    }
    handles.make<AEGP_ProjectH>();
    handles.make<AEGP_ItemH>();  // the root folder
    handles.make<AEGP_PersistentBlobH>();
    if (options.alpha_preference) {
        project.preferences[{kPreferenceSection, kAlphaPreference}] = {*options.alpha_preference};
    }
    basic_data = {message_function, basic_suite_table(), plugin_id, nullptr};
    active_session() = this;
}

Session::~Session() {
    active_session() = nullptr;
}

const A_Err* Session::fault_of(Fn function, std::int64_t nth) const {
    for (const auto& [faulty, fault] : faults_) {
        if (faulty == function && fault.nth == nth) {
            return &fault.code;
        }
    }
    return nullptr;
}

// --- the boundary to the bundle

CallbackResult Session::run(const std::string& name, const std::function<A_Err()>& body) {
    const Marks before = marks();
    CallbackResult result;
    try {
        const CallbackScope scope(*this, name);
        result.code = body();
    } catch (long value) {
        if (value != kMissingSuiteException) {
            check_left_behind(before, name);
            throw;
        }
        result = {kHostErrorMissingSuite, true};
        left(RuleViolation::missing_suite_exception, name,
             "a suite was missing, and the exception left the callback");
    } catch (...) {
        check_left_behind(before, name);
        throw;
    }
    check_left_behind(before, name);
    return result;
}

LoadResult Session::finish_loading(const CallbackResult& entry) {
    LoadResult loaded;
    loaded.entry = entry;
    if (loaded.entry.code == kHostErrorNone) {
        return loaded;
    }
    loaded.error = loaded.entry.missing_suite
                       ? "the entry point asked for a suite that this host does not offer"
                       : "the entry point failed with host error " + std::to_string(loaded.entry.code);
    forget_registrations();
    return loaded;
}

LoadResult Session::call_entry(AEGP_PluginInitFunc entry, const std::string& path) {
    const InterfaceVersion version = options.interface_version();
    return finish_loading(run("entry point", [&] {
        return entry(basic_suite_table(), version.major, version.minor, path.c_str(), path.c_str(), plugin_id,
                     &global_refcon);
    }));
}

LoadResult Session::call_entry(AEGP_PluginInitFuncCurrent entry) {
    const InterfaceVersion version = options.interface_version();
    return finish_loading(run("entry point", [&] {
        return entry(basic_suite_table(), version.major, version.minor, plugin_id, &global_refcon);
    }));
}

void Session::forget_registrations() {
    flavors.clear();
    modules.clear();
    death_hooks.clear();
}

Session::Marks Session::marks() const {
    return {handles.made(HandleKind::stream),
            handles.made(HandleKind::additions),
            project.footage.size(),
            memory.blocks().size(),
            suites_acquired,
            undo_depth};
}

void Session::left(RuleViolation violation, const std::string& callback, std::string text) {
    conformance.add(conformance_finding(violation, 0, callback, std::move(text)));
}

void Session::check_left_behind(const Marks& since, const std::string& callback) {
    for (Id id = since.additions + 1; id <= handles.made(HandleKind::additions); ++id) {
        if (!handles.alive(HandleKind::additions, id)) {
            continue;
        }
        handles.kill(HandleKind::additions, id);
        left(RuleViolation::additions_not_ended, callback,
             "additions:" + std::to_string(id) + " of stream:" +
                 std::to_string(additions[Project::index(id)].stream_ref) + " were started and never ended");
    }
    for (Id id = since.streams + 1; id <= handles.made(HandleKind::stream); ++id) {
        if (!handles.alive(HandleKind::stream, id)) {
            continue;
        }
        handles.kill(HandleKind::stream, id);
        left(RuleViolation::stream_not_disposed, callback,
             "stream:" + std::to_string(id) + " of layer:" +
                 std::to_string(stream_refs[Project::index(id)].layer) + " was never disposed of");
    }
    footage_reported_.resize(project.footage.size(), false);
    for (std::size_t i = since.footage; i < project.footage.size(); ++i) {
        const Footage& made = project.footage[i];
        if (made.item != 0 || footage_reported_[i]) {
            continue;
        }
        footage_reported_[i] = true;
        left(RuleViolation::footage_never_adopted, callback,
             "footage:" + std::to_string(made.id) + " was made and never added to the project");
    }
    if (undo_depth > since.undo_depth) {
        left(RuleViolation::undo_group_unbalanced, callback,
             std::to_string(undo_depth - since.undo_depth) + " undo groups were left open");
        undo_depth = since.undo_depth;
        if (undo_depth == 0) {
            project.undo_steps.back().closed = true;
        }
    }
    check_memory(since, callback);
    check_suites(since, callback);
}

void Session::check_suites(const Marks& since, const std::string& callback) {
    for (std::size_t suite = 0; suite < kSuiteCount; ++suite) {
        const int kept = suites_acquired[suite] - since.suites[suite];
        suites_acquired[suite] = std::min(suites_acquired[suite], since.suites[suite]);
        if (kept > 0 && !is_kept_suite(suite)) {
            left(RuleViolation::suite_not_released, callback,
                 suite_text(static_cast<SuiteId>(suite)) + " was acquired and not released, " +
                     std::to_string(kept) + " times");
        }
    }
}

void Session::check_memory(const Marks& since, const std::string& callback) {
    for (std::size_t i = since.memory; i < memory.blocks().size(); ++i) {
        MemoryBlock& block = memory.block(static_cast<Id>(i) + 1);
        if (block.alive() && block.locks > 0 && !block.reported) {
            left(RuleViolation::memory_left_locked, callback, memory_text(block) + " was left locked");
            block.locks = 0;
        }
        // Flat options belong to the host.
        if (callback != "AEIO_FlattenOptions") {
            left_memory(block.id, callback);
        }
    }
}

void Session::left_memory(Id id, const std::string& callback) {
    MemoryBlock& block = memory.block(id);
    if (!block.alive() || block.reported || block.in_spec != 0) {
        return;
    }
    block.reported = true;
    left(RuleViolation::memory_left_alive, callback,
         memory_text(block) + " of " + std::to_string(block.size_bytes) + " bytes was left alive");
}

void Session::unload() {
    for (Id id = 1; id <= static_cast<Id>(project.in_specs.size()); ++id) {
        if (!in_spec(id).disposed) {
            dispose_in_spec(*this, id);
        }
    }
    const auto hooks = std::move(death_hooks);
    for (const auto& registered : hooks) {
        run("death hook", [&] { return registered.first(global_refcon, registered.second); });
    }
    check_left_behind(Marks{}, "the host's life");
    forget_registrations();
    bundle.reset();
}

// --- checks

void Session::found(RuleViolation violation, std::string text) {
    conformance.add(conformance_finding(violation, current_call.n, current_call.function, std::move(text)));
}

void Session::refuse(RuleViolation violation, std::string text, A_Err code) {
    found(violation, std::move(text));
    throw Refusal{code};
}

std::string Session::suite_text(SuiteId suite) const {
    const SuiteInfo& info = suite_info(suite);
    return std::string(info.name) + " " + std::to_string(info.version(options.generation));
}

void Session::refuse_handle(HandleKind kind, const void* handle, const char* argument) {
    const std::string what(argument);
    if (handle == nullptr) {
        refuse(RuleViolation::bad_argument, what + " is null");
    }
    const HandleTable::Token* token = handles.find(handle);
    if (token == nullptr) {
        refuse(RuleViolation::foreign_handle, what + " is not a handle of this host");
    }
    if (token->kind != kind) {
        refuse(RuleViolation::foreign_handle, what + " is " + handles.text(handle) +
                                                  ", which is not a handle of kind " + handle_label(kind));
    }
    refuse(kind == HandleKind::memory ? RuleViolation::memory_use_after_free : RuleViolation::dead_handle,
           what + " is " + handles.text(handle) + ", which is gone");
}

Id Session::folder_id(AEGP_ItemH handle, const char* argument) {
    const Id folder = id(handle, argument);
    require_true(item(folder).kind == ItemKind::folder, argument, "is not a folder");
    return folder;
}

void Session::require_plugin(AEGP_PluginID id_given) {
    if (id_given != plugin_id) {
        refuse(RuleViolation::bad_argument,
               "plugin_id is " + std::to_string(id_given) + " and not " + std::to_string(plugin_id));
    }
}

void Session::require_main_thread() {
    if (options.generation == HostGeneration::today && std::this_thread::get_id() != main_thread) {
        refuse(RuleViolation::call_off_main_thread, "this is not the main thread", kHostErrorGeneric);
    }
}

InSpec& Session::in_spec_to_change(AEIO_InSpecH handle) {
    InSpec& found = in_spec(id(handle, "in_spec"));
    if (found.id == drawn_copy) {
        refuse(RuleViolation::copy_changed,
               "in_spec is " + handles.text(handle) + ", a copy that is being drawn", kHostErrorGeneric);
    }
    return found;
}

const A_Time& Session::require_time(const A_Time* time, const char* argument) {
    require_true(require(time, argument).scale != 0, argument, "has a scale of 0");
    return *time;
}

const A_Ratio& Session::require_positive(const A_Ratio* ratio, const char* argument) {
    require(ratio, argument);
    require_true(ratio->den != 0, argument, "has a denominator of 0");
    require_true(ratio->num >= 1, argument, "is not above 0");
    return *ratio;
}

Id Session::parent_folder_id(AEGP_ItemH handle, const A_char* /*name*/, const char* argument) {
    return folder_id(handle, argument);
}

Id Session::parent_folder_id(AEGP_ItemH handle, const A_UTF16Char* /*name*/, const char* argument) {
    return handle == nullptr ? kRootFolder : folder_id(handle, argument);
}

GivenName Session::name(const A_UTF16Char* text, const char* argument) {
    return {unicode(text, argument), true};
}

GivenName Session::name(const A_char* text, const char* argument) {
    const std::size_t length = std::strlen(&require(text, argument));
    if (length > kMaxNameLength) {
        found(RuleViolation::name_cut, std::string(argument) + " has " + std::to_string(length) +
                                           " bytes and is cut after " + std::to_string(kMaxNameLength));
    }
    return {{text, std::min(length, kMaxNameLength)}};
}

std::string Session::unicode(const A_UTF16Char* text, const char* argument) {
    const Utf16View units(&require(text, argument));
    if (const auto fault = first_fault(units)) {
        refuse(RuleViolation::bad_argument, std::string(argument) + " is not UTF-16: unit " +
                                                std::to_string(*fault) +
                                                " is half of a pair without the other half");
    }
    return *to_utf8(units);
}

AEGP_MemHandle Session::lend_path(const std::string& path) {
    const auto units = to_utf16(path);
    if (!units) {
        throw Refusal{kHostErrorGeneric};
    }
    const std::size_t size_bytes = (units->size() + 1) * sizeof(A_UTF16Char);
    MemoryBlock* block =
        size_bytes > kMaxLent_bytes
            ? nullptr
            : memory.allocate("path for the plug-in", static_cast<AEGP_MemSize>(size_bytes), false);
    if (block == nullptr) {
        throw Refusal{kHostErrorAllocation};
    }
    std::memcpy(block->bytes.get(), units->c_str(), size_bytes);
    return handles.make<AEGP_MemHandle>();
}

// --- changes

void Session::changed() {
    if (undo_depth == 0) {
        found(RuleViolation::change_outside_undo_group, "the project was changed outside an undo group");
    } else {
        ++project.undo_steps.back().changes;
    }
}

Item& Session::add_item(ItemKind kind, GivenName item_name, Id parent_folder, Id content) {
    handles.make<AEGP_ItemH>();
    Item& made = project.items.emplace_back();
    made.id = static_cast<Id>(project.items.size());
    made.kind = kind;
    made.name = std::move(item_name.text);
    made.unicode_name = item_name.unicode;
    made.parent_folder = parent_folder;
    made.content = content;
    return made;
}

}  // namespace embedded
