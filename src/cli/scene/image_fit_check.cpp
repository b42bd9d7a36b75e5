#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/scene/footage_check.h"
#include "limit/limits.h"

namespace cli {
namespace {

std::string pixels_text(std::int64_t width_px, std::int64_t height_px) {
    return std::to_string(width_px) + "x" + std::to_string(height_px);
}

// All, or the first, the last and others evenly between them.
std::vector<std::string> sample(const std::vector<std::string>& paths, bool all) {
    constexpr auto kMost = static_cast<std::size_t>(limits::kSampledFrames);
    if (all || paths.size() <= kMost) {
        return paths;
    }
    std::vector<std::string> some;
    for (std::size_t i = 0; i < kMost; ++i) {
        some.push_back(paths[i * (paths.size() - 1) / (kMost - 1)]);
    }
    return some;
}

// In what an image differs from another one, of the things that a host asks for.
struct Difference {
    std::string one;
    std::string other;
};

std::optional<Difference> difference(const image::Header& one, const image::Header& other) {
    if (one.width_px != other.width_px || one.height_px != other.height_px) {
        return Difference{pixels_text(one.width_px, one.height_px) + " pixels",
                          pixels_text(other.width_px, other.height_px)};
    }
    if (one.channels != other.channels) {
        return Difference{std::to_string(one.channels) + (one.channels == 1 ? " channel" : " channels"),
                          std::to_string(other.channels)};
    }
    if (one.bits_per_channel != other.bits_per_channel) {
        return Difference{std::to_string(one.bits_per_channel) + " bits a channel",
                          std::to_string(other.bits_per_channel)};
    }
    return std::nullopt;
}

std::string name_text(const std::string& path) {
    return '"' + shown_path(last_component(path)) + '"';
}

// `of` is the number of all files of the sequence.
void check_same(const SceneFootage& footage, const std::string& path, const image::Header& header,
                const std::vector<std::string>& files, std::size_t of, WarningList& warnings) {
    std::string first;  // what is wrong with the first one
    std::int64_t count = 0;
    for (const std::string& file : files) {
        const image::Probe probe = image::probe(file);
        const auto change =
            probe.header ? difference(*probe.header, header) : std::optional<Difference>(Difference{});
        if (!change || count++ > 0) {
            continue;
        }
        first = name_text(file) +
                (probe.header ? " has " + change->one + ", and " + name_text(path) + " has " + change->other
                              : " is not a readable image");
    }
    if (count == 0) {
        return;
    }
    Diagnostic& warning =
        warnings.add(ToolCode::sequence_mixed, footage.path_at,
                     "the images of the sequence are of several kinds: " + first, footage.within);
    warning.count = count;
    warning.effects.push_back(std::to_string(count) + " of the " + std::to_string(files.size()) +
                              " images that were looked at differ" +
                              (files.size() == of
                                   ? std::string()
                                   : ", of " + std::to_string(of) + "; --read-pixels looks at all of them"));
    warning.effects.emplace_back(
        "After Effects takes size and channels of the whole sequence from one image");
}

void check_size(const SceneReading& reading, const SceneFootage& footage, const image::Header& header,
                WarningList& warnings) {
    const tagProjectSettings& settings = *reading.settings;
    if (header.width_px == settings.width && header.height_px == settings.height) {
        return;
    }
    const bool smaller = header.width_px < settings.width || header.height_px < settings.height;
    warnings
        .add(ToolCode::footage_size, footage.path_at,
             "the footage has " + pixels_text(header.width_px, header.height_px) +
                 " pixels, and the composition " + pixels_text(settings.width, settings.height),
             footage.within)
        .effects.emplace_back(smaller ? "After Effects puts it into the middle and does not scale it; "
                                        "it does not cover the composition"
                                      : "After Effects puts it into the middle and does not scale it; "
                                        "its edges are cut off");
}

// "0" or "255" if every value of every file's alpha channel is that one; nothing if any differs or cannot be
// read.
std::optional<int> uniform_alpha(const std::vector<std::string>& files) {
    std::optional<int> value;
    for (const std::string& file : files) {
        const image::Reading picture = image::read(file);
        if (!picture.texture || picture.texture->alphas.empty()) {
            return std::nullopt;
        }
        for (const auto one : picture.texture->alphas.front().values) {
            const int alpha = static_cast<unsigned char>(one);
            if ((alpha != 0 && alpha != 255) || value.value_or(alpha) != alpha) {
                return std::nullopt;
            }
            value = alpha;
        }
    }
    return value;
}

void check_alpha(const SceneFootage& footage, const image::Header& header,
                 const std::vector<std::string>& files, FootageSurvey& survey, WarningList& warnings) {
    if (!header.has_alpha) {
        if (footage.file->alphaMode == kAlphaPremultiplied) {
            warnings
                .add(ToolCode::premul_without_alpha, footage.path_at,
                     "the entry says PREMUL, and the image has no alpha channel", footage.within)
                .effects.emplace_back("After Effects shows it opaque, over everything below it");
        }
        return;
    }
    const std::optional<int> alpha = survey.reads_pixels() ? uniform_alpha(files) : std::nullopt;
    if (alpha) {
        warnings
            .add(ToolCode::alpha_uniform, footage.path_at,
                 "the alpha channel is " + std::to_string(*alpha) + " everywhere", footage.within)
            .effects.emplace_back(*alpha == 0 ? "the layer cannot be seen"
                                              : "the layer is opaque, over everything below it");
    }
}

}  // namespace

void check_image_fit(const SceneReading& reading, const SceneFootage& footage, const std::string& path,
                     const image::Header& header, FootageSurvey& survey, WarningList& warnings) {
    std::vector<std::string> files{path};
    if (footage.file->isSequence != 0) {
        const std::vector<std::string> all = survey.sequence_paths(path);
        files = sample(all, survey.reads_pixels());
        check_same(footage, path, header, files, all.size(), warnings);
    }
    check_size(reading, footage, header, warnings);
    check_alpha(footage, header, files, survey, warnings);
}

}  // namespace cli
