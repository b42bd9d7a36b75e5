#include "python/texture_calls.h"

#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/report/diagnostic_json.h"
#include "cli/texture/texture_conversion.h"
#include "cli/texture/texture_diagnostics.h"
#include "embedded/json_values.h"
#include "texture/value/texture_file.h"

namespace python {
namespace {

// The error, if there is one, is the first of the diagnostics.
std::string texture_document(cli::ExitCode code, const std::vector<diagnostic::Diagnostic>& diagnostics) {
    using embedded::Json;
    const bool failed = code != cli::ExitCode::fine;
    return Json{{"error", failed ? cli::diagnostic_json(diagnostics.front()) : Json()},
                {"code", static_cast<int>(code)},
                {"diagnostics", cli::diagnostics_json(diagnostics)}}
        .dump();
}

}  // namespace

TextureAnswer read_texture_file(const std::string& path) {
    TextureReading reading = read_texture(path);
    return {texture_document(cli::texture_exit_code(reading), cli::texture_diagnostics(reading, path)),
            std::move(reading.texture)};
}

std::string write_texture_file(const std::string& path, const Texture& texture) {
    const cli::Conversion written = cli::save_texture(texture, path);
    return texture_document(written.code, written.diagnostics);
}

}  // namespace python
