#include "handover/plan/plan_picture.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "handover/plan/map_legend.h"
#include "handover/plan/page.h"
#include "handover/plan/plan_curves.h"
#include "handover/plan/plan_map.h"
#include "handover/plan/plan_scene.h"
#include "text/ascii.h"
#include "text/plain_number.h"
#include "text/svg.h"

namespace plan {
namespace {

using handover::Handover;
using handover::ObjectKind;
using handover::Shot;
using text::count_text;
using text::plain_number;
using text::svg_name;
using text::svg_number;
using text::svg_text;

constexpr double kWidth = 1200;
constexpr double kMargin = 36;
constexpr double kMapHeight = 440;
constexpr double kMapsGap = 60;
constexpr double kTicks = 34;
constexpr double kSectionGap = 18;
constexpr double kNoteLine = 16;

std::string_view file_name_of(const std::string& path) {
    return text::last_component(path, "/\\");
}

std::string summary_of(const Handover& handover) {
    const Shot& shot = handover.shot;
    std::string text = std::to_string(shot.width_px) + " x " + std::to_string(shot.height_px) + " pixels";
    if (shot.pixel_aspect != 1) {
        text += " of aspect " + plain_number(shot.pixel_aspect);
    }
    text += ", frames " + std::to_string(shot.from) + " to " + std::to_string(shot.to) + " at " +
            plain_number(shot.rate_fps) + " a second: ";
    const auto count = [&](ObjectKind kind) {
        return std::count_if(handover.objects.begin(), handover.objects.end(),
                             [kind](const handover::SceneObject& object) { return object.kind == kind; });
    };
    return text + count_text(count(ObjectKind::camera), "camera", "cameras") + ", " +
           count_text(count(ObjectKind::light), "light", "lights") + ", " +
           count_text(count(ObjectKind::null), "null", "nulls");
}

// What the picture leaves out, one sentence each, as markup.
std::vector<std::string> notes_of(const Handover& handover, const Scene& scene, const MapGaps& gaps) {
    std::vector<std::string> notes;
    if (scene.cameras.empty()) {
        notes.emplace_back("No camera has a key.");
    }
    std::int64_t outside = 0;
    std::int64_t many_keys = 0;
    std::string thinned;
    for (const std::vector<Mover>* const movers : {&scene.cameras, &scene.lights, &scene.nulls}) {
        for (const Mover& mover : *movers) {
            outside += mover.keys_outside;
            // More than there are pixels across a map, or across a curve.
            constexpr std::int64_t kMany = 500;
            if (mover.keys_within > kMany && ++many_keys == 1) {
                thinned = svg_name(handover.objects[mover.object].name) + " has " +
                          std::to_string(mover.keys_within) + " keys";
            }
        }
    }
    if (outside > 0) {
        notes.push_back(count_text(outside, "key", "keys") + (outside == 1 ? " lies" : " lie") +
                        " before FROM or after TO and " + (outside == 1 ? "is" : "are") + " not shown.");
    }
    if (many_keys > 0) {
        notes.push_back(
            thinned +
            (many_keys > 1
                 ? ", and " + count_text(many_keys - 1, "other object", "other objects") + " more than 500"
                 : "") +
            ": more than a picture can show. Keys are drawn where there is room for a dot, and ways "
            "and curves with as many points as can be told apart.");
    }
    if (scene.without_keys > 0) {
        notes.push_back(scene.without_keys == 1
                            ? svg_name(scene.first_without_key) + " has no key and is not shown."
                            : svg_name(scene.first_without_key) + " and " +
                                  count_text(scene.without_keys - 1, "other object", "other objects") +
                                  " have no keys and are not shown.");
    }
    if (scene.not_drawn > 0) {
        notes.push_back(count_text(scene.not_drawn, "object", "objects") +
                        (scene.not_drawn == 1 ? " is" : " are") + " not shown: the plan shows the first " +
                        std::to_string(kMostCameras) + " cameras, " + std::to_string(kMostLights) +
                        " lights and " + std::to_string(kMostNulls) + " nulls of the scene.");
    }
    if (scene.lights.size() > kMostLightCurves) {
        notes.push_back("Of " + std::to_string(scene.lights.size()) + " lights the intensity of the first " +
                        std::to_string(kMostLightCurves) + " is shown.");
    }
    if (gaps.outside > 0) {
        notes.push_back(count_text(gaps.outside, "object", "objects") + (gaps.outside == 1 ? " is" : " are") +
                        " too far away for a map: an arrow at its edge shows the way.");
    }
    if (gaps.unnamed > 0) {
        notes.push_back("There is no room for " + count_text(gaps.unnamed, "name", "names") + " on a map.");
    }
    return notes;
}

}  // namespace

std::string plan_picture(const Handover& handover, double cut_angle_degrees) {
    const Scene scene = scene_of(handover, cut_angle_degrees);
    Page page;
    page.text({kMargin, 44}, svg_name(file_name_of(handover.shot.file)),
              "font-size=\"22\" font-weight=\"bold\"");
    page.text({kMargin, 66}, svg_text(summary_of(handover)), "font-size=\"13\" fill=\"#444444\"");

    const double half = (kWidth - 2 * kMargin - kMapsGap - kTicks) / 2;
    Area above{kMargin + kTicks, 104, kMargin + kTicks + half, 104 + kMapHeight};
    Area side{above.right + kMapsGap, above.top, above.right + kMapsGap + half, above.bottom};
    const MapGaps gaps = draw_maps(page, handover, scene, above, side);
    draw_legend(page, {above.left, above.bottom + 38});

    const Area columns{kMargin, above.bottom + 62, kWidth - kMargin, 0};
    double bottom = columns.top;
    for (std::size_t i = 0; i < scene.cameras.size(); ++i) {
        bottom = draw_camera_curves(page, handover, scene, i, {columns.left, bottom, columns.right, bottom}) +
                 kSectionGap;
    }
    if (!scene.lights.empty()) {
        bottom = draw_light_curves(page, handover, scene, {columns.left, bottom, columns.right, bottom}) +
                 kSectionGap;
    }
    page.open("class=\"notes\" font-size=\"12\" fill=\"#444444\"");
    for (const std::string& note : notes_of(handover, scene, gaps)) {
        page.text({kMargin, bottom}, note);
        bottom += kNoteLine;
    }
    page.close();
    const std::string size = svg_number(kWidth) + "\" height=\"" + svg_number(bottom + kMargin / 2);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size + "\" viewBox=\"0 0 " +
           svg_number(kWidth) + ' ' + svg_number(bottom + kMargin / 2) +
           "\" role=\"img\" font-family=\"sans-serif\" fill=\"#222222\">\n<title>Plan of " +
           svg_name(file_name_of(handover.shot.file)) + "</title>\n<desc>" + svg_text(summary_of(handover)) +
           "</desc>\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n" + page.svg() + "</svg>\n";
}

}  // namespace plan
