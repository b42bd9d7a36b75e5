#include "handover/plan/page.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using plan::Area;
using plan::Spot;

constexpr Area kArea{0, 0, 100, 50};
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

std::string written(const std::vector<Spot>& spots) {
    std::string text;
    for (const Spot& spot : spots) {
        // Tenths, which no rounding reaches.
        text += (text.empty() ? "" : " ") + std::to_string(std::lround(spot.x * 10)) + ',' +
                std::to_string(std::lround(spot.y * 10));
    }
    return text;
}

std::string written(const std::vector<std::vector<Spot>>& lines) {
    std::string text;
    for (const std::vector<Spot>& line : lines) {
        text += (text.empty() ? "" : " | ") + written(line);
    }
    return text;
}

TEST(PageTest, LinesAreCutToTheirArea) {
    const struct {
        const char* name;
        std::vector<Spot> line;
        const char* parts;
    } cases[] = {
        {"all within", {{10, 10}, {20, 10}, {20, 40}}, "100,100 200,100 200,400"},
        {"leaves at the right", {{90, 10}, {110, 20}}, "900,100 1000,150"},
        {"comes in, and leaves at the other side", {{-50, 25}, {150, 25}}, "0,250 1000,250"},
        {"is cut out in the middle",
         {{50, 10}, {50, -10}, {60, -10}, {60, 10}},
         "500,100 500,0 | 600,0 600,100"},
        {"passes by", {{-10, 20}, {10, -30}}, ""},
        {"lies on the edge", {{0, 0}, {100, 0}}, "0,0 1000,0"},
        {"what is not a number breaks the line",
         {{10, 10}, {20, 10}, {kNan, 10}, {40, 10}, {50, 10}},
         "100,100 200,100 | 400,100 500,100"},
        {"an infinite way has no direction", {{10, 10}, {kInfinite, 10}}, ""},
        {"far away and still exact", {{50, 25}, {1e9, 25}}, "500,250 1000,250"},
        {"one spot is no line", {{10, 10}}, ""},
        {"spots nearer than a third of a pixel are one, but the last stays",
         {{10, 10}, {10.1, 10}, {10.2, 10}, {20, 10}, {20.2, 10}},
         "100,100 200,100 202,100"},
        {"nothing", {}, ""},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(written(plan::clipped_line(one.line, kArea, 100)), one.parts) << one.name;
    }
}

TEST(PageTest, LongLinesAreThinnedEvenly) {
    std::vector<Spot> line;
    for (int i = 0; i <= 90; ++i) {
        line.push_back({static_cast<double>(i), static_cast<double>(i % 2)});
    }
    EXPECT_EQ(plan::clipped_line(line, kArea, 91).front().size(), 91U);
    EXPECT_EQ(written(plan::clipped_line(line, kArea, 4)), "0,0 300,0 600,0 900,0");
}

TEST(PageTest, OutlinesAreThoseOfTheirSpots) {
    const struct {
        const char* name;
        std::vector<Spot> spots;
        double area;
    } cases[] = {
        {"a rectangle with a spot within", {{10, 10}, {30, 10}, {30, 20}, {10, 20}, {20, 15}}, 200},
        {"spots on a side do not count", {{10, 10}, {20, 10}, {30, 10}, {30, 20}, {10, 20}}, 200},
        {"half of it is outside", {{-10, 10}, {10, 10}, {10, 20}, {-10, 20}}, 100},
        {"all around the area", {{-1e6, -1e6}, {1e6, -1e6}, {1e6, 1e6}, {-1e6, 1e6}}, 5000},
        {"outside", {{110, 10}, {120, 10}, {120, 20}}, 0},
        {"a line", {{10, 10}, {20, 20}, {30, 30}}, 0},
        {"the same spot", {{10, 10}, {10, 10}, {10, 10}}, 0},
        {"not a number", {{10, 10}, {30, kNan}, {30, 20}}, 0},
        {"nothing", {}, 0},
    };
    for (const auto& one : cases) {
        const std::vector<Spot> outline = plan::clipped_outline(one.spots, kArea);
        double twice = 0;
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const Spot& a = outline[i];
            const Spot& b = outline[(i + 1) % outline.size()];
            EXPECT_TRUE(kArea.has(a)) << one.name;
            twice += a.x * b.y - b.x * a.y;
        }
        EXPECT_NEAR(std::abs(twice) / 2, one.area, 1e-6) << one.name;
    }
}

TEST(PageTest, TheEdgeIsFoundFromWithin) {
    const Spot edge = plan::edge_towards({50, 25}, {1050, 25}, kArea);
    EXPECT_EQ(written({edge}), "1000,250");
    EXPECT_EQ(written({plan::edge_towards({50, 25}, {50, -1e12}, kArea)}), "500,0");
}

TEST(PageTest, LabelsStandBesideWhatTheyName) {
    plan::Labels labels(kArea);
    const Spot named{20, 25};
    // Right of it first, with the base line a little above the label's bottom at 30.
    const auto first = labels.place(named, 5, 30, 10);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->x, 25);
    EXPECT_GT(first->y, 25);
    EXPECT_LT(first->y, 30);
    const auto second = labels.place(named, 5, 30, 10);
    ASSERT_TRUE(second);
    EXPECT_TRUE(std::abs(second->y - first->y) >= 10 || second->x + 30 <= first->x)
        << second->x << ' ' << second->y;
    int placed = 2;
    while (labels.place(named, 5, 30, 10) && placed < 100) {
        ++placed;
    }
    // There is room for 3 x 5 labels in the area.
    EXPECT_LE(placed, 15);
    EXPECT_FALSE(plan::Labels(kArea).place(named, 5, 200, 10)) << "wider than the area";
}

}  // namespace
