#include "handover/plan/map_legend.h"

#include <array>

#include "handover/plan/plan_style.h"

namespace plan {
namespace {

constexpr double kLegendFont = 11;

}  // namespace

void draw_legend(Page& page, const Spot& begin) {
    double x = begin.x;
    const double middle = begin.y - 4;
    const char* const colour = camera_colour(0);
    const auto say = [&](const char* words) {
        page.text({x, begin.y}, words);
        x += text_width(words, kLegendFont) + 22;
    };
    page.open("font-size=\"11\" fill=\"#444444\"");
    page.circle({x + 4, middle}, 4,
                "fill=\"#ffffff\" stroke-width=\"2\" " + attribute("stroke", lighter(colour, kMostWhite)));
    x += 13;
    say("camera at the first frame");
    page.circle({x + 4, middle}, 4, attribute("fill", colour));
    x += 13;
    say("at the last");
    page.circle({x + 3, middle}, 2, "fill=\"#ffffff\" " + attribute("stroke", colour));
    x += 10;
    say("key");
    page.line(std::array{Spot{x, middle}, Spot{x + 12, middle}},
              "stroke-width=\"2.4\" " + attribute("stroke", lighter(colour, kMostWhite)));
    page.line(std::array{Spot{x + 12, middle}, Spot{x + 24, middle}},
              "stroke-width=\"2.4\" " + attribute("stroke", colour));
    x += 29;
    say("later is darker");
    page.line(std::array{Spot{x, middle}, Spot{x + 22, middle}},
              "stroke-dasharray=\"7 3 1.5 3\" " + attribute("stroke", colour));
    page.circle({x + 24, middle}, 2.6, "fill=\"#ffffff\" " + attribute("stroke", colour));
    x += 31;
    say("to the aim");
    page.line(std::array{Spot{x, middle}, Spot{x + 10, middle}},
              "stroke-width=\"1.6\" " + attribute("stroke", kInk));
    page.line(std::array{Spot{x + 5, middle - 5}, Spot{x + 5, middle + 5}},
              "stroke-width=\"1.6\" " + attribute("stroke", kInk));
    x += 15;
    say("null");
    page.circle({x + 5, middle}, 4.8, "fill=\"#ffe9b0\" stroke=\"#333333\" stroke-width=\"1.2\"");
    x += 15;
    say("light in its colour");
    page.close();
}

}  // namespace plan
