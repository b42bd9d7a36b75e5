// What users' scripts rely on, written down by hand: verbs, options, exit codes, diagnostic codes with their
// severity, and the members of every JSON document. Nothing here may change its meaning or go; what is new is
// added to the list in the same commit.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "image/codes.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/temporary_folder.h"
#include "texture/container/texture_fault.h"
#include "texture/value/alpha_use.h"
#include "texture/value/texture_report.h"

namespace {

using Json = nlohmann::ordered_json;
using testing::ElementsAreArray;
using testing::UnorderedElementsAreArray;

const std::string kExamples = VXR_EXAMPLES_DIR;

ProcessResult vxr(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), VXR_PROGRAM);
    return run_process(arguments);
}

std::vector<std::string> words_of(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

// The lines of a help page: what stands left of the descriptions, by the title of its section.
std::map<std::string, std::vector<std::string>> headings_of(const std::string& help) {
    std::map<std::string, std::vector<std::string>> sections;
    std::string title;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line[0] != ' ' && line.back() == ':') {
            title = line.substr(0, line.size() - 1);
        } else if (line.empty()) {
            title.clear();
        } else if (!title.empty() && title != "Examples" && line.compare(0, 2, "  ") == 0 && line[2] != ' ') {
            sections[title].push_back(line.substr(2, line.find("  ", 2) - 2));
        }
    }
    return sections;
}

struct PublishedVerb {
    const char* verb;                  ///< "" for the program itself
    std::vector<std::string> entries;  ///< verbs, arguments and options
};

const PublishedVerb kVerbs[] = {
    {"",
     {"import",
      "check",
      "relink",
      "collect",
      "export",
      "preview",
      "proof",
      "report",
      "texture info",
      "texture check",
      "texture sheet",
      "texture view",
      "texture thumbnail",
      "texture convert",
      "frame",
      "batch plan",
      "batch run",
      "batch submit",
      "batch status",
      "batch merge",
      "batch retry",
      "modules",
      "limits",
      "doctor",
      "help",
      "completion",
      "-h, --help",
      "--version"}},
    {"import",
     {"FILE", "--json", "--save FILE", "--log FILE", "--search DIR", "--map FROM=TO", "--bundle PATH",
      "--host, --host-version classic|today|MAJOR.MINOR", "--alpha-preference VALUE",
      "--still-duration LENGTH", "--name-encoding ENCODING", "--without-suite NAME:VERSION",
      "--fail FUNCTION:N:CODE", "--refuse-layer N", "-h, --help"}},
    {"check",
     {"FILE", "-r, --recursive", "--files-from FILE", "-0, --null", "--fail-on error|loss|warning|note|CODE",
      "--ignore CODE", "--strict", "--list-codes", "--read-pixels", "--search DIR", "--map FROM=TO", "--json",
      "-v, --verbose", "-q, --quiet", "--progress auto|never", "-j, --jobs N", "-h, --help"}},
    {"relink",
     {"SCENE", "--search DIR", "--map FROM=TO", "--prefer newest|largest|first", "--use JOB.toml",
      "--interactive", "-o, --output FILE", "--out-dir DIR", "--dry-run", "--save-map JOB.toml", "--json",
      "-h, --help"}},
    {"collect",
     {"SCENE", "-o, --output FOLDER|ZIP", "--trim", "--by copy|hardlink|reflink", "--dry-run", "--json",
      "--search DIR", "--map FROM=TO", "--prefer newest|largest|first", "-h, --help"}},
    {"export",
     {"SCENE",
      "-r, --recursive",
      "--files-from FILE",
      "-0, --null",
      "--to jsx|gltf|glb|usda",
      "-o, --output FILE",
      "--out-dir DIR",
      "--list-losses",
      "--json",
      "--as imported|corrected",
      "--without CORRECTION",
      "--list-corrections",
      "--cut-angle DEGREES",
      "--fps RATE",
      "--tolerance NUMBER",
      "--scale METRES",
      "--package ZIP",
      "--undo-safe",
      "--search DIR",
      "--map FROM=TO",
      "--bundle PATH",
      "-h, --help"}},
    {"texture", {"info", "check", "sheet", "view", "thumbnail", "convert", "-h, --help"}},
    {"texture info", {"FILE", "--json", "-h, --help"}},
    {"texture sheet", {"FILE", "-o, --output IMAGE", "-h, --help"}},
    {"texture view",
     {"FILE", "--alpha N|none", "--alpha-label LABEL", "--protocol auto|kitty|sixel|blocks", "-h, --help"}},
    {"texture thumbnail", {"IN", "OUT", "SIZE", "--alpha N|none", "--alpha-label LABEL", "-h, --help"}},
    {"texture check",
     {"FILE", "-r, --recursive", "--files-from FILE", "-0, --null", "--fail-on error|loss|warning|note|CODE",
      "--ignore CODE", "--strict", "--list-codes", "--json", "-v, --verbose", "-q, --quiet",
      "--progress auto|never", "-j, --jobs N", "-h, --help"}},
    {"texture convert",
     {"IN", "-o, --output FILE", "--to EXT", "--out-dir DIR", "--json", "--alpha N|all|none",
      "--convert-alpha", "--alpha-label LABEL", "-j, --jobs N", "-h, --help"}},
    {"frame",
     {"FILE", "-o, --output IMAGE", "--json", "--resolution full|half|third|quarter", "--size WIDTHxHEIGHT",
      "--fill BYTE", "--alpha-label LABEL", "--search DIR", "--map FROM=TO", "--bundle PATH",
      "--host, --host-version classic|today|MAJOR.MINOR", "-h, --help"}},
    {"batch", {"plan", "run", "status", "submit", "merge", "retry", "-h, --help"}},
    {"batch plan", {"JOB.toml", "-o, --output FOLDER", "-h, --help"}},
    {"batch run", {"JOB", "--part K/N", "-j, --jobs N", "-q, --quiet", "-h, --help"}},
    {"batch status", {"JOB", "-l, --list", "--json", "-h, --help"}},
    {"batch submit", {"JOB", "--on slurm|xargs", "--array-size N", "--partition NAME", "-h, --help"}},
    {"batch merge", {"JOB", "-o, --output FILE", "--report FILE.html", "-h, --help"}},
    {"batch retry", {"JOB", "--failed", "-h, --help"}},
    {"modules",
     {"--json", "--bundle PATH", "--host, --host-version classic|today|MAJOR.MINOR", "-h, --help"}},
    {"report",
     {"SCENE", "-r, --recursive", "--files-from FILE", "-0, --null", "-o, --output FILE.html", "--pictures N",
      "--progress auto|never", "--fail-on error|loss|warning|note|CODE", "--ignore CODE", "--search DIR",
      "--map FROM=TO", "-j, --jobs N", "--bundle PATH", "-h, --help"}},
    {"proof",
     {"SCENE", "--points N", "--json", "--at FRAME", "--picture FILE", "--for-after-effects FILE",
      "--compare TABLE", "--bundle PATH", "-h, --help"}},
    {"preview",
     {"SCENE",
      "-o, --output FILE",
      "--json",
      "--frame N",
      "--frames A-B",
      "--every K",
      "--comp NAME",
      "--linear",
      "--raw",
      "--fields upper|lower|both",
      "--overlay PARTS",
      "--plan",
      "--sheet",
      "--show",
      "--protocol auto|kitty|sixel|blocks",
      "--search DIR",
      "--map FROM=TO",
      "-j, --jobs N",
      "--bundle PATH",
      "-h, --help"}},
    {"limits", {"--json", "-h, --help"}},
    {"doctor",
     {"BUNDLE", "--json", "--list-codes", "--no-load", "--always-load", "--timeout SECONDS",
      "--load today|classic", "-h, --help"}},
    {"help", {"VERB", "--man", "-h, --help"}},
    {"completion", {"SHELL", "-h, --help"}},
};

TEST(PublishedInterface, VerbsAndTheirOptions) {
    for (const PublishedVerb& published : kVerbs) {
        std::vector<std::string> arguments = words_of(published.verb);
        arguments.emplace_back("--help");
        std::vector<std::string> entries;
        for (const auto& [title, headings] : headings_of(vxr(arguments).out)) {
            if (title != "Exit codes") {
                entries.insert(entries.end(), headings.begin(), headings.end());
            }
        }
        EXPECT_THAT(entries, UnorderedElementsAreArray(published.entries)) << published.verb;
    }
}

TEST(PublishedInterface, ExitCodes) {
    for (const PublishedVerb& published : kVerbs) {
        std::vector<std::string> arguments = words_of(published.verb);
        arguments.emplace_back("--help");
        EXPECT_THAT(headings_of(vxr(arguments).out)["Exit codes"],
                    ElementsAreArray({"0", "1", "2", "3", "4", "5"}))
            << published.verb;
    }
    const TemporaryFolder folder;
    const ProcessResult fine = vxr({"check", kExamples + "/square/courtyard_020.aec"});
    EXPECT_EQ(fine.exit_code, 0) << fine.err;
    EXPECT_EQ(vxr({"check", folder.write("refused.aec", "VORTAN XR COMPOSITION\nFPS abc\n")}).exit_code, 1);
    EXPECT_EQ(vxr({"check"}).exit_code, 2);
    EXPECT_EQ(vxr({"check", folder.path("missing.aec")}).exit_code, 3);
    const std::string missing =
        folder.write("missing_footage.aec",
                     "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 9 RANGE 10 FPS 25\n"
                     "COMPOSITION NRM \"c\" {\nFILE NRM STRAIGHT \"C:\\gone.tga\"\n}\n");
    EXPECT_EQ(vxr({"relink", "--dry-run", missing}).exit_code, 4);
    EXPECT_EQ(vxr({"check", missing}).exit_code, 4);
}

// Codes with their severity, as `--list-codes` lists them.
struct PublishedCodes {
    const char* verb;
    const char* errors;
    const char* losses;
    const char* warnings;
    const char* notes;
};

const PublishedCodes kCodes[] = {
    {"check",
     "cannot-open empty-file file-too-large read-failed out-of-memory unexpected-end word-cut-by-end "
     "unclosed-string word-too-long bad-header expected-setting unknown-setting missing-setting "
     "expected-number out-of-range expected-word expected-blend-mode expected-alpha-mode expected-name "
     "expected-block expected-entry unknown-entry nesting-too-deep expected-footage-mark missing-path "
     "unclosed-path empty-path unended-path-line path-without-folder expected-section cannot-read "
     "not-importable unsound-result footage-unreadable",
     "footage-missing footage-path-unread sequence-gap sequence-short sequence-offset sequence-mixed "
     "value-changed aspect-cut light-kind-changed angle-not-sent field-of-view range-reversed "
     "outside-host-range hold-drifts path-bends aim-undefined turn-too-far",
     "sequence-single-frame sequence-without-number sequence-stray footage-size premul-without-alpha "
     "alpha-uniform name-not-utf8 key-outside-range key-repeated layer-past-end word-ignored text-after-end "
     "name-equal-after-cut roll-reverses aspect-turns-camera",
     "name-cut shadow-kind-not-sent key-out-of-order name-repeated keys-all-equal"},
    {"doctor",
     "cannot-read not-a-binary not-a-bundle damaged wrong-kind wrong-processor wrong-name no-properties "
     "properties-damaged properties-number property-missing property-wrong entry-missing entry-not-exported "
     "plist-missing plist-unreadable plist-value executable-missing library-missing not-loadable "
     "load-crashed load-timed-out entry-failed",
     "",
     "plist-binary property-unusual one-generation processor-missing not-signed library-elsewhere "
     "registers-nothing",
     ""},
};

TEST(PublishedInterface, ListedCodes) {
    for (const PublishedCodes& published : kCodes) {
        std::map<std::string, std::vector<std::string>> found;
        std::istringstream lines(vxr({published.verb, "--list-codes"}).out);
        for (std::string line; std::getline(lines, line);) {
            const std::size_t colon = line.find(": ");
            const std::size_t second = line.find(": ", colon + 2);
            ASSERT_NE(second, std::string::npos) << line;
            found[line.substr(colon + 2, second - colon - 2)].push_back(line.substr(0, colon));
            EXPECT_GT(line.size(), second + 2) << "a meaning";
        }
        EXPECT_THAT(found["error"], ElementsAreArray(words_of(published.errors))) << published.verb;
        EXPECT_THAT(found["loss"], ElementsAreArray(words_of(published.losses))) << published.verb;
        EXPECT_THAT(found["warning"], ElementsAreArray(words_of(published.warnings))) << published.verb;
        EXPECT_THAT(found["note"], ElementsAreArray(words_of(published.notes))) << published.verb;
        EXPECT_EQ(found.size(), 4U) << published.verb << ": no other severity";
    }
}

// Codes about images and conversions, which no verb lists.
struct PublishedImageCode {
    image::Code code;
    const char* name;
    diagnostic::Severity severity;
};

const PublishedImageCode kImageCodes[] = {
    {image::Code::cannot_open, "cannot-open", diagnostic::Severity::error},
    {image::Code::not_written, "not-written", diagnostic::Severity::error},
    {image::Code::gave_up, "gave-up", diagnostic::Severity::error},
    {image::Code::not_an_image, "not-an-image", diagnostic::Severity::error},
    {image::Code::no_format, "no-format", diagnostic::Severity::error},
    {image::Code::no_texture, "no-texture", diagnostic::Severity::error},
    {image::Code::no_such_alpha, "no-such-alpha", diagnostic::Severity::error},
    {image::Code::channels_without_room, "channels-without-room", diagnostic::Severity::error},
    {image::Code::unsupported, "unsupported", diagnostic::Severity::error},
    {image::Code::channels_guessed, "channels-guessed", diagnostic::Severity::warning},
    {image::Code::depth_reduced, "depth-reduced", diagnostic::Severity::loss},
    {image::Code::colour_not_converted, "colour-not-converted", diagnostic::Severity::loss},
    {image::Code::names_left_out, "names-left-out", diagnostic::Severity::note},
    {image::Code::metadata_left_out, "metadata-left-out", diagnostic::Severity::note},
    {image::Code::images_left_out, "images-left-out", diagnostic::Severity::warning},
};

TEST(PublishedInterface, CodesOfImages) {
    for (const PublishedImageCode& published : kImageCodes) {
        EXPECT_STREQ(code_info(published.code).name, published.name);
        EXPECT_EQ(code_info(published.code).severity, published.severity) << published.name;
    }
}

// Codes of the texture reader and writer of this severity, in the order of their tables.
template <typename Rows>
std::string names_of(const Rows& rows, diagnostic::Severity severity) {
    std::string names;
    for (const auto& row : rows) {
        if (row.info.severity == severity) {
            names += (names.empty() ? "" : " ") + std::string(row.info.name);
        }
    }
    return names;
}

TEST(PublishedInterface, CodesOfTextures) {
    EXPECT_EQ(
        names_of(texture_faults(), diagnostic::Severity::error),
        "cannot-open empty-file not-a-texture header-not-written short-transfer block-too-long wrong-tag "
        "stray-value truncated wrong-direction negative-size unsupported over-limit refused-picture "
        "out-of-memory no-picture bad-value");
    EXPECT_EQ(texture_faults().size(), 17U) << "all of them errors";
    EXPECT_EQ(names_of(texture_notices(), diagnostic::Severity::loss),
              "row-cleared row-repeated outside-picture second-header cut-off rows-missing");
    EXPECT_EQ(names_of(texture_notices(), diagnostic::Severity::warning),
              "chunk-skipped layer-without-alpha");
    EXPECT_EQ(texture_notices().size(), 8U) << "and no others";
    EXPECT_EQ(names_of(alpha_uses(), diagnostic::Severity::note),
              "alpha-straight alpha-premultiplied alpha-opaque");
}

// The members of every object of a document, in one line for each place where objects are: "footage[]:
// id kind ...". Members that several objects at one place have are united.
using Members = std::map<std::string, std::set<std::string>>;

void collect(const Json& value, const std::string& place, Members& members) {
    if (value.is_object()) {
        for (const auto& [key, member] : value.items()) {
            members[place].insert(key);
            collect(member, place.empty() ? key : place + '.' + key, members);
        }
    } else if (value.is_array()) {
        for (const Json& element : value) {
            collect(element, place + "[]", members);
        }
    }
}

using Published = std::map<std::string, std::string>;

// Documents whose meaning has changed once; all others have kept theirs.
const std::set<std::string> kSecond{"import", "frame", "check", "texture check"};

// Every published member occurs in one of the documents, and no other does.
void expect_members(const std::vector<std::string>& documents, const Published& published,
                    const std::string& name) {
    Members found;
    for (const std::string& document : documents) {
        const Json json = Json::parse(document, nullptr, false);
        ASSERT_FALSE(json.is_discarded()) << name << ": " << document.substr(0, 200);
        EXPECT_EQ(json.at("schema"), kSecond.contains(name) ? 2 : 1) << name;
        collect(json, "", found);
    }
    Members expected;
    for (const auto& [place, members] : published) {
        const std::vector<std::string> words = words_of(members);
        expected[place] = std::set<std::string>(words.begin(), words.end());
    }
    for (const auto& [place, members] : expected) {
        EXPECT_EQ(found[place], members) << name << ": " << place;
    }
    for (const auto& [place, members] : found) {
        EXPECT_TRUE(expected.count(place) > 0) << name << ": " << place << " is not published";
    }
}

Published joined(std::initializer_list<Published> parts) {
    Published all;
    for (const Published& part : parts) {
        all.insert(part.begin(), part.end());
    }
    return all;
}

Published diagnostics_at(const std::string& place) {
    return {{place, "severity code at reason within effects count source_line limit"},
            {place + ".at", "file line column offset_bytes"},
            {place + ".limit", "id name value unit"}};
}

Published summary_at(const std::string& place) {
    return {{place, "files ok incomplete refused unreadable ignored codes"},
            {place + ".codes[]", "code severity count files most"},
            {place + ".codes[].most[]", "file count"}};
}

Published time_at(const std::string& place) {
    return {{place, "value scale"}};
}

Published ratio_at(const std::string& place) {
    return {{place, "num den"}};
}

const char* const kRefused = "VORTAN XR COMPOSITION\nFPS abc\n";

std::string too_long_a_word() {
    return "VORTAN XR COMPOSITION\nFPS " + std::string(600, 'x') + "\n";
}

TEST(PublishedInterface, JsonOfCheck) {
    const TemporaryFolder folder;
    expect_members(
        {vxr({"check", "--json", folder.write("a.aec", kRefused), folder.write("b.aec", too_long_a_word()),
              folder.path("missing.aec")})
             .out},
        joined({{{"", "schema exit_code files summary"}, {"files[]", "file verdict exit_code diagnostics"}},
                diagnostics_at("files[].diagnostics[]"),
                summary_at("summary")}),
        "check");
}

TEST(PublishedInterface, JsonOfTextureCheck) {
    Published diagnostics = diagnostics_at("files[].diagnostics[]");
    diagnostics.erase("files[].diagnostics[].limit");  // null: no example is larger than is read
    expect_members(
        {vxr({"texture", "check", "--json", kExamples + "/textures/every_flag.txl"}).out},
        joined({{{"", "schema exit_code files summary"}, {"files[]", "file verdict exit_code diagnostics"}},
                diagnostics,
                summary_at("summary")}),
        "texture check");
}

TEST(PublishedInterface, JsonOfTextureInfo) {
    const char* const kChunk = "chunk id version offset_bytes size_bytes handled layer rows chunks";
    const char* const kRows = "x y count rows channels coding";
    const char* const kCoding =
        "channel raw packed raw_short packed_bad unknown_flag coded_bytes decoded_bytes";
    Published published{
        {"", "schema exit_code files"},
        {"files[]",
         "file verdict exit_code size_bytes width_px height_px mode color_mode alphas alpha_use "
         "decoded_bytes coded_bytes compression_ratio chunks diagnostics"},
        {"files[].alpha_use", "code pixels_above_alpha percent"}};
    std::string chunk = "files[]";
    for (int depth = 0; depth < 5; ++depth) {  // 502 > 599 > 110100 > 501 > TaLy
        chunk += ".chunks[]";
        published[chunk] = kChunk;
    }
    published[chunk + ".layer"] = "name color_mode attributes";
    for (const std::string& rows : {std::string("files[].chunks[].chunks[].rows"), chunk + ".rows"}) {
        published[rows] = kRows;
        published[rows + ".coding[]"] = kCoding;
    }
    expect_members({vxr({"texture", "info", "--json", kExamples + "/textures/photo_rgb_alpha.txl"}).out},
                   published, "texture info");
}

TEST(PublishedInterface, JsonOfTextureConvert) {
    const TemporaryFolder folder;
    Published diagnostics = diagnostics_at("files[].diagnostics[]");
    diagnostics.erase("files[].diagnostics[].limit");
    expect_members(
        {vxr({"texture", "convert", "--json", folder.path("missing.txl"), "-o", folder.path("a.txl")}).out},
        joined({{{"", "schema exit_code files"}, {"files[]", "file output converted exit_code diagnostics"}},
                diagnostics}),
        "texture convert");
}

TEST(PublishedInterface, JsonOfLimits) {
    expect_members({vxr({"limits", "--json"}).out},
                   {{"", "schema exit_code limits"}, {"limits[]", "id name value unit rule reason beyond"}},
                   "limits");
}

TEST(PublishedInterface, JsonOfBatchStatus) {
    const TemporaryFolder folder;
    folder.write("a.aec", "VORTAN XR COMPOSITION\nFPS abc\n");
    const std::string job = folder.write("job.toml", "[[task]]\nverb = 'check'\nfiles = ['a.aec']\n");
    ASSERT_EQ(vxr({"batch", "plan", job}).exit_code, 0);
    EXPECT_EQ(vxr({"batch", "run", folder.path("job.batch")}).exit_code, 1);
    expect_members(
        {vxr({"batch", "status", "--json", folder.path("job.batch")}).out},
        {{"", "schema exit_code counts items"},
         {"counts",
          "items fine incomplete different refused failed misused crashed too-long too-large not-done"},
         {"items[]", "id input output standing"}},
        "batch status");
}

TEST(PublishedInterface, JsonOfModules) {
    expect_members({vxr({"modules", "--json"}).out},
                   {{"", "schema exit_code modules"},
                    {"modules[]",
                     "name signature extensions flags flag_words create_type create_creator max_width_px "
                     "max_height_px"}},
                   "modules");
}

TEST(PublishedInterface, JsonOfDoctor) {
    Published findings = diagnostics_at("findings[]");
    findings.erase("findings[].limit");
    expect_members({vxr({"doctor", "--json", VXR_BUNDLE_PATH}).out,
                    vxr({"doctor", "--json", VXR_PROJECT_DIR "/README.md"}).out},
                   joined({{{"",
                             "schema exit_code bundle verdicts findings binary universal images "
                             "property_lists info_plist trials"},
                            {"verdicts[]", "platform generation lists reason"},
                            {"images[]", "container kind processor offset_bytes entries export_count needed"},
                            {"trials[]", "generation end reason registered messages"},
                            {"trials[].registered[]", "kind name extensions"}},
                           findings}),
                   "doctor");
}

// The embedded host's project, as `import` and `frame` write it.
Published project() {
    return joined({
        {{"items[]", "id kind name parent_folder content"},
         {"undo_steps[]", "name changes closed"},
         {"discipline", "clean problems notes dropped"}},
    });
}

Published footage() {
    const std::string interpretation = "footage[].interpretation";
    return joined({
        {{"footage[]",
          "id kind item path name width height channels bits_per_channel has_alpha alpha_premultiplied "
          "duration sequence interpretation_set interpretation in_spec"},
         {"footage[].sequence", "pattern first last count padding gaps"},
         {interpretation,
          "interlace alpha pulldown_phase loop pixel_aspect native_fps conform_fps depth motion"},
         {interpretation + ".interlace", "signature version type order reserved"},
         {interpretation + ".alpha", "flags red green blue"},
         {interpretation + ".loop", "loops reserved"}},
        time_at("footage[].duration"),
        ratio_at(interpretation + ".pixel_aspect"),
    });
}

Published compositions() {
    const std::string layer = "compositions[].layers[]";
    return joined({
        {
            {"compositions[]", "id item name width height pixel_aspect duration frame_rate layers"},
            {layer,
             "id kind name source_item transfer timing_set time_mode in_point duration offset flags is_3d "
             "looks_at_point_of_interest light_type center streams"},
            {layer + ".transfer", "mode flags track_matte"},
            {layer + ".center", "x y"},
            {layer + ".streams[]", "kind name shape value_set value keyframes"},
            {layer + ".streams[].value", "x y z alpha red green blue"},
        },
        ratio_at("compositions[].pixel_aspect"),
        time_at("compositions[].duration"),
        ratio_at("compositions[].frame_rate"),
        time_at(layer + ".in_point"),
        time_at(layer + ".duration"),
        time_at(layer + ".offset"),
    });
}

Published in_specs() {
    return joined({
        {{"in_specs[]",
          "id path module options depth duration duration_from_module width height dimensions_from_module "
          "size_bytes native_fps alpha_label type_text sub_type_text disposed"},
         {"in_specs[].alpha_label", "version flags red green blue alpha_type"}},
        time_at("in_specs[].duration"),
    });
}

TEST(PublishedInterface, JsonOfImport) {
    const TemporaryFolder folder;
    const std::string settings = "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 9 RANGE 10 FPS 25\n";
    const std::string long_name =
        folder.write("name.aec", settings + "COMPOSITION NRM \"" + std::string(40, 'n') + "\" { }\n");
    expect_members(
        {vxr({"import", "--json", kExamples + "/square/courtyard_020.aec"}).out,
         vxr({"import", "--json", kExamples + "/interlaced/lantern_010.aec"}).out,
         vxr({"import", "--json", kExamples + "/keyframes/orbit_030.aec"}).out,
         vxr({"import", "--json", kExamples + "/textured/shelf_040.aec"}).out,
         // The note about a cut name in a classic host, a message, a preference, and diagnostics with and
         // without a limit.
         vxr({"import", "--json", "--host", "classic", long_name}).out,
         vxr({"import", "--json", "--alpha-preference", "1", "--fail", "AEGP_CreateComp:1:4",
              kExamples + "/square/courtyard_020.aec"})
             .out,
         vxr({"import", "--json", folder.write("a.aec", kRefused)}).out,
         vxr({"import", "--json", folder.write("b.aec", too_long_a_word())}).out},
        joined({project(),
                footage(),
                compositions(),
                in_specs(),
                {{"",
                  "schema items footage compositions in_specs undo_steps preferences messages discipline "
                  "import"},
                 {"preferences[]", "section key value"},
                 {"preferences[].value", "bytes"},
                 {"messages[]", "text code"},
                 {"discipline.notes[]", "breach call where text"},
                 {"import",
                  "file exit_code finished importable result missing_suite problems notes missing_footage "
                  "diagnostics"},
                 {"import.missing_footage[]", "path tried placeholder"}},
                diagnostics_at("import.diagnostics[]")}),
        "import");
}

TEST(PublishedInterface, JsonOfFrame) {
    const TemporaryFolder folder;
    const std::string texture = kExamples + "/textures/photo_rgb_alpha.txl";
    expect_members(
        {vxr({"frame", "--json", texture, "-o", folder.path("a.tga")}).out},
        joined({in_specs(),
                {{"",
                  "schema items footage compositions in_specs undo_steps preferences messages discipline "
                  "frame"},
                 {"items[]", "id kind name parent_folder content"},
                 {"discipline", "clean problems notes dropped"},
                 {"frame",
                  "file exit_code module open_result draw_result width_px height_px output problems"}}}),
        "frame");
}

TEST(PublishedInterface, MembersOfTheCallLog) {
    const TemporaryFolder folder;
    const std::string log = folder.path("calls.jsonl");
    ASSERT_EQ(vxr({"import", "--log", log, kExamples + "/keyframes/orbit_030.aec"}).exit_code, 0);
    std::istringstream lines(content_of(log));
    std::size_t calls = 0;
    for (std::string line; std::getline(lines, line); ++calls) {
        std::vector<std::string> keys;
        const Json call = Json::parse(line);
        for (const auto& [key, value] : call.items()) {
            keys.push_back(key);
        }
        EXPECT_THAT(keys, ElementsAreArray({"n", "suite", "version", "function", "args", "out", "result"}));
    }
    EXPECT_GT(calls, 0U);
}

}  // namespace
