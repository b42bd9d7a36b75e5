#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/page/html.h"
#include "cli/page/page_parts.h"
#include "cli/terminal/standard_input.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

struct Advice {
    std::string command;  ///< as typed
    std::string effect;   ///< what it does, one sentence
};

/// The commands about a scene, by what is the matter with it. Whole paths: nobody knows from which folder a
/// reader types.
std::vector<Advice> advice_for(const PageScene& scene) {
    const std::string path = os::absolute_path(scene.file);
    const std::string word = text::shell_word(path);
    const auto beside = [&](const std::string& ending) {
        std::filesystem::path name = os::path_of(path);
        name.replace_extension();
        return text::shell_word(os::text_of(name) + ending);
    };
    std::vector<Advice> advice;
    if (!scene.imported) {
        advice.push_back({"vxr check " + word, "Shows the mistake again, once the scene has been changed."});
        return advice;
    }
    if (scene.missing_footage() > 0) {
        advice.push_back(
            {"vxr relink " + word + " --search FOLDER --dry-run",
             "Looks for the missing footage in FOLDER and everything below it, and shows what it "
             "would take. Put the name of your folder there."});
        advice.push_back({"vxr relink " + word + " --search FOLDER -o " + beside("-relinked.aec"),
                          "Writes a new scene whose paths lead to what was found."});
    }
    advice.push_back({"vxr check --verbose " + word, "Shows every place of everything that was found."});
    advice.push_back({"vxr export --to jsx " + word + " -o " + beside(".jsx"),
                      "Writes a script that rebuilds the corrected project in any After Effects, without the "
                      "plug-in: File > Scripts > Run Script File."});
    if (!scene.imported->objects.empty()) {
        advice.push_back({"vxr export --to glb " + word + " -o " + beside(".glb"),
                          "Writes cameras, lights and nulls for 3D programs."});
        advice.push_back({"vxr proof " + word, "Compares the camera again."});
    }
    advice.push_back({"vxr collect " + word + " -o " + beside("-collected"),
                      "Gathers the scene and its footage in one folder that can be taken anywhere."});
    return advice;
}

}  // namespace

std::string commands_part(const PageScene& scene, const PagePlace& place) {
    std::string html = part_heading(place, "commands", "What to do next?");
    if (is_standard_input(scene.file)) {
        return html + "<p>The scene came from another program and has no name to type.</p>";
    }
    html += "<ol class=\"commands\">";
    for (const Advice& one : advice_for(scene)) {
        html += "<li><p>" + html_text(one.effect) + "</p><pre data-copy><code>" + html_text(one.command) +
                "</code></pre></li>";
    }
    return html + "</ol>";
}

}  // namespace cli
