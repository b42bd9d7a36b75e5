#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "embedded/project.h"
#include "render/picture.h"

namespace render {

/// A picture, or the reason that it was not read.
struct PictureReading {
    std::optional<Picture> picture;
    std::string error;
};

/// Has the input module of the footage draw it. Called on the thread that renders only, because hosts draw on
/// one thread.
using ModulePictures = std::function<PictureReading(const embedded::Footage& footage)>;

/// Reads an image file at 8 bits a channel. Refuses one of more than limits::kPreviewPixels before it is
/// read, and says so in `too_large`. Safe to call from several threads; large pictures are read one after the
/// other, because decoding takes several times their memory.
[[nodiscard]] PictureReading read_picture(const std::string& file, bool& too_large);

/// The decoded pictures of footage, each read once while there is room: those used least recently go first.
/// One object for one thread; it reads on several.
class FootagePictures {
  public:
    /// `most_bytes` are kept. Those that a caller holds live on beside them.
    FootagePictures(const embedded::Project& project, ModulePictures module_pictures, std::size_t most_bytes);

    /// What is shown: the footage and its file, as a step of a plan names them.
    using Wanted = std::pair<embedded::Id, std::string>;

    /// The pictures in the order of `wanted`, never null: colour bars replace what cannot be read. As many as
    /// fit `most_bytes` and at least one, so there may be fewer than are wanted. What is not there is told
    /// once, to `findings`.
    [[nodiscard]] std::vector<SharedPicture> get(const std::vector<Wanted>& wanted, std::size_t threads,
                                                 std::size_t most_bytes,
                                                 std::vector<diagnostic::Diagnostic>& findings);

  private:
    struct Made {
        SharedPicture picture;
        std::optional<diagnostic::Diagnostic> finding;
    };
    struct Kept {
        Wanted key;
        SharedPicture picture;
    };
    [[nodiscard]] Made make(const Wanted& wanted) const;
    /// Those of `wanted` from `begin` to before `end`, added to `found`.
    void find(const std::vector<Wanted>& wanted, std::size_t begin, std::size_t end, std::size_t threads,
              std::map<Wanted, SharedPicture>& found, std::vector<diagnostic::Diagnostic>& findings);
    void keep(const Wanted& key, SharedPicture picture);

    const embedded::Project& project_;
    ModulePictures module_pictures_;
    std::size_t most_bytes_;
    std::size_t bytes_ = 0;
    std::list<Kept> kept_;  ///< the one used last is the first
    std::map<Wanted, std::list<Kept>::iterator> by_key_;
    std::set<Wanted> told_;
};

}  // namespace render
