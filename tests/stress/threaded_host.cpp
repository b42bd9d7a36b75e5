#include "stress/threaded_host.h"

#include <dlfcn.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

/// A memory handle. Its bytes are freed with it, so that a later use is detected; the handle itself stays
/// until the host is destroyed.
struct AEGP_Mem {
    explicit AEGP_Mem(std::size_t size_bytes) : bytes(new std::byte[size_bytes]()) {}
    std::unique_ptr<std::byte[]> bytes;
    std::atomic<int> locks{0};
    AEGP_Mem* made_before = nullptr;
};

namespace {

ThreadedHost* g_current = nullptr;

ThreadedHost& host() {
    return ThreadedHost::current();
}

// Memory suite.

A_Err new_handle(AEGP_PluginID, const A_char*, AEGP_MemSize size_bytes, AEGP_MemFlag,
                 AEGP_MemHandle* handle) {
    *handle = new AEGP_Mem(size_bytes);
    std::atomic<AEGP_Mem*>& newest = host().newest_handle_;
    (*handle)->made_before = newest.load(std::memory_order_relaxed);
    while (!newest.compare_exchange_weak((*handle)->made_before, *handle, std::memory_order_relaxed)) {
    }
    ThreadedHost::count(host().handles_lent_);
    return kHostErrorNone;
}

A_Err free_handle(AEGP_MemHandle handle) {
    if (handle->bytes == nullptr || handle->locks.load(std::memory_order_relaxed) != 0) {
        ThreadedHost::count(host().misuses_);
    }
    handle->bytes.reset();
    ThreadedHost::count(host().handles_lent_, -1);
    return kHostErrorNone;
}

A_Err lock_handle(AEGP_MemHandle handle, void** address) {
    handle->locks.fetch_add(1, std::memory_order_relaxed);
    *address = handle->bytes.get();
    return kHostErrorNone;
}

A_Err unlock_handle(AEGP_MemHandle handle) {
    if (handle->locks.fetch_sub(1, std::memory_order_relaxed) < 1) {
        ThreadedHost::count(host().misuses_);
    }
    return kHostErrorNone;
}

// IO in suite.

A_Err get_options(AEIO_InSpecH spec, void** options) {
    *options = (*spec)->options;
    return kHostErrorNone;
}

A_Err set_options(AEIO_InSpecH spec, void* options, void** old_options) {
    *old_options = std::exchange((*spec)->options, options);
    return kHostErrorNone;
}

A_Err set_dimensions(AEIO_InSpecH spec, A_long width_px, A_long height_px) {
    (*spec)->width_px = width_px;
    (*spec)->height_px = height_px;
    return kHostErrorNone;
}

A_Err lend_path(AEIO_InSpecH spec, AEGP_MemHandle* path) {
    const std::u16string units = std::filesystem::path((*spec)->path).u16string();
    const std::size_t size_bytes = (units.size() + 1) * sizeof(char16_t);
    new_handle(1, "path", static_cast<AEGP_MemSize>(size_bytes), kMemFlagClear, path);
    std::memcpy((*path)->bytes.get(), units.c_str(), size_bytes);
    return kHostErrorNone;
}

template <typename Suite>
Suite io_in_suite() {
    Suite suite = {};
    if constexpr (std::is_same_v<Suite, AEGP_IOInSuite5>) {
        suite.AEGP_GetInSpecFilePath = lend_path;
    }
    suite.AEGP_GetInSpecOptionsHandle = get_options;
    suite.AEGP_SetInSpecOptionsHandle = set_options;
    suite.AEGP_SetInSpecNativeFPS = [](AEIO_InSpecH, A_Fixed) { return kHostErrorNone; };
    suite.AEGP_SetInSpecDepth = [](AEIO_InSpecH, A_short) { return kHostErrorNone; };
    suite.AEGP_SetInSpecSize = [](AEIO_InSpecH, auto) { return kHostErrorNone; };
    suite.AEGP_SetInSpecAlphaLabel = [](AEIO_InSpecH, const AEIO_AlphaLabel*) { return kHostErrorNone; };
    suite.AEGP_SetInSpecDuration = [](AEIO_InSpecH, const A_Time*) { return kHostErrorNone; };
    suite.AEGP_SetInSpecDimensions = set_dimensions;
    return suite;
}

// The others.

AEGP_UtilitySuite7 utility_suite() {
    AEGP_UtilitySuite7 suite = {};
    suite.AEGP_ReportInfo = [](AEGP_PluginID, const A_char*) {
        ThreadedHost::count(host().reports_);
        return kHostErrorNone;
    };
    return suite;
}

PF_ANSISuite1 ansi_suite() {
    PF_ANSISuite1 suite = {};
    suite.strcpy = [](A_char* destination, const A_char* source) { return std::strcpy(destination, source); };
    return suite;
}

template <typename Suite>
Suite import_suite() {
    Suite suite = {};
    suite.AEGP_RegisterImportFlavor = [](const A_char*, AE_FIM_ImportFlavorRef* flavor) {
        *flavor = 1;
        return kHostErrorNone;
    };
    suite.AEGP_RegisterImportFlavorFileTypes = [](AE_FIM_ImportFlavorRef, A_long, const AEIO_FileKind*,
                                                  A_long, const AEIO_FileKind*) { return kHostErrorNone; };
    suite.AEGP_RegisterImportFlavorImportCallbacks = [](AE_FIM_ImportFlavorRef, AE_FIM_ImportFlags,
                                                        const auto*) { return kHostErrorNone; };
    return suite;
}

template <typename Suite>
Suite register_suite() {
    Suite suite = {};
    suite.AEGP_RegisterDeathHook = [](AEGP_PluginID, AEGP_DeathHook hook, AEGP_DeathRefcon) {
        host().keep_death_hook(hook);
        return kHostErrorNone;
    };
    suite.AEGP_RegisterIO = [](AEGP_PluginID, AEGP_IORefcon, const AEIO_ModuleInfo*, const auto* functions) {
        host().keep_module(*functions);
        return kHostErrorNone;
    };
    return suite;
}

struct SuiteRow {
    std::string_view name;
    A_long version;
    const void* table;
    std::optional<HostGeneration> generation = {};  ///< empty: both
};

const AEGP_MemorySuite1 kMemory = {new_handle, free_handle, lock_handle, unlock_handle, {}};
const AEGP_UtilitySuite7 kUtility = utility_suite();
const PF_ANSISuite1 kANSI = ansi_suite();
const auto kClassicIOIn = io_in_suite<AEGP_IOInSuite1>();
const auto kClassicImport = import_suite<AEGP_FileImportManagerSuite2>();
const auto kClassicRegister = register_suite<AEGP_RegisterSuite4>();
const auto kCurrentIOIn = io_in_suite<AEGP_IOInSuite5>();
const auto kCurrentImport = import_suite<AEGP_FileImportManagerSuite3>();
const auto kCurrentRegister = register_suite<AEGP_RegisterSuite6>();
const SuiteRow kSuites[] = {
    {"AEGP Memory Suite", 1, &kMemory},
    {"AEGP Utility Suite", 7, &kUtility},
    {"PF ANSI Suite", 1, &kANSI},
    {"AEGP IO In Suite", 1, &kClassicIOIn, HostGeneration::classic},
    {"AEGP File Import Manager Suite", 2, &kClassicImport, HostGeneration::classic},
    {"AEGP Register Suite", 4, &kClassicRegister, HostGeneration::classic},
    {"AEGP IO In Suite", 5, &kCurrentIOIn, HostGeneration::current},
    {"AEGP File Import Manager Suite", 3, &kCurrentImport, HostGeneration::current},
    {"AEGP Register Suite", 6, &kCurrentRegister, HostGeneration::current},
};

A_Err acquire_suite(const char* name, A_long version, const void** suite) {
    for (const SuiteRow& row : kSuites) {
        const bool offered = row.generation.value_or(host().generation_) == host().generation_;
        if (offered && row.name == name && row.version == version) {
            *suite = row.table;
            ThreadedHost::count(host().suites_lent_);
            return kHostErrorNone;
        }
    }
    ThreadedHost::count(host().misuses_);
    return kHostErrorMissingSuite;
}

A_Err release_suite(const char*, A_long) {
    ThreadedHost::count(host().suites_lent_, -1);
    return kHostErrorNone;
}

}  // namespace

ThreadedHost& ThreadedHost::current() {
    return *g_current;
}

void ThreadedHost::Unload::operator()(void* bundle) const {
    ::dlclose(bundle);
}

template <typename Function>
Function ThreadedHost::entry(const char* name) const {
    const auto function = reinterpret_cast<Function>(::dlsym(bundle_.get(), name));
    if (function == nullptr) {
        throw std::runtime_error(std::string("the bundle does not export ") + name);
    }
    return function;
}

ThreadedHost::ThreadedHost(const std::string& bundle, HostGeneration generation)
    : generation_(generation), bundle_(::dlopen(bundle.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (bundle_ == nullptr) {
        throw std::runtime_error(::dlerror());
    }
    g_current = this;
    basic_suite_.AcquireSuite = acquire_suite;
    basic_suite_.ReleaseSuite = release_suite;
    basic_.basic_suite = &basic_suite_;
    basic_.plugin_id = 1;
    if (const A_Err err = enter(); err != kHostErrorNone) {
        throw std::runtime_error("the entry point failed with " + std::to_string(err));
    }
    if (!classic_module_ && !current_module_) {
        throw std::runtime_error("the bundle registered no input module");
    }
}

A_Err ThreadedHost::enter() {
    AEGP_GlobalRefcon refcon = nullptr;
    return generation_ == HostGeneration::classic
               ? entry<AEGP_PluginInitFunc>("Main_VORTANXR_AE")(&basic_suite_, 11, 0, "", "", 1, &refcon)
               : entry<AEGP_PluginInitFuncCurrent>("EntryPointFunc")(&basic_suite_, 13, 28, 1, &refcon);
}

A_Err ThreadedHost::init_in_spec(const std::string& path, AEIO_InSpecH spec) {
    return generation_ == HostGeneration::classic
               ? classic_module_->AEIO_InitInSpecFromFile(&basic_, path.c_str(), spec)
               : current_module_->AEIO_InitInSpecFromFile(
                     &basic_, std::filesystem::path(path).u16string().c_str(), spec);
}

A_Err ThreadedHost::draw_sparse_frame(AEIO_InSpecH spec, PF_LayerDef* world) {
    AEIO_DrawSparseFramePB request{};
    AEIO_DrawingFlags flags = 0;
    const auto draw = generation_ == HostGeneration::classic ? classic_module_->AEIO_DrawSparseFrame
                                                             : current_module_->AEIO_DrawSparseFrame;
    return draw(&basic_, spec, &request, world, &flags);
}

A_Err ThreadedHost::dispose_in_spec(AEIO_InSpecH spec) {
    return generation_ == HostGeneration::classic ? classic_module_->AEIO_DisposeInSpec(&basic_, spec)
                                                  : current_module_->AEIO_DisposeInSpec(&basic_, spec);
}

ThreadedHost::~ThreadedHost() {
    if (death_hook_ != nullptr) {
        death_hook_(nullptr, nullptr);
    }
    g_current = nullptr;
    for (AEGP_Mem* handle = newest_handle_; handle != nullptr;) {
        delete std::exchange(handle, handle->made_before);
    }
}

ThreadedHost::Item::Item(ThreadedHost& host, const std::string& path) : host_(host) {
    footage_.path = path;
    code_ = host_.init_in_spec(path, &footage_pointer_);
}

ThreadedHost::Item::Item(ThreadedHost& host, const std::string& path, Reopened /*reopened*/) : host_(host) {
    footage_.path = path;
}

ThreadedHost::Item::~Item() {
    if (host_.dispose_in_spec(&footage_pointer_) != kHostErrorNone) {
        count(host_.misuses_);
    }
}

DrawnFrame ThreadedHost::Item::draw(const FrameGeometry& geometry) const {
    constexpr unsigned char kFill = 0x5A;
    const A_long row_bytes =
        geometry.width_px * static_cast<A_long>(sizeof(PF_Pixel)) + geometry.padding_bytes;
    DrawnFrame frame;
    frame.bytes.assign(static_cast<std::size_t>(row_bytes) * static_cast<std::size_t>(geometry.height_px) + 1,
                       kFill);
    PF_LayerDef world{};
    unsigned char* first_row = frame.bytes.data();
    if (geometry.upwards && geometry.height_px > 0) {
        first_row += static_cast<std::ptrdiff_t>(row_bytes) * (geometry.height_px - 1);
    }
    world.data = reinterpret_cast<PF_Pixel*>(first_row);
    world.row_bytes = geometry.upwards ? -row_bytes : row_bytes;
    world.width = geometry.width_px;
    world.height = geometry.height_px;
    frame.code = host_.draw_sparse_frame(&footage_pointer_, &world);
    return frame;
}
