#include <stdexcept>
#include <utility>

#include "cli/texture/image_file.h"
#include "embedded/image_library.h"
#include "system/files.h"

namespace cli {
namespace {

using image_library::Outcome;
using image_library::Remark;

template <class Type>
Type& function(const char* name) {
    std::string problem;
    Type* const found = embedded::image_library_function<Type>(name, problem);
    if (found == nullptr) {
        throw std::runtime_error(problem);
    }
    return *found;
}

ExitCode exit_code(Outcome outcome, const Remark& problem) {
    switch (outcome) {
        case Outcome::done:
            return ExitCode::fine;
        case Outcome::refused:
            return ExitCode::refused;
        case Outcome::cannot_open_or_write:
            return ExitCode::cannot_read_or_write;
        case Outcome::gave_up:
            break;
    }
    throw std::runtime_error(problem.text);
}

}  // namespace

ImageReading read_image_file(const std::string& path, AlphaBytes alpha_bytes) {
    // Regular files only: opening a pipe would wait for somebody to write into it.
    std::string why_not;
    if (!os::is_regular_file(path, why_not)) {
        return {
            std::nullopt, {fail("cannot-open", {path}, std::move(why_not))}, ExitCode::cannot_read_or_write};
    }
    image_library::Reading reading;
    function<decltype(vxr_read_image)>("vxr_read_image")(path, alpha_bytes, reading);
    ImageReading result;
    result.code = exit_code(reading.outcome, reading.problem);
    if (reading.outcome != Outcome::done) {
        result.diagnostics.push_back(fail(reading.problem.code, {path}, std::move(reading.problem.text)));
    }
    for (Remark& warning : reading.warnings) {
        result.diagnostics.push_back(warn(warning.code, {path}, std::move(warning.text)));
    }
    result.texture = std::move(reading.texture);
    return result;
}

ImageWriting write_image_file(const std::string& path, const Texture& texture, AlphaBytes alpha_bytes) {
    image_library::Writing writing;
    function<decltype(vxr_write_image)>("vxr_write_image")(path, texture, alpha_bytes, writing);
    ImageWriting result;
    result.code = exit_code(writing.outcome, writing.problem);
    if (writing.outcome != Outcome::done) {
        result.error = fail(writing.problem.code, {path}, std::move(writing.problem.text));
    }
    return result;
}

bool writes_image_format(const std::string& path) {
    return function<decltype(vxr_writes_image)>("vxr_writes_image")(path);
}

}  // namespace cli
