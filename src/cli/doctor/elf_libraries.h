#pragma once

#include <string>
#include <string_view>

#include "binary_file/image.h"

namespace cli::doctor {

/// Whether the dynamic loader of this system would find `name` for `image` in the file `binary`: by the
/// image's own search paths, LD_LIBRARY_PATH, the folders of /etc/ld.so.conf and the usual ones, and for the
/// same processor. True also where there is no such loader to ask for.
bool has_elf_library(const std::string& binary, const binary_file::Image& image, std::string_view name);

}  // namespace cli::doctor
