#pragma once

// What a scene hands over to another program, as plain data: the project that the plug-in builds from it,
// either exactly or with the corrections that make it what the scene says, and the scene's own cameras,
// lights and nulls. Everything that is written for another program is a pure function of this.
//
// Units: frames are those of the scene's rate and may have fractions; pixels; degrees; the scene's units of
// length. Texts are UTF-8. Numbers are finite unless a member says otherwise.

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "handover/correction.h"

namespace handover {

/// "None" for every index below.
inline constexpr std::size_t kNone = SIZE_MAX;

enum class ItemKind { folder, footage, composition };

/// One line of the project window.
struct Item {
    ItemKind kind = ItemKind::folder;
    std::string id;  ///< ASCII; the same whenever the scene is handed over again
    std::string name;
    std::size_t folder = kNone;   ///< the item of the folder around it; kNone for the root
    std::size_t content = kNone;  ///< index in `footage` or `compositions`; kNone for folders
    diagnostic::Place at;         ///< where the scene names it; without a line for what the importer adds
};

enum class FootageKind {
    still,        ///< one image file
    sequence,     ///< numbered image files
    texture,      ///< a file that only the plug-in's input module reads
    placeholder,  ///< stands in for a missing file
};

enum class Alpha { none, ignored, straight, premultiplied };
enum class Fields { none, upper_first, lower_first };

/// Numbered files: every one of `first`..`last` is asked for, whether or not it exists.
struct NumberedFiles {
    std::string prefix;  ///< of the file name, before the number
    std::string suffix;  ///< after the number, with the extension
    int padding = 1;     ///< the least number of digits
    std::int64_t first = 0;
    std::int64_t last = 0;
    bool whole = true;  ///< all files that are there, as a host takes them; false: `first`..`last` only
    std::int64_t missing = 0;  ///< how many numbers between `first` and `last` have no file
};

/// The name of the file with this number, without its folder.
[[nodiscard]] std::string file_name(const NumberedFiles& files, std::int64_t number);

struct Footage {
    FootageKind kind = FootageKind::still;
    std::size_t item = kNone;
    std::string
        path;  ///< the file, or the first file of a sequence; of a placeholder the path that was looked for
    std::string written;                 ///< as the scene writes it, any bytes
    std::optional<NumberedFiles> files;  ///< of sequences whose names have a number
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    double frames = 0;    ///< length; 0 for stills
    double rate_fps = 0;  ///< of sequences and placeholders; 0 for stills
    bool has_alpha = false;
    Alpha alpha = Alpha::none;
    std::array<double, 3> premultiplied_with{};  ///< red, green, blue from 0 to 1
    Fields fields = Fields::none;
    double pixel_aspect = 1;
};

enum class LayerKind { footage, composition, camera, light, null };
enum class Blend { normal, add, multiply };
enum class LightKind { parallel, spot, point };
/// "footage", "normal", as scripts and pages say it.
[[nodiscard]] const char* word_of(LayerKind kind);
[[nodiscard]] const char* word_of(Blend blend);

/// A property of a layer that the handover sets.
enum class Property {
    anchor,  ///< of cameras and lights: the point of interest
    position,
    scale,  ///< percent
    orientation,
    rotate_x,
    rotate_y,
    rotate_z,
    zoom,           ///< pixels; infinite for an angle of view of 0
    intensity,      ///< percent
    color,          ///< red, green, blue
    cone_angle,     ///< degrees, the whole angle
    cone_feather,   ///< percent
    casts_shadows,  ///< 0 or 1
};

/// How many numbers a value of the property has: 3 or 1.
[[nodiscard]] std::size_t component_count(Property property);

/// How a value goes from one key to the next.
enum class Interpolation : std::uint8_t {
    host,    ///< as the host has it by default: along a curve, for positions
    linear,  ///< straight, at constant speed
    hold,    ///< the value stays until the next key
};

/// The values of one property over time, in columns, because scenes have millions of keys.
struct Track {
    Property property = Property::position;
    std::vector<double> frames;  ///< in layer time, ascending; empty: one value that does not change
    std::vector<double> values;  ///< component_count() for each frame, or once
    Interpolation interpolation = Interpolation::host;
    std::vector<std::size_t> holds;  ///< the keys that hold instead, ascending
};

struct Layer {
    LayerKind kind = LayerKind::null;
    std::string id;  ///< as in Item
    std::string name;
    diagnostic::Place at;
    std::size_t item = kNone;    ///< its source; kNone for cameras, lights and nulls
    std::size_t object = kNone;  ///< index in `objects` for cameras, lights and nulls
    Blend blend = Blend::normal;
    bool three_d = false;
    bool aimed = false;  ///< cameras and lights: turns towards its point of interest
    LightKind light = LightKind::point;
    double start = 0;   ///< the frame of the composition at which layer time begins
    double in = 0;      ///< frame of the composition
    double length = 0;  ///< frames; 0 when `timed` is false
    bool timed = true;  ///< false: in-point and length are those that the host gives a new layer
    std::array<double, 2> center_px{};  ///< cameras and lights: where they are created
    std::vector<Track> tracks;
};

struct Composition {
    std::size_t item = kNone;
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    double pixel_aspect = 1;
    double frames = 0;
    double rate_fps = 25;
    std::vector<Layer> layers;  ///< top to bottom
};

/// One key of the scene, as the scene means it. Between two keys every number changes linearly, except across
/// a cut; from one frame to the next, angles take the short way.
struct ObjectKey {
    std::int64_t frame = 0;  ///< on the scene's timeline
    std::array<double, 3> position{};
    double heading = 0;
    double pitch = 0;
    double bank = 0;
    double view_angle = 0;       ///< horizontal; cameras only
    double target_distance = 0;  ///< lights and nulls: the usual 1000
};

enum class ObjectKind { camera, light, null };
[[nodiscard]] const char* word_of(ObjectKind kind);

/// A camera, light or null in the scene's own terms: axes left-handed, y up, z away from the viewer.
struct SceneObject {
    ObjectKind kind = ObjectKind::null;
    std::string id;
    std::string name;
    diagnostic::Place at;
    std::vector<ObjectKey> keys;  ///< by rising frame, one a frame: the one written last
    std::string light_word;       ///< as the scene writes it: "OMNI", "SPOT", "PAR", "PSPOT", "TUBE", "AREA"
    std::string shadow_word;      ///< "NONE", "SOFT", "HARD", "AREA"
    std::array<double, 3> color{1, 1, 1};
    double intensity = 1;
    double cone_angle = 30;  ///< the whole angle
};

/// What the scene says about all of it.
struct Shot {
    std::string file;  ///< the scene's file, as the user named it
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    double pixel_aspect = 1;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::int64_t range = 0;
    std::int32_t written_fps = 0;
    double rate_fps = 0;  ///< written_fps, unless it is corrected
    bool local = false;   ///< layers start at `from` instead of 0
    Fields fields = Fields::none;
};

enum class Version {
    imported,   ///< exactly the project that the plug-in builds
    corrected,  ///< what the scene says
};

/// A correction that was made, with what it changed.
struct AppliedCorrection {
    Correction correction;
    std::int64_t count = 0;  ///< places that it changed
    std::string example;     ///< the first of them, a sentence
};

/// Where another program will differ from the scene.
struct Loss {
    diagnostic::Diagnostic what;
    Targets targets;  ///< the programs that it holds for
};

struct Handover {
    Version version = Version::corrected;
    Shot shot;
    std::vector<Item>
        items;  ///< folders before what they hold; in the order in which the importer makes them
    std::vector<Footage> footage;
    std::vector<Composition> compositions;  ///< the root is the first
    std::vector<SceneObject> objects;       ///< in the order of the file
    std::vector<AppliedCorrection> corrections;
    std::vector<Loss> losses;
};

/// Where a writer puts its text or bytes, piece by piece. May throw; the writer passes that on.
using Sink = std::function<void(std::string_view piece)>;

}  // namespace handover
