#pragma once

// The page of `vxr report`: one HTML file that needs nothing else, and that says the essential without its
// script. src/page has its style and its script.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/page/page_scene.h"

namespace cli {

/// A scene as it stands in the page, without what it was made from.
struct WrittenScene {
    std::string file;
    ExitCode code = ExitCode::fine;
    std::string verdict;  ///< a sentence
    std::int64_t losses = 0;
    std::int64_t warnings = 0;
    std::int64_t missing = 0;  ///< footage files
    std::string html{};
    std::string thumbnail{};  ///< a URL with the picture in it, or empty
    std::string data{};       ///< JSON, for a script element
};

/// How many frames of a scene a page with so many scenes shows, at most `most`: with many scenes fewer, so
/// that it opens quickly.
[[nodiscard]] std::size_t pictures_of_each(std::size_t most, std::size_t scenes);

/// The scene as number `index` of the page, from 0, and `alone` if the page has no other.
[[nodiscard]] WrittenScene write_scene(const PageScene& scene, std::size_t index, bool alone);

/// Writes the page with the scenes in their order, piece by piece.
void write_report_page(const std::vector<WrittenScene>& scenes,
                       const std::function<void(std::string_view)>& write);

}  // namespace cli
