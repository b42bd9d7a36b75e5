#pragma once

#include <set>
#include <string>

#include "texture/value/texture.h"

// Image files that the page has decoded, in the place of an image library. A browser decodes when it has
// time and a program that reads an image waits for no one, so the page decodes what a frame shows before it
// has the frame drawn. For one thread.

namespace viewer {

/// Has image::read() find the decoded images. Headers and writing stay as they are without a library.
void read_decoded_images();

/// Keeps what image::read() gives for the file at `path`, or the reason that it gives nothing.
void keep_decoded_image(const std::string& path, Texture image);
void keep_undecodable_image(const std::string& path, const std::string& reason);

/// Whether either is kept.
[[nodiscard]] bool has_decoded_image(const std::string& path);

/// Forgets every image but these.
void keep_only_images(const std::set<std::string>& paths);

}  // namespace viewer
