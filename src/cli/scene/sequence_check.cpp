#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/scene/footage_check.h"
#include "embedded/sequence.h"

namespace cli {
namespace {

using embedded::FrameRange;

std::string numbers_text(const FrameRange& range) {
    return range.first == range.last ? std::to_string(range.first)
                                     : std::to_string(range.first) + "-" + std::to_string(range.last);
}

std::string ranges_text(const std::vector<FrameRange>& ranges) {
    constexpr std::size_t kShown = 8;
    std::string text;
    for (std::size_t i = 0; i < ranges.size() && i < kShown; ++i) {
        text += (i == 0 ? "" : ", ") + numbers_text(ranges[i]);
    }
    return ranges.size() > kShown ? text + " and more" : text;
}

std::string frame_count(std::int64_t count) {
    return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

// The files between the gaps.
std::vector<FrameRange> runs_of(const embedded::SequenceFrames& frames) {
    std::vector<FrameRange> runs;
    std::int64_t first = frames.range.first;
    for (const FrameRange& gap : frames.gaps) {
        runs.push_back({first, gap.first - 1});
        first = gap.last + 1;
    }
    runs.push_back({first, frames.range.last});
    return runs;
}

bool overlap(const FrameRange& one, const FrameRange& other) {
    return one.first <= other.last && other.first <= one.last;
}

void check_length(const SceneReading& reading, const SceneFootage& footage,
                  const embedded::SequenceFrames& frames, WarningList& warnings) {
    const std::int64_t length = layer_length(*reading.settings);
    // A host shows something in the gaps, too.
    const std::int64_t shown = frames.range.last - frames.range.first + 1;
    if (shown >= length) {
        return;
    }
    warnings
        .add(ToolCode::sequence_short, footage.path_at,
             "the sequence " + frames.pattern + " " + numbers_text(frames.range) + " has " +
                 frame_count(shown) + ", and " + (footage.top_level ? "the scene has " : "its layer lasts ") +
                 std::to_string(length),
             footage.within)
        .effects.push_back((footage.top_level ? "as a layer, it has no picture for the last "
                                              : "the layer has no picture for its last ") +
                           frame_count(length - shown));
}

// The importer takes every file and puts the first one where the layer begins: at the scene's frame FROM,
// with LOCAL and without.
void check_numbers(const SceneReading& reading, const SceneFootage& footage,
                   const embedded::SequenceFrames& frames, WarningList& warnings) {
    const FrameRange scene{reading.settings->from, reading.settings->to};
    std::vector<FrameRange> runs = runs_of(frames);
    const auto is_of_scene = [&](const FrameRange& run) { return overlap(run, scene); };
    // Files that are numbered in another way, say from 1001, agree with the scene from their first one on.
    if (std::none_of(runs.begin(), runs.end(), is_of_scene)) {
        return;
    }
    const std::int64_t first = frames.range.first;
    if (first != scene.first && !footage.top_level) {
        const std::int64_t off = first < scene.first ? scene.first - first : first - scene.first;
        Diagnostic& warning =
            warnings.add(ToolCode::sequence_offset, footage.path_at,
                         "the sequence " + frames.pattern + " begins with file " + std::to_string(first) +
                             ", and the scene with frame " + std::to_string(scene.first),
                         footage.within);
        warning.effects.push_back("After Effects shows file " + std::to_string(first) + " at frame " +
                                  std::to_string(scene.first) + ", and so every file " + frame_count(off) +
                                  (first < scene.first ? " late" : " early"));
        warning.effects.push_back(first < scene.first
                                      ? "leave only the files from " + std::to_string(scene.first) +
                                            " on in this folder, or move the layer's picture in After Effects"
                                      : "move the layer " + frame_count(off) + " later in After Effects");
    }
    std::erase_if(runs, is_of_scene);
    if (!runs.empty()) {
        warnings
            .add(ToolCode::sequence_stray, footage.path_at,
                 "the sequence " + frames.pattern + " takes in files that lie apart from the frames " +
                     numbers_text(scene) + " of the scene: " + ranges_text(runs),
                 footage.within)
            .effects.emplace_back("After Effects imports every file of this name in the folder");
    }
}

}  // namespace

void check_sequence(const SceneReading& reading, const SceneFootage& footage, const std::string& path,
                    FootageSurvey& survey, WarningList& warnings) {
    const std::optional<embedded::SequenceFrames> frames = survey.sequence(path);
    if (!frames) {
        warnings
            .add(ToolCode::sequence_without_number, footage.path_at,
                 "the name \"" + shown_path(last_component(path)) + "\" has no frame number", footage.within)
            .effects.emplace_back("After Effects uses this one file as the whole sequence");
        return;
    }
    if (frames->count == 1) {
        warnings
            .add(ToolCode::sequence_single_frame, footage.path_at,
                 "the sequence " + frames->pattern + " has one file, number " +
                     std::to_string(frames->range.first),
                 footage.within)
            .effects.emplace_back("After Effects gets a sequence of one frame");
    }
    if (!frames->gaps.empty()) {
        Diagnostic& warning =
            warnings.add(ToolCode::sequence_gap, footage.path_at,
                         "the sequence " + frames->pattern + " " + numbers_text(frames->range) +
                             " has gaps: " + ranges_text(frames->gaps),
                         footage.within);
        warning.effects.emplace_back("After Effects decides what to show for the missing frames");
        warning.count = static_cast<std::int64_t>(frames->gaps.size());
    }
    // A texture is a still, and nothing has a length when TO is before FROM.
    if (!is_texture(path) && layer_length(*reading.settings) > 0) {
        check_length(reading, footage, *frames, warnings);
        check_numbers(reading, footage, *frames, warnings);
    }
}

}  // namespace cli
