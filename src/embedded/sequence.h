#pragma once

// Numbered image sequences: which files of a folder belong together.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/project.h"
#include "system/files.h"

namespace embedded {

/// A file name split at its number: the last run of digits before the extension.
struct NumberedName {
    std::string prefix;
    std::string digits;
    std::string suffix;  ///< with the extension
};

/// Nothing when the name has no number, or one of more than 18 digits.
std::optional<NumberedName> split_number(std::string_view file_name);

/// Whether digits belong to a sequence of this padding: they have exactly that many, or need more.
bool has_padding(std::string_view digits, std::size_t padding);

/// The padding of the sequence that `digits` belongs to. A number without leading zeros may fill or outgrow
/// the padding of others; `all`, the digits of the names in the folder that differ in them only, decide.
std::size_t padding_of(std::string_view digits, const std::vector<std::string>& all);

/// The frames that `find_sequence` looks for.
struct SequenceRequest {
    bool whole_folder = true;           ///< false: the named file alone, or the frames first..last if given
    bool ignore_numbers = false;        ///< frames follow in alphabetical order, without gaps
    std::optional<std::int64_t> first;  ///< none: the first that exists
    std::optional<std::int64_t> last;   ///< none: the last that exists
};

/// The numbers of the files in folders. Each folder is gone through once, however many sequences it has. For
/// one thread.
class SequenceIndex {
  public:
    /// Names the regular files of a folder.
    using FilesIn = std::function<std::vector<std::string>(const std::string& folder)>;
    explicit SequenceIndex(FilesIn files_in = os::regular_files_in) : files_in_(std::move(files_in)) {}

    /// The numbers, as they are written, of the files in `folder` whose names differ from `name` in them
    /// only. Valid until forget().
    const std::vector<std::string>& numbers_beside(const std::string& folder, const NumberedName& name);

    /// Goes through every folder again when it is next asked for.
    void forget() { folders_.clear(); }

  private:
    using Numbers = std::unordered_map<std::string, std::vector<std::string>>;

    FilesIn files_in_;
    std::unordered_map<std::string, Numbers> folders_;
    const std::vector<std::string> none_;
};

/// The frames of the sequence that the file `path` belongs to, all from its folder. Padded and unpadded
/// numbers with the same name around them are different sequences: "a9 a10" is one, "a09 a10" the other.
/// Nothing when the name has no number or no file is in the range.
std::optional<SequenceFrames> find_sequence(SequenceIndex& index, const std::string& path,
                                            const SequenceRequest& request);

/// The same, where `numbers` are those beside `name`.
std::optional<SequenceFrames> sequence_among(const std::vector<std::string>& numbers,
                                             const NumberedName& name, const SequenceRequest& request);

/// The ranges of numbers missing between `frames`, which are sorted and without repetition.
std::vector<FrameRange> gaps_between(const std::vector<std::int64_t>& frames);

}  // namespace embedded
