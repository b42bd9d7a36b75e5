#include "cli/output_file.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "system/files.h"

namespace cli {

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
    errno = 0;
    stream_.open(os::native_path(path_), std::ios::binary | std::ios::trunc);
    if (!stream_) {
        give_up();
    }
}

void OutputFile::close() {
    errno = 0;
    stream_.close();
    if (!stream_) {
        give_up();
    }
}

void OutputFile::give_up() const {
    const int reason = errno;
    throw std::runtime_error(
        "cannot write " + path_ + ": " +
        (reason == 0 ? "an earlier part was not taken" : std::generic_category().message(reason)));
}

}  // namespace cli
