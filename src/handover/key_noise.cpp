// Keys that lie on the straight line between those around them.

#include <algorithm>
#include <cmath>

#include "handover/correction_run.h"
#include "handover/line_slopes.h"
#include "text/printable.h"

namespace handover {
namespace {

bool all_finite(const double* value, std::size_t size) {
    return std::all_of(value, value + size, [](double number) { return std::isfinite(number); });
}

/// Leaves out keys of a track from its front to its end: each line between kept keys is as long as it can be
/// while it passes all keys that it replaces. Takes time in proportion to the number of keys.
class KeyFilter {
  public:
    KeyFilter(Track& track, double tolerance)
        : track_(track), size_(component_count(track.property)), tolerance_(tolerance) {}

    // Returns how many keys are left out.
    std::int64_t run() {
        const std::size_t count = track_.frames.size();
        if (count < 2) {
            return 0;
        }
        keep(0);
        slopes_.restart();
        for (std::size_t i = 1; i < count; ++i) {
            // A key stays if the line to the next one misses it, and at both ends of a hold.
            const bool line =
                !held(i - 1) && all_finite(value(i), size_) && all_finite(value(kept_at_), size_);
            const bool last = i + 1 == count;
            if (!line || held(i) || last || !can_pass(i)) {
                keep(i);
                slopes_.restart();
            }
        }
        const std::size_t dropped = count - kept_;
        track_.frames.resize(kept_);
        track_.values.resize(kept_ * size_);
        track_.holds = std::move(holds_);
        return static_cast<std::int64_t>(dropped);
    }

  private:
    // The values are moved to the front as keys are kept; those not yet looked at lie behind.
    [[nodiscard]] const double* value(std::size_t key) const { return track_.values.data() + key * size_; }

    bool held(std::size_t key) {
        while (hold_ < track_.holds.size() && track_.holds[hold_] < key) {
            ++hold_;
        }
        // Asked for a key and for the one before it.
        return (hold_ < track_.holds.size() && track_.holds[hold_] == key) ||
               (hold_ > 0 && track_.holds[hold_ - 1] == key);
    }

    // Whether key `i` may be left out as far as the key after it can tell.
    bool can_pass(std::size_t i) {
        const double* const from = value(kept_at_);
        if (!all_finite(value(i + 1), size_)) {
            return false;
        }
        slopes_.pass(from, value(i), size_, track_.frames[i] - kept_frame_, tolerance_);
        return slopes_.reaches(from, value(i + 1), size_, track_.frames[i + 1] - kept_frame_);
    }

    void keep(std::size_t key) {
        if (held(key)) {
            holds_.push_back(kept_);
        }
        kept_frame_ = track_.frames[key];
        std::copy(value(key), value(key) + size_,
                  track_.values.begin() + static_cast<std::ptrdiff_t>(kept_ * size_));
        track_.frames[kept_] = kept_frame_;
        kept_at_ = kept_++;
    }

    Track& track_;
    std::size_t size_;
    double tolerance_;
    LineSlopes slopes_;
    std::vector<std::size_t> holds_;
    std::size_t hold_ = 0;
    std::size_t kept_ = 0;
    std::size_t kept_at_ = 0;  // where the last kept key is now
    double kept_frame_ = 0;
};

// Whether all values are the same numbers.
bool is_constant(const Track& track) {
    const std::size_t size = component_count(track.property);
    for (std::size_t i = size; i < track.values.size(); ++i) {
        if (track.values[i] != track.values[i - size]) {
            return false;
        }
    }
    return true;
}

std::int64_t drop_noise(Track& track, double tolerance) {
    const auto before = static_cast<std::int64_t>(track.frames.size());
    if (before == 0) {
        return 0;
    }
    if (track.interpolation == Interpolation::linear) {
        KeyFilter(track, tolerance).run();
    }
    if (is_constant(track)) {
        track.frames.clear();
        track.holds.clear();
        track.values.resize(component_count(track.property));
    }
    return before - static_cast<std::int64_t>(track.frames.size());
}

}  // namespace

void drop_key_noise(CorrectionRun& run) {
    if (!run.wants(Correction::key_noise)) {
        return;
    }
    for (Composition& composition : run.handover.compositions) {
        for (Layer& layer : composition.layers) {
            for (Track& track : layer.tracks) {
                const auto keys = track.frames.size();
                const std::int64_t dropped = drop_noise(track, run.options.tolerance);
                if (dropped > 0) {
                    run.changed(Correction::key_noise,
                                "of " + std::to_string(keys) + (keys == 1 ? " key" : " keys") +
                                    " of one property of " + text::quoted(layer.name) + ", " +
                                    std::to_string(dropped) + (dropped == 1 ? " says" : " say") +
                                    " nothing new",
                                dropped);
                }
            }
        }
    }
}

}  // namespace handover
