#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "binary_file/image.h"
#include "binary_file/property_list.h"
#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// Code that a key of the property list stands for.
struct NamedCode {
    const char* key;        ///< "8664", "mi64", "ma64"
    const char* processor;  ///< as Image::processor
};

/// Looks at the PiPL resources of `file` as a host does, and adds what is in them and what is wrong to
/// `diagnosis`. `images`: the code that the entries must be exported by.
void check_properties(const std::string& file, const std::vector<binary_file::Resource>& resources,
                      binary_file::PropertyForm form, const std::vector<binary_file::Image>& images,
                      Diagnosis& diagnosis);

}  // namespace cli::doctor
