#pragma once

// What the host has to know of an image file before it becomes footage. The image library is asked by
// image_probe_library.cpp; builds without one have image_probe_builtin.cpp.

#include <optional>
#include <string>

#include "image_library/image_facts.h"

namespace embedded {

using image_library::ImageFacts;

/// Reads the header only. Nothing when the file is not a regular file or no reader takes it; `error` then
/// says why.
std::optional<ImageFacts> probe_image(const std::string& path, std::string& error);

/// What a build without an image library has to say about that; empty with one.
std::string image_library_note();

/// Why the image library cannot be had; empty when it can, or the build goes without. Loads it.
std::string image_library_problem();

}  // namespace embedded
