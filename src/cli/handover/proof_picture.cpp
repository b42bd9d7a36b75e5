#include "cli/handover/proof_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <locale>
#include <sstream>

#include "text/plain_number.h"
#include "text/utf8.h"

namespace cli {
namespace {

// Okabe's and Ito's colours, which differ for every kind of sight. Without black, which is the scene's.
constexpr std::array<const char*, 6> kTargetColours{"#d55e00", "#0072b2", "#009e73",
                                                    "#cc79a7", "#e69f00", "#56b4e9"};

constexpr double kPanelWidth = 960;
constexpr double kPanelMargin = 24;
constexpr double kTextLine = 20;
// The longest line is this long, unless it is longer by itself.
constexpr double kLongestLine = 60;

std::string markup_text(std::string_view text) {
    std::string safe;
    for (const char c : text) {
        switch (c) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            case '"':
                safe += "&quot;";
                break;
            // XML has no other control bytes.
            default:
                safe += static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? ' ' : c;
        }
    }
    return text::is_utf8(safe) ? safe : "a name that is not UTF-8";
}

std::string at(double number) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.setf(std::ios::fixed);
    text.precision(2);
    text << number;
    return text.str();
}

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
        line(camera_.name + ", frame " + text::plain_number(camera_.picture_frame) +
                 (factor > 1 ? ": errors are drawn " + text::plain_number(factor) + " times as large" : ""),
             nullptr, true);
        line("the scene's own camera: rings", nullptr, false);
        for (std::size_t i = 0; i < camera_.targets.size(); ++i) {
            const proof::TargetResult& target = camera_.targets[i];
            line(target.target + ": " +
                     (target.problem.empty() ? "at most " + text::plain_number(rounded(target.judged_px())) +
                                                   " px at whole frames"
                                             : target.problem),
                 colour(i), false);
        }
        top_ += kTextLine / 2;
        out_ << "<rect x=\"" << at(kPanelMargin) << "\" y=\"" << at(top_) << "\" width=\"" << at(kPanelWidth)
             << "\" height=\"" << at(height_) << "\" fill=\"#f4f4f4\" stroke=\"#808080\"/>\n";
        for (const proof::PicturePoint& point : camera_.picture) {
            draw_point(point, factor);
        }
        return top_ + height_ + 2 * kPanelMargin;
    }

  private:
    static const char* colour(std::size_t target) {
        return kTargetColours.at(target % kTargetColours.size());
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
    void line(const std::string& text, const char* dot, bool heading) {
        top_ += kTextLine;
        constexpr double kDot = 4;
        constexpr double kIndent = 14;
        if (dot != nullptr) {
            out_ << "<circle cx=\"" << at(kPanelMargin + kDot) << "\" cy=\"" << at(top_ - kDot) << "\" r=\""
                 << at(kDot) << "\" fill=\"" << dot << "\"/>\n";
        }
        out_ << "<text x=\"" << at(kPanelMargin + (dot != nullptr ? kIndent : 0)) << "\" y=\"" << at(top_)
             << '"' << (heading ? " font-weight=\"bold\"" : "") << '>' << markup_text(text) << "</text>\n";
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
        out_ << "<circle cx=\"" << at(x_of(point.truth.x_px)) << "\" cy=\"" << at(y_of(point.truth.y_px))
             << "\" r=\"5\" fill=\"none\" stroke=\"#000000\"/>\n";
        for (std::size_t i = 0; i < point.landed.size(); ++i) {
            const proof::Landing& landed = point.landed[i];
            if (!is_shown(point.truth, landed)) {
                continue;
            }
            const double x = point.truth.x_px + factor * (landed.x_px - point.truth.x_px);
            const double y = point.truth.y_px + factor * (landed.y_px - point.truth.y_px);
            out_ << "<path d=\"M" << at(x_of(point.truth.x_px)) << ' ' << at(y_of(point.truth.y_px)) << 'L'
                 << at(x_of(x)) << ' ' << at(y_of(y)) << "\" stroke=\"" << colour(i) << "\"/><circle cx=\""
                 << at(x_of(x)) << "\" cy=\"" << at(y_of(y)) << "\" r=\""
                 << at(2.5 - 0.3 * static_cast<double>(i % kTargetColours.size())) << "\" fill=\""
                 << colour(i) << "\"/>\n";
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
        panels << "<text x=\"" << at(kPanelMargin) << "\" y=\"" << at(bottom + kTextLine) << "\">"
               << markup_text(run.file + " has no camera to compare") << "</text>\n";
        bottom += 2 * kTextLine;
    }
    const std::string size = at(kPanelWidth + 2 * kPanelMargin) + "\" height=\"" + at(bottom);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size +
           "\" font-family=\"sans-serif\" font-size=\"14\">\n<title>" +
           markup_text("Where " + run.file + " puts test points, and where others do") +
           "</title>\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n" + panels.str() + "</svg>\n";
}

}  // namespace cli
