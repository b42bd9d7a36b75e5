#pragma once

// The parts of a report on one scene, as HTML that needs no script. `id` is the scene's in the page, "s1",
// with which the ids of its elements begin. Headings are of `level` and below.

#include <string>
#include <string_view>

#include "cli/page/page_scene.h"

namespace cli {

struct PagePlace {
    std::string id;
    int level = 2;  ///< of the headings of parts: 2 or 3
};

/// "It imports, but 2 footage files are missing; placeholders stand in for them."
[[nodiscard]] std::string verdict_sentence(const PageScene& scene);

/// Does it import, and is anything lost? What a check found, with the lines of the scene, what an export
/// corrects, and what other programs lose.
[[nodiscard]] std::string losses_part(const PageScene& scene, const PagePlace& place);

/// What does it look like? The first picture; the script adds the others.
[[nodiscard]] std::string pictures_part(const PageScene& scene, const PagePlace& place);

/// Is the camera right? The proof, and the place of the view in three dimensions.
[[nodiscard]] std::string camera_part(const PageScene& scene, const PagePlace& place);

/// What is in it? Folders, compositions with their layers, footage, cameras, lights and nulls.
[[nodiscard]] std::string contents_part(const PageScene& scene, const PagePlace& place);

/// What to do next? Commands to copy.
[[nodiscard]] std::string commands_part(const PageScene& scene, const PagePlace& place);

/// "<h2 id="s1-camera">Is the camera right?</h2>"
[[nodiscard]] std::string part_heading(const PagePlace& place, std::string_view part, std::string_view title);

/// A subheading within a part.
[[nodiscard]] std::string subheading(const PagePlace& place, std::string_view title);

/// The beginning of a table that scrolls by itself where it is wider than the page; "</table></div>" ends it.
[[nodiscard]] std::string wide_table(std::string_view label, std::string_view css_class = {});

/// The head of a table: "name|#keys", where "#" marks a column of numbers.
[[nodiscard]] std::string row_header(std::string_view columns);

/// "<span class="mark loss">loss</span>"
[[nodiscard]] std::string severity_mark(Severity severity);

}  // namespace cli
