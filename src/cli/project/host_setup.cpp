#include "cli/project/host_setup.h"

#include "cli/options.h"
#include "system/files.h"
#include "system/program_path.h"

namespace cli {
namespace {

constexpr const char* kBundle = VXR_BUNDLE_NAME;

}  // namespace

void add_bundle_option(Options& options, std::string& path) {
    options.option("--bundle", path, "the plug-in to load instead of the one beside this program")
        .value_name("PATH")
        .environment("VXR_BUNDLE")
        .group("The plug-in and its host");
}

std::vector<std::filesystem::path> bundle_places(const std::filesystem::path& program) {
    return os::paths_beside(program, kBundle);
}

FoundBundle find_bundle(const std::string& chosen) {
    if (!chosen.empty()) {
        return {os::path_of(os::absolute_path(chosen)), {}};
    }
    std::string looked;
    for (const std::filesystem::path& place : bundle_places(os::own_program())) {
        std::string why_not;
        if (os::is_regular_file(os::text_of(place), why_not)) {
            return {place, {}};
        }
        looked += (looked.empty() ? "" : ", ") + os::text_of(place);
    }
    return {{}, "there is no plug-in in " + looked + "; name one with --bundle or VXR_BUNDLE"};
}

void add_host_option(Options& options, std::string& kind) {
    options
        .option("--host,--host-version", kind,
                "the kind of host; an interface version such as 9.31 implies its kind, classic before 13.0, "
                "and may also follow a kind, as in today:25.3")
        .value_name("classic|today|MAJOR.MINOR")
        .show_default()
        .check([](const std::string& text) {
            return embedded::parse_host(text)
                       ? std::string()
                       : '"' + text + "\" is not classic, today, MAJOR.MINOR, or both joined by a colon";
        })
        .group("The plug-in and its host");
}

embedded::HostOptions host_of_kind(const std::string& kind) {
    const embedded::HostKind parsed = embedded::parse_host(kind).value();
    embedded::HostOptions options;
    options.generation = parsed.generation;
    options.version = parsed.version;
    return options;
}

ExitCode load_bundle(embedded::Host& host, const FoundBundle& bundle, std::string& problem) {
    embedded::LoadResult loaded;
    loaded.error = bundle.error;
    if (loaded.ok()) {
        loaded = host.load(bundle.path);
    }
    if (loaded.ok()) {
        return ExitCode::fine;
    }
    problem = "the plug-in was not loaded: " + loaded.error;
    return loaded.entry.code != kHostErrorNone ? ExitCode::refused : ExitCode::cannot_read_or_write;
}

std::string end_text(const embedded::CallbackResult& result) {
    // A classic host receives an exception, a current host the error.
    return result.missing_suite || result.code == kHostErrorMissingSuite
               ? "because the host does not offer a suite"
               : "with host error " + std::to_string(result.code);
}

}  // namespace cli
