#include "cli/page/report_page.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "cli/page/html.h"
#include "cli/page/page_data.h"
#include "cli/page/page_parts.h"
#include "cli/page/report_page_text.h"
#include "cli/terminal/standard_input.h"
#include "text/ascii.h"

namespace cli {
namespace {

constexpr int kReportSchema = 1;

std::string scene_title(const std::string& file) {
    const std::string_view last = text::last_component(file, "/\\");
    return is_standard_input(file) ? "the standard input" : last.empty() ? file : std::string(last);
}

const char* verdict_class(const WrittenScene& scene) {
    switch (scene.code) {
        case ExitCode::fine:
            return scene.losses > 0 ? "loss" : "good";
        case ExitCode::footage_missing:
            return "incomplete";
        default:
            return "refused";
    }
}

std::string verdict_html(const WrittenScene& scene) {
    return "<p class=\"verdict " + std::string(verdict_class(scene)) + "\">" + html_text(scene.verdict) +
           "</p>";
}

std::string facts_html(const PageScene& scene) {
    if (!scene.imported) {
        return {};
    }
    const handover::Shot& shot = scene.imported->shot;
    std::array<std::int64_t, 3> objects{};
    for (const handover::SceneObject& object : scene.imported->objects) {
        ++objects.at(static_cast<std::size_t>(object.kind));
    }
    std::string html = "<ul class=\"facts\"><li>" + std::to_string(shot.width_px) + " &times; " +
                       std::to_string(shot.height_px) + " pixels";
    if (shot.pixel_aspect != 1) {
        html += " of aspect " + html_number(shot.pixel_aspect);
    }
    html += "</li><li>" + html_number(shot.rate_fps) + " fps</li><li>frames " + grouped(shot.from) + " to " +
            grouped(shot.to) + "</li>";
    const auto add = [&](std::int64_t count, const char* one, const char* several) {
        if (count > 0) {
            html += "<li>" + counted(count, one, several) + "</li>";
        }
    };
    add(static_cast<std::int64_t>(scene.imported->compositions.size()), "composition", "compositions");
    add(static_cast<std::int64_t>(scene.imported->footage.size()), "footage file or sequence",
        "footage files and sequences");
    add(objects[static_cast<std::size_t>(handover::ObjectKind::camera)], "camera", "cameras");
    add(objects[static_cast<std::size_t>(handover::ObjectKind::light)], "light", "lights");
    add(objects[static_cast<std::size_t>(handover::ObjectKind::null)], "null", "nulls");
    return html + "</ul>";
}

std::string parts_html(const std::string& id) {
    std::string html = "<nav class=\"parts\" aria-label=\"Parts of this report\"><ul>";
    for (const auto& [part, title] :
         {std::pair{"losses", "Losses"}, std::pair{"pictures", "Pictures"}, std::pair{"camera", "Camera"},
          std::pair{"contents", "Contents"}, std::pair{"commands", "Next"}}) {
        html += "<li><a href=\"#" + id + '-' + part + "\">" + title + "</a></li>";
    }
    return html + "</ul></nav>";
}

std::string section(const std::string& id, const char* part, const std::string& html) {
    return "<section class=\"part\" aria-labelledby=\"" + id + '-' + part + "\">" + html + "</section>\n";
}

// "3 scenes: 1 imports without a loss, ..."
std::string totals_html(const std::vector<WrittenScene>& scenes) {
    struct Total {
        const char* state;
        const char* title;
        std::int64_t count = 0;
    };
    std::array<Total, 4> totals{{{"good", "import, and nothing is lost"},
                                 {"loss", "import with losses"},
                                 {"incomplete", "lack footage"},
                                 {"refused", "do not import"}}};
    for (const WrittenScene& scene : scenes) {
        for (Total& total : totals) {
            total.count += total.state == std::string_view(verdict_class(scene)) ? 1 : 0;
        }
    }
    std::string html = "<ul class=\"totals\">";
    for (const Total& total : totals) {
        html += "<li class=\"" + std::string(total.state) + "\"><strong>" + grouped(total.count) +
                "</strong> " + total.title + "</li>";
    }
    return html + "</ul>";
}

// The scene's name stands beside it, so a screen reader may skip it.
std::string thumbnail_html(const WrittenScene& scene) {
    return scene.thumbnail.empty()
               ? std::string()
               : "<img class=\"thumbnail\" loading=\"lazy\" src=\"" + scene.thumbnail + "\" alt=\"\">";
}

std::string front_page(const std::vector<WrittenScene>& scenes) {
    std::string html =
        "<header class=\"front\" id=\"front\"><h1>" +
        counted(static_cast<std::int64_t>(scenes.size()), "scene", "scenes") + "</h1>" + totals_html(scenes) +
        "<div class=\"tools\" data-filter></div><div class=\"wide\" tabindex=\"0\" role=\"group\" "
        "aria-label=\"Scenes\"><table class=\"scenes\"><thead><tr>"
        "<th scope=\"col\">first frame</th><th scope=\"col\" data-sort=\"text\">scene</th><th "
        "scope=\"col\">verdict</th>"
        "<th scope=\"col\" class=\"number\" data-sort=\"number\">losses</th>"
        "<th scope=\"col\" class=\"number\" data-sort=\"number\">warnings</th>"
        "<th scope=\"col\" class=\"number\" data-sort=\"number\">footage missing</th>"
        "</tr></thead><tbody>";
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        const WrittenScene& scene = scenes[i];
        html += "<tr data-state=\"" + std::string(verdict_class(scene)) + "\"><td>" + thumbnail_html(scene) +
                "</td><th scope=\"row\"><a href=\"#s" + std::to_string(i + 1) + "\">" +
                html_name(scene_title(scene.file)) + "</a><span class=\"path\">" + html_name(scene.file) +
                "</span></th><td>" + verdict_html(scene) + "</td><td class=\"number\">" +
                grouped(scene.losses) + "</td><td class=\"number\">" + grouped(scene.warnings) +
                "</td><td class=\"number\">" + grouped(scene.missing) + "</td></tr>\n";
    }
    return html + "</tbody></table></div></header>\n";
}

// Writes the page's own text up to a mark, and goes on behind it. The text is in pieces.
class PageText {
  public:
    PageText() {
        for (const std::string_view piece : page::kReportPage) {
            text_ += piece;
        }
    }

    std::string_view until(std::string_view mark) {
        const std::size_t end = text_.find(mark, next_);
        if (end == std::string::npos) {
            throw std::logic_error("the page has no " + std::string(mark));
        }
        const std::string_view text = text_;
        const std::string_view part = text.substr(next_, end - next_);
        next_ = end + mark.size();
        return part;
    }

    [[nodiscard]] std::string_view rest() const {
        const std::string_view text = text_;
        return text.substr(next_);
    }

  private:
    std::string text_;
    std::size_t next_ = 0;
};

}  // namespace

std::size_t pictures_of_each(std::size_t most, std::size_t scenes) {
    constexpr std::size_t kMostOfAll = 48;
    return std::min(most, std::max<std::size_t>(1, kMostOfAll / scenes));
}

WrittenScene write_scene(const PageScene& scene, std::size_t index, bool alone) {
    WrittenScene written{scene.file, scene.code, verdict_sentence(scene)};
    written.losses = scene.count_of(Severity::loss);
    written.warnings = scene.count_of(Severity::warning);
    written.missing = scene.missing_footage();
    const PagePlace place{"s" + std::to_string(index + 1), alone ? 2 : 3};
    const std::string level = alone ? "1" : "2";
    written.html = "<article class=\"scene\" id=\"" + place.id + "\" data-scene=\"" + std::to_string(index) +
                   "\"><header>" + (alone ? "" : "<p class=\"back\"><a href=\"#front\">All scenes</a></p>") +
                   "<h" + level + ">" + html_name(scene_title(scene.file)) + "</h" + level +
                   "><p class=\"path\">" + html_name(scene.file) + "</p>" + verdict_html(written) +
                   facts_html(scene) + parts_html(place.id) + "</header>\n" +
                   section(place.id, "losses", losses_part(scene, place)) +
                   section(place.id, "pictures", pictures_part(scene, place)) +
                   section(place.id, "camera", camera_part(scene, place)) +
                   section(place.id, "contents", contents_part(scene, place)) +
                   section(place.id, "commands", commands_part(scene, place)) + "</article>\n";
    if (!alone && !scene.pictures.frames.empty()) {
        written.thumbnail = scene.pictures.frames.front().url;
    }
    written.data = page_data(scene);
    return written;
}

void write_report_page(const std::vector<WrittenScene>& scenes,
                       const std::function<void(std::string_view)>& write) {
    const bool alone = scenes.size() == 1;
    PageText text;
    write(text.until("<!--title-->"));
    write(alone ? html_text(scene_title(scenes.front().file))
                : counted(static_cast<std::int64_t>(scenes.size()), "scene", "scenes"));
    write(text.until("<!--scenes-->"));
    if (!alone) {
        write(front_page(scenes));
    }
    for (const WrittenScene& scene : scenes) {
        write(scene.html);
    }
    write(text.until("<!--data-->"));
    write("{\"schema\":" + std::to_string(kReportSchema) + ",\"scenes\":[");
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        write(i == 0 ? "\n" : ",\n");
        write(scenes[i].data);
    }
    write("\n]}");
    write(text.rest());
}

}  // namespace cli
