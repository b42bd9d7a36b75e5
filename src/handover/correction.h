#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>

namespace handover {

/// What makes a project that the plug-in builds into what the scene says. Each can be turned off by its name.
enum class Correction {
    square_pixels,  ///< the camera's composition has square pixels
    exact_aspect,   ///< pixel aspect with all its digits, not in hundredths
    plate_frames,   ///< the file numbered N is shown at frame N
    linear_keys,    ///< straight from key to key, with keys added where the way is not straight
    turns,          ///< angles do not jump by whole turns, and cuts hold
    upright_aim,    ///< cameras that pass straight up or down have no point of interest
    spot_cone,      ///< cone angle and feather of spot lights
    whole_names,    ///< names are not cut
    null_anchors,   ///< anchor points of nulls are 0
    frame_rate,     ///< the rate that the user gives, for scenes written with whole frames a second
    key_noise,      ///< keys that say nothing new are left out
};

inline constexpr std::size_t kCorrections = 11;

struct CorrectionInfo {
    Correction correction;
    const char* name;    ///< stable: "square-pixels"
    const char* reason;  ///< one sentence
};

/// Every correction, in the order of the enumeration.
[[nodiscard]] const std::array<CorrectionInfo, kCorrections>& correction_table();
[[nodiscard]] std::optional<Correction> correction_named(std::string_view name);

/// What a handover is written for.
enum class Target { jsx, gltf, usda };

/// A set of targets.
class Targets {
  public:
    constexpr Targets() = default;
    constexpr Targets(Target one) : bits_(1U << static_cast<unsigned>(one)) {}
    [[nodiscard]] constexpr bool has(Target one) const {
        return (bits_ & (1U << static_cast<unsigned>(one))) != 0;
    }
    friend constexpr Targets operator|(Targets a, Targets b) {
        Targets both;
        both.bits_ = a.bits_ | b.bits_;
        return both;
    }
    friend constexpr bool operator==(Targets, Targets) = default;

  private:
    unsigned bits_ = 0;
};

inline constexpr Targets kEveryTarget = Targets(Target::jsx) | Target::gltf | Target::usda;

/// How a handover is made.
struct HandoverOptions {
    std::set<Correction> left_out;   ///< corrections that are not made
    double cut_angle_degrees = 60;   ///< a camera that turns farther from one frame to the next is cut
    std::optional<double> rate_fps;  ///< instead of the scene's
    double tolerance =
        0;  ///< a key is left out if its value is missed by no more; 0: if not at all, in floats
};

}  // namespace handover
