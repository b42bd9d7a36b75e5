#include "input_module/small_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "host/plugin_globals.h"

namespace {

SmallHost* g_current = nullptr;

SmallHost& Host() {
    return SmallHost::current();
}

// Memory suite.

A_Err NewMemHandle(AEGP_PluginID id, const A_char* what, AEGP_MemSize size_bytes, AEGP_MemFlag flags,
                   AEGP_MemHandle* handle) {
    EXPECT_EQ(id, SmallHost::kPluginId);
    const std::string arguments =
        std::string(what) + ", " + std::to_string(size_bytes) + ", " + std::to_string(flags);
    const A_Err err = Host().Enter("AEGP_NewMemHandle", arguments);
    if (err == kHostErrorNone)
        *handle = Host().YieldsNothing("AEGP_NewMemHandle")
                      ? nullptr
                      : Host().NewHandle(what, size_bytes, (flags & kMemFlagClear) != 0);
    return err;
}

A_Err FreeMemHandle(AEGP_MemHandle handle) {
    const A_Err err = Host().Enter("AEGP_FreeMemHandle");
    if (err == kHostErrorNone)
        Host().FreeHandle(handle);
    return err;
}

A_Err LockMemHandle(AEGP_MemHandle handle, void** address) {
    const A_Err err = Host().Enter("AEGP_LockMemHandle");
    if (err != kHostErrorNone || !Host().Alive(handle))
        return err;
    ++handle->locks;
    *address = Host().YieldsNothing("AEGP_LockMemHandle") ? nullptr : handle->bytes.get();
    return err;
}

A_Err UnlockMemHandle(AEGP_MemHandle handle) {
    const A_Err err = Host().Enter("AEGP_UnlockMemHandle");
    if (!Host().Alive(handle))
        return err;
    EXPECT_GT(handle->locks, 0) << "unlock without lock";
    --handle->locks;
    return err;
}

// IO in suite.

A_Err GetInSpecOptionsHandle(AEIO_InSpecH spec, void** options) {
    const A_Err err = Host().Enter("AEGP_GetInSpecOptionsHandle");
    if (err == kHostErrorNone)
        *options = (*spec)->options;
    return err;
}

A_Err SetInSpecOptionsHandle(AEIO_InSpecH spec, void* options, void** old_options) {
    const A_Err err = Host().Enter("AEGP_SetInSpecOptionsHandle");
    if (err == kHostErrorNone)
        *old_options = std::exchange((*spec)->options, options);
    return err;
}

A_Err SetInSpecNativeFPS(AEIO_InSpecH spec, A_Fixed fps) {
    const A_Err err = Host().Enter("AEGP_SetInSpecNativeFPS");
    if (err == kHostErrorNone)
        (*spec)->fps = fps;
    return err;
}

A_Err SetInSpecDepth(AEIO_InSpecH spec, A_short depth) {
    const A_Err err = Host().Enter("AEGP_SetInSpecDepth");
    if (err == kHostErrorNone)
        (*spec)->depth = depth;
    return err;
}

A_Err SetInSpecSize(AEIO_InSpecH spec, A_long size_bytes) {
    const A_Err err = Host().Enter("AEGP_SetInSpecSize");
    if (err == kHostErrorNone)
        (*spec)->size_bytes = size_bytes;
    return err;
}

A_Err SetInSpecAlphaLabel(AEIO_InSpecH spec, const AEIO_AlphaLabel* label) {
    const A_Err err = Host().Enter("AEGP_SetInSpecAlphaLabel");
    if (err == kHostErrorNone)
        (*spec)->alpha_label = *label;
    return err;
}

A_Err SetInSpecDuration(AEIO_InSpecH spec, const A_Time* duration) {
    const A_Err err = Host().Enter("AEGP_SetInSpecDuration");
    if (err == kHostErrorNone)
        (*spec)->duration = *duration;
    return err;
}

A_Err SetInSpecDimensions(AEIO_InSpecH spec, A_long width, A_long height) {
    const A_Err err = Host().Enter("AEGP_SetInSpecDimensions");
    if (err == kHostErrorNone)
        (*spec)->dimensions = {width, height};
    return err;
}

// The others.

A_Err GetOutSpecFilePath(AEIO_OutSpecH spec, A_char* path) {
    const A_Err err = Host().Enter("AEGP_GetOutSpecFilePath");
    if (err == kHostErrorNone)
        std::memcpy(path, (*spec)->path.data(), (*spec)->path.size());
    return err;
}

A_Err ReportInfo(AEGP_PluginID id, const A_char* text) {
    EXPECT_EQ(id, SmallHost::kPluginId);
    Host().reports.emplace_back(text);
    return Host().Enter("AEGP_ReportInfo");
}

A_char* CopyString(A_char* destination, const A_char* source) {
    Host().calls.emplace_back("strcpy");
    return std::strcpy(destination, source);
}

void ShowMessage(A_Err code, const A_char* text) {
    Host().messages.emplace_back(code, text);
}

const AEGP_MemorySuite1 kMemorySuite = {NewMemHandle, FreeMemHandle, LockMemHandle, UnlockMemHandle, {}};

AEGP_IOInSuite1 IOInSuite() {
    AEGP_IOInSuite1 suite = {};
    suite.AEGP_GetInSpecOptionsHandle = GetInSpecOptionsHandle;
    suite.AEGP_SetInSpecOptionsHandle = SetInSpecOptionsHandle;
    suite.AEGP_SetInSpecNativeFPS = SetInSpecNativeFPS;
    suite.AEGP_SetInSpecDepth = SetInSpecDepth;
    suite.AEGP_SetInSpecSize = SetInSpecSize;
    suite.AEGP_SetInSpecAlphaLabel = SetInSpecAlphaLabel;
    suite.AEGP_SetInSpecDuration = SetInSpecDuration;
    suite.AEGP_SetInSpecDimensions = SetInSpecDimensions;
    return suite;
}

AEGP_IOOutSuite1 IOOutSuite() {
    AEGP_IOOutSuite1 suite = {};
    suite.AEGP_GetOutSpecFilePath = GetOutSpecFilePath;
    return suite;
}

AEGP_UtilitySuite7 UtilitySuite() {
    AEGP_UtilitySuite7 suite = {};
    suite.AEGP_ReportInfo = ReportInfo;
    return suite;
}

PF_ANSISuite1 ANSISuite() {
    PF_ANSISuite1 suite = {};
    suite.strcpy = CopyString;
    return suite;
}

const void* FindSuite(const std::string& name, A_long version) {
    static const AEGP_IOInSuite1 in_suite = IOInSuite();
    static const AEGP_IOOutSuite1 out_suite = IOOutSuite();
    static const AEGP_UtilitySuite7 utility_suite = UtilitySuite();
    static const PF_ANSISuite1 ansi_suite = ANSISuite();
    static const std::map<std::pair<std::string, A_long>, const void*> suites = {
        {{"AEGP Memory Suite", 1}, &kMemorySuite}, {{"AEGP IO In Suite", 1}, &in_suite},
        {{"AEGP IO Out Suite", 1}, &out_suite},    {{"AEGP Utility Suite", 7}, &utility_suite},
        {{"PF ANSI Suite", 1}, &ansi_suite},
    };
    const auto found = suites.find({name, version});
    EXPECT_NE(found, suites.end()) << name << " " << version;
    return found == suites.end() ? nullptr : found->second;
}

A_Err AcquireSuite(const char* name, A_long version, const void** suite) {
    return Host().AcquireSuite(name, version, suite);
}

A_Err ReleaseSuite(const char* name, A_long /*version*/) {
    Host().ReleaseSuite(name);
    return kHostErrorNone;
}

}  // namespace

SmallHost& SmallHost::current() {
    return *g_current;
}

SmallHost::SmallHost() {
    EXPECT_EQ(g_current, nullptr);
    g_current = this;
    g_PluginID = kPluginId;
    version55 = true;
    basic_suite_.AcquireSuite = ::AcquireSuite;
    basic_suite_.ReleaseSuite = ::ReleaseSuite;
    basic_.msg_func = ShowMessage;
    basic_.basic_suite = &basic_suite_;
    basic_.plugin_id = -1;  // the plug-in goes by the id that its entry point was given
}

SmallHost::~SmallHost() {
    EXPECT_TRUE(suites_in_use_.empty()) << *suites_in_use_.begin() << " was not released";
    g_current = nullptr;
}

void SmallHost::Behave() {
    failing_functions_.clear();
    yielding_nothing_.clear();
    withheld_.clear();
    failing_call_ = {0, 0};
    fallible_calls_ = 0;
}

A_Err SmallHost::Enter(const std::string& function, const std::string& argument) {
    calls.push_back(argument.empty() ? function : function + "(" + argument + ")");
    ++fallible_calls_;
    if (fallible_calls_ == failing_call_.first)
        return failing_call_.second;
    const auto failing = failing_functions_.find(function);
    return failing == failing_functions_.end() ? kHostErrorNone : failing->second;
}

A_Err SmallHost::AcquireSuite(const std::string& name, A_long version, const void** suite) {
    if (withheld_.count(name) > 0)
        return kHostErrorMissingSuite;
    suites_in_use_.insert(name);
    *suite = FindSuite(name, version);
    return kHostErrorNone;
}

void SmallHost::ReleaseSuite(const std::string& name) {
    const auto found = suites_in_use_.find(name);
    ASSERT_NE(found, suites_in_use_.end()) << name << " was released once too often";
    suites_in_use_.erase(found);
}

AEGP_MemHandle SmallHost::NewHandle(const char* what, std::size_t size_bytes, bool clear) {
    auto handle = std::make_unique<AEGP_Mem>();
    handle->what = what;
    handle->size_bytes = size_bytes;
    handle->bytes.reset(new std::byte[size_bytes]);
    std::fill_n(handle->bytes.get(), size_bytes, clear ? std::byte{0} : std::byte{0xA5});
    handles_.push_back(std::move(handle));
    return handles_.back().get();
}

bool SmallHost::Alive(AEGP_MemHandle handle) const {
    const bool alive = std::any_of(handles_.begin(), handles_.end(),
                                   [handle](const auto& owned) { return owned.get() == handle; });
    EXPECT_TRUE(alive) << "a handle that is not, or no longer, alive";
    return alive;
}

void SmallHost::FreeHandle(AEGP_MemHandle handle) {
    if (!Alive(handle))
        return;
    EXPECT_EQ(handle->locks, 0) << "a locked handle is freed";
    const auto gone = [handle](const auto& owned) { return owned.get() == handle; };
    handles_.erase(std::remove_if(handles_.begin(), handles_.end(), gone), handles_.end());
}
