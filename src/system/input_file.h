#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "system/open_regular_file.h"

namespace os {

struct CloseInputFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using InputFile = std::unique_ptr<std::FILE, CloseInputFile>;

/// Opens a regular file for reading, null for anything else. It waits for nobody, whatever became of the path
/// since somebody looked at it.
inline InputFile open_input_file(const std::string& path) {
    return InputFile(open_regular_file(path.c_str()));
}

}  // namespace os
