#include "imageio/channel_plan.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

#include "support/made_texture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

struct PlanCase {
    const char* name;
    std::vector<std::string> channels;  // of the image
    int alpha_channel;                  // as the image marks it
    std::int32_t mode;
    std::vector<int> colour;
    std::vector<int> alphas;

    friend std::ostream& operator<<(std::ostream& out, const PlanCase& c) { return out << c.name; }
};

constexpr auto kGrey = Texture::kGrey;
constexpr auto kRgb = Texture::kRgb;

const PlanCase kPlans[] = {
    {"one_channel_is_grey", {"Y"}, -1, kGrey, {0}, {}},
    {"a_single_alpha_is_grey_as_well", {"A"}, 0, kGrey, {0}, {}},
    {"a_single_channel_of_any_name_is_grey", {"depth.Z"}, -1, kGrey, {0}, {}},
    {"two_channels_are_grey_and_alpha", {"Y", "A"}, 1, kGrey, {0}, {1}},
    {"two_unnamed_channels_are_grey_and_alpha", {"channel0", "channel1"}, -1, kGrey, {0}, {1}},
    {"alpha_before_grey", {"A", "Y"}, 0, kGrey, {1}, {0}},
    {"alpha_before_an_unnamed_channel", {"A", "channel1"}, 0, kGrey, {1}, {0}},
    {"three_channels_are_rgb", {"R", "G", "B"}, -1, kRgb, {0, 1, 2}, {}},
    {"three_unnamed_channels_are_rgb", {"channel0", "channel1", "channel2"}, -1, kRgb, {0, 1, 2}, {}},
    {"names_in_lower_case", {"r", "g", "b", "a"}, 3, kRgb, {0, 1, 2}, {3}},
    {"names_in_full", {"Red", "Green", "Blue"}, -1, kRgb, {0, 1, 2}, {}},
    {"names_in_reverse_order", {"A", "B", "G", "R"}, 0, kRgb, {3, 2, 1}, {0}},
    {"further_channels_are_alphas", {"R", "G", "B", "A", "Z", "mask"}, 3, kRgb, {0, 1, 2}, {3, 4, 5}},
    {"the_alpha_comes_first", {"R", "G", "B", "Z", "A"}, 4, kRgb, {0, 1, 2}, {4, 3}},
    {"rgb_beside_grey", {"Y", "R", "G", "B"}, -1, kRgb, {1, 2, 3}, {0}},
    {"grey_by_name_with_many_alphas", {"Y", "A", "m1", "m2"}, 1, kGrey, {0}, {1, 2, 3}},
    {"grey_by_the_position_of_the_alpha", {"channel0", "A", "m1", "m2"}, 1, kGrey, {0}, {1, 2, 3}},
    {"alphas_of_a_texture_by_number",
     {"R", "G", "B", "A", "Alpha.10", "Alpha.2", "Alpha.x", "Alpha.3"},
     3,
     kRgb,
     {0, 1, 2},
     {3, 5, 7, 6, 4}},
    {"alpha_channel_out_of_range", {"R", "G", "B"}, 7, kRgb, {0, 1, 2}, {}},
};

class PlanChannels : public ::testing::TestWithParam<PlanCase> {};

TEST_P(PlanChannels, sorts) {
    const PlanCase& c = GetParam();
    OIIO::ImageSpec spec(4, 4, static_cast<int>(c.channels.size()), OIIO::TypeDesc::UINT8);
    spec.channelnames = c.channels;
    spec.alpha_channel = c.alpha_channel;
    const imageio::ChannelPlan plan = imageio::plan_channels(spec);
    EXPECT_EQ(plan.mode, c.mode);
    EXPECT_THAT(plan.colour, ElementsAreArray(c.colour));
    EXPECT_THAT(plan.alphas, ElementsAreArray(c.alphas));
}

INSTANTIATE_TEST_SUITE_P(Table, PlanChannels, ::testing::ValuesIn(kPlans),
                         [](const auto& test) { return std::string(test.param.name); });

struct GuessCase {
    const char* name;
    std::vector<std::string> channels;
    int alpha_channel;
    const char* guess;
};

TEST(GuessText, names_the_channels_that_do_not_say_what_they_are) {
    const GuessCase cases[] = {
        {"colour", {"R", "G", "B"}, -1, ""},
        {"colour and alpha", {"R", "G", "B", "A"}, 3, ""},
        {"colour and alpha in full", {"red", "green", "blue", "alpha"}, -1, ""},
        {"grey and alpha", {"Y", "A"}, 1, ""},
        {"the alphas of a texture", {"R", "G", "B", "A", "Alpha.2", "Alpha.3"}, 3, ""},
        {"the alphas of a texture in TIFF", {"Y", "A", "channel2"}, 1, ""},
        {"an alpha that is marked", {"R", "G", "B", "matte"}, 3, ""},
        {"a position", {"X", "Y", "Z"}, -1, R"(grey from "Y", alpha from "X", "Z")"},
        {"colour and depth", {"R", "G", "B", "Z"}, -1, R"(RGB from "R", "G", "B", alpha from "Z")"},
        {"depth alone", {"Z"}, -1, R"(grey from "Z")"},
        {"alpha alone", {"A"}, 0, R"(grey from "A")"},
        {"a normal", {"N.x", "N.y", "N.z"}, -1, R"(RGB from "N.x", "N.y", "N.z")"},
        {"luminance and chroma", {"BY", "RY", "Y"}, -1, R"(grey from "Y", alpha from "BY", "RY")"},
        {"more than eight",
         {"Y", "a1", "a2", "a3", "a4", "a5", "a6", "a7", "a8", "a9"},
         -1,
         R"(grey from "Y", alpha from "a1", "a2", "a3", "a4", "a5", "a6", "a7", "a8" and 1 more)"},
    };
    for (const GuessCase& c : cases) {
        OIIO::ImageSpec spec(4, 4, static_cast<int>(c.channels.size()), OIIO::TypeDesc::UINT8);
        spec.channelnames = c.channels;
        spec.alpha_channel = c.alpha_channel;
        EXPECT_EQ(imageio::guess_text(spec, imageio::plan_channels(spec)), c.guess) << c.name;
    }
}

TEST(ChannelNames, first_alpha_is_a_and_the_others_keep_their_names) {
    EXPECT_THAT(imageio::channel_names(made_texture(2, 2, kGrey, 0)), ElementsAre("Y"));
    EXPECT_THAT(imageio::channel_names(made_texture(2, 2, kGrey, 1)), ElementsAre("Y", "A"));
    EXPECT_THAT(imageio::channel_names(made_texture(2, 2, kRgb, 3)),
                ElementsAre("R", "G", "B", "A", "Alpha.2", "Alpha.3"));
}

TEST(ChannelNames, layers_named_like_channels_get_unique_names) {
    Texture texture = made_texture(2, 2, kRgb, 5);
    texture.alphas[1].name = "R";
    texture.alphas[2].name = "A";
    texture.alphas[3].name = "A.2";
    texture.alphas[4].name = "A";
    EXPECT_THAT(imageio::channel_names(texture),
                ElementsAre("R", "G", "B", "A", "R.2", "A.2", "A.2.2", "A.3"));
}

TEST(CopyRow, out_and_back_in_keeps_every_byte) {
    for (const std::int32_t mode : {kGrey, kRgb}) {
        for (const int alphas : {0, 1, 3}) {
            const Texture texture = made_texture(5, 7, mode, alphas);
            OIIO::ImageSpec spec(5, 7, texture.channels() + alphas, OIIO::TypeDesc::UINT8);
            spec.channelnames = imageio::channel_names(texture);
            spec.alpha_channel = alphas > 0 ? texture.channels() : -1;
            const imageio::ChannelPlan plan = imageio::plan_channels(spec);
            Texture copy = imageio::make_texture(5, 7, plan, spec);
            for (std::size_t i = 0; i < copy.alphas.size(); ++i) {
                EXPECT_EQ(copy.alphas[i].name, i == 0 ? "A" : texture.alphas[i].name);
                copy.alphas[i].name = texture.alphas[i].name;
            }
            std::vector<std::uint8_t> row(static_cast<std::size_t>(5 * plan.channels()));
            for (std::int32_t y = 0; y < texture.height_px; ++y) {
                imageio::copy_row_out(texture, y, row.data());
                imageio::copy_row_in(copy, plan, 0, y, 5, row.data(), plan.channels());
            }
            EXPECT_TRUE(copy == texture) << "mode " << mode << ", " << alphas << " alphas";
        }
    }
}

std::vector<int> bytes_of(const PixelBuffer& buffer) {
    return {buffer.begin(), buffer.end()};
}

TEST(CopyRow, in_fills_only_the_given_pixels) {
    OIIO::ImageSpec spec(4, 2, 2, OIIO::TypeDesc::UINT8);
    const imageio::ChannelPlan plan = imageio::plan_channels(spec);
    Texture texture = imageio::make_texture(4, 2, plan, spec);
    const std::vector<std::uint8_t> row = {1, 2, 3, 4};
    imageio::copy_row_in(texture, plan, 1, 1, 2, row.data(), 2);
    EXPECT_THAT(bytes_of(texture.pixels), ElementsAre(0, 0, 0, 0, 0, 1, 3, 0));
    EXPECT_THAT(bytes_of(texture.alphas.front().values), ElementsAre(0, 0, 0, 0, 0, 2, 4, 0));
}

}  // namespace
