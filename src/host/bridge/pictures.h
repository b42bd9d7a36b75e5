#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "host/bridge/frame_reduction.h"
#include "host/bridge/spec_use.h"

// What the bridge knows about the pictures that input modules keep. Only the module can reach a picture; it
// sets the size when it opens the file.

namespace bridge {

// ---- pictures that a module has attached to an in-spec of the host

/// Notes that a module which opens a file attaches `options`, and the size of its picture: 0 by 0 until the
/// module sets it. Throws std::bad_alloc for options that are not known yet.
void remember_picture(void* options, FrameSize size);

/// After the module has freed the options.
void forget_picture(const void* options);

/// Nothing for options that no module attached in this session. A module must not see those: a host that
/// copies a project may copy their bytes, whose addresses are then invalid.
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

    /// Leaves the picture alone from now on: the host through which the module would free it is gone.
    void abandon() { options_ = nullptr; }

  private:
    std::size_t place_;
    AEIO_BasicData data_;
    OwnMemory memory_;
    void* options_ = nullptr;
    FrameSize size_;
    A_Err error_;
};

/// The picture of the file at `path` (UTF-8). It is loaded on the first call and again when the file has
/// changed. In between it is kept, up to a number of pictures and bytes, for every in-spec that names the
/// file, because hosts copy a project often. Threads that ask for the same file wait for one load. A failure
/// is returned, and reported with the file's name unless the last load of the file failed, too.
A_Err reloaded_picture(std::size_t place, const AEIO_BasicData& data, const std::string& path,
                       std::shared_ptr<ReloadedPicture>* picture);

/// Frees the reloaded pictures, each when the last thread that draws it is done. Called before the host
/// quits.
void free_reloaded_pictures();

/// Forgets every picture without calling a module: they belong to a host that is gone.
void forget_pictures();

}  // namespace bridge
