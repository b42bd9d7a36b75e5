#pragma once

// The embedded host: loads a bundle, offers it the suites it asks for, and keeps a project. The product runs
// on it where After Effects is not installed.
//
//   embedded::Host host;
//   if (const auto loaded = host.load(bundle); !loaded.ok()) ...
//   if (host.verify("shot.aec").importable) host.import_file("shot.aec");
//   host.project(); host.conformance();
//
// By its options it is a classic host or a current one. They differ at the edge alone: in the versions of the
// suites, the entry point, and the paths, which this interface and the project hold as UTF-8.
//
// A host's suites are plain C functions without a context, so a process has one host at a time; the next can
// be made as soon as the first is gone. Everything runs on the calling thread; only frames may be drawn on
// another one while the calling thread waits (Host::draw).

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "embedded/call_log.h"
#include "embedded/conformance.h"
#include "embedded/host_options.h"
#include "embedded/project.h"
#include "host/current_interface.h"

namespace embedded {

/// How a callback of the bundle ended.
struct CallbackResult {
    A_Err code = kHostErrorNone;  ///< what it returned; kHostErrorMissingSuite when it threw
    bool missing_suite = false;   ///< the missing-suite exception left the callback
};

struct LoadResult {
    std::string error;  ///< why the bundle could not be loaded; empty when it was
    /// Of the entry point. If it fails, nothing stays registered and the bundle is unloaded.
    CallbackResult entry;
    [[nodiscard]] bool ok() const { return error.empty(); }
};

struct VerifyResult {
    CallbackResult callback;
    bool importable = false;  ///< false also when no importer is registered
};

/// An importer that the bundle registered with "AEGP File Import Manager Suite".
struct ImportFlavor {
    AE_FIM_ImportFlavorRef ref = 0;
    std::string name;
    std::vector<PFILE_FileKind> file_types;
    std::vector<std::string> extensions;  ///< with their full stop: ".aec"
    AE_FIM_ImportFlags flags = 0;
    /// Of the host's generation; nothing until the bundle registers them.
    std::variant<std::monostate, AE_FIM_ImportCallbacks, AE_FIM_ImportCallbacks3> callbacks;
};

/// An input module that the bundle registered with AEGP_RegisterIO; both records are copies.
struct Module {
    AEGP_IORefcon refcon = nullptr;
    AEIO_ModuleInfo info{};
    std::variant<AEIO_FunctionBlock2, AEIO_FunctionBlock4> functions;  ///< of the host's generation

    /// Runs `use(const auto& block)` with the module's block. Most functions are the same in both kinds.
    template <class Use>
    A_Err with_functions(const Use& use) const {
        return std::visit(use, functions);
    }

    [[nodiscard]] std::string name() const;
    /// Its extensions with their full stop, without repetition.
    [[nodiscard]] std::vector<std::string> extensions() const;
    /// Its flags in the order of their bits: "input", "file", ...; an unknown one is "bit 5".
    [[nodiscard]] std::vector<std::string> flag_labels() const;
};

/// The frame that an input module draws into.
struct FrameShape {
    A_long width_px = 0;  ///< 0: a frame without pixels
    A_long height_px = 0;
    A_long row_bytes = 0;  ///< 0: four bytes a pixel, no padding; negative: bottom row first in memory
    A_long origin_x = 0;
    A_long origin_y = 0;
    A_Time time{0, 1};      ///< of the frame
    std::uint8_t fill = 0;  ///< every byte of the frame before drawing
    /// The resolution that a current host names: 2 for half. It does not change the size above.
    A_long resolution_divisor = 1;
    /// The part of the frame that the host needs; unset: the whole frame.
    std::optional<A_LRect> required_region = std::nullopt;
};

struct DrawResult {
    CallbackResult callback;
    std::string error;  ///< why the module was not called (a bad shape, a dead in-spec); empty otherwise
    A_long width_px = 0;
    A_long height_px = 0;
    /// height * width, rows top to bottom, no padding, as the module drew them.
    std::vector<PF_Pixel> pixels;
};

struct OpenResult {
    CallbackResult callback;
    std::string error;  ///< why nothing was opened; empty when `in_spec` is not 0
    Id in_spec = 0;
};

class Session;

class Host {
  public:
    /// Throws std::logic_error while another host lives.
    explicit Host(HostOptions options = {});
    /// Disposes of what modules opened, runs the death hook, unloads the bundle.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // --- the bundle

    /// The exported function that a host of this generation calls first.
    static const char* entry_name(HostGeneration generation);

    /// Loads the file and calls its exported entry. A bundle that was loaded before is unloaded first; the
    /// project stays.
    LoadResult load(const std::filesystem::path& bundle);
    /// Calls another entry than that of the host's generation.
    LoadResult load(const std::filesystem::path& bundle, const std::string& entry);
    /// Does early what the destructor does; afterwards project, report and messages are final.
    void unload();

    [[nodiscard]] const std::vector<ImportFlavor>& flavors() const;
    [[nodiscard]] const std::vector<Module>& modules() const;

    [[nodiscard]] HostGeneration generation() const;

    /// Why this host cannot pass the path to a bundle; empty when it can. The functions below answer
    /// kHostErrorParameter for such a path and do not call the bundle.
    [[nodiscard]] std::string path_problem(const std::string& path) const;

    // --- importing; the importer is the one registered for the file's extension, else the first one
    // registered

    VerifyResult verify(const std::string& path);
    /// kHostErrorGeneric when there is no importer.
    CallbackResult import_file(const std::string& path);

    // --- results

    [[nodiscard]] const Project& project() const;
    [[nodiscard]] const std::vector<Message>& messages() const;
    /// Brought up to date at the end of every callback.
    [[nodiscard]] const ConformanceReport& conformance() const;
    /// The first broken invariant of the project, its handles and its memory, which is a bug in this host
    /// whatever the bundle did; nothing when all hold. Between callbacks.
    [[nodiscard]] std::optional<std::string> validate() const;
    /// How often each function was called, by name, including calls answered by a fault.
    [[nodiscard]] std::map<std::string, std::int64_t> call_counts() const;
    /// Null turns the log off.
    void log_calls(CallLog::Sink sink);

    // --- input modules

    /// The module whose extensions include that of `path` (letters of either case), or null.
    [[nodiscard]] const Module* module_for(std::string_view path) const;
    /// Has the module verify the file, initialise an in-spec, and give its info, dimensions and duration. The
    /// result is project().in_spec(result.in_spec). AEGP_NewFootage opens the in-spec of footage in the same
    /// way.
    OpenResult open_with_module(const std::string& path);
    /// Writes beyond the frame's pixels are undone and reported as RuleViolation::write_outside_frame. A
    /// current host of interface 13.5 or later draws on another thread, from a copy of the in-spec that does
    /// not have its options.
    DrawResult draw(Id in_spec, const FrameShape& shape);
    CallbackResult dispose(Id in_spec);

  protected:
    /// For TestHost (embedded/testing.h).
    [[nodiscard]] Session& session() const { return *session_; }

  private:
    std::unique_ptr<Session> session_;
};

}  // namespace embedded
