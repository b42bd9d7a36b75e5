#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

/// What a file is to the bundle.
enum class Kind {
    scene,    ///< a composition file
    texture,  ///< a layered texture
    footage,  ///< an image, of which the bundle reads a few bytes or none
};

/// A file whose damage the bundle climbs.
struct Example {
    std::string path;  // of the original
    std::string name;  // below the folder of all of them, as messages say it
    Kind kind = Kind::footage;
    std::string bytes;  // of a regression, which is not a file as it is; empty for others
};

/// Every file in examples/ that a host may be given, and every regression of the fuzzers that holds such a
/// file; in the order of their paths.
const std::vector<Example>& all_examples();

/// Whether it is from examples/, and so sound.
bool is_sound(const Example& example);

/// Those of one kind.
std::vector<Example> examples_of(Kind kind);

/// A copy of an example beside links to its neighbours, to be damaged.
class ClimbingFile {
  public:
    explicit ClimbingFile(const Example& example, bool with_neighbours = true);
    ~ClimbingFile();
    ClimbingFile(const ClimbingFile&) = delete;
    ClimbingFile& operator=(const ClimbingFile&) = delete;

    /// The file to import: the copy itself, or a scene with it as footage.
    [[nodiscard]] const std::string& path() const { return scene_.empty() ? path_ : scene_; }
    [[nodiscard]] std::size_t size_bytes() const { return bytes_.size(); }

    /// The first `length_bytes` bytes alone.
    void cut(std::size_t length_bytes);
    /// All bytes, and one bit of one of them is the other.
    void flip(std::size_t offset_bytes, unsigned bit);

  private:
    void write_at(std::size_t offset_bytes, const char* bytes, std::size_t count) const;

    TemporaryFolder folder_;
    std::string path_;
    std::string scene_;  // empty when the file is imported itself
    std::string bytes_;
    int descriptor_ = -1;
    std::size_t length_bytes_ = 0;   // of the copy now; all of it but one byte is as in the original
    std::size_t flipped_bytes_ = 0;  // where that byte is
};

/// 0 to `end` - 1, or `most` of them that a fixed seed chooses, in their order, where there are more.
std::vector<std::size_t> some_of(std::size_t end, std::size_t most);
