#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

#include "cli/options.h"
#include "cli/picture/small_picture.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_conversion.h"
#include "cli/texture/texture_diagnostics.h"
#include "cli/verbs.h"
#include "image/image.h"

namespace cli {
namespace {

class TextureThumbnailCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("IN", input_, "the texture").required();
        options.argument("OUT", output_, "the PNG file to write, whatever its extension").required();
        options.argument("SIZE", size_, "the most pixels of its longer side")
            .required()
            .check([](const std::string& text) {
                const int size = parse_option_integer(text).value_or(0);
                return size >= 1 && size <= kLargest_px
                           ? std::string()
                           : '"' + text + "\" is not a number from 1 to " + std::to_string(kLargest_px);
            });
        add_look_options(options, look_);
    }

    ExitCode run(Terminal& terminal) override {
        FileRoles roles;
        roles.reads(input_);
        if (const std::string refusal = roles.writes(output_, "OUT"); !refusal.empty()) {
            throw UsageError(refusal);
        }
        const std::int32_t size_px = parse_option_integer(size_).value_or(1);
        const SmallPicture small = read_small_picture(input_, look_, size_px, size_px);
        for (const Diagnostic& diagnostic : small.diagnostics) {
            terminal.err << texture_diagnostic_text(diagnostic, terminal.err_paint);
        }
        if (!small.picture) {
            return small.code;
        }
        const image::Writing writing = write_png(*small.picture, output_);
        if (writing.error) {
            complain(terminal, output_ + ": " + writing.error->reason);
            return image_exit_code(*writing.error);
        }
        return small.code;
    }

  private:
    static constexpr int kLargest_px = 4096;

    std::string input_;
    std::string output_;
    std::string size_;
    TextureLook look_;
};

}  // namespace

Verb texture_thumbnail_verb() {
    return {
        "texture thumbnail",
        "write a small picture of a texture, as file managers show it",
        {"Writes a PNG that fits into SIZE x SIZE pixels and keeps the proportions of the texture. Each "
         "pixel "
         "is the average of the area that it covers; a small texture is not enlarged. Prints nothing when "
         "all "
         "is well.",
         "What the first alpha channel leaves out is transparent, unless it leaves out everything; --alpha "
         "chooses another. Colour that was multiplied by alpha is divided again, because PNG files hold it "
         "straight; the pixels show whether it was, and --alpha-label says otherwise.",
         "On desktops of Linux this makes the thumbnails of texture files, once `vxr` is installed. A "
         "texture of more than 1 GiB of pixels is refused."},
        {{"vxr texture thumbnail bark.txl bark.png 256", "The size that file managers ask for most."},
         {"vxr texture thumbnail --alpha none bark.txl bark.png 512", "The colour alone."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<TextureThumbnailCommand>(); }};
}

}  // namespace cli
