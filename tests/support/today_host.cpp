#include "support/today_host.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace {

TodayHost* current = nullptr;

// ---- arguments as text

std::string text(const void* pointer) {
    if (pointer == nullptr)
        return "null";
    std::array<char, 32> out{};
    std::snprintf(out.data(), out.size(), "%#zx", reinterpret_cast<std::size_t>(pointer));
    return out.data();
}
std::string text(const A_char* string) {
    return string == nullptr ? "null" : '"' + std::string(string) + '"';
}
std::string text(const A_UTF16Char* string) {
    return string == nullptr ? "null" : quoted(string);
}
std::string text(A_long number) {
    return std::to_string(number);
}
std::string text(A_u_long number) {
    return std::to_string(number);
}
std::string text(A_short number) {
    return std::to_string(number);
}
std::string text(A_Boolean number) {
    return std::to_string(number);
}
std::string text(AEIO_FileSize number) {
    return std::to_string(number);
}
std::string text(const AEGP_FileSequenceImportOptions* options) {
    if (options == nullptr)
        return "null";
    return "{" + text(options->all_in_folder) + ", " + text(options->force_alphabetical) + ", " +
           text(options->start_frame) + ", " + text(options->end_frame) + "}";
}

template <typename... Arguments>
std::string list(const Arguments&... arguments) {
    std::string out;
    ((out += (out.empty() ? "" : ", ") + text(arguments)), ...);
    return out;
}

// A function that does nothing but be recorded.
#define VXR_RECORDED(function) \
    [](auto... arguments) -> A_Err { return current->call(function, list(arguments...)); }

const AEGP_RegisterSuite6 kRegisterSuite = [] {
    AEGP_RegisterSuite6 suite{};
    suite.AEGP_RegisterDeathHook = [](AEGP_PluginID id, AEGP_DeathHook hook, AEGP_DeathRefcon refcon) {
        const A_Err err = current->call("RegisterDeathHook", list(id, A_Boolean{hook != nullptr}, refcon));
        if (err == kHostErrorNone)
            current->death_hooks.emplace_back(hook, refcon);
        return err;
    };
    suite.AEGP_RegisterIO = [](AEGP_PluginID id, AEGP_IORefcon refcon, const AEIO_ModuleInfo* info,
                               const AEIO_FunctionBlock4* functions) {
        const A_Err err = current->call(
            "RegisterIO",
            list(id, refcon, info == nullptr ? nullptr : +info->name, A_Boolean{functions != nullptr}));
        if (err == kHostErrorNone && functions != nullptr)
            current->modules.emplace_back(refcon, *functions);
        return err;
    };
    return suite;
}();

const AEGP_FileImportManagerSuite3 kFileImportManagerSuite = [] {
    AEGP_FileImportManagerSuite3 suite{};
    suite.AEGP_RegisterImportFlavor = [](const A_char* name, AE_FIM_ImportFlavorRef* flavor) {
        const A_Err err = current->call("RegisterImportFlavor", list(name, *flavor));
        if (err == kHostErrorNone)
            *flavor = 42;
        return err;
    };
    suite.AEGP_RegisterImportFlavorFileTypes = VXR_RECORDED("RegisterImportFlavorFileTypes");
    suite.AEGP_RegisterImportFlavorImportCallbacks = [](AE_FIM_ImportFlavorRef flavor,
                                                        AE_FIM_ImportFlags flags,
                                                        const AE_FIM_ImportCallbacks3* callbacks) {
        const A_Err err =
            current->call("RegisterImportFlavorImportCallbacks",
                          list(flavor, flags) +
                              (callbacks == nullptr
                                   ? ", null"
                                   : ", {" +
                                         list(callbacks->refcon, A_Boolean{callbacks->import_cb != nullptr},
                                              A_Boolean{callbacks->verify_cb != nullptr}) +
                                         "}"));
        if (err == kHostErrorNone && callbacks != nullptr)
            current->importers.push_back(*callbacks);
        return err;
    };
    return suite;
}();

const AEGP_PersistentDataSuite3 kPersistentDataSuite = [] {
    AEGP_PersistentDataSuite3 suite{};
    suite.AEGP_GetApplicationBlob = VXR_RECORDED("GetApplicationBlob");
    suite.AEGP_DoesKeyExist = VXR_RECORDED("DoesKeyExist");
    suite.AEGP_GetData = VXR_RECORDED("GetData");
    suite.AEGP_SetData = VXR_RECORDED("SetData");
    return suite;
}();

const AEGP_ProjSuite8 kProjSuite = [] {
    AEGP_ProjSuite8 suite{};
    suite.AEGP_GetProjectByIndex = VXR_RECORDED("GetProjectByIndex");
    suite.AEGP_GetProjectRootFolder = VXR_RECORDED("GetProjectRootFolder");
    return suite;
}();

const AEGP_FootageSuite11 kFootageSuite = [] {
    AEGP_FootageSuite11 suite{};
    suite.AEGP_NewFootage = VXR_RECORDED("NewFootage");
    suite.AEGP_AddFootageToProject = VXR_RECORDED("AddFootageToProject");
    suite.AEGP_GetFootageInterpretation = VXR_RECORDED("GetFootageInterpretation");
    suite.AEGP_SetFootageInterpretation = VXR_RECORDED("SetFootageInterpretation");
    suite.AEGP_NewPlaceholderFootage = VXR_RECORDED("NewPlaceholderFootage");
    return suite;
}();

const AEGP_IOInSuite5 kIOInSuite = [] {
    AEGP_IOInSuite5 suite{};
    suite.AEGP_GetInSpecOptionsHandle = VXR_RECORDED("GetInSpecOptionsHandle");
    suite.AEGP_SetInSpecOptionsHandle = VXR_RECORDED("SetInSpecOptionsHandle");
    suite.AEGP_GetInSpecFilePath = [](AEIO_InSpecH spec, AEGP_MemHandle* path) {
        const A_Err err = current->call("GetInSpecFilePath", list(spec));
        return err != kHostErrorNone ? err : current->make_text("GetInSpecFilePath", current->in_path, path);
    };
    suite.AEGP_SetInSpecNativeFPS = VXR_RECORDED("SetInSpecNativeFPS");
    suite.AEGP_SetInSpecDepth = VXR_RECORDED("SetInSpecDepth");
    suite.AEGP_GetInSpecSize = [](AEIO_InSpecH spec, AEIO_FileSize* size_bytes) {
        *size_bytes = current->in_size;
        return current->call("GetInSpecSize", list(spec));
    };
    suite.AEGP_SetInSpecSize = VXR_RECORDED("SetInSpecSize");
    suite.AEGP_SetInSpecAlphaLabel = VXR_RECORDED("SetInSpecAlphaLabel");
    suite.AEGP_SetInSpecDuration = VXR_RECORDED("SetInSpecDuration");
    suite.AEGP_SetInSpecDimensions = VXR_RECORDED("SetInSpecDimensions");
    return suite;
}();

const AEGP_IOOutSuite7 kIOOutSuite = [] {
    AEGP_IOOutSuite7 suite{};
    suite.AEGP_GetOutSpecFilePath = [](AEIO_OutSpecH spec, AEGP_MemHandle* path, A_Boolean* reserved) {
        const A_Err err = current->call("GetOutSpecFilePath", list(spec));
        if (err != kHostErrorNone)
            return err;
        *reserved = 1;
        return current->make_text("GetOutSpecFilePath", current->out_path, path);
    };
    return suite;
}();

const AEGP_UtilitySuite7 kUtilitySuite = [] {
    AEGP_UtilitySuite7 suite{};
    suite.AEGP_ReportInfo = [](AEGP_PluginID id, const A_char* shown) -> A_Err {
        current->report(id, shown);
        return kHostErrorNone;
    };
    return suite;
}();

const AEGP_MemorySuite1 kMemorySuite = [] {
    AEGP_MemorySuite1 suite{};
    suite.AEGP_NewMemHandle = [](AEGP_PluginID, const A_char*, AEGP_MemSize size, AEGP_MemFlag,
                                 AEGP_MemHandle* handle) { return current->new_handle(size, handle); };
    suite.AEGP_FreeMemHandle = [](AEGP_MemHandle handle) { return current->free_handle(handle); };
    suite.AEGP_LockMemHandle = [](AEGP_MemHandle handle, void** address) {
        return current->lock_handle(handle, address);
    };
    suite.AEGP_UnlockMemHandle = [](AEGP_MemHandle handle) { return current->unlock_handle(handle); };
    return suite;
}();

#undef VXR_RECORDED

A_Err acquire(const char* name, A_long version, const void** suite) {
    return current->acquire(name, version, suite);
}
A_Err release(const char* name, A_long version) {
    return current->release(name, version);
}

}  // namespace

std::string quoted(std::u16string_view text) {
    std::string out = "u\"";
    for (const char16_t unit : text) {
        std::array<char, 8> escaped{};
        if (unit >= ' ' && unit <= '~')
            escaped[0] = static_cast<char>(unit);
        else
            std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(unit));
        out += escaped.data();
    }
    return out + '"';
}

TodayHost::TodayHost()
    : tables_{
          {{"AEGP Register Suite", 6}, &kRegisterSuite},
          {{"AEGP File Import Manager Suite", 3}, &kFileImportManagerSuite},
          {{"AEGP Persistent Data Suite", 3}, &kPersistentDataSuite},
          {{"AEGP Proj Suite", 8}, &kProjSuite},
          {{"AEGP Footage Suite", 11}, &kFootageSuite},
          {{"AEGP IO In Suite", 5}, &kIOInSuite},
          {{"AEGP IO Out Suite", 7}, &kIOOutSuite},
          {{"AEGP Utility Suite", 7}, &kUtilitySuite},
          {{"AEGP Memory Suite", 1}, &kMemorySuite},
      } {
    current = this;
    basic_.AcquireSuite = ::acquire;
    basic_.ReleaseSuite = ::release;
    basic_.IsEqual = [](const char* token1, const char* token2) -> A_Err {
        return std::strcmp(token1, token2) == 0 ? 1 : 0;
    };
    basic_.AllocateBlock = [](std::size_t, void**) -> A_Err { return 101; };
    basic_.FreeBlock = [](void*) -> A_Err { return 102; };
    basic_.ReallocateBlock = [](void*, std::size_t, void**) -> A_Err { return 103; };
    basic_.Undefined = []() -> A_Err { return 104; };
}

TodayHost::~TodayHost() {
    if (current == this)
        current = nullptr;
}

AEIO_BasicData TodayHost::basic_data(AEGP_IORefcon refcon) {
    AEIO_BasicData data{};
    data.msg_func = [](A_Err code, const A_char* shown) {
        current->report(kPluginId, (std::to_string(code) + " " + shown).c_str());
    };
    data.basic_suite = &basic_;
    data.plugin_id = kPluginId;
    data.refcon = refcon;
    return data;
}

int TodayHost::held(const std::string& name, A_long version) const {
    const std::scoped_lock lock(mutex_);
    const auto found = held_.find({name, version});
    return found == held_.end() ? 0 : found->second;
}

std::vector<std::string> TodayHost::left_open() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> open;
    for (const auto& [suite, count] : held_)
        if (count != 0)
            open.push_back(suite.first + " " + std::to_string(suite.second) + " x " + std::to_string(count));
    for (const auto& [handle, memory] : memory_)
        open.push_back("memory handle, locks " + std::to_string(memory.locks));
    return open;
}

std::u16string TodayHost::take_text(AEGP_MemHandle handle) {
    const std::scoped_lock lock(mutex_);
    const Memory& memory = memory_.at(handle);
    std::u16string units(memory.size_bytes / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), memory.bytes.get(), units.size() * sizeof(char16_t));
    if (memory.locks != 0 || memory.size_bytes % sizeof(char16_t) != 0 || units.empty() || units.back() != 0)
        units = u"not an unlocked, terminated text";
    else
        units.pop_back();
    memory_.erase(handle);
    return units;
}

A_Err TodayHost::acquire(const char* name, A_long version, const void** suite) {
    const std::scoped_lock lock(mutex_);
    *suite = nullptr;
    const auto withheld = withheld_.find({name, version});
    if (withheld != withheld_.end())
        return withheld->second;
    const auto found = tables_.find({name, version});
    if (found == tables_.end())
        return kHostErrorMissingSuite;
    *suite = found->second;
    ++held_[{name, version}];
    traffic.push_back("acquire " + std::string(name) + " " + std::to_string(version));
    return kHostErrorNone;
}

A_Err TodayHost::release(const char* name, A_long version) {
    const std::scoped_lock lock(mutex_);
    const A_Err err = result_of("ReleaseSuite");
    --held_[{name, version}];
    traffic.push_back("release " + std::string(name) + " " + std::to_string(version));
    return err;
}

A_Err TodayHost::call(const std::string& function, const std::string& arguments) {
    const std::scoped_lock lock(mutex_);
    const A_Err err = result_of(function);
    calls.push_back(function + "(" + arguments + ")" +
                    (err == kHostErrorNone ? "" : " = " + std::to_string(err)));
    return err;
}

A_Err TodayHost::result_of(const std::string& function) const {
    const std::scoped_lock lock(mutex_);
    const auto found = failures_.find(function);
    return found == failures_.end() ? kHostErrorNone : found->second;
}

A_Err TodayHost::make_text(const std::string& function, std::u16string_view text, AEGP_MemHandle* handle) {
    const std::scoped_lock lock(mutex_);
    *handle = nullptr;
    if (!yields(function))
        return kHostErrorNone;
    Memory memory;
    memory.size_bytes = (text.size() + 1) * sizeof(char16_t);
    memory.bytes = std::make_unique<char[]>(memory.size_bytes);
    std::memcpy(memory.bytes.get(), text.data(), text.size() * sizeof(char16_t));
    *handle = reinterpret_cast<AEGP_MemHandle>(++last_handle_);
    memory_[*handle] = std::move(memory);
    return kHostErrorNone;
}

A_Err TodayHost::new_handle(std::size_t size_bytes, AEGP_MemHandle* handle) {
    const std::scoped_lock lock(mutex_);
    *handle = nullptr;
    if (const A_Err err = result_of("NewMemHandle"); err != kHostErrorNone)
        return err;
    if (!yields("NewMemHandle"))
        return kHostErrorNone;
    *handle = reinterpret_cast<AEGP_MemHandle>(++last_handle_);
    Memory& memory = memory_[*handle];
    memory.size_bytes = size_bytes;
    memory.bytes = std::make_unique<char[]>(size_bytes);
    return kHostErrorNone;
}

A_Err TodayHost::free_handle(AEGP_MemHandle handle) {
    const std::scoped_lock lock(mutex_);
    const A_Err err = result_of("FreeMemHandle");
    memory_.erase(handle);
    return err;
}

A_Err TodayHost::lock_handle(AEGP_MemHandle handle, void** address) {
    const std::scoped_lock lock(mutex_);
    *address = nullptr;
    if (const A_Err err = result_of("LockMemHandle"); err != kHostErrorNone)
        return err;
    Memory& memory = memory_.at(handle);
    ++memory.locks;
    if (yields("LockMemHandle"))
        *address = memory.bytes.get();
    if (when_locked)
        when_locked();
    return kHostErrorNone;
}

A_Err TodayHost::unlock_handle(AEGP_MemHandle handle) {
    const std::scoped_lock lock(mutex_);
    --memory_.at(handle).locks;
    return result_of("UnlockMemHandle");
}

void TodayHost::report(AEGP_PluginID id, const A_char* text) {
    const std::scoped_lock lock(mutex_);
    reports.push_back(id == kPluginId ? text : "for another plug-in: " + std::string(text));
}
