#pragma once

// Where a reader of USD puts points, from the text of a .usda file and the rules of the format alone:
// right-handed, y up, cameras look along -z; samples are joined by straight lines, angles among them. The
// scene's (x, y, z) is (x, y, -z), and time codes are its frames. This pair of files shares no function with
// the truth or with another model.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "handover/proof/landing.h"

namespace proof {

class UsdaFile {
  public:
    virtual ~UsdaFile() = default;
    /// The camera whose "vxr:id" this is, in a picture of this size. Null if no prim has it. The file
    /// outlives it.
    [[nodiscard]] virtual std::unique_ptr<Projector> camera(const std::string& id, double width_px,
                                                            double height_px) const = 0;
    /// Where the object with this id is, in the scene's axes.
    [[nodiscard]] virtual std::optional<Point> position(const std::string& id, double frame) const = 0;
};

/// Reads a file as `write_usda` writes it: prims in one prim, with attributes of numbers, tuples and texts,
/// and samples. Throws std::runtime_error, with the line, for anything else.
[[nodiscard]] std::unique_ptr<UsdaFile> read_usda(std::string_view text);

}  // namespace proof
