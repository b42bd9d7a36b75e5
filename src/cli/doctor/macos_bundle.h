#pragma once

#include <string>
#include <vector>

#include "binary_file/binary_file.h"
#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// The files of a macOS bundle folder.
struct MacosBundle {
    std::string contents;  ///< the folder Contents
    std::string name;      ///< of the file with the code
    std::string binary;    ///< that file; empty when there is none to read
};

/// Reads the folder's name and Info.plist, and finds the file with the code. Adds what is wrong, and what
/// Info.plist says, to `diagnosis`.
MacosBundle open_macos_bundle(Diagnosis& diagnosis);

/// Checks the processors, and the properties in Contents/Resources.
void check_macos_bundle(const MacosBundle& bundle, const std::vector<binary_file::BinaryImage>& images,
                        Diagnosis& diagnosis);

}  // namespace cli::doctor
