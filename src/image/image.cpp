#include "image/image.h"

#include <stdexcept>
#include <utility>

#include "image/built_in_header.h"
#include "image/functions.h"
#include "image/ordinary_header.h"
#include "system/files.h"

namespace image {
namespace {

/// Set by the build: whether it has OpenImageIO.
constexpr bool kHasLibrary = VXR_IMAGE_LIBRARY != 0;

const Functions* replacement = nullptr;

const Functions& functions_without_library() {
    if (replacement != nullptr) {
        return *replacement;
    }
#if defined(_WIN32)
    return system_functions();
#else
    return built_in_functions();
#endif
}

const Functions* find_functions(std::string& problem) {
    return kHasLibrary ? library_functions(problem) : &functions_without_library();
}

const Functions& required_functions() {
    std::string problem;
    const Functions* const functions = find_functions(problem);
    if (functions == nullptr) {
        throw std::runtime_error(problem);
    }
    return *functions;
}

/// Collects what an implementation reports about the file at `path`.
struct Reports {
    const std::string& path;
    std::vector<diagnostic::Diagnostic> diagnostics;

    static void add(void* reports, Code code, const char* reason) {
        auto* const self = static_cast<Reports*>(reports);
        self->diagnostics.push_back(diagnostic::make(code, {self->path}, reason));
    }

    void throw_if_gave_up() const {
        for (const diagnostic::Diagnostic& one : diagnostics) {
            if (one.code == Code::gave_up) {
                throw std::runtime_error(one.reason);
            }
        }
    }
};

/// The error for what is not a regular file. Opening a pipe would wait for a writer.
std::optional<diagnostic::Diagnostic> irregular_file(const std::string& path) {
    std::string why_not;
    if (os::is_regular_file(path, why_not)) {
        return std::nullopt;
    }
    return diagnostic::make(Code::cannot_open, {path}, std::move(why_not));
}

}  // namespace

void replace_built_in_functions(const Functions& functions) {
    replacement = &functions;
}

Probe probe(const std::string& path) {
    if (auto error = irregular_file(path)) {
        return {std::nullopt, std::move(error)};
    }
    if (kHasLibrary) {
        // The library's answer without loading it.
        if (const std::optional<Header> header = ordinary_header_of_file(path)) {
            return {header, std::nullopt};
        }
    }
    std::string problem;
    const Functions* const functions = find_functions(problem);
    if (functions == nullptr) {
        return {std::nullopt, diagnostic::make(Code::gave_up, {path}, std::move(problem))};
    }
    Header header;
    Reports reports{path, {}};
    if (!functions->probe(path.c_str(), &header, &Reports::add, &reports)) {
        return {std::nullopt, std::move(reports.diagnostics.front())};
    }
    return {header, std::nullopt};
}

Reading read(const std::string& path, const AlphaOptions& alpha) {
    if (auto error = irregular_file(path)) {
        return {std::nullopt, {std::move(*error)}};
    }
    Texture texture;
    Reports reports{path, {}};
    const bool done = required_functions().read(path.c_str(), &alpha, &texture, &Reports::add, &reports);
    reports.throw_if_gave_up();
    Reading reading{std::nullopt, std::move(reports.diagnostics)};
    if (done) {
        reading.texture = std::move(texture);
    }
    return reading;
}

Writing write(const std::string& path, const Texture& texture, const WriteOptions& options) {
    Reports reports{path, {}};
    if (required_functions().write(path.c_str(), &texture, &options, &Reports::add, &reports)) {
        return {std::nullopt, std::move(reports.diagnostics)};
    }
    reports.throw_if_gave_up();
    return {std::move(reports.diagnostics.front()), {}};
}

bool can_write(const std::string& path) {
    return required_functions().can_write(path.c_str());
}

std::string library_problem() {
    std::string problem;
    (void)find_functions(problem);
    return problem;
}

std::string build_note() {
    if (kHasLibrary) {
        return {};
    }
    const std::string headers =
        std::string("This program is built without an image library: it reads the headers of ") +
        kBuiltInFormats + " footage, which is all that an import needs";
#if defined(_WIN32)
    return headers +
           ". Windows' own imaging component reads and writes the pixels of PNG, TIFF, JPEG and BMP; TGA "
           "is written, too.";
#else
    return headers + ", but no pixels. The only image format that it writes is TGA.";
#endif
}

}  // namespace image
