#pragma once

#include <string>
#include <vector>

#include "binary_file/image.h"
#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// The files of a Macintosh bundle folder.
struct MacintoshBundle {
    std::string contents;  ///< the folder Contents
    std::string name;      ///< of the file with the code
    std::string binary;    ///< that file; empty when there is none to look at
};

/// Looks at the folder's name and at Info.plist, and finds the file with the code. What is wrong, and what
/// Info.plist says, goes to `diagnosis`.
MacintoshBundle open_macintosh_bundle(Diagnosis& diagnosis);

/// Looks at the processors and at the properties in Contents/Resources.
void check_macintosh_bundle(const MacintoshBundle& bundle, const std::vector<binary_file::Image>& images,
                            Diagnosis& diagnosis);

}  // namespace cli::doctor
