#include "cli/preview/film.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "cli/terminal/child_process.h"
#include "system/files.h"
#include "system/replacement_file.h"
#include "text/ascii.h"
#include "texture/value/alpha_use.h"

namespace cli {
namespace {

/// Longer than any preview: the time is that of drawing, too.
constexpr std::chrono::hours kLongest{24 * 7};

struct FilmFormat {
    const char* extension;
    bool alpha;  ///< else the pictures lie on black
    std::vector<std::string> arguments;
};

const std::array<FilmFormat, 2>& film_formats() {
    static const std::array<FilmFormat, 2> kFormats{{
        // Players want an even number of pixels a side, and colour at half resolution.
        {".mp4",
         false,
         {"-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2,scale=out_color_matrix=bt709", "-c:v", "libx264", "-crf",
          "16", "-pix_fmt", "yuv420p", "-colorspace", "bt709", "-color_primaries", "bt709", "-color_trc",
          "iec61966-2-1", "-movflags", "+faststart", "-f", "mp4"}},
        {".webp", true, {"-c:v", "libwebp", "-quality", "90", "-loop", "0", "-f", "webp"}},
    }};
    return kFormats;
}

const FilmFormat* film_format(const std::string& path) {
    const std::string extension = text::lower_case(os::text_of(os::path_of(path).extension()));
    const auto* const found =
        std::find_if(film_formats().begin(), film_formats().end(),
                     [&extension](const FilmFormat& format) { return extension == format.extension; });
    return found == film_formats().end() ? nullptr : found;
}

void add_bytes(const Texture& picture, bool alpha, std::string& bytes) {
    bytes.clear();
    const std::uint8_t* colour = picture.pixels.data();
    if (!alpha) {
        bytes.assign(reinterpret_cast<const char*>(colour), picture.pixels.size());
        return;
    }
    bytes.reserve(picture.pixel_count() * 4);
    for (std::size_t i = 0; i < picture.pixel_count(); ++i, colour += 3) {
        bytes.append(reinterpret_cast<const char*>(colour), 3);
        bytes.push_back(static_cast<char>(picture.alphas.front().values[i]));
    }
}

/// Ends the film early.
struct NotDrawn : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Draws frame after frame as the film's program asks for them.
class FrameStream {
  public:
    FrameStream(Preview& preview, const std::vector<std::int64_t>& frames, bool alpha,
                const std::function<void(std::size_t)>& drawing, PreviewRun& run)
        : preview_(preview), frames_(frames), alpha_(alpha), drawing_(drawing), run_(run) {}

    std::string_view next() {
        if (next_ == frames_.size()) {
            return {};
        }
        drawing_(next_);
        PreviewFrame drawn = preview_.draw(frames_[next_++]);
        add_findings(drawn, run_);
        if (!drawn.picture) {
            throw NotDrawn("the frame was not drawn");
        }
        if (!alpha_) {
            multiply_by_alpha(*drawn.picture);
        }
        add_bytes(*drawn.picture, alpha_, bytes_);
        return bytes_;
    }

  private:
    Preview& preview_;
    const std::vector<std::int64_t>& frames_;
    bool alpha_;
    const std::function<void(std::size_t)>& drawing_;
    PreviewRun& run_;
    std::size_t next_ = 0;
    std::string bytes_;
};

// The rate of a film that shows every so many frames.
std::string rate_text(double rate_fps, std::int64_t step) {
    // A fraction of whole numbers: the program reads no more digits of a decimal one.
    constexpr std::int64_t kParts = 1000;
    return std::to_string(std::llround(rate_fps * kParts)) + '/' + std::to_string(kParts * step);
}

std::string failure_text(const ChildResult& ended) {
    if (!ended.error.empty()) {
        return "ffmpeg could not be started: " + ended.error;
    }
    if (ended.timed_out) {
        return "ffmpeg took too long";
    }
    const std::string said = ended.err.substr(0, ended.err.find('\n'));
    return "ffmpeg made no film" + (said.empty() ? std::string() : ": " + said) +
           (ended.signal.empty() ? std::string() : " (" + ended.signal + ')');
}

}  // namespace

bool is_film(const std::string& path) {
    return film_format(path) != nullptr;
}

PreviewRun write_film(Preview& preview, const std::vector<std::int64_t>& frames, std::int64_t step,
                      const std::string& output, const std::function<void(std::size_t)>& drawing) {
    PreviewRun run;
    const auto fail = [&run](std::string problem) {
        run.code = most_serious(run.code, ExitCode::cannot_read_or_write);
        run.problems.push_back(std::move(problem));
        return run;
    };
    const std::optional<std::filesystem::path> program = find_program("ffmpeg");
    if (!program) {
        return fail(output +
                    ": films are made by ffmpeg, which is not installed; frame.####.png makes pictures");
    }
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(output, error);
    if (!file) {
        return fail(output + ": " + error);
    }
    const FilmFormat& format = *film_format(output);
    std::vector<std::string> arguments{
        "-v",
        "error",
        "-y",
        "-f",
        "rawvideo",
        "-pix_fmt",
        format.alpha ? "rgba" : "rgb24",
        "-s",
        std::to_string(preview.width_px()) + "x" + std::to_string(preview.height_px()),
        "-r",
        rate_text(preview.rate_fps(), step),
        "-i",
        "pipe:0"};
    arguments.insert(arguments.end(), format.arguments.begin(), format.arguments.end());
    arguments.push_back("file:" + file->temporary_path());
    FrameStream stream(preview, frames, format.alpha, drawing, run);
    try {
        const ChildResult ended =
            run_child(*program, arguments, {kLongest}, [&stream] { return stream.next(); });
        if (!ended.error.empty() || ended.exit_code != 0) {
            return fail(output + ": " + failure_text(ended));
        }
    } catch (const NotDrawn&) {
        return run;  // which says why
    }
    if (!file->put_in_place(error)) {
        return fail(output + ": " + error);
    }
    for (const std::int64_t frame : frames) {
        run.written.push_back({frame, output});
    }
    return run;
}

}  // namespace cli
