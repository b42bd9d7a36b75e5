#include "handover/jsx/jsx_script.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "handover/jsx/jsx_layers.h"
#include "handover/jsx/jsx_runtime.h"
#include "handover/jsx/jsx_text.h"
#include "handover/loss.h"
#include "text/ascii.h"

namespace handover {
namespace {

// Places of one loss that the head lists.
constexpr std::size_t kPlacesOfLoss = 20;

std::string_view file_name_of(std::string_view path) {
    return text::last_component(path, jsx_is_absolute(path) && !path.starts_with('/') ? "/\\" : "/");
}

// The text without its file name and the separator before it.
std::string_view folder_of(std::string_view path) {
    const std::string_view name = file_name_of(path);
    return path.substr(0, path.size() - name.size());
}

class ScriptWriter {
  public:
    ScriptWriter(const Handover& handover, const JsxOptions& options, const Sink& sink)
        : handover_(handover), options_(options), text_(sink) {}

    void write() {
        write_head();
        write_project([](JsxText&) {});
        text_ << "\nrebuild();\n})();\n";
        text_.flush();
    }

    void write(const JsxTask& task) {
        for (const std::string& words : task.head) {
            line(words);
        }
        text_ << "\n";
        write_project(task.write_runtime);
        task.write_run(text_);
        text_ << "})();\n";
        text_.flush();
    }

  private:
    void write_project(const std::function<void(JsxText&)>& write_more_runtime) {
        text_ << "(function () {\n";
        for (const char* const piece : kJsxRuntime) {
            text_ << piece;
        }
        write_more_runtime(text_);
        text_ << "\n// ---- The scene.\n\n";
        write_scene();
        write_items();
        write_layers(text_, handover_, options_.threads, notes_);
        write_notes();
    }

    // ---- The head: what the script is, what was corrected, what is lost.

    void line(std::string_view words) {
        text_ << (words.empty() ? "//" : "// ") << jsx_escaped(words) << "\n";
    }

    void write_head() {
        line("Rebuilds the scene " + std::string(file_name_of(handover_.shot.file)) +
             " in After Effects: run it with File > Scripts > Run Script File.");
        line("Run again, it updates what it made, and keeps what was added by hand.");
        line("");
        line(handover_.version == Version::imported
                 ? "Version: imported, exactly as the plug-in builds the project."
                 : "Version: corrected, what the scene says.");
        line("");
        line(handover_.corrections.empty() ? "No corrections were made." : "Corrections:");
        for (const AppliedCorrection& applied : handover_.corrections) {
            const CorrectionInfo& info = correction_table()[static_cast<std::size_t>(applied.correction)];
            line("  " + std::string(info.name) + " (" + std::to_string(applied.count) + "): " + info.reason);
            if (!applied.example.empty()) {
                line("    " + applied.example);
            }
        }
        write_losses();
        text_ << "\n";
    }

    void write_losses() {
        line("");
        std::array<std::size_t, kLossCodes> listed{};
        std::array<std::size_t, kLossCodes> more{};
        bool any = false;
        for (std::size_t code = 0; code < kLossCodes; ++code) {
            for (const Loss& loss : handover_.losses) {
                if (!loss.targets.has(Target::jsx) ||
                    loss.what.code != diagnostic::Code(static_cast<LossCode>(code))) {
                    continue;
                }
                if (!any) {
                    line("Where After Effects will differ from the scene:");
                    any = true;
                }
                if (listed[code] == 0) {
                    line("  " + std::string(code_info(static_cast<LossCode>(code)).name) + ": " +
                         code_info(static_cast<LossCode>(code)).meaning);
                }
                if (listed[code] < kPlacesOfLoss) {
                    ++listed[code];
                    line("    " + place_of(loss) + loss.what.reason);
                } else {
                    ++more[code];
                }
            }
            if (more[code] > 0) {
                line("    ... and " + std::to_string(more[code]) + " more places");
            }
        }
        if (!any) {
            line("After Effects will not differ from the scene.");
        }
    }

    static std::string place_of(const Loss& loss) {
        return loss.what.at.line ? "line " + std::to_string(*loss.what.at.line) + ": " : std::string();
    }

    // ---- Statements, a bounded number of them in a function.

    void open_statement() {
        if (statements_ == kJsxThingsOfFunction) {
            close_function();
        }
        if (statements_++ == 0) {
            text_ << "(function(){\n";
        }
    }
    void close_function() {
        if (statements_ > 0) {
            text_ << "})();\n";
            statements_ = 0;
        }
    }

    void write_scene() {
        const Shot& shot = handover_.shot;
        text_ << "SCENE={name:" << jsx_string(file_name_of(shot.file)) << ",from:" << shot.from
              << ",to:" << shot.to << ",start:" << (shot.local ? shot.from : 0)
              << ",rate:" << finite_or_zero(shot.rate_fps) << ",undoSafe:" << options_.undo_safe << "};\n";
    }

    // ---- Items.

    void write_items() {
        for (const Item& item : handover_.items) {
            open_statement();
            text_ << "item({id:" << jsx_string(item.id) << ",kind:\"" << kind_of(item)
                  << "\",name:" << jsx_string(item.name) << ",folder:";
            write_index(item.folder, handover_.items.size());
            if (item.kind == ItemKind::footage && item.content < handover_.footage.size()) {
                write_footage(handover_.footage[item.content]);
            } else if (item.kind == ItemKind::composition && item.content < handover_.compositions.size()) {
                const Composition& made = handover_.compositions[item.content];
                text_ << ",composition:{width:" << made.width_px << ",height:" << made.height_px
                      << ",aspect:" << finite_or_zero(made.pixel_aspect)
                      << ",frames:" << finite_or_zero(made.frames)
                      << ",rate:" << finite_or_zero(made.rate_fps) << '}';
            }
            text_ << ",layers:[]});\n";
        }
        close_function();
    }

    void write_index(std::size_t index, std::size_t count) {
        if (index < count) {
            text_ << index;
        } else {
            text_ << "-1";
        }
    }

    [[nodiscard]] const char* kind_of(const Item& item) const {
        if (item.kind == ItemKind::folder) {
            return "folder";
        }
        if (item.kind == ItemKind::composition) {
            return "composition";
        }
        if (item.content >= handover_.footage.size()) {
            return "placeholder";
        }
        switch (handover_.footage[item.content].kind) {
            case FootageKind::still:
                return "still";
            case FootageKind::sequence:
                return "sequence";
            case FootageKind::texture:
                return "texture";
            case FootageKind::placeholder:
                return "placeholder";
        }
        return "placeholder";
    }

    static const char* alpha_of(const Footage& footage) {
        switch (footage.alpha) {
            case Alpha::none:
                return "none";
            case Alpha::ignored:
                return "ignored";
            case Alpha::straight:
                return "straight";
            case Alpha::premultiplied:
                return "premultiplied";
        }
        return "none";
    }

    static const char* fields_of(const Footage& footage) {
        switch (footage.fields) {
            case Fields::none:
                return "none";
            case Fields::upper_first:
                return "upper";
            case Fields::lower_first:
                return "lower";
        }
        return "none";
    }

    [[nodiscard]] std::string absolute(std::string_view path) const {
        if (path.empty() || jsx_is_absolute(path) || options_.working_folder.empty()) {
            return std::string(path);
        }
        return options_.working_folder + "/" + std::string(path);
    }

    void write_footage(const Footage& footage) {
        const std::string path = absolute(footage.path);
        const std::string scene = absolute(handover_.shot.file);
        const bool rooted = jsx_is_absolute(path);
        const std::string near = rooted && jsx_is_absolute(scene) ? jsx_way(folder_of(scene), path)
                                 : rooted                         ? std::string()
                                                                  : path;
        text_ << ",footage:{width:" << footage.width_px << ",height:" << footage.height_px
              << ",frames:" << finite_or_zero(footage.frames) << ",rate:" << finite_or_zero(footage.rate_fps)
              << ",aspect:" << finite_or_zero(footage.pixel_aspect) << ",alpha:\"" << alpha_of(footage)
              << "\",premultipliedWith:[" << finite_or_zero(footage.premultiplied_with[0]) << ','
              << finite_or_zero(footage.premultiplied_with[1]) << ','
              << finite_or_zero(footage.premultiplied_with[2]) << "],fields:\"" << fields_of(footage)
              << "\",name:" << jsx_string(jsx_uri(file_name_of(path)))
              << ",near:" << jsx_string(jsx_uri(near)) << ",path:" << jsx_string(rooted ? jsx_uri(path) : "");
        if (footage.files) {
            text_ << ",first:" << footage.files->first << ",last:" << footage.files->last
                  << ",whole:" << footage.files->whole;
        } else {
            text_ << ",first:0,last:0,whole:true";
        }
        text_ << '}';
    }

    void write_notes() {
        for (const std::string& note : notes_) {
            open_statement();
            text_ << "problem(" << jsx_string(note) << ");\n";
        }
        close_function();
    }

    const Handover& handover_;
    const JsxOptions& options_;
    JsxText text_;
    std::size_t statements_ = 0;
    std::vector<std::string> notes_;
};

}  // namespace

void write_jsx(const Handover& handover, const JsxOptions& options, const Sink& sink) {
    ScriptWriter(handover, options, sink).write();
}

void write_jsx_task(const Handover& handover, const JsxOptions& options, const JsxTask& task,
                    const Sink& sink) {
    ScriptWriter(handover, options, sink).write(task);
}

}  // namespace handover
