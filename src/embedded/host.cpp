#include "embedded/host.h"

#include <algorithm>
#include <iterator>

#include "embedded/frame_driver.h"
#include "embedded/host_path.h"
#include "embedded/invariants.h"
#include "embedded/module_driver.h"
#include "embedded/session.h"
#include "system/files.h"

namespace embedded {
namespace {

/// The importer for the file's extension, else the first with callbacks: users may import a file with any
/// importer.
const ImportFlavor* flavor_for(const Session& session, const std::string& path) {
    const std::string extension = lower_extension(path);
    const ImportFlavor* first = nullptr;
    for (const ImportFlavor& flavor : session.flavors) {
        if (std::holds_alternative<std::monostate>(flavor.callbacks)) {
            continue;
        }
        if (std::find(flavor.extensions.begin(), flavor.extensions.end(), extension) !=
            flavor.extensions.end()) {
            return &flavor;
        }
        if (first == nullptr) {
            first = &flavor;
        }
    }
    return first;
}

struct FlagLabel {
    A_long flag;
    const char* label;
};

constexpr FlagLabel kFlagLabels[] = {
    {kModuleFlagInput, "input"},
    {kModuleFlagOutput, "output"},
    {kModuleFlagFile, "file"},
    {kModuleFlagStill, "still"},
    {kModuleFlagNoTime, "no time"},
    {kModuleFlagNoOptions, "no options"},
    {kModuleFlagNoUserInterface, "no user interface"},
};

/// Has `call(const auto& callbacks)` call one of the importer's callbacks, which must be registered.
template <class Call>
A_Err call_importer(const ImportFlavor& flavor, const Call& call) {
    if (const auto* classic = std::get_if<AE_FIM_ImportCallbacks>(&flavor.callbacks)) {
        return call(*classic);
    }
    return call(std::get<AE_FIM_ImportCallbacks3>(flavor.callbacks));
}

}  // namespace

std::string Module::name() const {
    return {info.name, std::find(info.name, std::end(info.name), '\0')};
}

std::vector<std::string> Module::extensions() const {
    std::vector<std::string> all;
    // The table holds the file types first, then the extensions.
    for (int i = info.num_filetypes; i < info.num_filetypes + info.num_extensions; ++i) {
        std::string extension = extension_text(info.read_kinds[i].ext);
        if (std::find(all.begin(), all.end(), extension) == all.end()) {
            all.push_back(std::move(extension));
        }
    }
    return all;
}

std::vector<std::string> Module::flag_labels() const {
    std::vector<std::string> labels;
    for (int bit = 0; bit < 32; ++bit) {
        const auto flag = static_cast<A_long>(1U << static_cast<unsigned>(bit));
        if ((info.flags & flag) == 0) {
            continue;
        }
        const auto* known =
            std::find_if(std::begin(kFlagLabels), std::end(kFlagLabels),
                         [flag](const FlagLabel& known_flag) { return known_flag.flag == flag; });
        labels.push_back(known == std::end(kFlagLabels) ? "bit " + std::to_string(bit) : known->label);
    }
    return labels;
}

Host::Host(HostOptions options) : session_(std::make_unique<Session>(std::move(options))) {}

Host::~Host() {
    try {
        session_->unload();
    } catch (...) {
        // A destructor must not throw; unload() passes on what the bundle throws at its end.
        session_->forget_registrations();
    }
}

const char* Host::entry_name(HostGeneration generation) {
    return generation == HostGeneration::classic ? "Main_VORTANXR_AE" : "EntryPointFunc";
}

LoadResult Host::load(const std::filesystem::path& bundle) {
    return load(bundle, entry_name(generation()));
}

LoadResult Host::load(const std::filesystem::path& bundle, const std::string& entry) {
    unload();
    LoadResult loaded;
    session_->bundle = os::DynamicLibrary::open(bundle, loaded.error);
    if (!session_->bundle) {
        if (loaded.error.empty()) {
            loaded.error = "the bundle cannot be loaded";
        }
        return loaded;
    }
    const os::DynamicLibrary::Function function = session_->bundle->function(entry.c_str());
    if (function == nullptr) {
        session_->bundle.reset();
        loaded.error = "the bundle does not export " + entry;
        return loaded;
    }
    loaded = generation() == HostGeneration::classic
                 ? session_->call_entry(reinterpret_cast<AEGP_PluginInitFunc>(function), os::text_of(bundle))
                 : session_->call_entry(reinterpret_cast<AEGP_PluginInitFuncCurrent>(function));
    if (!loaded.ok()) {
        session_->bundle.reset();
    }
    return loaded;
}

void Host::unload() {
    session_->unload();
}

const std::vector<ImportFlavor>& Host::flavors() const {
    return session_->flavors;
}

const std::vector<Module>& Host::modules() const {
    return session_->modules;
}

HostGeneration Host::generation() const {
    return session_->options.generation;
}

std::string Host::path_problem(const std::string& path) const {
    return embedded::path_problem(generation(), path);
}

VerifyResult Host::verify(const std::string& path) {
    VerifyResult result;
    const ImportFlavor* found = flavor_for(*session_, path);
    if (found == nullptr) {
        return result;
    }
    if (!path_problem(path).empty()) {
        result.callback.code = kHostErrorParameter;
        return result;
    }
    const ImportFlavor flavor = *found;  // a callback may register more and move the table
    const HostPath named(generation(), path);
    A_Boolean importable = 0;
    result.callback = session_->run("verify callback", [&] {
        return call_importer(flavor, [&](const auto& callbacks) {
            return callbacks.verify_cb(named.given_to(callbacks), callbacks.refcon, &importable);
        });
    });
    result.importable = result.callback.code == kHostErrorNone && importable != 0;
    return result;
}

CallbackResult Host::import_file(const std::string& path) {
    const ImportFlavor* found = flavor_for(*session_, path);
    if (found == nullptr) {
        return {kHostErrorGeneric, false};
    }
    if (!path_problem(path).empty()) {
        return {kHostErrorParameter, false};
    }
    const ImportFlavor flavor = *found;
    const HostPath named(generation(), path);
    return session_->run("import callback", [&] {
        return call_importer(flavor, [&](const auto& callbacks) {
            return callbacks.import_cb(named.given_to(callbacks), nullptr, kSpecialActionNone,
                                       session_->handles.handle<AEGP_ItemH>(kRootFolder), callbacks.refcon);
        });
    });
}

const Project& Host::project() const {
    return session_->project;
}

const std::vector<Message>& Host::messages() const {
    return session_->project.messages;
}

const ConformanceReport& Host::conformance() const {
    return session_->conformance;
}

std::optional<std::string> Host::validate() const {
    std::optional<std::string> found = validate_project(session_->project);
    return found ? found : validate_session(*session_);
}

std::map<std::string, std::int64_t> Host::call_counts() const {
    std::map<std::string, std::int64_t> counts;
    for (std::size_t i = 0; i < kFunctionCount; ++i) {
        if (session_->call_counts[i] > 0) {
            counts[kFunctions[i].name] = session_->call_counts[i];
        }
    }
    return counts;
}

void Host::log_calls(CallLog::Sink sink) {
    session_->log.set_sink(std::move(sink));
}

const Module* Host::module_for(std::string_view path) const {
    return embedded::module_for(*session_, path);
}

OpenResult Host::open_with_module(const std::string& path) {
    const Module* module = module_for(path);
    if (module == nullptr) {
        return {{kHostErrorGeneric, false}, "no input module accepts files of this kind", 0};
    }
    return embedded::open_with_module(*session_, *module, path);
}

DrawResult Host::draw(Id in_spec, const FrameShape& shape) {
    return draw_frame(*session_, in_spec, shape);
}

CallbackResult Host::dispose(Id in_spec) {
    return dispose_in_spec(*session_, in_spec);
}

}  // namespace embedded
