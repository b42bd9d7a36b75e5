#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "binary_file/binary_file.h"
#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// Adds a finding for each library that one of the images needs and that would be missing where it is loaded,
/// by the rules of its own system as far as they can be applied on this one. `binary` is the file that
/// contains the images.
void check_needed_libraries(const std::string& binary, const std::vector<binary_file::BinaryImage>& images,
                            Diagnosis& diagnosis);

/// Whether the dynamic loader of this system would find `name` for `image` in the file `binary`: in the
/// image's own search paths, LD_LIBRARY_PATH, the folders of /etc/ld.so.conf or the usual ones, and for the
/// same processor. Always true on a system without such a loader.
[[nodiscard]] bool has_elf_library(const std::string& binary, const binary_file::BinaryImage& image,
                                   std::string_view name);

}  // namespace cli::doctor
