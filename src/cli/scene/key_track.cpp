#include "cli/scene/key_track.h"

#include <algorithm>
#include <numeric>

namespace cli {
namespace {

constexpr std::int64_t kShownFrames = 8;

// The numbers of a complete key.
int numbers_of_key(BlockKind kind) {
    return kind == BlockKind::camera ? 8 : 7;
}

}  // namespace

void FaultyKeys::add(const SceneKey& key, A_long frame) {
    if (++count_ == 1) {
        first_ = &key;
    }
    if (count_ <= kShownFrames) {
        frames_ += (count_ == 1 ? "" : ", ") + std::to_string(frame);
    }
}

void FaultyKeys::report(WarningList& warnings, ToolCode code, const std::string& reason,
                        const std::string& effect, const SceneBlock& object) const {
    if (count_ == 0) {
        return;
    }
    const std::int64_t more = count_ - std::min(count_, kShownFrames);
    Diagnostic& warning = warnings.add(code, first_->at(),
                                       reason + ": " + (count_ == 1 ? "frame " : "frames ") + frames_ +
                                           (more > 0 ? " and " + std::to_string(more) + " more" : ""),
                                       object.within);
    warning.effects.insert(warning.effects.begin(), effect);
    warning.count = count_;
}

KeyTrack::KeyTrack(const SceneBlock& object) : object_(object), count_(key_count(object)) {
    if (count_ > 0 && object.keys[count_ - 1].numbers_read < numbers_of_key(object.kind)) {
        --count_;
    }
    const auto frame = [&](std::size_t i) { return object.object->keys[i]->frame; };
    bool rising = true;
    for (std::size_t i = 1; i < count_ && rising; ++i) {
        rising = frame(i) > frame(i - 1);
    }
    if (rising) {
        return;
    }
    order_.resize(count_);
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::stable_sort(order_.begin(), order_.end(),
                     [&](std::size_t a, std::size_t b) { return frame(a) < frame(b); });
    // Of equal frames the last one stays: seen from the end, the first.
    const auto kept = std::unique(order_.rbegin(), order_.rend(),
                                  [&](std::size_t a, std::size_t b) { return frame(a) == frame(b); });
    order_.erase(order_.begin(), kept.base());
    count_ = order_.size();
}

bool KeyTrack::has_frames_after(std::size_t i) const {
    return i + 1 < count_ && std::int64_t{(*this)[i + 1].frame} - (*this)[i].frame > 1;
}

}  // namespace cli
