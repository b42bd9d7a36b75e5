#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "cli/page/html.h"
#include "cli/page/page_parts.h"
#include "handover/correction.h"

namespace cli {
namespace {

/// Places of one code that are shown at once; the others can be opened.
constexpr std::size_t kOpenPlaces = 5;
/// A code with more places is cut: nobody reads on, and a page has to open quickly. `vxr check` has them all.
constexpr std::size_t kMostPlaces = 2000;

/// What was found of one code, in the order of the file.
struct CodeGroup {
    std::vector<const Diagnostic*> places;
    std::int64_t count = 0;
};

// The most serious first, and then in the order in which codes first occur.
std::vector<CodeGroup> by_code(const std::vector<Diagnostic>& diagnostics) {
    std::vector<CodeGroup> groups;
    std::map<std::string, std::size_t> index;
    for (const Diagnostic& one : diagnostics) {
        const auto [found, added] = index.emplace(one.code.name(), groups.size());
        if (added) {
            groups.emplace_back();
        }
        groups[found->second].places.push_back(&one);
        groups[found->second].count += one.count;
    }
    std::stable_sort(groups.begin(), groups.end(), [](const CodeGroup& a, const CodeGroup& b) {
        return a.places.front()->severity() < b.places.front()->severity();
    });
    return groups;
}

// The word at the place stands out.
std::size_t word_length(std::string_view text) {
    if (text.starts_with('"')) {
        const std::size_t end = text.find('"', 1);
        return end == std::string_view::npos ? text.size() : end + 1;
    }
    return std::min(text.find(' '), text.size());
}

std::string source_html(const Diagnostic& diagnostic) {
    const std::optional<SourceExcerpt> excerpt = source_excerpt(diagnostic);
    if (!excerpt) {
        return {};
    }
    const std::string_view from = excerpt->from;
    const std::size_t length = word_length(from);
    return "<code class=\"source\"><span class=\"line\">" + std::to_string(*diagnostic.at.line) +
           "</span><bdi dir=\"ltr\">" + html_text(excerpt->before) + "<mark>" +
           html_text(from.substr(0, length)) + "</mark>" + html_text(from.substr(length)) + "</bdi></code>";
}

std::string place_html(const Diagnostic& diagnostic, const std::vector<std::string>* said) {
    std::string html = "<li><p class=\"reason\">" + html_name(diagnostic.reason);
    if (diagnostic.at.line && !diagnostic.source_line) {
        html += " <span class=\"where\">line " + grouped(*diagnostic.at.line) + "</span>";
    }
    if (diagnostic.count > 1) {
        html += " <span class=\"where\">" + counted(diagnostic.count, "time", "times") +
                "; the first is shown</span>";
    }
    html += "</p>" + source_html(diagnostic);
    if (!diagnostic.within.empty()) {
        html += "<p class=\"within\">in ";
        // Innermost first, as a person says it.
        for (auto block = diagnostic.within.rbegin(); block != diagnostic.within.rend(); ++block) {
            html += (block == diagnostic.within.rbegin() ? "" : ", in ") + html_name(*block);
        }
        html += "</p>";
    }
    if (said == nullptr || *said != diagnostic.effects) {
        for (const std::string& effect : diagnostic.effects) {
            html += "<p class=\"effect\">" + html_name(effect) + "</p>";
        }
    }
    return html + "</li>";
}

std::string group_html(const CodeGroup& group, const PagePlace& place) {
    const Diagnostic& first = *group.places.front();
    const char* const severity = diagnostic::severity_name(first.severity());
    const std::string level = std::to_string(place.level + 1);
    std::string html = "<section class=\"finding " + std::string(severity) + "\" data-severity=\"" +
                       severity + "\"><h" + level + ">" + severity_mark(first.severity()) + " " +
                       html_text(first.code.meaning()) + "</h" + level + "><p class=\"code\"><code>" +
                       html_text(first.code.name()) + "</code> <span class=\"where\">" +
                       counted(group.count, "place", "places") + "</span></p><ul class=\"places\">";
    const std::size_t shown = std::min(group.places.size(), kMostPlaces);
    const std::vector<std::string>* said = nullptr;
    for (std::size_t i = 0; i < shown; ++i) {
        if (i == kOpenPlaces) {
            html += "</ul><details><summary>" +
                    counted(static_cast<std::int64_t>(shown - i), "more place", "more places") +
                    "</summary><ul class=\"places\">";
            said = nullptr;
        }
        html += place_html(*group.places[i], said);
        said = &group.places[i]->effects;
    }
    html += shown > kOpenPlaces ? "</ul></details>" : "</ul>";
    if (shown < group.places.size()) {
        html += "<p class=\"where\">and " + grouped(static_cast<std::int64_t>(group.places.size() - shown)) +
                " more, which <code>vxr check --verbose</code> shows</p>";
    }
    return html + "</section>";
}

std::string target_names(handover::Targets targets) {
    std::string names;
    const auto add = [&](handover::Target target, const char* name) {
        if (targets.has(target)) {
            names += (names.empty() ? "" : ", ") + std::string(name);
        }
    };
    add(handover::Target::jsx, "script");
    add(handover::Target::gltf, "glTF");
    add(handover::Target::usda, "USD");
    return names;
}

std::string corrections_html(const PageScene& scene, const PagePlace& place) {
    if (scene.corrections.empty()) {
        return {};
    }
    std::string html =
        subheading(place, "What vxr export corrects") +
        "<p>The plug-in's rules are old. A script or 3D file that <code>vxr export</code> writes "
        "says what the scene says instead:</p>" +
        wide_table("Corrections") + row_header("correction|#places|why|for example") + "<tbody>";
    for (const handover::AppliedCorrection& applied : scene.corrections) {
        const handover::CorrectionInfo& info =
            handover::correction_table().at(static_cast<std::size_t>(applied.correction));
        html += "<tr><th scope=\"row\"><code>" + html_text(info.name) + "</code></th><td class=\"number\">" +
                grouped(applied.count) + "</td><td>" + html_text(info.reason) + "</td><td>" +
                html_name(applied.example) + "</td></tr>";
    }
    return html + "</tbody></table></div>";
}

std::string export_losses_html(const PageScene& scene, const PagePlace& place) {
    if (scene.losses.empty()) {
        return {};
    }
    std::string html = subheading(place, "What exported files lose all the same") +
                       wide_table("Losses of exported files") + row_header("what|where|#line") + "<tbody>";
    const std::size_t shown = std::min(scene.losses.size(), kMostPlaces);
    for (std::size_t i = 0; i < shown; ++i) {
        const handover::Loss& loss = scene.losses[i];
        html += "<tr><th scope=\"row\">" + severity_mark(loss.what.severity()) + " " +
                html_name(loss.what.reason) + "</th><td>" + target_names(loss.targets) +
                "</td><td class=\"number\">" +
                (loss.what.at.line ? grouped(*loss.what.at.line) : std::string()) + "</td></tr>";
    }
    html += "</tbody></table></div>";
    if (shown < scene.losses.size()) {
        html += "<p class=\"where\">and " + grouped(static_cast<std::int64_t>(scene.losses.size() - shown)) +
                " more, which <code>vxr export --list-losses</code> shows</p>";
    }
    return html;
}

std::string losses_words(std::int64_t losses) {
    return losses == 1 ? "One loss changes the picture or the motion."
                       : grouped(losses) + " losses change the picture or the motion.";
}

}  // namespace

std::string part_heading(const PagePlace& place, std::string_view part, std::string_view title) {
    const std::string level = std::to_string(place.level);
    return "<h" + level + " id=\"" + place.id + '-' + std::string(part) + "\">" + html_text(title) + "</h" +
           level + ">\n";
}

std::string subheading(const PagePlace& place, std::string_view title) {
    const std::string level = std::to_string(place.level + 1);
    return "<h" + level + ">" + html_text(title) + "</h" + level + ">\n";
}

std::string wide_table(std::string_view label, std::string_view css_class) {
    return "<div class=\"wide\" tabindex=\"0\" role=\"group\" aria-label=\"" + html_text(label) +
           (css_class.empty() ? "\"><table>" : "\"><table class=\"" + std::string(css_class) + "\">");
}

std::string row_header(std::string_view columns) {
    std::string html = "<thead><tr>";
    while (!columns.empty()) {
        const std::size_t end = std::min(columns.find('|'), columns.size());
        std::string_view column = columns.substr(0, end);
        const bool number = column.starts_with('#');
        column.remove_prefix(number ? 1 : 0);
        html += std::string("<th scope=\"col\"") + (number ? " class=\"number\">" : ">") + html_text(column) +
                "</th>";
        columns.remove_prefix(std::min(end + 1, columns.size()));
    }
    return html + "</tr></thead>";
}

std::string severity_mark(Severity severity) {
    const std::string name = diagnostic::severity_name(severity);
    return "<span class=\"mark " + name + "\">" + name + "</span>";
}

std::string verdict_sentence(const PageScene& scene) {
    const std::string refused =
        scene.imported && scene.code == ExitCode::refused ? " The rules of its job refuse it." : "";
    if (scene.code == ExitCode::cannot_read_or_write && !scene.imported) {
        return "This scene cannot be read.";
    }
    if (!scene.imported) {
        return scene.problems.empty() ? "After Effects imports nothing from this scene."
                                      : "The import of this scene does not finish.";
    }
    const std::int64_t losses = scene.count_of(Severity::loss);
    if (const std::int64_t missing = scene.missing_footage(); missing > 0) {
        const std::string rest = losses > missing ? " In all, " + losses_words(losses) : std::string();
        return missing == 1
                   ? "It imports, but one footage file is missing; a placeholder stands in for it." + rest +
                         refused
                   : "It imports, but " + grouped(missing) +
                         " footage files are missing; placeholders stand in for them." + rest + refused;
    }
    return (losses == 0 ? "It imports, and nothing is lost." : "It imports. " + losses_words(losses)) +
           refused;
}

std::string losses_part(const PageScene& scene, const PagePlace& place) {
    std::string html = part_heading(place, "losses", "Does it import, and is anything lost?");
    for (const std::string& problem : scene.problems) {
        html += "<p class=\"problem\">" + html_name(problem) + "</p>";
    }
    if (scene.diagnostics.empty() && scene.problems.empty()) {
        html += "<p>There is nothing to say: everything arrives as the scene has it.</p>";
    }
    if (!scene.diagnostics.empty()) {
        html +=
            "<p class=\"legend\">A loss changes the picture or the motion. A warning may surprise, and only "
            "you can tell. A note is harmless.</p><div class=\"findings\">";
        for (const CodeGroup& group : by_code(scene.diagnostics)) {
            html += group_html(group, place);
        }
        html += "</div>";
    }
    return html + corrections_html(scene, place) + export_losses_html(scene, place);
}

}  // namespace cli
