#include <vortanxr/texture.h>

#include <utility>

#include "library/public_diagnostic.h"
#include "texture/value/texture_file.h"

namespace library {
namespace {

vortanxr::Texture texture_of(const ::Texture& from) {
    vortanxr::Texture texture;
    texture.width_px = from.width_px;
    texture.height_px = from.height_px;
    texture.channels = from.channels();
    texture.pixels.assign(from.pixels.begin(), from.pixels.end());
    for (const ::AlphaChannel& alpha : from.alphas) {
        texture.alphas.push_back({alpha.name, {alpha.values.begin(), alpha.values.end()}});
    }
    return texture;
}

}  // namespace
}  // namespace library

namespace vortanxr {
inline namespace v1 {
namespace detail {

TextureReading read_texture(const std::string& path) {
    return library::guarded<TextureReading>(path, [&path] {
        TextureReading reading;
        const ::TextureReading read = ::read_texture(path);
        if (read.error) {
            reading.error = library::public_diagnostic(*read.error, path);
        } else if (read.texture) {
            reading.texture = library::texture_of(*read.texture);
        }
        for (const diagnostic::Diagnostic& warning : read.warnings) {
            reading.warnings.push_back(library::public_diagnostic(warning, path));
        }
        return reading;
    });
}

}  // namespace detail
}  // namespace v1
}  // namespace vortanxr
