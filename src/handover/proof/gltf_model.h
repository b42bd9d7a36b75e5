#pragma once

// Where a reader of glTF puts points, from the bytes of a .glb file and the rules of the format alone:
// right-handed, y up, cameras look along -z; rotations go by spherical, all else by linear interpolation
// between keys. The scene's (x, y, z) is (x, y, -z) times the scale that `extras` of the asset states. This
// pair of files shares no function with the truth or with another model.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "handover/proof/landing.h"

namespace proof {

/// What a picture has that the file does not say.
struct GltfPicture {
    double width_px = 0;
    double height_px = 0;
    double from = 0;  ///< the frame at time 0
    double rate_fps = 25;
};

struct GltfRules {
    bool animates_angle = true;  ///< the reader knows KHR_animation_pointer
};

/// A file that has been read.
class GltfFile {
  public:
    virtual ~GltfFile() = default;
    /// The camera of the node whose `extras` have this id. Null if no node has it. The file outlives it.
    [[nodiscard]] virtual std::unique_ptr<Projector> camera(const std::string& id, const GltfPicture& picture,
                                                            const GltfRules& rules) const = 0;
    /// Where the node with this id is, in the scene's axes and units.
    [[nodiscard]] virtual std::optional<Point> position(const std::string& id, double frame,
                                                        const GltfPicture& picture) const = 0;
    /// Whether an angle of view changes with time.
    [[nodiscard]] virtual bool uses_animation_pointer() const = 0;
};

/// Reads a .glb file. Throws std::runtime_error if it is not sound, or uses what this reader does not need.
[[nodiscard]] std::unique_ptr<GltfFile> read_glb(std::string_view bytes);

}  // namespace proof
