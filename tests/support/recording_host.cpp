#include "support/recording_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "host/plugin_globals.h"
#include "support/recording_host/suite_tables.h"

namespace {

RecordingHost* g_current = nullptr;

// The plug-in deliberately never releases these, so that what it registered through them stays reachable.
bool kept_by_plugin(const std::string& suite) {
    return suite == "AEGP Register Suite" || suite == "AEGP Persistent Data Suite";
}

}  // namespace

std::string shortest(double number) {
    char digits[64];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number);
    return {digits, end.ptr};
}

RecordingHost& RecordingHost::current() {
    return *g_current;
}

RecordingHost::RecordingHost(HostGeneration generation)
    : generation_(generation), before_{g_current, g_pBasicSuite, g_PluginID, version55} {
    g_current = this;
    basic_.AcquireSuite = [](const char* name, A_long version, const void** suite) {
        return g_current->acquire(name, version, suite);
    };
    basic_.ReleaseSuite = [](const char* name, A_long version) { return g_current->release(name, version); };
    basic_.IsEqual = [](const char* token1, const char* token2) -> A_Err {
        return std::strcmp(token1, token2) == 0 ? 1 : 0;
    };
    basic_.AllocateBlock = [](std::size_t, void**) -> A_Err { return 101; };
    basic_.FreeBlock = [](void*) -> A_Err { return 102; };
    basic_.ReallocateBlock = [](void*, std::size_t, void**) -> A_Err { return 103; };
    basic_.Undefined = []() -> A_Err { return 104; };
    basic_data_.msg_func = [](A_Err code, const A_char* text) {
        g_current->messages.emplace_back(code, text);
    };
    basic_data_.basic_suite = &basic_;
    basic_data_.plugin_id = -1;
    g_pBasicSuite = &basic_;
    g_PluginID = kPluginId;
    version55 = true;
}

RecordingHost::~RecordingHost() {
    if (generation_ == HostGeneration::classic) {
        EXPECT_EQ(suites_held(), std::vector<std::string>{});
    }
    g_current = before_.host;
    g_pBasicSuite = before_.basic;
    g_PluginID = before_.plugin_id;
    version55 = before_.version55;
}

void RecordingHost::offer_named_suites() {
    for (const OfferedSuite& suite : named_suites()) {
        offer_suite(suite.name, suite.version, suite.table);
    }
}

void RecordingHost::clear_script() {
    failures_.clear();
    numbered_failures_.clear();
    yielding_nothing_.clear();
    withheld_.clear();
    calls_by_function_.clear();
    call_count_ = 0;
}

// ---- what happened

std::vector<std::string> RecordingHost::calls_of(std::initializer_list<std::string_view> functions) const {
    std::vector<std::string> found;
    for (const std::string& line : calls) {
        if (std::find(functions.begin(), functions.end(), line.substr(0, line.find('('))) !=
            functions.end()) {
            found.push_back(line);
        }
    }
    return found;
}

std::vector<std::string> RecordingHost::functions_called() const {
    std::vector<std::string> functions;
    for (const std::string& line : calls) {
        functions.push_back(line.substr(0, line.find('(')));
    }
    return functions;
}

int RecordingHost::held(const std::string& name, A_long version) const {
    const std::scoped_lock lock(mutex_);
    const auto found = held_.find({name, version});
    return found == held_.end() ? 0 : found->second;
}

std::vector<std::string> RecordingHost::suites_held() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> suites;
    for (const auto& [suite, times] : held_) {
        const bool may_be_kept =
            generation_ == HostGeneration::classic && kept_by_plugin(suite.first) && times > 0;
        if (times != 0 && !may_be_kept) {
            suites.push_back(suite.first + " " + std::to_string(suite.second) + " x " +
                             std::to_string(times));
        }
    }
    return suites;
}

std::vector<std::string> RecordingHost::left_open() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> open = suites_held();
    open.insert(open.end(), open_.begin(), open_.end());
    for (const auto& handle : handles_) {
        open.push_back("memory handle, locks " + std::to_string(handle->locks));
    }
    return open;
}

void RecordingHost::remember_closed(const std::string& what) {
    const auto found = std::find(open_.begin(), open_.end(), what);
    if (found == open_.end()) {
        open_.push_back("CLOSED TWICE: " + what);
    } else {
        open_.erase(found);
    }
}

// ---- handles that are names

RecordingHost::Opaque RecordingHost::untyped_handle(std::string name) {
    std::string*& known = by_name_[name];
    if (known == nullptr) {
        known = &names_.emplace_back(std::move(name));
    }
    return {known};
}

std::string RecordingHost::name_of(const void* handle) const {
    if (handle == nullptr) {
        return "null";
    }
    const auto found =
        std::find_if(names_.begin(), names_.end(), [&](const std::string& name) { return &name == handle; });
    if (found != names_.end()) {
        return *found;
    }
    char address[32];
    std::snprintf(address, sizeof address, "%#zx", reinterpret_cast<std::size_t>(handle));
    return address;
}

// ---- calls

RecordingHost::Outcome RecordingHost::next_outcome(const std::string& function) {
    const std::scoped_lock lock(mutex_);
    ++call_count_;
    const int nth = ++calls_by_function_[function];
    Outcome outcome;
    outcome.yields =
        !yielding_nothing_.contains({function, nth}) && !yielding_nothing_.contains({function, kEvery});
    if (const auto found = numbered_failures_.find(call_count_); found != numbered_failures_.end()) {
        outcome.err = found->second;
    } else if (const auto one = failures_.find({function, nth}); one != failures_.end()) {
        outcome.err = one->second;
    } else if (const auto every = failures_.find({function, kEvery}); every != failures_.end()) {
        outcome.err = every->second;
    }
    return outcome;
}

void RecordingHost::record(const std::string& call, A_Err err, const std::string& yielded) {
    note(call + (err != kHostErrorNone ? " = " + std::to_string(err)
                 : yielded.empty()     ? ""
                                       : " -> " + yielded));
}

A_Err RecordingHost::call(const std::string& function, const std::string& arguments) {
    const Outcome outcome = next_outcome(function);
    record(function + "(" + arguments + ")", outcome.err, "");
    return outcome.err;
}

RecordingHost::Outcome RecordingHost::service_outcome(const std::string& function,
                                                      const std::string& arguments) {
    const Outcome outcome = next_outcome(function);
    if (generation_ == HostGeneration::classic) {
        record(function + "(" + arguments + ")", outcome.err, "");
    }
    return outcome;
}

A_Err RecordingHost::service_call(const std::string& function, const std::string& arguments) {
    return service_outcome(function, arguments).err;
}

A_Err RecordingHost::call(const std::string& function, const std::string& arguments, std::u16string_view text,
                          AEGP_MemHandle* handle) {
    const Outcome outcome = next_outcome(function);
    record(function + "(" + arguments + ")", outcome.err, "");
    *handle = nullptr;
    if (outcome.err == kHostErrorNone && outcome.yields) {
        // Exactly as long as it must be, so that a sanitizer sees a read beyond the end.
        *handle = add_handle(function, (text.size() + 1) * sizeof(A_UTF16Char), std::byte{0});
        std::memcpy((*handle)->bytes.get(), text.data(), text.size() * sizeof(A_UTF16Char));
    }
    return outcome.err;
}

void RecordingHost::note(const std::string& line) {
    const std::scoped_lock lock(mutex_);
    calls.push_back(line);
    traffic.push_back(line);
}

void RecordingHost::report(AEGP_PluginID id, const A_char* text) {
    const std::scoped_lock lock(mutex_);
    reports.push_back(id == kPluginId ? text : "for another plug-in: " + std::string(text));
}

// ---- suites

const void* RecordingHost::find_suite(const SuiteKey& key) const {
    if (const auto extra = extra_suites_.find(key); extra != extra_suites_.end()) {
        return extra->second;
    }
    std::vector<const std::vector<OfferedSuite>*> offered = {&common_suites()};
    if (generation_ == HostGeneration::classic) {
        offered.insert(offered.end(), {&classic_project_suites(), &classic_module_suites()});
    } else {
        offered.push_back(&current_suites());
    }
    for (const std::vector<OfferedSuite>* suites : offered) {
        for (const OfferedSuite& suite : *suites) {
            if (key.first == suite.name && key.second == suite.version) {
                return suite.table;
            }
        }
    }
    return nullptr;
}

A_Err RecordingHost::acquire(const std::string& name, A_long version, const void** suite) {
    const std::scoped_lock lock(mutex_);
    const SuiteKey key(name, version);
    *suite = nullptr;
    if (const auto withheld = withheld_.find(key); withheld != withheld_.end()) {
        return withheld->second;
    }
    const void* table = find_suite(key);
    if (table == nullptr) {
        return kHostErrorMissingSuite;
    }
    *suite = table;
    ++held_[key];
    traffic.push_back("acquire " + name + " " + std::to_string(version));
    return kHostErrorNone;
}

A_Err RecordingHost::release(const std::string& name, A_long version) {
    const std::scoped_lock lock(mutex_);
    --held_[{name, version}];
    traffic.push_back("release " + name + " " + std::to_string(version));
    return release_result;
}

// ---- memory

AEGP_MemHandle RecordingHost::add_handle(const std::string& what, std::size_t size_bytes, std::byte fill) {
    const std::scoped_lock lock(mutex_);
    auto handle = std::make_unique<AEGP_Mem>();
    handle->what = what;
    handle->size_bytes = size_bytes;
    handle->bytes.reset(new std::byte[size_bytes]);
    std::fill_n(handle->bytes.get(), size_bytes, fill);
    handles_.push_back(std::move(handle));
    return handles_.back().get();
}

bool RecordingHost::alive(AEGP_MemHandle handle) const {
    const bool alive = std::any_of(handles_.begin(), handles_.end(),
                                   [handle](const auto& owned) { return owned.get() == handle; });
    EXPECT_TRUE(alive) << "a memory handle that this host did not make or that was freed";
    return alive;
}

A_Err RecordingHost::new_handle(const std::string& arguments, const A_char* what, AEGP_MemSize size_bytes,
                                AEGP_MemFlag flags, AEGP_MemHandle* handle) {
    const Outcome outcome = service_outcome("NewMemHandle", arguments);
    if (outcome.err == kHostErrorNone) {
        // What the plug-in did not ask to have cleared is not cleared.
        const std::byte fill{static_cast<unsigned char>((flags & kMemFlagClear) != 0 ? 0 : 0xA5)};
        *handle = outcome.yields ? add_handle(what, size_bytes, fill) : nullptr;
    }
    return outcome.err;
}

A_Err RecordingHost::free_handle(AEGP_MemHandle handle) {
    const Outcome outcome = service_outcome("FreeMemHandle", "");
    const std::scoped_lock lock(mutex_);
    if (outcome.err == kHostErrorNone && alive(handle)) {
        EXPECT_EQ(handle->locks, 0) << "a locked memory handle is freed";
        std::erase_if(handles_, [handle](const auto& owned) { return owned.get() == handle; });
    }
    return outcome.err;
}

A_Err RecordingHost::lock_handle(AEGP_MemHandle handle, void** address) {
    const Outcome outcome = service_outcome("LockMemHandle", "");
    const std::scoped_lock lock(mutex_);
    if (outcome.err != kHostErrorNone || !alive(handle)) {
        return outcome.err;
    }
    ++handle->locks;
    *address = outcome.yields ? handle->bytes.get() : nullptr;
    if (when_locked) {
        when_locked();
    }
    return outcome.err;
}

A_Err RecordingHost::unlock_handle(AEGP_MemHandle handle) {
    const Outcome outcome = service_outcome("UnlockMemHandle", "");
    const std::scoped_lock lock(mutex_);
    if (alive(handle)) {
        EXPECT_GT(handle->locks, 0) << "a memory handle is unlocked that is not locked";
        --handle->locks;
    }
    return outcome.err;
}

std::u16string RecordingHost::take_text(AEGP_MemHandle handle) {
    const std::scoped_lock lock(mutex_);
    if (!alive(handle)) {
        return u"not a handle";
    }
    std::u16string units(handle->size_bytes / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), handle->bytes.get(), units.size() * sizeof(char16_t));
    if (handle->locks != 0 || handle->size_bytes % sizeof(char16_t) != 0 || units.empty() ||
        units.back() != 0) {
        units = u"not an unlocked, terminated text";
    } else {
        units.pop_back();
    }
    std::erase_if(handles_, [handle](const auto& owned) { return owned.get() == handle; });
    return units;
}
