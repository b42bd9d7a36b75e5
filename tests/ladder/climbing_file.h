#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

/// What a file is to the bundle.
enum class Kind {
    scene,    ///< a composition file
    texture,  ///< a layered texture
    footage,  ///< an image, of which the bundle reads a few bytes or none
};

enum class Origin {
    example,     ///< a file in examples/, which imports cleanly
    regression,  ///< in a former find of the fuzzers
    seed,        ///< in a seed of the fuzzers, or a scene in which every construct of the language occurs
};

/// A file that climbs the ladder: it is damaged in every way, and everything around it fails.
struct Example {
    std::string path;  ///< of the original; empty for a file that a test makes
    std::string name;  ///< as messages say it, below the folder of its origin
    Kind kind = Kind::footage;
    std::string bytes;  ///< of the file; empty for one in examples/, which is read when it climbs
    Origin origin = Origin::seed;
};

/// Every file in examples/ that a host may be given, and every regression that holds such a file; in the
/// order of their names.
const std::vector<Example>& all_examples();

/// Every seed that holds such a file, each content once, and the scene of every construct.
const std::vector<Example>& all_seeds();

/// Both lists.
std::vector<Example> examples_and_seeds();

/// The examples of one kind, without seeds.
std::vector<Example> examples_of(Kind kind);

/// A copy of an example, to be damaged.
class ClimbingFile {
  public:
    /// Puts links to the neighbours of a file in examples/ beside the copy.
    explicit ClimbingFile(const Example& example, bool with_neighbours = true);
    ~ClimbingFile();
    ClimbingFile(const ClimbingFile&) = delete;
    ClimbingFile& operator=(const ClimbingFile&) = delete;

    /// The file to import: the copy itself, or a scene with the copy as footage.
    [[nodiscard]] const std::string& path() const { return scene_.empty() ? path_ : scene_; }
    [[nodiscard]] std::size_t size_bytes() const { return bytes_.size(); }

    /// Keeps only the first `length_bytes` bytes.
    void cut(std::size_t length_bytes);
    /// All bytes, with one bit of one byte inverted.
    void flip(std::size_t offset_bytes, unsigned bit);
    /// All bytes, with another byte in the place of one.
    void replace(std::size_t offset_bytes, char byte);

  private:
    void write_at(std::size_t offset_bytes, const char* bytes, std::size_t count) const;

    TemporaryFolder folder_;
    std::string path_;
    std::string scene_;  // empty when the copy is imported itself
    std::string bytes_;  // of the original
    int descriptor_ = -1;
    std::size_t length_bytes_ = 0;   // of the copy now; all but one of its bytes are those of the original
    std::size_t changed_bytes_ = 0;  // offset of that byte
};

/// Bytes that change the meaning of a composition file wherever they appear.
inline constexpr char kBytesThatMatter[] = {'\0', '"', '/', '{', '}', '9', '-', '\xFF'};

/// 0 to `end` - 1 in order; if these are more than `most`, as many of them, chosen by a fixed seed.
std::vector<std::size_t> some_of(std::size_t end, std::size_t most);
