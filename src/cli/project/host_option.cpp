#include "cli/project/host_option.h"

#include "cli/options.h"
namespace cli {

void add_host_option(Options& options, std::string& kind) {
    options
        .option("--host,--host-version", kind,
                "what kind of host to be; an interface version such as 9.31 has its own kind, before 13.0 "
                "classic, and may also be added to one, as in today:25.3")
        .value_name("classic|today|MAJOR.MINOR")
        .show_default()
        .check([](const std::string& text) {
            return embedded::parse_host(text)
                       ? std::string()
                       : '"' + text + "\" is not classic, today, MAJOR.MINOR or both with a colon between";
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

}  // namespace cli
