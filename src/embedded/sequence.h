#pragma once

// Numbered image sequences: which files of a folder belong together.

#include <optional>
#include <string>
#include <string_view>

#include "embedded/project.h"

namespace embedded {

/// A file name split at its number: the last run of digits before the extension.
struct NumberedName {
    std::string prefix;
    std::string digits;
    std::string suffix;  ///< with the extension
};

/// Nothing when the name has no number, or one of more than 18 digits.
std::optional<NumberedName> split_number(std::string_view file_name);

/// What `find_sequence` is asked for.
struct SequenceRequest {
    bool whole_folder = true;     ///< false: only the named file, or the frames first..last if they are given
    bool ignore_numbers = false;  ///< frames follow each other in alphabetical order, so there are no gaps
    std::optional<std::int64_t> first;  ///< none: the first there is
    std::optional<std::int64_t> last;   ///< none: the last there is
};

/// The frames of the sequence that the file `path` belongs to, from its folder. Padded and unpadded
/// numberings that share a folder and a name are different sequences: "a9 a10" is one, "a09 a10" the other.
/// Nothing when the name holds no number or no file lies in the range.
std::optional<SequenceFrames> find_sequence(const std::string& path, const SequenceRequest& request);

/// Frames in order, without repetition, to ranges of missing numbers between them.
std::vector<FrameRange> gaps_between(const std::vector<std::int64_t>& frames);

}  // namespace embedded
