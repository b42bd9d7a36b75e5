#include "cli/page/html.h"
#include "cli/page/page_parts.h"

namespace cli {

std::string pictures_part(const PageScene& scene, const PagePlace& place) {
    std::string html = part_heading(place, "pictures", "What does it look like?");
    const PagePictures& pictures = scene.pictures;
    if (pictures.frames.empty()) {
        html += "<p>There are no pictures of this scene.</p>";
    } else {
        const PagePicture& first = pictures.frames.front();
        html +=
            "<figure class=\"pictures\" data-pictures=\"" + place.id + "\"><img src=\"" + first.url +
            "\" width=\"" + std::to_string(pictures.width_px) + "\" height=\"" +
            std::to_string(pictures.height_px) + "\" alt=\"Frame " + grouped(first.frame) + " of " +
            html_text(pictures.composition) + "\"><figcaption>" + html_name(pictures.composition) +
            ", frame " + grouped(first.frame) +
            "</figcaption></figure><p class=\"legend\">Computed by "
            "<code>vxr preview</code>, without After Effects: layers from bottom to top, over black, made "
            "smaller. Missing footage is shown as colour bars.</p>";
    }
    for (const std::string& problem : pictures.problems) {
        html += "<p class=\"where\">" + html_name(problem) + "</p>";
    }
    return html;
}

}  // namespace cli
