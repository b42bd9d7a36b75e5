#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/options.h"
#include "cli/preview/sheet.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_conversion.h"
#include "cli/texture/texture_diagnostics.h"
#include "cli/verbs.h"
#include "image/image.h"
#include "system/files.h"
#include "text/plain_number.h"
#include "text/printable.h"
#include "texture/value/texture_file.h"

namespace cli {
namespace {

class TextureSheetCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("FILE", files_, "texture files").required();
        options.option("-o,--output", output_, "the image to write; its extension chooses the format")
            .value_name("IMAGE")
            .required()
            .group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        if (!image::can_write(output_)) {
            throw UsageError("no image format has the extension of " + output_);
        }
        FileRoles roles;
        for (const std::string& file : files_) {
            roles.reads(file, file);
        }
        if (const std::string refusal = roles.writes(output_, "--output"); !refusal.empty()) {
            throw UsageError(refusal);
        }
        ExitCode code = ExitCode::fine;
        std::vector<Diagnostic> diagnostics;
        Sheet sheet;
        {
            Progress progress(terminal, files_.size());
            sheet = texture_sheet(
                files_, [&](const std::string& file) { return read(file, code, diagnostics); },
                [&](std::size_t, std::size_t, const std::string& name) {
                    progress.step(text::printable(name));
                });
        }
        for (const Diagnostic& diagnostic : diagnostics) {
            terminal.err << texture_diagnostic_text(diagnostic, terminal.err_paint);
        }
        if (!sheet.picture) {
            complain(terminal, sheet.problem);
            return ExitCode::refused;
        }
        const image::Writing writing = image::write(output_, *sheet.picture);
        if (writing.error) {
            complain(terminal, writing.error->reason);
            return image_exit_code(*writing.error);
        }
        terminal.out << text::count_text(files_.size(), "texture", "textures") << ", "
                     << text::count_text(sheet.tiles, "picture", "pictures") << " -> "
                     << text::printable(output_) << '\n';
        return code;
    }

  private:
    static NamedTexture read(const std::string& file, ExitCode& code, std::vector<Diagnostic>& diagnostics) {
        TextureReading reading = read_texture(file);
        code = most_serious(code, texture_exit_code(reading));
        const std::vector<Diagnostic> found = texture_diagnostics(reading, file);
        diagnostics.insert(diagnostics.end(), found.begin(), found.end());
        return {os::text_of(os::path_of(file).filename()), std::move(reading.texture),
                verdict_label(texture_exit_code(reading))};
    }

    std::vector<std::string> files_;
    std::string output_;
};

}  // namespace

Verb texture_sheet_verb() {
    return {
        "texture sheet",
        "draw textures and each of their alpha channels in one picture",
        {"Shows the colour of every FILE as it is stored, and beside it every alpha channel in grey, with "
         "names and sizes. A texture that cannot be read is marked, and the sheet is written all the same; "
         "the exit code says so."},
        {{"vxr texture sheet *.txl -o textures.png", "All textures of a folder at one glance."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<TextureSheetCommand>(); }};
}

}  // namespace cli
