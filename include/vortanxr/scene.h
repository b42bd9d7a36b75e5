#pragma once

// Composition files of VORTAN XR (.aec), read as the plug-in for After Effects reads them.
//
// All types are values: they own what they hold, and copies are independent. The functions may be called by
// several threads at once. Nothing throws anything but std::bad_alloc.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <vortanxr/diagnostic.h>

namespace vortanxr {
inline namespace v1 {

enum class Blend : std::uint8_t { normal, add, multiply };
enum class Alpha : std::uint8_t { premultiplied, straight };
enum class Fields : std::uint8_t { none, even, odd };
enum class LightType : std::uint8_t { omni, spot, parallel, parallel_spot, tube, area };
enum class Shadow : std::uint8_t { none, soft, hard, area };

/// Where something begins in a text file.
struct TextPlace {
    std::int64_t line = 1;    ///< from 1
    std::int64_t column = 1;  ///< in bytes, from 1
};

/// One keyframe of a light or null. Axes: x to the right, y up, z away from the viewer. One scene unit is one
/// pixel in After Effects.
struct Key {
    std::int32_t frame = 0;           ///< on the scene's timeline
    std::array<float, 3> position{};  ///< x, y, z in scene units
    std::array<float, 3>
        rotation_degrees{};  ///< heading, pitch and bank of cameras and lights; about x, y, z of nulls
};

/// One keyframe of a camera. A heading of 0 looks along +z; a growing heading turns left, a positive pitch
/// looks up.
struct CameraKey {
    std::int32_t frame = 0;                   ///< on the scene's timeline
    std::array<float, 3> position{};          ///< x, y, z in scene units
    std::array<float, 3> rotation_degrees{};  ///< heading, pitch, bank
    float field_of_view_degrees = 0;          ///< the horizontal angle of view
    float target_distance = 0;                ///< scene units, from the camera to its point of interest
};

struct Camera {
    std::string name;             ///< as it is written, any bytes
    TextPlace at;                 ///< of the name
    std::vector<CameraKey> keys;  ///< in the order of the file: neither sorted nor without repetition
};

struct Light {
    std::string name;  ///< as it is written, any bytes
    TextPlace at;      ///< of the name
    LightType type = LightType::omni;
    Shadow shadow = Shadow::none;
    std::array<float, 3> color{};  ///< red, green, blue; usually 0 to 1
    float intensity = 1;           ///< 1 for 100 %
    float cone_angle_degrees = 0;
    std::vector<Key> keys;  ///< in the order of the file
};

struct Null {
    std::string name;       ///< as it is written, any bytes
    TextPlace at;           ///< of the name
    std::vector<Key> keys;  ///< in the order of the file
};

/// A file or numbered sequence.
struct Footage {
    std::optional<std::string>
        written;                      ///< the path as the scene has it; nothing where no path could be read
    std::optional<std::string> path;  ///< the full path that After Effects is given
    bool is_sequence = false;
    bool top_level = false;       ///< in no composition, as special passes are
    Blend blend = Blend::normal;  ///< how the layer is composited; without meaning at top level
    Alpha alpha = Alpha::premultiplied;
    TextPlace at;  ///< of the path
};

/// Something in a composition. It becomes a layer above those before it.
struct Entry {
    enum class Kind : std::uint8_t { footage, composition };
    Kind kind = Kind::footage;
    std::size_t index = 0;  ///< its place in Scene::footage or Scene::compositions
};

struct Composition {
    std::string name;                   ///< as it is written, any bytes
    TextPlace at;                       ///< of the name
    Blend blend = Blend::normal;        ///< how it is composited as a layer of its parent
    std::optional<std::size_t> parent;  ///< its place in Scene::compositions; nothing for the root
    std::vector<Entry> entries;         ///< in the order of the file
};

struct Scene {
    std::string path;  ///< the full path of the file
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    std::int32_t first_frame = 0;
    std::int32_t last_frame = 0;
    std::int32_t frame_range = 0;  ///< the length of compositions, in frames
    std::int32_t fps = 0;          ///< frames per second
    float pixel_aspect = 1;        ///< the width of a pixel, divided by its height
    bool local = false;            ///< whether layers begin at `first_frame`
    Fields fields = Fields::none;
    /// The root first, and every composition before those in it. A list, because the tree may be deep.
    std::vector<Composition> compositions;
    std::vector<Footage> footage;  ///< in the order of the file
    std::vector<Camera> cameras;   ///< in the order of the file
    std::vector<Light> lights;     ///< in the order of the file
    std::vector<Null> nulls;       ///< in the order of the file
};

/// A scene or an error, never both.
struct SceneReading {
    std::optional<Scene> scene;
    std::optional<Diagnostic>
        error;  ///< why After Effects imports nothing; "cannot-read" if the file cannot be read
};

namespace detail {
[[nodiscard]] VORTANXR_API SceneReading read_scene(const std::string& path);
}

/// Reads the composition file at `path`: UTF-8 on Windows, any bytes elsewhere. Only regular files are read.
/// Whether the footage exists and what will arrive differently, which `vxr check` says, is not looked at.
[[nodiscard]] inline SceneReading read_scene(const std::string& path) {
    if (std::optional<Diagnostic> problem = library_problem(path)) {
        return {std::nullopt, std::move(problem)};
    }
    return detail::read_scene(path);
}

}  // namespace v1
}  // namespace vortanxr
