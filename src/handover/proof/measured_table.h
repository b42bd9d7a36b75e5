#pragma once

// The table in which a script of `vxr proof --for-after-effects` writes what After Effects says, as read from
// any bytes. docs/handover.md describes it.

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <variant>
#include <vector>

namespace proof {

/// More than ten times what a script writes.
inline constexpr std::uint64_t kMostTableBytes = std::uint64_t{4} << 20U;

/// Which point of which camera, as the plan counts them.
struct MeasuredPlace {
    bool corrected = false;  ///< false: in the imported project
    std::size_t camera = 0;
    std::size_t moment = 0;
    std::size_t point = 0;
    friend bool operator<(const MeasuredPlace& a, const MeasuredPlace& b) {
        return std::tie(a.corrected, a.camera, a.moment, a.point) <
               std::tie(b.corrected, b.camera, b.moment, b.point);
    }
};

/// Two numbers; nothing if After Effects gave none.
using MeasuredPixels = std::optional<std::array<double, 2>>;
using MeasuredColor = std::optional<std::array<double, 3>>;

/// A row and the line that it stands on, from 1.
template <typename Value>
struct TableRow {
    Value value;
    std::size_t line = 0;
};

struct MeasuredTable {
    std::string scene;    ///< the stable id
    std::string asked;    ///< the sum of the questions
    std::string version;  ///< of After Effects
    std::optional<int> bits;
    std::optional<bool> linear;  ///< colours are blended linearly
    std::map<MeasuredPlace, TableRow<MeasuredPixels>> points;
    std::map<std::string, std::map<std::size_t, TableRow<MeasuredPixels>>> trials;  ///< by name and point
    /// By name, then over black and over white. Red, green, blue from 0 to 1, of an opaque picture.
    std::map<std::string, std::array<std::optional<TableRow<MeasuredColor>>, 2>> colors;
    std::vector<std::string> notes;  ///< printable ASCII
};

/// Why a text is no table that can be judged.
struct TableRefusal {
    std::size_t line = 0;  ///< from 1; 0 for the whole file
    std::string reason;    ///< no full stop
};

/// Reads a table. Lines end with LF, CR LF or CR, as After Effects writes them on its systems. Every other
/// thing than what the script writes is refused: unknown rows, other numbers of columns, rows that come
/// again, numbers that are not finite, a missing end. Time and memory grow with the text, which has at most
/// kMostTableBytes.
[[nodiscard]] std::variant<MeasuredTable, TableRefusal> read_measured_table(std::string_view text);

}  // namespace proof
