#include "cli/page/page_pictures.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/preview/preview.h"
#include "image/image.h"
#include "render/picture.h"
#include "system/file_content.h"
#include "system/files.h"
#include "system/replacement_file.h"
#include "text/base64.h"
#include "texture/value/alpha_use.h"

namespace cli {
namespace {

/// As wide as the page shows them on most screens.
constexpr std::int64_t kMostWidth_px = 720;
constexpr std::int64_t kMostHeight_px = 540;
constexpr std::uint64_t kMostPicture_bytes = std::uint64_t{8} << 20U;

// The bytes of the picture as a JPEG file. Image libraries write files, so there is one for a moment.
std::string jpeg_of(const Texture& picture) {
    const std::filesystem::path name = std::filesystem::temp_directory_path() / "vxr-report.jpg";
    std::string error;
    const std::optional<os::ReplacementFile> file = os::ReplacementFile::create(os::text_of(name), error);
    if (!file) {
        throw std::runtime_error(error);
    }
    if (const image::Writing written = image::write(file->temporary_path(), picture); written.error) {
        throw std::runtime_error(written.error->reason);
    }
    const std::optional<std::string> bytes = os::content_of(file->temporary_path(), kMostPicture_bytes);
    if (!bytes) {
        throw std::runtime_error("a picture that was just written cannot be read");
    }
    return *bytes;
}

// Where the scene's FROM and what follows it up to TO are in the outermost composition.
struct ShownFrames {
    std::int64_t begin = 0;  ///< a frame of the composition
    std::int64_t count = 0;
    std::int64_t from = 0;  ///< the same frame on the scene's timeline
};

// With LOCAL, layers begin at FROM instead of 0.
ShownFrames shown_frames(const tagProjectSettings& settings, std::int64_t frames) {
    const std::int64_t from = settings.from;
    const std::int64_t wanted = std::max<std::int64_t>(1, std::int64_t{settings.to} - from + 1);
    const bool local = settings.local != 0 && from >= 0 && from < frames;
    const std::int64_t begin = local ? from : 0;
    return {begin, std::min(wanted, frames - begin), settings.local != 0 && !local ? 0 : from};
}

void draw_all(Preview& preview, const tagProjectSettings& settings, std::size_t most,
              PagePictures& pictures) {
    const std::int64_t width = preview.width_px();
    const std::int64_t height = preview.height_px();
    // The larger reduction of the two, as a fraction, so that the shape stays.
    std::int64_t part = 1;
    std::int64_t whole = 1;
    if (width > kMostWidth_px || height > kMostHeight_px) {
        const bool by_width = width * kMostHeight_px >= height * kMostWidth_px;
        part = by_width ? kMostWidth_px : kMostHeight_px;
        whole = by_width ? width : height;
    }
    pictures.composition = preview.composition_name();
    pictures.width_px = static_cast<std::int32_t>(std::max<std::int64_t>(1, width * part / whole));
    pictures.height_px = static_cast<std::int32_t>(std::max<std::int64_t>(1, height * part / whole));
    const ShownFrames frames = shown_frames(settings, preview.frame_count());
    const std::int64_t shown = std::min(frames.count, static_cast<std::int64_t>(most));
    for (std::int64_t i = 0; i < shown; ++i) {
        const std::int64_t offset = shown == 1 ? 0 : i * (frames.count - 1) / (shown - 1);
        PreviewFrame drawn = preview.draw(frames.begin + offset);
        for (const Diagnostic& finding : drawn.findings) {
            pictures.problems.push_back(finding.reason);
        }
        if (drawn.error) {
            pictures.problems.push_back(drawn.error->reason);
            return;
        }
        multiply_by_alpha(*drawn.picture);  // over black
        const Texture small = render::texture_of(render::reduced(render::picture_of(*drawn.picture, nullptr),
                                                                 pictures.width_px, pictures.height_px));
        pictures.frames.push_back(
            {frames.from + offset, "data:image/jpeg;base64," + text::base64_of(jpeg_of(small))});
    }
}

}  // namespace

PagePictures page_pictures(const SceneReading& reading, const FoundBundle& bundle, std::size_t most,
                           std::size_t threads) {
    PagePictures pictures;
    if (reading.error || most == 0 || !image::can_write("a.jpg")) {
        return pictures;
    }
    PreviewOptions options;
    options.render.threads = threads;
    Preview preview(reading, bundle, options);
    if (preview.code() != ExitCode::fine) {
        pictures.problems = preview.problems();
        return pictures;
    }
    try {
        draw_all(preview, *reading.settings, most, pictures);
    } catch (const std::runtime_error& error) {
        pictures.problems.emplace_back(error.what());
    }
    return pictures;
}

}  // namespace cli
