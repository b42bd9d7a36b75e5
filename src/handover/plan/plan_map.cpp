#include "handover/plan/plan_map.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "handover/plan/map_lights.h"
#include "handover/plan/map_view.h"
#include "handover/plan/plan_style.h"
#include "text/plain_number.h"
#include "text/printable.h"
#include "text/svg.h"

namespace plan {
namespace {

using handover::Handover;
using handover::SceneObject;
using text::svg_name;
using text::svg_text;

constexpr double kFont = 11;
constexpr double kLabelHeight = 13;
constexpr double kKeysApart_px = 5;
constexpr std::size_t kMostSpots = 4000;
constexpr std::size_t kNameLength = 28;
constexpr const char* kGrey = "#666666";
constexpr const char* kHalo = "paint-order=\"stroke\" stroke=\"#ffffff\" stroke-width=\"3\"";

class MapDrawing {
  public:
    MapDrawing(Page& page, const Handover& handover, const Scene& scene, const MapView& view, MapGaps& gaps)
        : page_(page), handover_(handover), scene_(scene), view_(view), gaps_(gaps), labels_(view.area()) {}

    void draw(const char* title, const char* across, const char* up) {
        draw_grid(title, across, up);
        for (std::size_t i = 0; i < scene_.cameras.size(); ++i) {
            draw_frusta(scene_.cameras[i], i);
        }
        for (const Mover& null : scene_.nulls) {
            draw_null(null);
        }
        for (const Mover& light : scene_.lights) {
            draw_light(light);
        }
        for (std::size_t i = 0; i < scene_.cameras.size(); ++i) {
            draw_camera(scene_.cameras[i], i);
        }
        draw_labels();
    }

  private:
    struct Label {
        Spot named;
        double clearance = 8;
        std::string name;    // as it is; counts for the width
        std::string markup;  // what is written
        std::string colour = kInk;
        bool is_name = true;
    };

    [[nodiscard]] const Area& area() const { return view_.area(); }

    void draw_grid(const char* title, const char* across, const char* up) {
        constexpr double kLines_px = 68;
        const double step = round_step(kLines_px * view_.space().units_per_px);
        page_.rectangle(area(), "fill=\"#ffffff\" stroke=\"#999999\"");
        page_.open("stroke=\"#e4e4e4\" class=\"grid\"");
        const auto lines = [&](const std::array<double, 2>& range, const auto& draw_line) {
            const double first = std::ceil(range[0] / step);
            const double last = std::floor(range[1] / step);
            // There are no more than fit.
            for (double i = first; i <= last && i < first + kMostTicks; ++i) {
                draw_line(i * step);
            }
        };
        const auto is_zero = [&](double number) { return number == 0; };
        const std::string zero = "stroke=\"#9a9a9a\" stroke-width=\"1.2\"";
        lines(view_.range_across(), [&](double at) {
            const double x = view_.x_of(at);
            page_.line(std::array{Spot{x, area().top}, Spot{x, area().bottom}}, is_zero(at) ? zero : "");
        });
        lines(view_.range_up(), [&](double at) {
            const double y = view_.y_of(at);
            page_.line(std::array{Spot{area().left, y}, Spot{area().right, y}}, is_zero(at) ? zero : "");
        });
        page_.close();
        page_.open("fill=\"#555555\" font-size=\"10\"");
        lines(view_.range_across(), [&](double at) {
            page_.text({view_.x_of(at), area().bottom + 13}, svg_text(short_number(at)),
                       "class=\"tick-across\" text-anchor=\"middle\"");
        });
        lines(view_.range_up(), [&](double at) {
            page_.text({area().left - 5, view_.y_of(at)}, svg_text(short_number(at)),
                       "class=\"tick-up\" dy=\"3.5\" text-anchor=\"end\"");
        });
        page_.close();
        page_.text({area().left, area().top - 9}, title, "font-size=\"14\" font-weight=\"bold\"");
        page_.text({area().right, area().top - 9}, std::string(across) + " to the right, " + up + " up",
                   "text-anchor=\"end\" font-size=\"11\" fill=\"#555555\"");
    }

    // Adds the way of an object, later parts darker, and dashed where it is cut.
    void draw_way(const Mover& mover, const char* colour, std::string_view width, std::string_view dashes) {
        constexpr double kShades = 12;
        const double length = std::max(scene_.end - scene_.begin, 1.0);
        std::vector<Spot> shade;
        double white = -1;
        const auto flush = [&] {
            for (const std::vector<Spot>& part : clipped_line(shade, area(), kMostSpots)) {
                page_.line(part, attribute("stroke", lighter(colour, white)) + ' ' +
                                     attribute("stroke-width", width) + std::string(dashes) +
                                     " class=\"way\" stroke-linejoin=\"round\"");
            }
        };
        const Spot* before_cut = nullptr;
        Spot ended{};
        for (const Stretch& stretch : mover.stretches) {
            const Spot begins = view_.spot_of(stretch.moments.front().pose.position);
            if (before_cut != nullptr) {
                for (const std::vector<Spot>& part : clipped_line(std::array{ended, begins}, area(), 2)) {
                    page_.line(part, attribute("stroke", kGrey) +
                                         " class=\"cut\" stroke-width=\"0.8\" stroke-dasharray=\"2 4\"");
                }
            }
            for (const Moment& moment : stretch.moments) {
                const double shade_now =
                    std::floor((moment.frame - scene_.begin) / length * kShades) / kShades;
                const double white_now = kMostWhite * (1 - std::min(shade_now, 1.0));
                const Spot spot = view_.spot_of(moment.pose.position);
                const bool begins_stretch = &moment == &stretch.moments.front();
                if (white_now != white && !shade.empty() && !begins_stretch) {
                    shade.push_back(spot);
                    flush();
                    shade.clear();
                }
                white = white_now;
                shade.push_back(spot);
            }
            flush();
            shade.clear();
            ended = view_.spot_of(stretch.moments.back().pose.position);
            before_cut = &ended;
        }
    }

    // A dot for each key, where there is room.
    void draw_keys(const Mover& mover, std::string_view colour, double radius) {
        page_.open("class=\"keys\" fill=\"#ffffff\" " + attribute("stroke", colour));
        std::optional<Spot> last;
        for (std::size_t i = 0; i < mover.keys.size(); ++i) {
            const Spot spot = view_.spot_of(mover.key_positions[i]);
            if (!is_finite(spot) || !area().has(spot) ||
                (last && std::hypot(spot.x - last->x, spot.y - last->y) < kKeysApart_px)) {
                continue;
            }
            page_.circle(spot, radius, "", "key at frame " + std::to_string(mover.keys[i]));
            last = spot;
        }
        page_.close();
    }

    void draw_frusta(const Mover& camera, std::size_t index) {
        const std::string colour = camera_colour(index);
        page_.open("class=\"frusta\" fill=\"" + colour + "\" fill-opacity=\"0.07\"");
        std::vector<Spot> drawn;
        for (std::size_t i = 0; i < camera.frusta.size(); ++i) {
            const Frustum& frustum = camera.frusta[i];
            const bool is_end = i == 0 || i + 1 == camera.frusta.size();
            const Spot eye = view_.spot_of(frustum.eye);
            const Spot aim = view_.spot_of(frustum.aim);
            const std::vector<Spot> spots = spots_of(frustum);
            // Between first and last, what looks like the one before it is left out.
            if (!is_end && (looks_like(spots, drawn) || looks_like(spots, spots_of(camera.frusta.back())))) {
                continue;
            }
            drawn = spots;
            const double part = (frustum.frame - scene_.begin) / std::max(scene_.end - scene_.begin, 1.0);
            const std::string stroke = attribute("stroke", lighter(colour, kMostWhite * (1 - part))) + ' ' +
                                       attribute("stroke-width", is_end ? "1.4" : "0.8");
            const std::string frame = text::plain_number(frustum.frame);
            if (const std::vector<Spot> outline = clipped_outline(spots, area()); outline.size() > 2) {
                std::string attributes = attribute("data-frame", frame);
                attributes.append(" class=\"frustum\" stroke-linejoin=\"round\" ").append(stroke);
                page_.outline(outline, attributes, "frame " + frame);
            }
            for (const std::vector<Spot>& part_of_axis : clipped_line(std::array{eye, aim}, area(), 2)) {
                page_.line(part_of_axis, "class=\"axis\" stroke-dasharray=\"7 3 1.5 3\" " + stroke);
            }
            if (is_finite(aim) && area().has(aim)) {
                page_.circle(aim, 2.6, "class=\"aim\" fill-opacity=\"1\" fill=\"#ffffff\" " + stroke,
                             "aim at frame " + frame);
            }
        }
        page_.close();
    }

    [[nodiscard]] std::vector<Spot> spots_of(const Frustum& frustum) const {
        std::vector<Spot> spots{view_.spot_of(frustum.eye)};
        for (const Vector& corner : frustum.corners) {
            spots.push_back(view_.spot_of(corner));
        }
        return spots;
    }

    static bool looks_like(const std::vector<Spot>& a, const std::vector<Spot>& b) {
        constexpr double kSame_px = 16;
        if (a.size() != b.size()) {
            return false;
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (!(std::hypot(a[i].x - b[i].x, a[i].y - b[i].y) < kSame_px)) {
                return false;
            }
        }
        return true;
    }

    void draw_camera(const Mover& camera, std::size_t index) {
        const char* const colour = camera_colour(index);
        page_.open("class=\"camera\" data-object=\"" + std::to_string(camera.object) + '"');
        draw_way(camera, colour, "2.4", "");
        draw_keys(camera, colour, 2);
        const Spot first = view_.spot_of(camera.first().pose.position);
        const Spot last = view_.spot_of(camera.last().pose.position);
        const std::string& name = handover_.objects[camera.object].name;
        const std::string from = text::plain_number(scene_.begin);
        const std::string to = text::plain_number(scene_.end);
        const bool is_far = std::hypot(first.x - last.x, first.y - last.y) > 12;
        add_label(last, 9, name, is_far ? ", frame " + to : "", colour);
        if (is_far) {
            add_label(first, 9, "", "frame " + from, colour);
        }
        if (is_finite(first) && area().has(first)) {
            page_.circle(first, 4.5,
                         "class=\"first\" fill=\"#ffffff\" stroke-width=\"2\" " +
                             attribute("stroke", lighter(colour, kMostWhite)),
                         "frame " + from);
        }
        if (is_finite(last) && area().has(last)) {
            page_.circle(last, 4.5, "class=\"last\" stroke=\"#ffffff\" " + attribute("fill", colour),
                         "frame " + to);
            keep_free(last, 5);
        }
        for (const Frustum& frustum : camera.frusta) {
            const Spot eye = view_.spot_of(frustum.eye);
            if (frustum.frame != scene_.begin && frustum.frame != scene_.end &&
                std::hypot(eye.x - first.x, eye.y - first.y) > 30 &&
                std::hypot(eye.x - last.x, eye.y - last.y) > 30) {
                add_label(eye, 7, "", text::plain_number(frustum.frame), colour);
                labels_to_place_.back().is_name = false;
            }
        }
        page_.close();
    }

    void draw_null(const Mover& null) {
        page_.open("class=\"null\" data-object=\"" + std::to_string(null.object) + '"');
        if (null.moves()) {
            draw_way(null, kInk, "1", " stroke-dasharray=\"1 2.5\" stroke-linecap=\"round\"");
            draw_keys(null, kGrey, 1.5);
        }
        const std::string& name = handover_.objects[null.object].name;
        draw_cross(view_.spot_of(null.first().pose.position), kInk);
        add_label(view_.spot_of(null.first().pose.position), 8, name, "", kInk);
        page_.close();
    }

    void draw_cross(const Spot& at, std::string_view colour) {
        constexpr double kArm = 5.5;
        if (!is_finite(at) || !area().has(at)) {
            return;
        }
        const std::string stroke = "class=\"cross\" stroke-width=\"1.6\" " + attribute("stroke", colour);
        page_.line(std::array{Spot{at.x - kArm, at.y}, Spot{at.x + kArm, at.y}}, stroke);
        page_.line(std::array{Spot{at.x, at.y - kArm}, Spot{at.x, at.y + kArm}}, stroke);
        keep_free(at, kArm);
    }

    void draw_light(const Mover& light) {
        const SceneObject& object = handover_.objects[light.object];
        page_.open("class=\"light\" data-object=\"" + std::to_string(light.object) + '"');
        const Moment& first = light.first();
        const Spot at = view_.spot_of(first.pose.position);
        if (object.light_word == "SPOT" || object.light_word == "PSPOT") {
            draw_cone(page_, view_, object, first.pose);
        }
        if (light.moves()) {
            draw_way(light, "#806000", "1", " stroke-dasharray=\"4 2\"");
            draw_keys(light, "#806000", 1.5);
        }
        if (is_finite(at) && area().has(at)) {
            if (object.light_word == "PAR" || object.light_word == "AREA") {
                draw_arrow(page_, view_, at, first.pose);
            }
            draw_lamp(page_, at, object);
            keep_free(at, 7);
        }
        add_label(at, 11, object.name, "", kInk);
        page_.close();
    }

    void keep_free(const Spot& at, double radius) {
        labels_.keep_free({at.x - radius, at.y - radius, at.x + radius, at.y + radius});
    }

    void add_label(const Spot& named, double clearance, const std::string& name, const std::string& more,
                   const char* colour) {
        labels_to_place_.push_back({named, clearance, text::printable(name).substr(0, 4 * kNameLength) + more,
                                    svg_name(name, kNameLength) + svg_text(more), colour, true});
    }

    void draw_labels() {
        page_.open("class=\"names\" font-size=\"11\" " + std::string(kHalo));
        for (const Label& label : labels_to_place_) {
            if (!is_finite(label.named)) {
                continue;
            }
            if (!area().has(label.named)) {
                draw_far(label);
                continue;
            }
            const double width = std::min(text_width(label.name, kFont), kNameLength * kFont);
            const auto spot = labels_.place(label.named, label.clearance, width, kLabelHeight);
            if (spot) {
                page_.text(*spot, label.markup, attribute("fill", label.colour));
            } else if (label.is_name) {
                ++gaps_.unnamed;
            }
        }
        page_.close();
    }

    // An arrow at the edge, to what is farther away.
    void draw_far(const Label& label) {
        constexpr double kInset = 10;
        constexpr double kSize = 5;
        ++gaps_.outside;
        const Spot middle{(area().left + area().right) / 2, (area().top + area().bottom) / 2};
        const Area inner{area().left + kInset, area().top + kInset, area().right - kInset,
                         area().bottom - kInset};
        const Spot at = edge_towards(middle, label.named, inner);
        const double length = std::hypot(at.x - middle.x, at.y - middle.y);
        const Spot unit{(at.x - middle.x) / length, (at.y - middle.y) / length};
        page_.outline(std::array{Spot{at.x + kSize * unit.x, at.y + kSize * unit.y},
                                 Spot{at.x - kSize * unit.y, at.y + kSize * unit.x},
                                 Spot{at.x + kSize * unit.y, at.y - kSize * unit.x}},
                      "class=\"far\" fill=\"#333333\"");
        keep_free(at, kSize);
        const double width = std::min(text_width(label.name, kFont), kNameLength * kFont);
        if (const auto spot = labels_.place(at, kSize + 3, width, kLabelHeight)) {
            page_.text(*spot, label.markup, "font-style=\"italic\" " + attribute("fill", label.colour));
        } else {
            ++gaps_.unnamed;
        }
    }

    static constexpr double kMostTicks = 64;

    Page& page_;
    const Handover& handover_;
    const Scene& scene_;
    MapView view_;
    MapGaps& gaps_;
    Labels labels_;
    std::vector<Label> labels_to_place_;
};

}  // namespace

MapGaps draw_maps(Page& page, const Handover& handover, const Scene& scene, Area& above, Area& side) {
    MapGaps gaps;
    const MapSpace space = map_space(scene, above, side);
    above.bottom = above.top + needed_height(space, above.height());
    side.bottom = side.top + above.height();
    page.open("class=\"map\" data-view=\"above\"");
    MapDrawing(page, handover, scene, MapView(space, above, kX, kZ), gaps).draw("From above", "x", "z");
    page.close();
    MapGaps also;
    page.open("class=\"map\" data-view=\"side\"");
    MapDrawing(page, handover, scene, MapView(space, side, kZ, kY), also).draw("From the side", "z", "y");
    page.close();
    return {std::max(gaps.unnamed, also.unnamed), std::max(gaps.outside, also.outside)};
}

}  // namespace plan
