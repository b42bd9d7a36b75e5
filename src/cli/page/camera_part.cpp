#include <cmath>

#include "cli/page/html.h"
#include "cli/page/page_parts.h"
#include "cli/scene/written_number.h"

namespace cli {
namespace {

std::string pixels_html(double px) {
    return distance_text(px, "none");
}

/// What an artist calls a target.
std::string target_title(const std::string& target) {
    const std::string stretched = ", stretched";
    const bool is_stretched = target.ends_with(stretched);
    const std::string plain = is_stretched ? target.substr(0, target.size() - stretched.size()) : target;
    std::string title = plain == "imported"    ? "After Effects, through the plug-in"
                        : plain == "corrected" ? "After Effects, by the corrected script"
                                               : plain;
    return is_stretched ? title + ", if it stretches the space of pixels that are not square" : title;
}

std::string causes_html(const proof::TargetResult& target) {
    if (!target.problem.empty()) {
        return html_name(target.problem);
    }
    std::string html;
    for (const proof::CauseFound& cause : target.causes) {
        html += (html.empty() ? "" : "; ") + html_text(info_of(cause.cause).text);
        if (std::isfinite(cause.before_px)) {
            html += " (" + pixels_html(std::abs(cause.before_px - cause.after_px)) + " px)";
        }
    }
    return html;
}

std::string target_row(const proof::TargetResult& target) {
    const proof::Deviation& deviation = target.deviation;
    const bool any = deviation.compared > 0;
    std::string html = "<tr><th scope=\"row\">" + html_text(target_title(target.target)) + " <code>" +
                       html_text(target.target) + "</code></th><td>";
    if (target.judged) {
        html += target.meets_goal() ? "<span class=\"mark good\">right</span>"
                                    : "<span class=\"mark error\">off</span>";
    }
    const auto cell = [&](const std::string& text) {
        html += "<td class=\"number\">" + (any ? text : std::string()) + "</td>";
    };
    html += "</td>";
    cell(pixels_html(target.judged_px()));
    cell(pixels_html(deviation.mean_px));
    cell(deviation.largest.px >= kShown_px ? measured_text(deviation.largest.frame) : "");
    cell(deviation.lost > 0 ? grouped(deviation.lost) : "");
    return html + "<td>" + causes_html(target) + "</td></tr>";
}

std::string camera_table(const proof::CameraResult& camera) {
    std::string html = wide_table("Proof of a camera") + "<caption>Camera " + html_name(camera.name) + ": " +
                       grouped(camera.keys_compared) + " of " + counted(camera.keys, "key", "keys") + ", " +
                       counted(camera.moments, "moment", "moments");
    if (camera.left_out > 0) {
        html += "; " + counted(camera.left_out, "point", "points") +
                " behind it or far outside its frame left out";
    }
    if (camera.no_picture > 0) {
        html += "; " + counted(camera.no_picture, "moment", "moments") + " without a picture";
    }
    html += "</caption>";
    if (camera.keys == 0) {
        return html + "<tbody><tr><td>Without keys it says nothing.</td></tr></tbody></table></div>";
    }
    html +=
        row_header("in|right?|#largest distance, px|#mean, px|#worst at frame|#points lost|why") + "<tbody>";
    for (const proof::TargetResult& target : camera.targets) {
        html += target_row(target);
    }
    return html + "</tbody></table></div>";
}

std::string nulls_table(const proof::ProofResult& result) {
    if (result.nulls.empty()) {
        return {};
    }
    std::string html =
        wide_table("Proof of the nulls") + "<caption>Nulls, by position, in the scene's units: " +
        grouped(static_cast<std::int64_t>(result.nulls.size())) + " of " + grouped(result.nulls_in_scene) +
        "</caption>" + row_header("in|#largest distance|null") + "<tbody>";
    for (std::size_t i = 0; i < result.targets.size(); ++i) {
        const proof::NullResult* const worst = result.worst_null(i);
        html += "<tr><th scope=\"row\">" + html_text(target_title(result.targets[i])) + "</th>";
        if (worst == nullptr) {
            html += "<td></td><td>none arrived</td></tr>";
            continue;
        }
        const double distance = *worst->distances[i];
        html +=
            "<td class=\"number\">" + pixels_html(distance) + "</td><td>" +
            (distance >= kShown_px ? html_name(worst->name) + " at frame " + measured_text(worst->frames[i])
                                   : std::string()) +
            "</td></tr>";
    }
    return html + "</tbody></table></div>";
}

std::string proof_verdict(const ProofRun& run) {
    if (!run.result) {
        return "There was nothing to compare.";
    }
    if (run.result->cameras.empty()) {
        return "The scene has no camera, so nothing is seen through one.";
    }
    const std::string goal = measured_text(proof::kGoal_px);
    return run.result->meets_goal()
               ? "What vxr export writes puts every point where the scene has it, within " + goal + " pixels."
               : "What vxr export writes is more than " + goal +
                     " pixels off somewhere; the table says where.";
}

bool has_objects(const PageScene& scene) {
    return scene.imported && !scene.imported->objects.empty();
}

}  // namespace

std::string camera_part(const PageScene& scene, const PagePlace& place) {
    std::string html = part_heading(place, "camera", "Is the camera right?");
    if (!scene.imported) {
        return html + "<p>Nothing arrives, so there is nothing to look through.</p>";
    }
    if (has_objects(scene)) {
        html +=
            "<div class=\"space\" data-space=\"" + place.id +
            "\"><p class=\"scripted\">Cameras, lights and nulls can be turned around here when the page may "
            "run its script.</p></div>";
    }
    if (!scene.proof) {
        return html;
    }
    const ProofRun& run = *scene.proof;
    html += "<p class=\"lead\">" + proof_verdict(run) + "</p>";
    for (const std::string& problem : run.problems) {
        html += "<p class=\"problem\">" + html_name(problem) + "</p>";
    }
    if (!run.result || run.result->cameras.empty()) {
        return html;
    }
    html +=
        "<details class=\"meaning\" open><summary>What this compares</summary><p>The scene's own camera sees "
        "test points at certain pixels: the nulls, a grid around its aim, and the corners of the frame at "
        "three depths, at its keys and between them. Each row says how far from there another program puts "
        "the same points, at whole frames. Rows marked <span class=\"mark good\">right</span> or <span "
        "class=\"mark error\">off</span> are meant to say what the scene says, and may be " +
        measured_text(proof::kGoal_px) +
        " pixels off.</p><p>Nothing here was measured in After Effects itself. Its rows are computed with a "
        "written model of it; those of glTF and USD are computed from the files that "
        "<code>vxr export</code> writes.</p></details>";
    for (const proof::CameraResult& camera : run.result->cameras) {
        html += camera_table(camera);
    }
    return html + nulls_table(*run.result);
}

}  // namespace cli
