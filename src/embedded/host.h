#pragma once

// The embedded host: loads a bundle, offers it the suites it asks for, and keeps a project. What the product
// runs on where After Effects is not.
//
//   embedded::Host host;
//   if (const auto loaded = host.load(bundle); !loaded.ok()) ...
//   if (host.verify("shot.aec").importable) host.import_file("shot.aec");
//   host.project(); host.conformance();
//
// It is a classic host or one of today's, by its options. What differs is at the edge only: the suites'
// versions, the entry, and the paths, which this interface and the project hold as UTF-8.
//
// A host's suites are plain C functions without a context, so one host lives at a time in a process; a second
// one can be made as soon as the first is gone. Everything runs on the calling thread.

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
    CallbackResult
        entry;  ///< of the entry point; a failing one leaves nothing registered and the bundle unloaded
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

    /// Runs `use(const auto& block)` with the block that the module has. Most functions are the same in both.
    template <class Use>
    A_Err with_functions(const Use& use) const {
        return std::visit(use, functions);
    }

    [[nodiscard]] std::string name() const;
    /// Its extensions with their full stop, without repetition.
    [[nodiscard]] std::vector<std::string> extensions() const;
    /// Its flags in words, in the order of their bits: "input", "file", ...; unknown ones as "bit 5".
    [[nodiscard]] std::vector<std::string> flag_labels() const;
};

/// The frame that an input module is to draw into.
struct FrameShape {
    A_long width_px = 0;  ///< 0 is allowed: a frame without pixels
    A_long height_px = 0;
    A_long row_bytes = 0;  ///< 0: four bytes a pixel, no padding; negative: rows run upwards in memory
    A_long origin_x = 0;
    A_long origin_y = 0;
    A_Time time{0, 1};      ///< which frame is asked for
    std::uint8_t fill = 0;  ///< what every byte of the frame holds before drawing
};

struct DrawResult {
    CallbackResult callback;
    std::string
        error;  ///< why nothing was asked of the module (a bad shape, a dead in-spec); empty otherwise
    A_long width_px = 0;
    A_long height_px = 0;
    std::vector<PF_Pixel>
        pixels;  ///< height * width, rows top to bottom, no padding, straight from the frame
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
    /// The same with another entry than that of the host's generation.
    LoadResult load(const std::filesystem::path& bundle, const std::string& entry);
    /// What the destructor does, earlier: afterwards project, report and messages are final.
    void unload();

    [[nodiscard]] const std::vector<ImportFlavor>& flavors() const;
    [[nodiscard]] const std::vector<Module>& modules() const;

    [[nodiscard]] HostGeneration generation() const;

    /// Why this host cannot name the file to a bundle; empty when it can. Asked for such a file nevertheless,
    /// it answers kHostErrorParameter and does not ask the bundle.
    [[nodiscard]] std::string path_problem(const std::string& path) const;

    // --- importing; the importer is the one registered for the file's extension, else the first one
    // registered

    VerifyResult verify(const std::string& path);
    /// kHostErrorGeneric when there is no importer.
    CallbackResult import_file(const std::string& path);

    // --- what has become of it

    [[nodiscard]] const Project& project() const;
    [[nodiscard]] const std::vector<Message>& messages() const;
    /// Brought up to date at the end of every callback.
    [[nodiscard]] const ConformanceReport& conformance() const;
    /// What does not fit together in the project, its handles and its memory: a defect of this host, whatever
    /// the bundle did. Nothing when all is well. Between callbacks.
    [[nodiscard]] std::optional<std::string> validate() const;
    /// How often each function was called so far, by name; calls that a fault answered included.
    [[nodiscard]] std::map<std::string, std::int64_t> call_counts() const;
    /// Null turns the log off.
    void log_calls(CallLog::Sink sink);

    // --- input modules

    /// The module whose extensions include that of `path` (letters of either case), or null.
    [[nodiscard]] const Module* module_for(std::string_view path) const;
    /// Verify, init, info, dimensions, duration. What was opened is project().in_spec(result.in_spec); a
    /// footage's own in-spec is opened by AEGP_NewFootage in the same way.
    OpenResult open_with_module(const std::string& path);
    /// Writes beyond the frame's pixels are undone and reported as RuleViolation::write_outside_frame.
    DrawResult draw(Id in_spec, const FrameShape& shape);
    CallbackResult dispose(Id in_spec);

  protected:
    /// For TestHost (embedded/testing.h).
    [[nodiscard]] Session& session() const { return *session_; }

  private:
    std::unique_ptr<Session> session_;
};

}  // namespace embedded
