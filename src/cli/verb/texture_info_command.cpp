#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/report/diagnostic_json.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/row_coding.h"
#include "cli/texture/texture_diagnostics.h"
#include "cli/texture/texture_outline.h"
#include "cli/verbs.h"
#include "embedded/json_values.h"
#include "system/files.h"
#include "text/printable.h"
#include "texture/value/alpha_use.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kInfoSchema = 1;

/// What there is to say about one file.
struct FileInfo {
    std::string file;
    ExitCode code = ExitCode::fine;
    std::optional<std::int64_t> size_bytes;
    TextureReading reading;
    ChannelCoding coding;
    std::optional<AlphaFinding> alpha;  ///< of a texture with alpha channels
    std::vector<Diagnostic> diagnostics;
};

FileInfo read_info(const std::string& file) {
    FileInfo info;
    info.file = file;
    TextureReadOptions options;
    options.outline = true;
    info.reading = read_texture(file, options);
    info.code = texture_exit_code(info.reading);
    if (const os::FileState state = os::file_state(file); state.kind == os::FileKind::regular) {
        info.size_bytes = static_cast<std::int64_t>(state.size_bytes);
    }
    info.coding = total_coding(info.reading.chunks);
    info.diagnostics = texture_diagnostics(info.reading, file);
    info.alpha = alpha_finding(info.reading);
    return info;
}

std::string info_text(const FileInfo& info, const Paint& paint) {
    std::string text = paint(Ink::bold, text::printable(info.file)) + ": ";
    text += info.reading.texture.has_value() ? texture_size_text(*info.reading.texture)
                                             : paint(Ink::red, verdict_label(info.code));
    text += info.size_bytes.has_value() ? ", " + std::to_string(*info.size_bytes) + " bytes\n" : "\n";
    if (info.coding.rows() > 0) {
        text += "  pixels: " + coding_text(info.coding.decoded_bytes, info.coding.coded_bytes) + '\n';
    }
    if (info.reading.texture.has_value()) {
        for (const AlphaChannel& alpha : info.reading.texture->alphas) {
            text += "  alpha:  " + text::quoted(alpha.name) + '\n';
        }
        if (info.alpha.has_value()) {
            text += "  note:   " + alpha_use_text(*info.alpha) + '\n';
        }
    }
    return text + outline_text(info.reading.chunks, paint);
}

Json info_json(const FileInfo& info) {
    Json alphas = Json::array();
    Json json{{"file", embedded::json_text(info.file)},
              {"verdict", verdict_label(info.code)},
              {"exit_code", static_cast<int>(info.code)},
              {"size_bytes", info.size_bytes.has_value() ? Json(*info.size_bytes) : Json()},
              {"width_px", nullptr},
              {"height_px", nullptr},
              {"mode", nullptr},
              {"color_mode", nullptr},
              {"alphas", nullptr},
              {"alpha_use", nullptr},
              {"decoded_bytes", info.coding.decoded_bytes},
              {"coded_bytes", info.coding.coded_bytes},
              {"compression_ratio", compression_ratio(info.coding)},
              {"chunks", outline_json(info.reading.chunks)},
              {"diagnostics", diagnostics_json(info.diagnostics)}};
    if (const std::optional<Texture>& texture = info.reading.texture; texture.has_value()) {
        for (const AlphaChannel& alpha : texture->alphas) {
            alphas.push_back(embedded::json_text(alpha.name));
        }
        json["width_px"] = texture->width_px;
        json["height_px"] = texture->height_px;
        json["mode"] = texture->mode == Texture::kGrey ? "grey" : "rgb";
        json["color_mode"] = texture->mode;
        json["alphas"] = alphas;
    }
    if (info.alpha.has_value()) {
        json["alpha_use"] = Json{{"code", code_info(info.alpha->use).name},
                                 {"pixels_above_alpha", info.alpha->pixels_above},
                                 {"percent", info.alpha->percent()}};
    }
    return json;
}

class TextureInfoCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("FILE", files_, "texture files").required();
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        Json documents = Json::array();
        ExitCode code = ExitCode::fine;
        for (const std::string& file : files_) {
            const FileInfo info = read_info(file);
            code = most_serious(code, info.code);
            if (json_) {
                documents.push_back(info_json(info));
                continue;
            }
            terminal.out << fitted(terminal, info_text(info, terminal.out_paint)) << std::flush;
            for (const Diagnostic& diagnostic : info.diagnostics) {
                terminal.err << texture_diagnostic_text(diagnostic, terminal.err_paint);
            }
            terminal.err << std::flush;
        }
        if (json_) {
            terminal.out << files_document(kInfoSchema, code, documents);
        }
        return code;
    }

  private:
    std::vector<std::string> files_;
    bool json_ = false;
};

}  // namespace

Verb texture_info_verb() {
    return {"texture info",
            "show what texture files hold: size, alpha channels, and every chunk with its row coding",
            {"Shows size, colour mode and alpha channels, whether colour is multiplied by alpha, how many "
             "bytes the pixels take in the file and in memory, and the chunks of the file as a tree: where "
             "each begins, how long it is with everything in it, and, for rows of pixels, how many of each "
             "channel are raw, packed or neither.",
             "For a file that is refused, the chunks up to the mistake are shown."},
            {{"vxr texture info bark.txl", "Size, alpha channels and chunks of one texture."},
             {"vxr texture info --json *.txl | jq '.files[] | [.file, .compression_ratio]'",
              "How well each texture is packed, for a script."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<TextureInfoCommand>(); }};
}

}  // namespace cli
