#include "cli/handover/proof_picture.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "text/plain_number.h"
#include "text/svg.h"

namespace cli {
namespace {

constexpr double kPanelWidth = 960;
constexpr double kPanelMargin = 24;
constexpr double kTextLine = 20;
// The longest line is this long, unless it is longer by itself.
constexpr double kLongestLine = 60;

using text::svg_number;
using text::svg_text;

class Panel {
  public:
    Panel(std::ostream& out, const proof::CameraResult& camera, double width_px, double height_px, double top)
        : out_(out),
          camera_(camera),
          scale_(kPanelWidth / width_px),
          height_(height_px * scale_),
          top_(top) {}

    // Returns where the next panel begins.
    double draw() {
        const double factor = exaggeration();
        line(text::svg_name(camera_.name) + ", frame " + text::plain_number(camera_.picture_frame) +
                 (factor > 1 ? ": errors are drawn " + text::plain_number(factor) + " times as large" : ""),
             nullptr, true);
        line("the scene's own camera: rings", nullptr, false);
        for (std::size_t i = 0; i < camera_.targets.size(); ++i) {
            const proof::TargetResult& target = camera_.targets[i];
            line(svg_text(target.target + ": " +
                          (target.problem.empty()
                               ? "at most " + text::plain_number(rounded(target.judged_px())) +
                                     " px at whole frames"
                               : target.problem)),
                 colour(i), false);
        }
        top_ += kTextLine / 2;
        out_ << "<rect x=\"" << svg_number(kPanelMargin) << "\" y=\"" << svg_number(top_) << "\" width=\""
             << svg_number(kPanelWidth) << "\" height=\"" << svg_number(height_)
             << "\" fill=\"#f4f4f4\" stroke=\"#808080\"/>\n";
        for (const proof::PicturePoint& point : camera_.picture) {
            draw_point(point, factor);
        }
        return top_ + height_ + 2 * kPanelMargin;
    }

  private:
    static const char* colour(std::size_t target) {
        return text::kUniversalColours.at(target % text::kUniversalColours.size());
    }

    // Digits beyond these say nothing to people.
    static double rounded(double px) { return std::round(px * 1e4) / 1e4; }

    static bool is_shown(const proof::Landing& truth, const proof::Landing& landed) {
        return landed.seen && std::isfinite(std::hypot(landed.x_px - truth.x_px, landed.y_px - truth.y_px));
    }

    // A power of ten, so that a person can compute with it.
    [[nodiscard]] double exaggeration() const {
        double longest = 0;
        for (const proof::PicturePoint& point : camera_.picture) {
            for (const proof::Landing& landed : point.landed) {
                if (is_shown(point.truth, landed)) {
                    longest = std::max(
                        longest, std::hypot(landed.x_px - point.truth.x_px, landed.y_px - point.truth.y_px));
                }
            }
        }
        // Less than this is rounding, and as large as the picture it would only frighten.
        constexpr double kLeast_px = 1e-4;
        if (longest < kLeast_px) {
            return 1;
        }
        return std::max(1.0, std::pow(10.0, std::floor(std::log10(kLongestLine / (longest * scale_)))));
    }

    // A line of text, with a dot of the colour before it if there is one: not every colour can be read as
    // text.
    void line(const std::string& markup, const char* dot, bool heading) {
        top_ += kTextLine;
        constexpr double kDot = 4;
        constexpr double kIndent = 14;
        if (dot != nullptr) {
            out_ << "<circle cx=\"" << svg_number(kPanelMargin + kDot) << "\" cy=\""
                 << svg_number(top_ - kDot) << "\" r=\"" << svg_number(kDot) << "\" fill=\"" << dot
                 << "\"/>\n";
        }
        out_ << "<text x=\"" << svg_number(kPanelMargin + (dot != nullptr ? kIndent : 0)) << "\" y=\""
             << svg_number(top_) << '"' << (heading ? " font-weight=\"bold\"" : "") << '>' << markup
             << "</text>\n";
    }

    // Points far outside would lie on the text.
    [[nodiscard]] bool is_in_panel(const proof::Landing& truth) const {
        constexpr double kBeyond = 8;
        const double x = truth.x_px * scale_;
        const double y = truth.y_px * scale_;
        return x > -kBeyond && x < kPanelWidth + kBeyond && y > -kBeyond && y < height_ + kBeyond;
    }

    [[nodiscard]] double x_of(double px) const { return kPanelMargin + px * scale_; }
    [[nodiscard]] double y_of(double px) const { return top_ + px * scale_; }

    void draw_point(const proof::PicturePoint& point, double factor) {
        if (!point.truth.seen || !is_in_panel(point.truth)) {
            return;
        }
        out_ << "<circle cx=\"" << svg_number(x_of(point.truth.x_px)) << "\" cy=\""
             << svg_number(y_of(point.truth.y_px)) << "\" r=\"5\" fill=\"none\" stroke=\"#000000\"/>\n";
        for (std::size_t i = 0; i < point.landed.size(); ++i) {
            const proof::Landing& landed = point.landed[i];
            if (!is_shown(point.truth, landed)) {
                continue;
            }
            const double x = point.truth.x_px + factor * (landed.x_px - point.truth.x_px);
            const double y = point.truth.y_px + factor * (landed.y_px - point.truth.y_px);
            out_ << "<path d=\"M" << svg_number(x_of(point.truth.x_px)) << ' '
                 << svg_number(y_of(point.truth.y_px)) << 'L' << svg_number(x_of(x)) << ' '
                 << svg_number(y_of(y)) << "\" stroke=\"" << colour(i) << "\"/><circle cx=\""
                 << svg_number(x_of(x)) << "\" cy=\"" << svg_number(y_of(y)) << "\" r=\""
                 << svg_number(2.5 - 0.3 * static_cast<double>(i % text::kUniversalColours.size()))
                 << "\" fill=\"" << colour(i) << "\"/>\n";
        }
    }

    std::ostream& out_;
    const proof::CameraResult& camera_;
    double scale_;
    double height_;
    double top_;
};

}  // namespace

std::string proof_picture(const ProofRun& run) {
    std::ostringstream panels;
    double bottom = kPanelMargin;
    const bool has_cameras =
        run.result && !run.result->cameras.empty() && run.width_px > 0 && run.height_px > 0;
    if (has_cameras) {
        for (const proof::CameraResult& camera : run.result->cameras) {
            bottom = Panel(panels, camera, run.width_px, run.height_px, bottom).draw();
        }
    } else {
        panels << "<text x=\"" << svg_number(kPanelMargin) << "\" y=\"" << svg_number(bottom + kTextLine)
               << "\">" << svg_text(run.file + " has no camera to compare") << "</text>\n";
        bottom += 2 * kTextLine;
    }
    const std::string size = svg_number(kPanelWidth + 2 * kPanelMargin) + "\" height=\"" + svg_number(bottom);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size +
           "\" font-family=\"sans-serif\" font-size=\"14\">\n<title>" +
           svg_text("Where " + run.file + " puts test points, and where others do") +
           "</title>\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n" + panels.str() + "</svg>\n";
}

}  // namespace cli
