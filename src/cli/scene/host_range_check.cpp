#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_check.h"

namespace cli {
namespace {

// The documented limits of compositions in After Effects, as its scripting guide gives them for
// `items.addComp`: 4 to 30,000 pixels, 1 to 99 frames a second, at most 10,800 seconds.
constexpr std::int64_t kLeastSide_px = 4;
constexpr std::int64_t kMostSide_px = 30'000;
constexpr std::int64_t kMostFramesPerSecond = 99;
constexpr std::int64_t kLongest_s = 10'800;

class RangeCheck {
  public:
    RangeCheck(const SceneReading& reading, WarningList& warnings) : reading_(reading), warnings_(warnings) {}

    void side(std::size_t index, const char* what, std::int64_t side_px) {
        // 0 and less are refused anyway.
        if (side_px >= 1 && (side_px < kLeastSide_px || side_px > kMostSide_px)) {
            add("RESOLUTION", index,
                std::string("a ") + what + " of " + grouped(side_px) + " pixels is outside the " +
                    grouped(kLeastSide_px) + " to " + grouped(kMostSide_px) + " of After Effects");
        }
    }

    void rate(std::int64_t fps) {
        if (fps > kMostFramesPerSecond) {
            add("FPS", 0,
                grouped(fps) + " frames a second are more than the " + grouped(kMostFramesPerSecond) +
                    " of After Effects");
        }
    }

    /// Of compositions (RANGE) or layers (TO), in frames.
    bool length(std::string_view keyword, const char* what, std::int64_t frames, std::int64_t fps) {
        if (fps < 1 || frames <= kLongest_s * fps) {
            return false;
        }
        return add(keyword, 0,
                   std::string(what) + " of " + grouped(frames) + " frames, " + grouped(frames / fps) +
                       " seconds, are longer than the " + grouped(kLongest_s) +
                       " seconds (3 hours) of After Effects");
    }

  private:
    /// Whether the setting was read at all.
    bool add(std::string_view keyword, std::size_t index, std::string reason) {
        const SceneKeyword* const setting = find_keyword(reading_.facts.settings, keyword);
        if (setting == nullptr || setting->values.size() <= index) {
            return false;
        }
        warnings_.add(ToolCode::outside_host_range, setting->values[index].at, std::move(reason), {});
        return true;
    }

    const SceneReading& reading_;
    WarningList& warnings_;
};

}  // namespace

void check_host_range(const SceneReading& reading, WarningList& warnings) {
    const tagProjectSettings& settings = *reading.settings;
    RangeCheck check(reading, warnings);
    check.side(0, "width", settings.width);
    check.side(1, "height", settings.height);
    check.rate(settings.fps);
    if (!check.length("RANGE", "compositions", settings.range, settings.fps) &&
        find_keyword(reading.facts.settings, "FROM") != nullptr) {
        check.length("TO", "layers", layer_length(settings), settings.fps);
    }
}

}  // namespace cli
