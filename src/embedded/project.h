#pragma once

// The embedded host's project as plain data. Everything has an id. The ids of one kind count from 1 in the
// order of creation and are never reused within a host; the call log and the JSON use them ("item:3" is the
// item with id 3). Id 0 means "none". Texts are the bytes that the bundle passed, in no particular encoding,
// or UTF-8 where it passed UTF-16.

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/host_interface.h"

namespace embedded {

using Id = std::int32_t;

/// Item 1 is the root folder of every project; it has no name and no parent.
inline constexpr Id kRootFolder = 1;

enum class ItemKind { folder, footage, composition };

/// One line of the project window.
struct Item {
    Id id = 0;
    ItemKind kind = ItemKind::folder;
    std::string name;           ///< from the bundle; for a file's footage the file's name
    Id parent_folder = 0;       ///< an item; 0 for the root folder alone
    Id content = 0;             ///< the footage's id or the composition's id; 0 for folders
    bool unicode_name = false;  ///< the bundle gave it in UTF-16; else it has at most 31 bytes
};

/// Frame numbers `first`..`last`, both included.
struct FrameRange {
    std::int64_t first = 0;
    std::int64_t last = 0;
    friend bool operator==(const FrameRange&, const FrameRange&) = default;
};

/// The numbered files found beside the file that the bundle named.
struct SequenceFrames {
    std::string pattern;           ///< file name with one '#' for each digit of the padding
    FrameRange range;              ///< first and last number found; any start
    std::int64_t count = 0;        ///< files found
    int padding = 1;               ///< the least number of digits; 1: not padded
    std::vector<FrameRange> gaps;  ///< missing numbers between first and last, ascending
};

enum class FootageKind {
    file,         ///< one image file
    sequence,     ///< numbered image files
    module_file,  ///< a file read by a registered input module
    placeholder,  ///< stands in for a missing file
};

struct Footage {
    Id id = 0;
    FootageKind kind = FootageKind::file;
    std::string path;  ///< as the bundle passed it; empty for placeholders
    std::string name;  ///< the file's name, or the bundle's name for the placeholder
    Id item = 0;       ///< 0 until it is added to the project
    A_long width = 0;
    A_long height = 0;
    int channels = 0;          ///< of the file, including alpha; 0 for placeholders
    int bits_per_channel = 0;  ///< of the file; 0 for placeholders
    bool has_alpha = false;
    bool alpha_premultiplied = false;  ///< as the file says, else as is usual for its format
    A_Time duration{0, 1};             ///< 0 for stills
    std::optional<SequenceFrames> sequence;
    AEGP_FootageInterp interpretation{};
    bool interpretation_set = false;  ///< false: the host's guess
    Id in_spec = 0;                   ///< for module_file: what the input module said
};

/// What an input module told the host about one file, through "AEGP IO In Suite".
struct InSpec {
    Id id = 0;
    Id copy_of = 0;  ///< the in-spec of which this is a copy, made to draw a frame; 0 for none
    std::string path;
    A_long module_signature = 0;
    Id options = 0;  ///< memory handle; 0 for none
    A_short depth = 0;
    A_Time duration{0, 1};
    A_long width = 0;
    A_long height = 0;
    std::int64_t size_bytes = 0;
    A_Fixed native_fps = 0;  ///< 16.16
    std::optional<AEIO_AlphaLabel> alpha_label;
    std::string type_text;      ///< the module's verbiage
    std::string sub_type_text;  ///< the module's verbiage
    bool dimensions_from_module =
        false;  ///< false: the module left them to the host, which takes the in-spec's
    bool duration_from_module = false;  ///< false: as above, for the duration
    bool disposed = false;
};

/// Which members a stream's value has, and their names in JSON.
enum class StreamShape {
    one_d,    ///< components[0]
    two_d,    ///< x, y
    three_d,  ///< x, y, z
    color,    ///< alpha, red, green, blue
};

/// How many of the four components a shape uses.
int component_count(StreamShape shape);

using StreamComponents = std::array<double, 4>;

struct Keyframe {
    A_Time time{0, 1};  ///< in layer time
    StreamComponents value{};
};

/// One animated property of a layer. A stream exists once the bundle has fetched it.
struct Stream {
    AEGP_LayerStream kind = 0;
    StreamShape shape = StreamShape::one_d;
    StreamComponents value{};         ///< used while there are no keys
    bool value_set = false;           ///< false: the host's own starting value
    std::vector<Keyframe> keyframes;  ///< ascending, no two at the same time
};

enum class LayerKind { footage, composition, camera, light, null };

struct Layer {
    Id id = 0;
    Id composition = 0;
    LayerKind kind = LayerKind::null;
    std::string name;           ///< from the bundle, else the source item's
    bool unicode_name = false;  ///< the bundle gave it in UTF-16; else it has at most 31 bytes
    Id source_item = 0;         ///< 0 for cameras, lights and nulls
    AEGP_LayerTransferMode transfer{kTransferModeNormal, 0, 0};
    A_Time in_point{0, 1};
    A_Time duration{0, 1};
    A_Time offset{0, 1};
    AEGP_LTimeMode time_mode = kTimeModeLayer;  ///< in which in-point and duration are given
    bool timing_set = false;                    ///< false: in-point, duration and offset are the host's
    AEGP_LayerFlags flags = 0;
    std::optional<AEGP_LightType> light_type;    ///< lights only; none until set
    std::optional<A_FloatPoint> center;          ///< cameras and lights only
    std::map<AEGP_LayerStream, Stream> streams;  ///< by the host's stream number

    [[nodiscard]] bool is_3d() const { return (flags & kLayerFlag3D) != 0; }
    /// Of cameras and lights: whether the layer turns towards its anchor point, the point of interest.
    [[nodiscard]] bool looks_at_point_of_interest() const {
        return (flags & kLayerFlagLookAtPointOfInterest) != 0;
    }
};

struct Composition {
    Id id = 0;
    Id item = 0;
    A_long width = 0;
    A_long height = 0;
    A_Ratio pixel_aspect{1, 1};
    A_Time duration{0, 1};
    A_Ratio frame_rate{1, 1};
    std::deque<Id> layers;  ///< top to bottom; a new layer goes on top
};

/// One undo step of the Edit menu.
struct UndoStep {
    std::string name;
    std::int64_t changes = 0;  ///< project changes made in it
    bool closed = false;
};

/// A text that the bundle had the host show to the user.
struct Message {
    std::string text;
    std::optional<A_Err> code;  ///< only for texts passed to an input module's message function
};

using PreferenceKey = std::pair<std::string, std::string>;  ///< section, key

struct Project {
    std::vector<Item> items;  ///< in every table the entry with id n is at n - 1
    std::vector<Footage> footage;
    std::vector<Composition> compositions;
    std::vector<Layer> layers;
    std::vector<InSpec> in_specs;
    std::vector<UndoStep> undo_steps;
    std::map<PreferenceKey, std::vector<std::uint8_t>> preferences;
    std::vector<Message> messages;

    // By id; the id must exist.
    [[nodiscard]] const Item& item(Id id) const { return items.at(index(id)); }
    [[nodiscard]] const Footage& footage_of(Id id) const { return footage.at(index(id)); }
    [[nodiscard]] const Composition& composition(Id id) const { return compositions.at(index(id)); }
    [[nodiscard]] const Layer& layer(Id id) const { return layers.at(index(id)); }
    [[nodiscard]] const InSpec& in_spec(Id id) const { return in_specs.at(index(id)); }

    /// The items in `folder`, in the order of creation.
    [[nodiscard]] std::vector<Id> children_of(Id folder) const;

    /// The first item with this name, or null.
    [[nodiscard]] const Item* find_item(std::string_view name) const;

    static std::size_t index(Id id) { return static_cast<std::size_t>(id) - 1; }
};

/// A project that has its root folder alone.
Project empty_project();

}  // namespace embedded
