#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "host/bridge/frame_reduction.h"
#include "host/bridge/spec_use.h"

// What the bridge knows of the pictures that input modules keep. A module alone knows where its pictures are;
// it tells the size of each when it opens the file.

namespace bridge {

// ---- pictures that a module has attached to an in-spec of the host's

/// While a module opens a file: it attaches `options`, and its picture has this size, which is 0 by 0 until
/// the module has told it. Throws std::bad_alloc for options that are not known yet.
void remember_picture(void* options, FrameSize size);

/// After the module has freed the options.
void forget_picture(const void* options);

/// Nothing for options that no module attached in this session. Such are not to be shown to a module: a host
/// that copies a project may have copied their bytes, and the addresses in them mean nothing any more.
std::optional<FrameSize> size_of_picture(const void* options);

// ---- pictures that a module has loaded again, for in-specs without options

/// A picture that belongs to the bridge. The last owner has the module free it.
class ReloadedPicture {
  public:
    /// Has the module at `place` load the file. On an error there are no options.
    ReloadedPicture(std::size_t place, const AEIO_BasicData& data, const std::string& path);
    ~ReloadedPicture();
    ReloadedPicture(const ReloadedPicture&) = delete;
    ReloadedPicture& operator=(const ReloadedPicture&) = delete;

    [[nodiscard]] A_Err error() const { return error_; }
    [[nodiscard]] void* options() const { return options_; }
    [[nodiscard]] FrameSize size() const { return size_; }
    /// Holds the options.
    [[nodiscard]] OwnMemory& memory() { return memory_; }

    /// The host with whose functions the module would free the picture is gone.
    void abandon() { options_ = nullptr; }

  private:
    std::size_t place_;
    AEIO_BasicData data_;
    OwnMemory memory_;
    void* options_ = nullptr;
    FrameSize size_;
    A_Err error_;
};

/// The picture of the file at `path` (UTF-8). It is loaded the first time, and again when the file has
/// changed since; in between it is kept, up to some number of pictures and bytes, for every in-spec that
/// names the file: hosts make copies of a project as they need them. Threads that ask for one file at a time
/// wait for one load. A failure is returned; the first is reported with the file's name, and again after a
/// success.
A_Err reloaded_picture(std::size_t place, const AEIO_BasicData& data, const std::string& path,
                       std::shared_ptr<ReloadedPicture>* picture);

/// Frees what was loaded again, as soon as no thread draws it any more. Before the host quits.
void free_reloaded_pictures();

/// Forgets every picture without asking a module: they belong to a host that is gone.
void forget_pictures();

}  // namespace bridge
