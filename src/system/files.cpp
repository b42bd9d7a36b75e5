#include "system/files.h"

namespace os {

bool is_regular_file(const std::string& path, std::string& why_not) {
    const FileState state = file_state(path);
    if (state.kind == FileKind::regular) {
        return true;
    }
    why_not = state.kind == FileKind::missing ? state.error : "not a regular file";
    return false;
}

}  // namespace os
