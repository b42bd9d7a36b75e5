#pragma once

#include <string>
#include <vector>

#include "binary_file/image.h"
#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// Adds a finding for every library that one of the images needs and that would be missing where it is
/// loaded: by the rules of its own system, as far as they can be told from this one. `binary` is the file
/// that the images are in.
void check_needed_libraries(const std::string& binary, const std::vector<binary_file::Image>& images,
                            Diagnosis& diagnosis);

}  // namespace cli::doctor
