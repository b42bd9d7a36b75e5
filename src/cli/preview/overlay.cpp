#include "cli/preview/overlay.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "render/ink.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace cli {
namespace {

using proof::Landing;
using proof::Point;
using render::InkColour;
using render::InkSpot;

// More would cover the picture.
constexpr std::size_t kMostNulls = 500;

// Okabe's and Ito's colours, which people tell apart who do not see all.
constexpr InkColour kYellow{0.941F, 0.894F, 0.259F};
constexpr InkColour kVermilion{0.835F, 0.369F, 0.0F};
constexpr InkColour kGreen{0.0F, 0.620F, 0.451F};
constexpr InkColour kSkyBlue{0.337F, 0.706F, 0.914F};
constexpr InkColour kWhite{1, 1, 1};
constexpr InkColour kBlack{0, 0, 0};

// Mixes ink into a pixel with straight colour: what covers a transparent pixel brings its own colour.
void put_ink(Texture& picture, std::int32_t x, std::int32_t y, const InkColour& ink, float coverage) {
    constexpr float kFull = 255;
    const std::size_t pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width_px) +
                              static_cast<std::size_t>(x);
    std::uint8_t& alpha_byte = picture.alphas.front().values[pixel];
    const float below = static_cast<float>(alpha_byte) / kFull * (1 - coverage);
    const float alpha = coverage + below;
    const std::array<float, 3> colours{ink.red, ink.green, ink.blue};
    for (std::size_t i = 0; i < colours.size(); ++i) {
        std::uint8_t& byte = picture.pixels[pixel * colours.size() + i];
        const float mixed = (coverage * colours[i] * kFull + below * static_cast<float>(byte)) / alpha;
        byte = static_cast<std::uint8_t>(std::lround(mixed));
    }
    alpha_byte = static_cast<std::uint8_t>(std::lround(alpha * kFull));
}

Point sum(const Point& a, const Point& b, double times) {
    return {a.x + b.x * times, a.y + b.y * times, a.z + b.z * times};
}

double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// A step of 1, 2 or 5 times a power of ten that is nearest below a number.
double step_below(double number) {
    const double power = std::pow(10.0, std::floor(std::log10(number)));
    return number >= 5 * power ? 5 * power : number >= 2 * power ? 2 * power : power;
}

// The scene's camera at one frame over a picture of another size.
class OverlayView {
  public:
    OverlayView(const tagProjectSettings& settings, const proof::TruthCamera& camera, double frame,
                const Texture& picture)
        : camera_(camera),
          frame_(frame),
          across_(picture.width_px / static_cast<double>(settings.width)),
          down_(picture.height_px / static_cast<double>(settings.height)),
          eye_(camera.point_of(frame, {0, 0, 0})),
          ahead_(sum(camera.point_of(frame, {0, 0, 1}), eye_, -1)),
          aim_distance_(camera.aim_distance(frame)) {
        if (!(aim_distance_ > 0 && std::isfinite(aim_distance_))) {
            constexpr double kUsualDistance = 1000;
            aim_distance_ = kUsualDistance;
        }
    }

    [[nodiscard]] std::optional<InkSpot> spot_of(const Point& point) const {
        Landing landing;
        camera_.land(frame_, {&point, 1}, {&landing, 1});
        if (!landing.seen) {
            return std::nullopt;
        }
        return InkSpot{landing.x_px * across_, landing.y_px * down_};
    }

    // The part of a line before the camera; nothing if all of it is behind.
    [[nodiscard]] std::optional<std::pair<InkSpot, InkSpot>> line_of(Point a, Point b) const {
        // Nearer than this, a line would leave the picture anyway.
        const double nearest = aim_distance_ * 1e-4;
        const double depth_a = depth_of(a);
        const double depth_b = depth_of(b);
        if (!std::isfinite(depth_a) || !std::isfinite(depth_b) || (depth_a < nearest && depth_b < nearest)) {
            return std::nullopt;
        }
        if (depth_a < nearest || depth_b < nearest) {
            const double part = (nearest - depth_a) / (depth_b - depth_a);
            const Point cut{a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part, a.z + (b.z - a.z) * part};
            (depth_a < nearest ? a : b) = cut;
        }
        const auto from = spot_of(a);
        const auto to = spot_of(b);
        if (!from || !to) {
            return std::nullopt;
        }
        return std::pair{*from, *to};
    }

    [[nodiscard]] double view_angle_degrees() const {
        constexpr double kHalfTurn = 180;
        constexpr double kPi = 3.141592653589793;
        const Point right = sum(sum(camera_.point_of(frame_, {1, 0, 1}), eye_, -1), ahead_, -1);
        return 2 * std::atan(std::sqrt(dot(right, right))) * kHalfTurn / kPi;
    }

    [[nodiscard]] const Point& eye() const { return eye_; }
    [[nodiscard]] const Point& ahead() const { return ahead_; }
    [[nodiscard]] Point aim() const { return camera_.point_of(frame_, {0, 0, aim_distance_}); }
    [[nodiscard]] double aim_distance() const { return aim_distance_; }

  private:
    [[nodiscard]] double depth_of(const Point& point) const { return dot(sum(point, eye_, -1), ahead_); }

    const proof::TruthCamera& camera_;
    double frame_;
    double across_;
    double down_;
    Point eye_;
    Point ahead_;
    double aim_distance_;
};

class OverlayDrawing {
  public:
    explicit OverlayDrawing(Texture& picture)
        : width_px_(picture.width_px),
          height_px_(picture.height_px),
          scale_(std::max(1, picture.height_px / 360)),
          ink_(picture.width_px, picture.height_px,
               [&picture](std::int32_t x, std::int32_t y, const InkColour& colour, float coverage) {
                   put_ink(picture, x, y, colour, coverage);
               }) {}

    void draw_safe() {
        // Action within 90 and titles within 80 percent of width and height, the usual practice of television
        // in 4:3, as SMPTE RP 27.3 has it.
        for (const auto& [part, name] : {std::pair{0.9, "action"}, std::pair{0.8, "title"}}) {
            const double left = width_px_ * (1 - part) / 2;
            const double top = height_px_ * (1 - part) / 2;
            const double right = width_px_ - left;
            const double bottom = height_px_ - top;
            line({left, top}, {right, top}, kWhite, kThin);
            line({right, top}, {right, bottom}, kWhite, kThin);
            line({right, bottom}, {left, bottom}, kWhite, kThin);
            line({left, bottom}, {left, top}, kWhite, kThin);
            words({left + 3.0 * scale_, top + 3.0 * scale_}, name, kWhite);
        }
    }

    void draw_grid(const OverlayView& view) {
        constexpr int kLines = 10;
        const double step = step_below(view.aim_distance() / 4);
        const Point aim = view.aim();
        const double x = std::round(aim.x / step) * step;
        const double z = std::round(aim.z / step) * step;
        const double reach = kLines * step;
        if (!std::isfinite(x + z + reach)) {
            return;
        }
        for (int i = -kLines; i <= kLines; ++i) {
            faint(view, {x + i * step, 0, z - reach}, {x + i * step, 0, z + reach});
            faint(view, {x - reach, 0, z + i * step}, {x + reach, 0, z + i * step});
        }
        const double length = 2 * step;
        axis(view, {length, 0, 0}, "x", kVermilion);
        axis(view, {0, length, 0}, "y", kGreen);
        axis(view, {0, 0, length}, "z", kSkyBlue);
    }

    void draw_null(const InkSpot& at, const std::string& name) {
        const double arm = 6.0 * scale_;
        // The arms are drawn together, so that neither lies on the other's edge.
        const std::array<std::pair<InkSpot, InkSpot>, 2> arms{
            {{{at.x - arm, at.y}, {at.x + arm, at.y}}, {{at.x, at.y - arm}, {at.x, at.y + arm}}}};
        for (const auto& [from, to] : arms) {
            ink_.line(from, to, kBold * scale_ + 2, kBlack, kShade);
        }
        for (const auto& [from, to] : arms) {
            ink_.line(from, to, kBold * scale_, kYellow, 1);
        }
        words({at.x + arm + 3.0 * scale_, at.y - render::Ink::text_height(scale_) / 2}, shortened(name),
              kWhite);
    }

    void draw_camera(const OverlayView& view, const std::string& name, double frame) {
        draw_horizon(view);
        if (const auto aim = view.spot_of(view.aim())) {
            ink_.ring(*aim, 5.0 * scale_, kBold * scale_ + 2, kBlack, kShade);
            ink_.ring(*aim, 5.0 * scale_, kBold * scale_, kSkyBlue, 1);
        }
        words({4.0 * scale_, height_px_ - render::Ink::text_height(scale_) - 4.0 * scale_},
              shortened(name) + "  frame " + text::plain_number(frame) + "  angle of view " +
                  rounded(view.view_angle_degrees()) + "  aim at " + rounded(view.aim_distance()),
              kWhite);
    }

  private:
    static constexpr double kThin = 1;
    static constexpr double kBold = 1.5;
    static constexpr float kShade = 0.6F;

    static std::string rounded(double number) {
        constexpr double kHundredths = 100;
        return text::plain_number(std::round(number * kHundredths) / kHundredths);
    }

    static std::string shortened(const std::string& name) {
        constexpr std::size_t kMost = 40;
        const std::string shown = text::printable(name);
        return shown.size() <= kMost ? shown : shown.substr(0, kMost) + "...";
    }

    // On a dark edge, so that it is seen on any picture.
    void line(const InkSpot& from, const InkSpot& to, const InkColour& colour, double width) {
        ink_.line(from, to, width * scale_ + 2, kBlack, kShade / 2);
        ink_.line(from, to, width * scale_, colour, 1);
    }

    void words(const InkSpot& begin, const std::string& text, const InkColour& colour) {
        for (const auto& [across, down] : {std::pair{-1, 0}, {1, 0}, {0, -1}, {0, 1}}) {
            ink_.text({begin.x + across * scale_, begin.y + down * scale_}, text, scale_, kBlack, kShade);
        }
        ink_.text(begin, text, scale_, colour, 1);
    }

    void faint(const OverlayView& view, const Point& a, const Point& b) {
        constexpr float kFaint = 0.45F;
        if (const auto line = view.line_of(a, b)) {
            ink_.line(line->first, line->second, kThin * scale_, kWhite, kFaint);
        }
    }

    void axis(const OverlayView& view, const Point& end, const char* name, const InkColour& colour) {
        if (const auto shown = view.line_of({0, 0, 0}, end)) {
            line(shown->first, shown->second, colour, kBold);
        }
        if (const auto tip = view.spot_of(end)) {
            words({tip->x + 3.0 * scale_, tip->y - render::Ink::text_height(scale_) / 2}, name, kWhite);
        }
    }

    // The line at which a plain at the camera's height would end.
    void draw_horizon(const OverlayView& view) {
        const double level = std::hypot(view.ahead().x, view.ahead().z);
        constexpr double kSteep = 1e-6;
        if (!(level > kSteep)) {
            return;
        }
        const Point forward{view.ahead().x / level, 0, view.ahead().z / level};
        const Point right{forward.z, 0, -forward.x};
        constexpr double kFar = 1e4;
        constexpr double kAside = 50;
        const Point middle = sum(view.eye(), forward, kFar * view.aim_distance());
        const double aside = kAside * kFar * view.aim_distance();
        if (const auto shown = view.line_of(sum(middle, right, -aside), sum(middle, right, aside))) {
            line(shown->first, shown->second, kSkyBlue, kThin);
        }
    }

    double width_px_;
    double height_px_;
    std::int32_t scale_;
    render::Ink ink_;
};

void draw_nulls(OverlayDrawing& drawing, const OverlayView& view,
                const std::vector<proof::TruthObject>& objects, double frame) {
    std::size_t drawn = 0;
    for (const proof::TruthObject& object : objects) {
        if (object.kind != proof::TruthObject::Kind::null || object.keys.empty() || drawn == kMostNulls) {
            continue;
        }
        if (const auto spot = view.spot_of(true_position(object, frame))) {
            drawing.draw_null(*spot, object.name);
            ++drawn;
        }
    }
}

bool needs_camera(const std::set<OverlayPart>& parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [](OverlayPart part) { return part != OverlayPart::safe; });
}

}  // namespace

std::set<OverlayPart> overlay_parts(const std::string& words) {
    constexpr std::array<std::pair<const char*, OverlayPart>, 4> kParts{{{"camera", OverlayPart::camera},
                                                                         {"nulls", OverlayPart::nulls},
                                                                         {"safe", OverlayPart::safe},
                                                                         {"grid", OverlayPart::grid}}};
    std::set<OverlayPart> parts;
    for (std::size_t begin = 0; begin <= words.size();) {
        const std::size_t end = std::min(words.find(',', begin), words.size());
        const std::string word = words.substr(begin, end - begin);
        const auto part =
            std::find_if(kParts.begin(), kParts.end(), [&](const auto& one) { return word == one.first; });
        if (part == kParts.end()) {
            throw std::invalid_argument("draws camera, nulls, safe and grid, and knows no " +
                                        text::quoted(word));
        }
        parts.insert(part->second);
        begin = end + 1;
    }
    return parts;
}

Overlay::Overlay(const SceneReading& reading, std::set<OverlayPart> parts)
    : settings_(*reading.settings), parts_(std::move(parts)), objects_(proof::true_objects(settings_)) {
    const auto camera = std::find_if(objects_.begin(), objects_.end(), [](const proof::TruthObject& object) {
        return object.kind == proof::TruthObject::Kind::camera && !object.keys.empty();
    });
    if (camera != objects_.end()) {
        camera_ = static_cast<std::size_t>(camera - objects_.begin());
    } else if (needs_camera(parts_)) {
        throw std::invalid_argument(
            "draws what the scene's camera sees, and no camera has a key; only safe can be drawn");
    }
}

void Overlay::draw(Texture& picture, std::int64_t frame) const {
    OverlayDrawing drawing(picture);
    // FROM is at the composition's first frame, with LOCAL at frame FROM.
    const double scene_frame = static_cast<double>(frame) + (settings_.local != 0 ? 0 : settings_.from);
    if (camera_) {
        const proof::TruthObject& object = objects_[*camera_];
        const proof::TruthCamera camera(settings_, object, proof::kUsualCutAngle_degrees);
        if (camera.has_picture(scene_frame) && settings_.width > 0 && settings_.height > 0) {
            const OverlayView view(settings_, camera, scene_frame, picture);
            if (parts_.count(OverlayPart::grid) != 0) {
                drawing.draw_grid(view);
            }
            if (parts_.count(OverlayPart::camera) != 0) {
                drawing.draw_camera(view, object.name, scene_frame);
            }
            if (parts_.count(OverlayPart::nulls) != 0) {
                draw_nulls(drawing, view, objects_, scene_frame);
            }
        }
    }
    if (parts_.count(OverlayPart::safe) != 0) {
        drawing.draw_safe();
    }
}

}  // namespace cli
