#include <memory>
#include <ostream>
#include <string>

#include "cli/options.h"
#include "cli/picture/small_picture.h"
#include "cli/picture/terminal_screen.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_diagnostics.h"
#include "cli/verbs.h"
#include "text/printable.h"

namespace cli {
namespace {

class TextureViewCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("FILE", file_, "the texture").required();
        add_look_options(options, look_);
        add_protocol_option(options, protocol_, "Output");
    }

    ExitCode run(Terminal& terminal) override {
        const std::optional<TerminalScreen> screen = TerminalScreen::find(protocol_);
        if (!screen) {
            throw UsageError(kNoScreen);
        }
        const SmallPicture small =
            read_small_picture(file_, look_, screen->most_width_px(), screen->most_height_px());
        for (const Diagnostic& diagnostic : small.diagnostics) {
            terminal.err << texture_diagnostic_text(diagnostic, terminal.err_paint);
        }
        terminal.err << std::flush;
        if (!small.picture) {
            return small.code;
        }
        if (!screen->draw(*small.picture, terminal)) {
            return ExitCode::cannot_read_or_write;
        }
        terminal.out << text::printable(file_) << ": " << small.size << '\n';
        return small.code;
    }

  private:
    std::string file_;
    std::string protocol_ = "auto";
    TextureLook look_;
};

}  // namespace

Verb texture_view_verb() {
    return {
        "texture view",
        "show a texture in the terminal",
        {"Draws the texture as large as the terminal allows, but no larger than it is: by the graphics "
         "protocol of kitty or by sixels if the terminal says that it knows them, otherwise by halves of "
         "blocks, in 24 bits of colour if COLORTERM says so, in 256 colours if not, and in shades if "
         "NO_COLOR "
         "is set. A terminal that does not answer within a second gets blocks.",
         "What the first alpha channel leaves out shows a chequerboard, unless it leaves out everything; "
         "--alpha chooses another.",
         "Into a file or a pipe, only --protocol says what to write; the size is then that of a terminal of "
         "80 columns and 24 lines."},
        {{"vxr texture view bark.txl --protocol blocks",
          "The texture in characters that every terminal has."},
         {"vxr texture view bark.txl --alpha none --protocol sixel > bark.six",
          "The colour alone, as sixels for later."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<TextureViewCommand>(); }};
}

}  // namespace cli
