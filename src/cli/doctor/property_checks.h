#pragma once

#include <string>
#include <vector>

#include "binary_file/binary_file.h"
#include "binary_file/property_list.h"
#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// Reads the PiPL resources of `file` as a host does, and adds their content and what is wrong with it to
/// `diagnosis`. `images` must export the functions that the properties name.
void check_properties(const std::string& file, const std::vector<binary_file::Resource>& resources,
                      binary_file::PropertyForm form, const std::vector<binary_file::BinaryImage>& images,
                      Diagnosis& diagnosis);

}  // namespace cli::doctor
