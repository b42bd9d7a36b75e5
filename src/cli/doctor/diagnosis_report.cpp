#include "cli/doctor/diagnosis.h"

#include <nlohmann/json.hpp>

#include "cli/doctor/bundle_files.h"
#include "cli/doctor/load_test.h"
#include "cli/report/diagnostic_json.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/text_table.h"
#include "embedded/json_values.h"
#include "text/printable.h"

namespace cli::doctor {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kDoctorSchema = 1;

std::string host_label(const Compatibility& host) {
    const std::string place = host.platform == "windows"     ? "Windows"
                              : host.platform == "macintosh" ? "macOS"
                                                             : "embedded host";
    return place + ", " + host.generation;
}

Cell answer_cell(Answer answer) {
    switch (answer) {
        case Answer::yes:
            return {"yes", Ink::green};
        case Answer::no:
            return {"no", Ink::red};
        case Answer::not_tried:
            break;
    }
    return {"not tried", Ink::yellow};
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + text::printable(word);
    }
    return text.empty() ? "none" : text;
}

std::string compatibility_text(const Diagnosis& diagnosis, const Paint& paint) {
    TextTable table;
    table.add({{"host", Ink::bold}, {"lists it", Ink::bold}, {"because", Ink::bold}});
    for (const Compatibility& host : diagnosis.compatibility) {
        table.add({{host_label(host)}, answer_cell(host.answer), {text::printable(host.reason)}});
    }
    std::string text;
    for (const std::string& line : table.lines(paint)) {
        text += line + '\n';
    }
    return text;
}

std::string image_text(const BinaryFacts& image) {
    return "  code        " + image.container + ' ' + image.kind + ", " + image.processor +
           (image.offset_bytes > 0 ? ", at byte " + std::to_string(image.offset_bytes) : std::string()) +
           '\n' + "    exports   " + joined(image.entries) + "; " + std::to_string(image.export_count) +
           " in all\n" + "    needs     " + joined(image.needed) + '\n';
}

std::string property_list_text(const PropertyListFacts& list) {
    std::string text = "  PiPL        " +
                       (list.number ? std::to_string(*list.number) : std::string("by name")) + " in " +
                       text::printable(last_name(list.file)) + '\n';
    for (const PropertyFacts& property : list.properties) {
        text += "    " + text::printable(property.key) + "      " + text::printable(property.value) + '\n';
    }
    return text;
}

std::string load_test_text(const LoadTest& load_test) {
    std::string text;
    for (const Registration& one : load_test.registered) {
        text += "    " + one.kind + ' ' + text::quoted(one.name) +
                (one.extensions.empty() ? std::string() : " for " + joined(one.extensions)) + '\n';
    }
    return text.empty() ? text : "  registers in the embedded host, " + load_test.generation + ":\n" + text;
}

std::string facts_text(const Diagnosis& diagnosis, const Paint& paint) {
    if (diagnosis.images.empty()) {
        return {};
    }
    std::string text = '\n' + paint(Ink::bold, text::printable(diagnosis.binary)) + '\n';
    for (const BinaryFacts& image : diagnosis.images) {
        text += image_text(image);
    }
    for (const PropertyListFacts& list : diagnosis.property_lists) {
        text += property_list_text(list);
    }
    if (!diagnosis.info_plist.empty()) {
        text += "  Info.plist\n";
        for (const auto& [key, value] : diagnosis.info_plist) {
            text += "    " + key + ' ' + text::printable(value) + '\n';
        }
    }
    for (const LoadTest& load_test : diagnosis.load_tests) {
        text += load_test_text(load_test);
    }
    return text;
}

Json compatibility_json(const Compatibility& host) {
    return Json{{"platform", host.platform},
                {"generation", host.generation},
                {"lists", host.answer == Answer::not_tried ? Json() : Json(host.answer == Answer::yes)},
                {"reason", embedded::json_text(host.reason)}};
}

Json image_json(const BinaryFacts& image) {
    return Json{{"container", image.container},         {"kind", image.kind},
                {"processor", image.processor},         {"offset_bytes", image.offset_bytes},
                {"entries", texts_json(image.entries)}, {"export_count", image.export_count},
                {"needed", texts_json(image.needed)}};
}

Json property_list_json(const PropertyListFacts& list) {
    Json properties = Json::array();
    for (const PropertyFacts& property : list.properties) {
        properties.push_back(Json{{"key", embedded::json_text(property.key)},
                                  {"value", embedded::json_text(property.value)},
                                  {"offset_bytes", property.offset_bytes}});
    }
    return Json{{"file", embedded::json_text(list.file)},
                {"number", list.number ? Json(*list.number) : Json()},
                {"properties", properties}};
}

template <class Items, class ToJson>
Json array_of(const Items& items, const ToJson& to_json) {
    Json array = Json::array();
    for (const auto& item : items) {
        array.push_back(to_json(item));
    }
    return array;
}

}  // namespace

std::string diagnosis_text(const Diagnosis& diagnosis, const Paint& paint) {
    std::string text = compatibility_text(diagnosis, paint);
    text += diagnosis.findings.empty() ? "" : "\n";
    for (const diagnostic::Diagnostic& finding : diagnosis.findings) {
        text += diagnostic_text(finding, paint);
    }
    return text + facts_text(diagnosis, paint);
}

std::string diagnosis_document(const Diagnosis& diagnosis) {
    Json plist = Json::object();
    for (const auto& [key, value] : diagnosis.info_plist) {
        plist[key] = embedded::json_text(value);
    }
    return Json{{"schema", kDoctorSchema},
                {"exit_code", static_cast<int>(diagnosis.code)},
                {"bundle", embedded::json_text(diagnosis.bundle)},
                {"verdicts", array_of(diagnosis.compatibility, compatibility_json)},
                {"findings", array_of(diagnosis.findings, diagnostic_json)},
                {"binary", diagnosis.images.empty() ? Json() : embedded::json_text(diagnosis.binary)},
                {"universal", diagnosis.universal},
                {"images", array_of(diagnosis.images, image_json)},
                {"property_lists", array_of(diagnosis.property_lists, property_list_json)},
                {"info_plist", plist},
                {"trials", array_of(diagnosis.load_tests, load_test_json)}}
               .dump(2) +
           '\n';
}

}  // namespace cli::doctor
