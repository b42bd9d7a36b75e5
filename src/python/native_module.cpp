// The module vortanxr._native: what C++ does for the package in src/python/vortanxr. It takes and gives
// bytes, JSON documents and arrays; everything that users see is in the package. The only source that knows
// Python.

#include <pybind11/functional.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "python/handover_calls.h"
#include "python/import_calls.h"
#include "python/key_columns.h"
#include "python/preview_calls.h"
#include "python/report_calls.h"
#include "python/scene_calls.h"
#include "python/texture_calls.h"
#include "system/files.h"
#include "system/program_path.h"
#include "text/printable.h"

namespace py = pybind11;

namespace python {
namespace {

// --- long calls

constexpr std::chrono::milliseconds kBetween{50};

/// Runs on a thread that does not hold the lock; now and then takes it and tells `told`, a function of
/// Python, how much is done. What that raises ends the work, and so does Ctrl-C, to which Python reacts
/// there.
Watch watch_of(const py::object& told) {
    return [handle = py::handle(told), next = std::chrono::steady_clock::now()](double fraction) mutable {
        if (std::chrono::steady_clock::now() < next) {
            return;
        }
        const py::gil_scoped_acquire lock;
        (void)handle(fraction);
        next = std::chrono::steady_clock::now() + kBetween;
    };
}

template <class Work>
auto without_lock(const Work& work) {
    const py::gil_scoped_release released;
    return work();
}

// --- arrays

/// An array that shows `data`, which lives as long as `owner`.
template <class Number>
py::array shown(const py::object& owner, const Number* data, const std::vector<py::ssize_t>& shape) {
    // An empty vector may have no data, without which the array would make its own.
    static constexpr Number kNothing[1] = {};
    return py::array_t<Number>(shape, data == nullptr ? kNothing : data, owner);
}

/// Without a call through Python: a scene may have 100,000 arrays.
py::array read_only(py::array array) {
    py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return array;
}

/// What keeps `owned` alive for arrays.
template <class Owned>
py::capsule owner_of(std::unique_ptr<Owned> owned) {
    py::capsule owner(owned.get(), [](void* kept) { delete static_cast<Owned*>(kept); });
    (void)owned.release();
    return owner;
}

/// (frames, position, rotation) of an object, and of a camera also (field of view, target distance).
py::tuple columns_tuple(const py::object& owner, const KeyColumns& keys) {
    const auto count = static_cast<py::ssize_t>(keys.size());
    const py::array frames = read_only(shown(owner, keys.frames.data(), {count}));
    const py::array position = read_only(shown(owner, keys.position.data(), {count, 3}));
    const py::array rotation = read_only(shown(owner, keys.rotation.data(), {count, 3}));
    if (!keys.is_camera) {
        return py::make_tuple(frames, position, rotation);
    }
    return py::make_tuple(frames, position, rotation,
                          read_only(shown(owner, keys.field_of_view.data(), {count})),
                          read_only(shown(owner, keys.target_distance.data(), {count})));
}

// --- functions

py::tuple read_scene_call(const py::bytes& path, const std::vector<std::string>& search,
                          const std::vector<std::string>& maps, const std::string& prefer, bool check,
                          bool read_pixels, bool columns, const py::object& told) {
    SceneRequest request;
    request.path = path;
    request.choices = {search, maps, prefer};
    request.check = check;
    request.read_pixels = read_pixels;
    request.columns = columns;
    const Watch watch = watch_of(told);
    SceneAnswer answer = without_lock([&] { return read_scene(request, watch); });
    auto kept = std::make_unique<std::vector<KeyColumns>>(std::move(answer.columns));
    const std::vector<KeyColumns>& columns_of = *kept;
    const py::capsule owner = owner_of(std::move(kept));
    py::list objects;
    for (const KeyColumns& keys : columns_of) {
        objects.append(columns_tuple(owner, keys));
    }
    return py::make_tuple(py::str(answer.document), objects);
}

/// For each stream (kind, value, times, values).
py::list stream_tuples(std::vector<StreamColumns> streams) {
    auto kept = std::make_unique<std::vector<StreamColumns>>(std::move(streams));
    const std::vector<StreamColumns>& all = *kept;
    const py::capsule owner = owner_of(std::move(kept));
    py::list tuples;
    for (const StreamColumns& stream : all) {
        const auto count = static_cast<py::ssize_t>(stream.times.size());
        const auto components = static_cast<py::ssize_t>(stream.components);
        tuples.append(py::make_tuple(stream.kind,
                                     read_only(shown(owner, stream.fixed_value.data(), {components})),
                                     read_only(shown(owner, stream.times.data(), {count})),
                                     read_only(shown(owner, stream.values.data(), {count, components}))));
    }
    return tuples;
}

py::tuple import_scene_call(const py::bytes& path, const std::vector<std::string>& search,
                            const std::vector<std::string>& maps, const py::bytes& bundle,
                            const std::string& host, const std::string& name_encoding,
                            const py::object& told) {
    const ImportRequest request{path, {search, maps, {}}, bundle, host, name_encoding};
    const Watch watch = watch_of(told);
    ImportAnswer answer = without_lock([&] { return import_scene(request, watch); });
    const py::str document(answer.document);
    return py::make_tuple(document, stream_tuples(std::move(answer.streams)));
}

py::str relink_scene_call(const py::bytes& path, const std::vector<std::string>& search,
                          const std::vector<std::string>& maps, const std::string& prefer,
                          const py::bytes& output) {
    const RelinkRequest request{path, {search, maps, prefer}, output};
    return py::str(without_lock([&] { return relink_scene(request); }));
}

py::str export_scene_call(const py::bytes& path, const std::vector<std::string>& search,
                          const std::vector<std::string>& maps, const py::bytes& bundle,
                          const std::string& format, const py::bytes& output, bool packaged, bool corrected,
                          const std::vector<std::string>& without, const std::optional<double>& rate_fps,
                          double scale_m, bool undo_safe, const py::object& told) {
    const ExportRequest request{path,    {search, maps, {}}, bundle,  format,   output, packaged, corrected,
                                without, rate_fps,           scale_m, undo_safe};
    const Watch watch = watch_of(told);
    return py::str(without_lock([&] { return export_scene(request, watch); }));
}

py::str prove_scene_call(const py::bytes& path, const py::bytes& bundle, int grid_points,
                         const std::vector<double>& listed_frames, const py::object& told) {
    const ProofRequest request{path, bundle, grid_points, listed_frames};
    const Watch watch = watch_of(told);
    return py::str(without_lock([&] { return prove_scene(request, watch); }));
}

/// (document, [(color, alpha)])
py::tuple draw_frames_call(const py::bytes& path, const std::vector<std::string>& search,
                           const std::vector<std::string>& maps, const py::bytes& bundle,
                           const std::vector<std::int64_t>& frames, const py::bytes& composition, bool raw,
                           bool linear, const std::string& fields, const std::string& overlay, int threads,
                           const py::object& told) {
    const PreviewRequest request{
        path, {search, maps, {}}, bundle, frames, composition, raw, linear, fields, overlay, threads};
    const Watch watch = watch_of(told);
    PreviewAnswer answer = without_lock([&] { return draw_frames(request, watch); });
    py::list pictures;
    for (Texture& drawn : answer.pictures) {
        auto kept = std::make_unique<Texture>(std::move(drawn));
        Texture& picture = *kept;
        const py::capsule owner = owner_of(std::move(kept));
        const py::ssize_t height = picture.height_px;
        const py::ssize_t width = picture.width_px;
        pictures.append(
            py::make_tuple(shown(owner, picture.pixels.data(), {height, width, picture.channels()}),
                           shown(owner, picture.alphas.front().values.data(), {height, width})));
    }
    return py::make_tuple(py::str(answer.document), pictures);
}

py::str write_report_call(const std::vector<std::string>& paths, const std::vector<std::string>& search,
                          const std::vector<std::string>& maps, const py::bytes& bundle,
                          const py::bytes& output, std::size_t pictures, int threads,
                          const py::object& told) {
    const ReportRequest request{paths, {search, maps, {}}, bundle, output, pictures, threads};
    const Watch watch = watch_of(told);
    return py::str(without_lock([&] { return write_report(request, watch); }));
}

py::tuple read_texture_call(const py::bytes& path) {
    const std::string name = path;
    TextureAnswer answer = without_lock([&] { return read_texture_file(name); });
    if (!answer.texture) {
        return py::make_tuple(py::str(answer.document), py::none(), py::list());
    }
    auto kept = std::make_unique<Texture>(std::move(*answer.texture));
    Texture& texture = *kept;
    const py::capsule owner = owner_of(std::move(kept));
    const py::ssize_t height = texture.height_px;
    const py::ssize_t width = texture.width_px;
    py::list alphas;
    for (const AlphaChannel& alpha : texture.alphas) {
        alphas.append(
            py::make_tuple(py::bytes(alpha.name), shown(owner, alpha.values.data(), {height, width})));
    }
    return py::make_tuple(py::str(answer.document),
                          shown(owner, texture.pixels.data(), {height, width, texture.channels()}), alphas);
}

using Plane = py::array_t<std::uint8_t, py::array::c_style>;

PixelBuffer bytes_of(const Plane& array) {
    const auto size = static_cast<std::size_t>(array.size());
    const std::uint8_t* const from = array.data();
    return without_lock([&] {
        PixelBuffer bytes(size);
        std::copy_n(from, size, bytes.data());
        return bytes;
    });
}

/// The package has checked the shapes: (h, w, 1 or 3), and (h, w) of every alpha channel.
py::str write_texture_call(const py::bytes& path, const Plane& color,
                           const std::vector<std::pair<std::string, Plane>>& alphas) {
    Texture texture;
    texture.height_px = static_cast<std::int32_t>(color.shape(0));
    texture.width_px = static_cast<std::int32_t>(color.shape(1));
    texture.mode = color.shape(2) == 1 ? Texture::kGrey : Texture::kRgb;
    texture.pixels = bytes_of(color);
    for (const auto& [name, values] : alphas) {
        texture.alphas.push_back({name, bytes_of(values)});
    }
    const std::string name = path;
    return py::str(without_lock([&] { return write_texture_file(name, texture); }));
}

}  // namespace
}  // namespace python

PYBIND11_MODULE(_native, module) {
    using namespace python;
    module.attr("version") = VXR_VERSION;
    module.def("set_own_program",
               [](const std::string& program) { os::set_own_program(os::path_of(program)); });
    module.def("is_path_map", is_path_map);
    module.def("read_scene", read_scene_call);
    module.def("is_host", is_host);
    module.def("is_name_encoding", is_name_encoding);
    module.def("import_scene", import_scene_call);
    module.def("relink_scene", relink_scene_call);
    module.def("export_scene", export_scene_call);
    module.def("prove_scene", prove_scene_call);
    module.def("draw_frames", draw_frames_call);
    module.def("write_report", write_report_call);
    module.def("printable",
               [](const py::bytes& text) { return py::str(text::printable(std::string(text))); });
    module.def("read_texture", read_texture_call);
    module.def("write_texture", write_texture_call);
}
