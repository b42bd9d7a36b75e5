#include <gtest/gtest.h>

#include "handover/made_handover.h"

namespace {

using namespace made;

using Values = std::vector<double>;

// The frames of the positions of a null with these keys: pairs of frame and x.
Values kept_frames(const std::vector<std::pair<int, std::string>>& keys,
                   const HandoverOptions& options = {}) {
    std::string text;
    for (const auto& [frame, x] : keys) {
        text += "KEY " + std::to_string(frame) + ' ' + x + " 0 0 0 0 0\n";
    }
    const Handover handover =
        of_text(scene_text("", "", "NULL \"N\" {\n" + text + "}\n"), Version::corrected, options);
    return track_of(layer_named(handover, "N"), Property::position).frames;
}

TEST(KeyNoise, LeavesOutWhatTheLineBetweenOthersSays) {
    HandoverOptions tenth;
    tenth.tolerance = 0.1;
    const struct {
        const char* reason;
        std::vector<std::pair<int, std::string>> keys;
        HandoverOptions options;
        Values frames;
    } kCases[] = {
        {"nothing changes", {{0, "5"}, {1, "5"}, {9, "5"}}, {}, {}},
        {"a single key", {{3, "5"}}, {}, {}},
        {"one line", {{0, "0"}, {1, "1"}, {2, "2"}, {7, "7"}}, {}, {0, 7}},
        {"the noise of single precision", {{0, "0.1"}, {1, "0.2"}, {2, "0.3"}, {3, "0.4"}}, {}, {0, 3}},
        {"a bend", {{0, "0"}, {1, "1"}, {2, "2"}, {3, "2"}, {4, "2"}}, {}, {0, 2, 4}},
        {"a last step", {{0, "0"}, {1, "0"}, {2, "0"}, {3, "1"}}, {}, {0, 2, 3}},
        {"a small bump is no noise", {{0, "0"}, {1, "0.09"}, {2, "0"}}, {}, {0, 1, 2}},
        {"a small bump within the tolerance",
         {{0, "0"}, {1, "0.09"}, {2, "0.01"}, {3, "0.05"}},
         tenth,
         {0, 3}},
        {"a bump beyond the tolerance", {{0, "0"}, {1, "0.11"}, {2, "0"}}, tenth, {0, 1, 2}},
        {"can be left out", {{0, "5"}, {1, "5"}}, without({Correction::key_noise}), {0, 1}},
    };
    for (const auto& [reason, keys, options, frames] : kCases) {
        EXPECT_EQ(kept_frames(keys, options), frames) << reason;
    }
}

TEST(KeyNoise, MissesNoKeyByMoreThanTheTolerance) {
    HandoverOptions options;
    options.tolerance = 0.5;
    std::vector<std::pair<int, std::string>> keys;
    std::vector<double> written;
    for (int i = 0; i < 400; ++i) {
        written.push_back(std::floor(100 * std::sin(i / 20.0) * 8) / 8);
        keys.emplace_back(i, std::to_string(written.back()));
    }
    std::string text;
    for (const auto& [frame, x] : keys) {
        text += "KEY " + std::to_string(frame) + ' ' + x + " 0 0 0 0 0\n";
    }
    const Handover handover =
        of_text(scene_text("", "", "NULL \"N\" {\n" + text + "}\n"), Version::corrected, options);
    const Track& track = track_of(layer_named(handover, "N"), Property::position);
    EXPECT_LT(track.frames.size(), 120U) << "a third of the keys is enough for this";
    for (std::size_t next = 1; next < track.frames.size(); ++next) {
        const double from = track.frames[next - 1];
        const double to = track.frames[next];
        for (double frame = from; frame <= to; ++frame) {
            const double line =
                track.values[3 * (next - 1)] +
                (track.values[3 * next] - track.values[3 * (next - 1)]) * (frame - from) / (to - from);
            EXPECT_LE(std::abs(line - written[static_cast<std::size_t>(frame)]), 0.5 + 1e-9) << frame;
        }
    }
}

TEST(KeyNoise, KeepsBothEndsOfACut) {
    const Handover handover = of_text(scene_text("", "",
                                                 "NULL \"N\" { KEY 0 0 0 0 0 0 0 KEY 1 1 0 0 0 0 0 KEY 2 2 0 "
                                                 "0 90 0 0 KEY 3 3 0 0 90 0 0 KEY 4 4 0 0 90 0 0 }\n"));
    const Track& position = track_of(layer_named(handover, "N"), Property::position);
    EXPECT_EQ(position.frames, (Values{0, 1, 2, 4}));
    EXPECT_EQ(position.holds, (std::vector<std::size_t>{1}));
}

}  // namespace
