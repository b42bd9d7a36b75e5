#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "cli/footage/finding_options.h"
#include "python/scene_calls.h"

// What the module's functions about imports do, without anything of Python.

namespace python {

struct ImportRequest {
    std::string path;
    cli::FindingChoices choices;
    std::string bundle;         ///< empty: the one beside the program
    std::string host;           ///< as --host takes it
    std::string name_encoding;  ///< as --name-encoding takes it; empty for bytes
};

/// The keys of one stream of a layer as columns, in the order of time.
struct StreamColumns {
    std::int32_t layer = 0;           ///< its id
    std::int32_t kind = 0;            ///< of the stream
    std::size_t components = 1;       ///< numbers of a value: 1 to 4
    std::vector<double> times;        ///< seconds in layer time
    std::vector<double> values;       ///< `components` for each time
    std::vector<double> fixed_value;  ///< used while there are no keys
};

struct ImportAnswer {
    /// The document of `vxr import --json` without keys, with labels of layers and footage, and with "error",
    /// a diagnostic or null.
    std::string document;
    std::vector<StreamColumns> streams;  ///< in the order of the document's
};

/// Reads the scene and has the plug-in import it into an embedded host. `watch` is told about the reading
/// alone. Waits while another thread imports, because a process has one host at a time. Throws
/// std::runtime_error if the relinked copy of the scene cannot be made.
[[nodiscard]] ImportAnswer import_scene(const ImportRequest& request, const Watch& watch);

/// Held while an embedded host lives; others wait. Throws std::runtime_error on a thread that already has
/// one: what Python calls within it cannot wait for itself.
class HostTurn {
  public:
    HostTurn();
    ~HostTurn();
    HostTurn(const HostTurn&) = delete;
    HostTurn& operator=(const HostTurn&) = delete;

  private:
    std::unique_lock<std::mutex> lock_;
};

/// Whether --host takes this text.
[[nodiscard]] bool is_host(const std::string& text);
/// Whether --name-encoding takes this text, except for "bytes".
[[nodiscard]] bool is_name_encoding(const std::string& text);

}  // namespace python
