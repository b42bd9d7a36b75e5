#pragma once

#include <optional>
#include <string>

#include "texture/value/texture.h"

// What the module's functions about textures do, without anything of Python.

namespace python {

struct TextureAnswer {
    std::string document;  ///< {"error","code","diagnostics"}
    std::optional<Texture> texture;
};

[[nodiscard]] TextureAnswer read_texture_file(const std::string& path);

/// Returns a document with the members above; "code" is 0 when the file is in place.
[[nodiscard]] std::string write_texture_file(const std::string& path, const Texture& texture);

}  // namespace python
