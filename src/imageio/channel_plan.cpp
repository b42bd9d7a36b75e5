#include "imageio/channel_plan.h"

#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "texture/file/byte_order.h"

namespace imageio {

namespace {

/// The first channel with one of these names in any case; -1 if there is none.
int find_channel(const OIIO::ImageSpec& spec, std::initializer_list<std::string_view> names) {
    for (std::size_t channel = 0; channel < spec.channelnames.size(); ++channel) {
        for (const std::string_view name : names) {
            if (OIIO::Strutil::iequals(spec.channelnames[channel], {name.data(), name.size()})) {
                return static_cast<int>(channel);
            }
        }
    }
    return -1;
}

std::vector<int> colour_by_name(const OIIO::ImageSpec& spec) {
    const std::array rgb = {find_channel(spec, {"R", "red"}), find_channel(spec, {"G", "green"}),
                            find_channel(spec, {"B", "blue"})};
    if (std::find(rgb.begin(), rgb.end(), -1) == rgb.end()) {
        return {rgb.begin(), rgb.end()};
    }
    const int grey = find_channel(spec, {"Y", "L", "luminance", "gray", "grey"});
    return grey < 0 ? std::vector<int>{} : std::vector<int>{grey};
}

std::vector<int> colour_by_position(const OIIO::ImageSpec& spec) {
    std::vector<int> candidates;
    for (int channel = 0; channel < spec.nchannels; ++channel) {
        if (channel != spec.alpha_channel || spec.nchannels == 1) {
            candidates.push_back(channel);
        }
    }
    const bool has_alpha = static_cast<int>(candidates.size()) < spec.nchannels;
    const bool rgb = candidates.size() >= 3 && !(has_alpha && spec.alpha_channel == 1);
    candidates.resize(rgb ? 3 : 1);
    return candidates;
}

bool is_alpha_name(const std::string& name) {
    const std::string lower = OIIO::Strutil::lower(name);
    return lower == "a" || lower.starts_with("a.") || lower.starts_with("alpha") ||
           lower.starts_with("channel");
}

/// N of "Alpha.N", by which the alphas of a texture are called from the second on; 0 for any other name.
int alpha_number(const std::string& name) {
    constexpr std::string_view kBeginning = "Alpha.";
    int number = 0;
    const char* const end = name.data() + name.size();
    if (!name.starts_with(kBeginning)) {
        return 0;
    }
    const auto [stopped, error] = std::from_chars(name.data() + kBeginning.size(), end, number);
    return error == std::errc() && stopped == end ? number : 0;
}

/// Puts the alphas of a texture back in order. OpenEXR sorts channels by their names, "Alpha.10" before
/// "Alpha.2".
void sort_by_number(const OIIO::ImageSpec& spec, std::vector<int>& alphas) {
    std::vector<std::size_t> places;
    std::vector<int> numbered;
    for (std::size_t i = 0; i < alphas.size(); ++i) {
        if (alpha_number(spec.channel_name(alphas[i])) > 0) {
            places.push_back(i);
            numbered.push_back(alphas[i]);
        }
    }
    std::stable_sort(numbered.begin(), numbered.end(), [&spec](int a, int b) {
        return alpha_number(spec.channel_name(a)) < alpha_number(spec.channel_name(b));
    });
    for (std::size_t i = 0; i < places.size(); ++i) {
        alphas[places[i]] = numbered[i];
    }
}

std::string unused_name(const std::string& wanted, std::set<std::string>& used) {
    std::string name = wanted;
    for (int number = 2; !used.insert(name).second; ++number) {
        name = wanted + "." + std::to_string(number);
    }
    return name;
}

/// Interleaves RGB and one alpha, by far the most frequent case: a pixel is one 32-bit word.
void join_rgba(const std::uint8_t* rgb, const std::uint8_t* alpha, std::size_t width, std::uint8_t* row) {
    std::size_t x = 0;
    for (; x + 1 < width; ++x) {  // the last pixel's word would read past the row
        const auto colour = load_little_endian<std::uint32_t>(rgb + 3 * x) & 0xFFFFFFU;
        store_little_endian(colour | std::uint32_t{alpha[x]} << 24, row + 4 * x);
    }
    for (; x < width; ++x) {
        std::copy_n(rgb + 3 * x, 3, row + 4 * x);
        row[4 * x + 3] = alpha[x];
    }
}

}  // namespace

ChannelPlan plan_channels(const OIIO::ImageSpec& spec) {
    ChannelPlan plan;
    plan.colour = colour_by_name(spec);
    if (plan.colour.empty()) {
        plan.colour = colour_by_position(spec);
    }
    plan.mode = plan.colour.size() == 1 ? Texture::kGrey : Texture::kRgb;
    const auto is_colour = [&plan](int channel) {
        return std::find(plan.colour.begin(), plan.colour.end(), channel) != plan.colour.end();
    };
    if (spec.alpha_channel >= 0 && spec.alpha_channel < spec.nchannels && !is_colour(spec.alpha_channel)) {
        plan.alphas.push_back(spec.alpha_channel);
    }
    for (int channel = 0; channel < spec.nchannels; ++channel) {
        if (!is_colour(channel) && channel != spec.alpha_channel) {
            plan.alphas.push_back(channel);
        }
    }
    sort_by_number(spec, plan.alphas);
    return plan;
}

std::string list_text(const std::vector<std::string>& names) {
    constexpr std::size_t kMostShown = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMostShown); ++i) {
        text += (text.empty() ? "\"" : ", \"") + names[i] + '"';
    }
    if (names.size() > kMostShown) {
        text += " and " + std::to_string(names.size() - kMostShown) + " more";
    }
    return text;
}

std::string guess_text(const OIIO::ImageSpec& spec, const ChannelPlan& plan) {
    const auto names_of = [&spec](const std::vector<int>& channels) {
        std::vector<std::string> names;
        names.reserve(channels.size());
        for (const int channel : channels) {
            names.push_back(spec.channel_name(channel));
        }
        return names;
    };
    const bool alphas_named = std::all_of(plan.alphas.begin(), plan.alphas.end(), [&spec](int channel) {
        return channel == spec.alpha_channel || is_alpha_name(spec.channel_name(channel));
    });
    if (alphas_named && !colour_by_name(spec).empty()) {
        return {};
    }
    return (plan.mode == Texture::kGrey ? "grey from " : "RGB from ") + list_text(names_of(plan.colour)) +
           (plan.alphas.empty() ? "" : ", alpha from " + list_text(names_of(plan.alphas)));
}

std::vector<std::string> channel_names(const Texture& texture) {
    std::vector<std::string> names = texture.mode == Texture::kGrey ? std::vector<std::string>{"Y"}
                                                                    : std::vector<std::string>{"R", "G", "B"};
    std::set<std::string> used(names.begin(), names.end());
    for (std::size_t i = 0; i < texture.alphas.size(); ++i) {
        names.push_back(unused_name(i == 0 ? "A" : texture.alphas[i].name, used));
    }
    return names;
}

void copy_row_out(const Texture& texture, std::int32_t y, std::uint8_t* row) {
    const auto width = static_cast<std::size_t>(texture.width_px);
    const auto colour_channels = static_cast<std::size_t>(texture.channels());
    const std::size_t channels = colour_channels + texture.alphas.size();
    const std::size_t first = static_cast<std::size_t>(y) * width;
    const std::uint8_t* colour = texture.pixels.data() + first * colour_channels;
    if (channels == colour_channels) {
        std::copy_n(colour, width * channels, row);
        return;
    }
    if (colour_channels == 3 && channels == 4) {
        join_rgba(colour, texture.alphas[0].values.data() + first, width, row);
        return;
    }
    for (std::size_t channel = 0; channel < colour_channels; ++channel) {
        for (std::size_t x = 0; x < width; ++x) {
            row[x * channels + channel] = colour[x * colour_channels + channel];
        }
    }
    for (std::size_t alpha = 0; alpha < texture.alphas.size(); ++alpha) {
        const std::uint8_t* values = texture.alphas[alpha].values.data() + first;
        std::uint8_t* out = row + colour_channels + alpha;
        for (std::size_t x = 0; x < width; ++x) {
            out[x * channels] = values[x];
        }
    }
}

void copy_row_in(Texture& texture, const ChannelPlan& plan, std::int32_t x, std::int32_t y,
                 std::int32_t count, const std::uint8_t* row, int image_channels) {
    const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(texture.width_px) +
                              static_cast<std::size_t>(x);
    const auto copy_plane = [row, count, image_channels](int from, std::uint8_t* to, std::size_t step) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
            to[i * step] = row[i * static_cast<std::size_t>(image_channels) + static_cast<std::size_t>(from)];
        }
    };
    const std::size_t colours = plan.colour.size();
    for (std::size_t i = 0; i < colours; ++i) {
        copy_plane(plan.colour[i], texture.pixels.data() + first * colours + i, colours);
    }
    for (std::size_t i = 0; i < plan.alphas.size(); ++i) {
        copy_plane(plan.alphas[i], texture.alphas[i].values.data() + first, 1);
    }
}

Texture make_texture(std::int32_t width_px, std::int32_t height_px, const ChannelPlan& plan,
                     const OIIO::ImageSpec& spec) {
    Texture texture;
    texture.width_px = width_px;
    texture.height_px = height_px;
    texture.mode = plan.mode;
    texture.pixels = PixelBuffer(texture.pixel_count() * plan.colour.size());
    for (const int channel : plan.alphas) {
        texture.alphas.push_back({spec.channel_name(channel), PixelBuffer(texture.pixel_count())});
    }
    return texture;
}

}  // namespace imageio
