// What the page calls: the program `vxr` with any arguments, the frames of one scene at a time, and one
// picture at a time, which stays open so that windows onto it can be drawn. Everything happens in a worker of
// the browser; the files lie in a file system that the page provides.

#include <emscripten.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/program.h"
#include "cli/report/diagnostic_json.h"
#include "cli/texture/texture_diagnostics.h"
#include "embedded/json_values.h"
#include "host/entry_points.h"
#include "system/linked_library.h"
#include "texture/value/texture_file.h"
#include "viewer/decoded_images.h"
#include "viewer/scene_frames.h"
#include "viewer/texture_view.h"

namespace {

/// What the last call gave; the page copies it before the next one.
struct Result {
    std::string text;      ///< what a program writes as its result, or JSON
    std::string messages;  ///< what it says about it
    std::vector<std::uint8_t> bytes;
};

Result result;
Texture texture;  ///< the picture that is open
std::optional<viewer::SceneFrames> scene_frames;

void link_bundle() {
    os::set_linked_library(
        {{"EntryPointFunc", reinterpret_cast<os::DynamicLibrary::Function>(&EntryPointFunc)},
         {"Main_VORTANXR_AE", reinterpret_cast<os::DynamicLibrary::Function>(&Main_VORTANXR_AE)}});
}

std::string json_dump(const embedded::Json& json) {
    return json.dump(-1, ' ', false, embedded::Json::error_handler_t::replace);
}

/// Calls `work`; what it throws becomes the messages and false.
template <class Work>
bool done(const Work& work) {
    result = {};
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        result.messages = error.what();
    } catch (...) {
        result.messages = "an exception of unknown type";
    }
    return false;
}

embedded::Json texture_facts(const TextureReading& reading, const std::string& path) {
    std::vector<cli::Diagnostic> diagnostics = cli::texture_diagnostics(reading, path);
    if (const std::optional<cli::Diagnostic> note = cli::alpha_note(reading, path)) {
        diagnostics.push_back(*note);
    }
    embedded::Json facts{{"diagnostics", cli::diagnostics_json(diagnostics)}};
    if (reading.texture) {
        facts["width_px"] = reading.texture->width_px;
        facts["height_px"] = reading.texture->height_px;
        facts["channels"] = reading.texture->channels();
        embedded::Json& names = facts["alphas"] = embedded::Json::array();
        for (const AlphaChannel& alpha : reading.texture->alphas) {
            names.push_back(embedded::json_text(alpha.name));
        }
    }
    return facts;
}

}  // namespace

extern "C" {

/// What a file is that begins with these bytes: 1 a texture, 2 a composition file, 0 anything else.
EMSCRIPTEN_KEEPALIVE int viewer_kind(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::string_view kComposition = "VORTAN XR";
    const std::span<const std::uint8_t> first(bytes, size);
    if (begins_as_texture(first)) {
        return 1;
    }
    const bool composition = first.size() >= kComposition.size() &&
                             std::equal(kComposition.begin(), kComposition.end(), first.begin());
    return composition ? 2 : 0;
}

/// Runs `vxr`; `arguments` are `count` texts, each with a zero behind it. Returns the exit code.
EMSCRIPTEN_KEEPALIVE int viewer_run(const char* arguments, int count) {
    link_bundle();
    scene_frames.reset();  // has the one host that there may be
    std::vector<std::string> list;
    for (int i = 0; i < count; ++i) {
        list.emplace_back(arguments);
        arguments += list.back().size() + 1;
    }
    std::ostringstream out;
    std::ostringstream err;
    cli::ExitCode code = cli::ExitCode::cannot_read_or_write;
    const bool ran = done([&] {
        cli::Terminal terminal{out, err, cli::Paint(), cli::Paint()};
        code = cli::run_program(list, terminal);
        result.text = std::move(out).str();
        result.messages = std::move(err).str();
    });
    return static_cast<int>(ran ? code : cli::ExitCode::cannot_read_or_write);
}

/// Opens a texture and says what it is, as JSON: {"diagnostics", and where there is a picture "width_px",
/// "height_px", "channels", "alphas"}. False when there is none to look at.
EMSCRIPTEN_KEEPALIVE bool viewer_open_texture(const char* path) {
    texture = {};
    const bool ran = done([&] {
        TextureReading reading = read_texture(path);
        result.text = texture_facts(reading, path).dump();
        if (reading.texture) {
            texture = std::move(*reading.texture);
        }
    });
    return ran && texture.pixel_count() > 0;
}

/// Makes room for a picture that the browser has decoded: R, G, B, and one alpha channel. Null when memory is
/// short.
EMSCRIPTEN_KEEPALIVE std::uint8_t* viewer_new_picture(int width_px, int height_px, int channels,
                                                      bool with_alpha) {
    texture = {};
    const bool ran = done([&] {
        Texture made;
        made.width_px = width_px;
        made.height_px = height_px;
        made.mode = channels == 1 ? Texture::kGrey : Texture::kRgb;
        made.pixels = PixelBuffer(made.pixel_count() * static_cast<std::size_t>(made.channels()));
        if (with_alpha) {
            made.alphas.push_back({"Alpha", PixelBuffer(made.pixel_count())});
        }
        texture = std::move(made);
    });
    return ran ? texture.pixels.data() : nullptr;
}

/// The values of an alpha channel; null without it.
EMSCRIPTEN_KEEPALIVE std::uint8_t* viewer_alpha(int alpha) {
    const auto index = static_cast<std::size_t>(alpha);
    return index < texture.alphas.size() ? texture.alphas[index].values.data() : nullptr;
}

/// Opens the frames of a scene until the next viewer_run(): [{"name","frames"}], a composition each. Footage
/// is looked for in the folder `search`, too, unless it is empty.
EMSCRIPTEN_KEEPALIVE bool viewer_open_scene(const char* path, const char* search, const char* bundle) {
    link_bundle();
    viewer::read_decoded_images();
    scene_frames.reset();
    return done([&] {
        scene_frames.emplace(path, search, bundle);
        embedded::Json compositions = embedded::Json::array();
        for (const viewer::SceneFrames::Composition& one : scene_frames->compositions()) {
            compositions.push_back({{"name", one.name}, {"frames", one.frames}});
        }
        result.text = json_dump(compositions);
    });
}

/// The paths of the image files that the page decodes before viewer_draw_frame().
EMSCRIPTEN_KEEPALIVE bool viewer_files_to_decode(int composition, double frame) {
    return done([&] {
        result.text = json_dump(scene_frames.value().files_to_decode(static_cast<std::size_t>(composition),
                                                                     static_cast<std::int64_t>(frame)));
    });
}

/// Keeps the picture of viewer_new_picture() as what the browser decoded of a file or, with a `problem` that
/// is not empty, that there is none.
EMSCRIPTEN_KEEPALIVE bool viewer_keep_decoded(const char* path, const char* problem) {
    const std::string_view why(problem);
    return done([&] {
        if (why.empty()) {
            viewer::keep_decoded_image(path, std::move(texture));
        } else {
            viewer::keep_undecodable_image(path, problem);
        }
        texture = {};
    });
}

/// Draws a frame and opens it as a picture. The result is {"diagnostics","width_px","height_px"}: what it
/// does not show, and its size. False when there is no picture.
EMSCRIPTEN_KEEPALIVE bool viewer_draw_frame(int composition, double frame) {
    texture = {};
    const bool ran = done([&] {
        cli::PreviewFrame drawn = scene_frames.value().draw(static_cast<std::size_t>(composition),
                                                            static_cast<std::int64_t>(frame));
        if (drawn.error) {
            drawn.findings.push_back(*drawn.error);
        }
        if (drawn.picture) {
            texture = std::move(*drawn.picture);
        }
        result.text = json_dump({{"diagnostics", cli::diagnostics_json(drawn.findings)},
                                 {"width_px", texture.width_px},
                                 {"height_px", texture.height_px}});
    });
    return ran && texture.pixel_count() > 0;
}

EMSCRIPTEN_KEEPALIVE bool viewer_draw(double left_px, double top_px, double step_px, int width_px,
                                      int height_px, int look, int alpha) {
    return done([&] {
        result.bytes = viewer::draw_window(texture, {left_px, top_px, step_px, width_px, height_px},
                                           static_cast<viewer::Look>(look), static_cast<std::size_t>(alpha));
    });
}

EMSCRIPTEN_KEEPALIVE bool viewer_values(int x_px, int y_px) {
    return done([&] { result.bytes = viewer::values_at(texture, x_px, y_px); });
}

/// Returns the number of channels; 0 when memory is short.
EMSCRIPTEN_KEEPALIVE int viewer_plane(int look, int alpha) {
    int channels = 0;
    done([&] {
        viewer::Plane plane =
            viewer::plane_to_save(texture, static_cast<viewer::Look>(look), static_cast<std::size_t>(alpha));
        channels = plane.channels;
        result.bytes = std::move(plane.bytes);
    });
    return channels;
}

EMSCRIPTEN_KEEPALIVE const char* viewer_text() {
    return result.text.data();
}
EMSCRIPTEN_KEEPALIVE std::size_t viewer_text_size() {
    return result.text.size();
}
EMSCRIPTEN_KEEPALIVE const char* viewer_messages() {
    return result.messages.data();
}
EMSCRIPTEN_KEEPALIVE std::size_t viewer_messages_size() {
    return result.messages.size();
}
EMSCRIPTEN_KEEPALIVE const std::uint8_t* viewer_bytes() {
    return result.bytes.data();
}
EMSCRIPTEN_KEEPALIVE std::size_t viewer_bytes_size() {
    return result.bytes.size();
}
}
