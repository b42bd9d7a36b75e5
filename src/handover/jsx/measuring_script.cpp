#include "handover/jsx/measuring_script.h"

#include <cmath>
#include <string>
#include <string_view>

#include "handover/jsx/jsx_runtime.h"
#include "handover/jsx/jsx_text.h"
#include "text/ascii.h"

namespace handover {
namespace {

// An index, or -1.
void write_place(JsxText& text, std::size_t index) {
    if (index == kNone) {
        text << "-1";
    } else {
        text << index;
    }
}

void write_view(JsxText& text, const MeasuredView& view) {
    text << "view({target:\"" << (view.version == Version::imported ? "imported" : "corrected")
         << "\",camera:" << view.camera << ",item:";
    write_place(text, view.item);
    text << ",layer:";
    write_place(text, view.layer);
    text << ",root:";
    write_place(text, view.root);
    text << ",shownBy:";
    write_place(text, view.shown_by);
    text << "});\n";
}

// After Effects has y down. Points are finite, because a moment without a picture is not asked for.
void write_moment(JsxText& text, std::size_t camera, const MeasuredMoment& moment) {
    text << "moment(" << camera << ',' << moment.frame << ",[";
    for (std::size_t i = 0; i < moment.points.size(); ++i) {
        const auto& point = moment.points[i];
        text << (i == 0       ? ""
                 : i % 4 == 0 ? ",\n"
                              : ",")
             << point[0] << ',' << 0.0 - point[1] << ',' << point[2];
    }
    text << "]);\n";
}

void write_questions(JsxText& text, const MeasuredProject& project, const Measuring& measuring) {
    text << "\n// ---- What is asked.\n\n(function(){\nQUESTIONS={scene:" << jsx_string(measuring.scene)
         << ",sum:" << jsx_string(measuring.sum) << "};\n";
    for (const MeasuredView& view : project.views) {
        write_view(text, view);
    }
    for (std::size_t camera = 0; camera < measuring.cameras.size(); ++camera) {
        for (const MeasuredMoment& moment : measuring.cameras[camera].moments) {
            write_moment(text, camera, moment);
        }
    }
    if (measuring.texture) {
        const TextureTrial& texture = *measuring.texture;
        const bool unix_path = texture.path.starts_with('/');
        text << "TEXTURE={name:"
             << jsx_string(jsx_uri(text::last_component(texture.path, unix_path ? "/" : "/\\")))
             << ",path:" << jsx_string(jsx_uri(texture.path)) << ",x:" << texture.x_px
             << ",y:" << texture.y_px << "};\n";
    }
    for (const std::string& sentence : project.absent) {
        text << "problem(" << jsx_string(sentence) << ");\n";
    }
    text << "})();\nmeasure();\n";
}

}  // namespace

void write_measuring_script(const MeasuredProject& project, const Measuring& measuring,
                            const JsxOptions& options, const Sink& sink) {
    JsxTask task;
    task.head = {
        "Lets After Effects say where the cameras of " + project.project.shot.file +
            " put points, and what colours come out:",
        "run it with File > Scripts > Run Script File. It makes one folder, touches nothing else, and "
        "can be undone.",
        "The answers are written beside this script, as a table with the ending -measured.tsv."};
    task.write_runtime = [](JsxText& text) {
        for (const char* const piece : kJsxMeasuring) {
            text << piece;
        }
    };
    task.write_run = [&](JsxText& text) { write_questions(text, project, measuring); };
    write_jsx_task(project.project, options, task, sink);
}

}  // namespace handover
