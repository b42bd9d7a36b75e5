#include "cli/handover/correction_options.h"

#include "cli/options.h"
#include "text/similar.h"

namespace cli {
namespace {

using handover::CorrectionInfo;

// Between these lies every rate, and what a person may mean by an angle or a tolerance.
constexpr double kMostTurn_degrees = 180;
constexpr double kLeastRate_fps = 1;
constexpr double kMostRate_fps = 99;
constexpr double kMostTolerance = 1e6;

std::vector<std::string> correction_names() {
    std::vector<std::string> names;
    for (const CorrectionInfo& info : handover::correction_table()) {
        names.emplace_back(info.name);
    }
    return names;
}

std::string correction_problem(const std::string& name) {
    if (handover::correction_named(name)) {
        return {};
    }
    const std::string similar = text::did_you_mean(name, correction_names());
    return '"' + name + "\" is no correction" +
           (similar.empty() ? "; --list-corrections lists them" : similar);
}

}  // namespace

handover::Version CorrectionChoices::version() const {
    return as == "imported" ? handover::Version::imported : handover::Version::corrected;
}

handover::HandoverOptions CorrectionChoices::handover_options() const {
    handover::HandoverOptions options;
    for (const std::string& name : without) {
        options.left_out.insert(*handover::correction_named(name));
    }
    options.cut_angle_degrees = *parse_option_decimal(cut_angle_degrees);
    options.tolerance = *parse_option_decimal(tolerance);
    if (!rate_fps.empty()) {
        options.rate_fps = *parse_option_decimal(rate_fps);
    }
    return options;
}

std::string CorrectionChoices::contradiction() const {
    if (version() == handover::Version::imported && !without.empty()) {
        return "--without is for --as corrected: an imported project has no corrections";
    }
    if (version() == handover::Version::imported && !rate_fps.empty()) {
        return "--fps is for --as corrected: an imported project has the scene's rate";
    }
    return {};
}

void add_correction_options(Options& options, CorrectionChoices& choices, const std::string& group) {
    options
        .option("--as", choices.as,
                "the project as the plug-in builds it, or with corrections that make it what the scene says")
        .value_name("imported|corrected")
        .choices({"imported", "corrected"})
        .show_default()
        .group(group);
    options.option("--without", choices.without, "leave out this correction; may be repeated")
        .value_name("CORRECTION")
        .one_value_at_a_time()
        .check(correction_problem)
        .group(group);
    options
        .option("--cut-angle", choices.cut_angle_degrees,
                "a camera that turns by more degrees than this from one frame to the next is cut")
        .value_name("DEGREES")
        .show_default()
        .decimal_range(0, kMostTurn_degrees)
        .group(group);
    options
        .option("--fps", choices.rate_fps,
                "the frame rate, for scenes written with whole frames a second: 29.97 instead of 29")
        .value_name("RATE")
        .decimal_range(kLeastRate_fps, kMostRate_fps)
        .group(group);
    options
        .option("--tolerance", choices.tolerance,
                "leave out keys whose values the line between others misses by no more than this; 0 for "
                "those that it does not miss in single precision")
        .value_name("NUMBER")
        .show_default()
        .decimal_range(0, kMostTolerance)
        .group(group);
}

}  // namespace cli
