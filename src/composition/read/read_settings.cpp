#include "composition/read/read_settings.h"

#include <string>

#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"

namespace {

// A keyword with one or two whole numbers, which have the same lower limit.
struct IntegerSetting {
    const char* keyword;
    A_long tagProjectSettings::*first;
    A_long tagProjectSettings::*second;  // null for one number
    A_long minimum;
    const char* allowed;
};

constexpr const char* kPositive = "greater than 0";
constexpr const char* kNotNegative = "of 0 or more";

// All of them are required.
constexpr IntegerSetting kIntegerSettings[] = {
    {"RESOLUTION", &tagProjectSettings::width, &tagProjectSettings::height, 1, kPositive},
    {"FROM", &tagProjectSettings::from, nullptr, 0, kNotNegative},
    {"TO", &tagProjectSettings::to, nullptr, 0, kNotNegative},
    {"RANGE", &tagProjectSettings::range, nullptr, 1, kPositive},
    {"FPS", &tagProjectSettings::fps, nullptr, 1, kPositive},
};

constexpr WordValue kFieldWords[] = {{"NONE", kFieldsNone}, {"EVEN", kFieldsEven}, {"ODD", kFieldsOdd}};

// Limits of the pixel aspect ratio, compared in single precision, so 0.01 as written is within them.
constexpr float kMinAspect = 0.01F;
constexpr float kMaxAspect = 100.0F;

int read_integer(ASCIIParser& p, const IntegerSetting& setting, tagProjectSettings& settings) {
    ValueReader values(p, setting.keyword);
    for (A_long tagProjectSettings::*const member : {setting.first, setting.second}) {
        if (member == nullptr) {
            break;
        }
        if (values.read_long(settings.*member) == 0) {
            return 0;
        }
        if (settings.*member < setting.minimum) {
            return values.out_of_range(setting.allowed);
        }
    }
    return 1;
}

int read_aspect(ASCIIParser& p, tagProjectSettings& settings) {
    ValueReader values(p, "ASPECT");
    if (values.read_real(settings.aspect) == 0) {
        return 0;
    }
    const bool allowed = settings.aspect >= kMinAspect && settings.aspect <= kMaxAspect;
    return allowed ? 1 : values.out_of_range("from 0.01 to 100");
}

int read_optional(ASCIIParser& p, tagProjectSettings& settings, bool& known) {
    known = true;
    if (is_word(p, "ASPECT")) {
        return read_aspect(p, settings);
    }
    if (is_word(p, "LOCAL")) {
        const ValueReader no_values(p, "LOCAL");
        settings.local = 1;
        return 1;
    }
    if (is_word(p, "FIELDS")) {
        return ValueReader(p, "FIELDS").read_word(kFieldWords, settings.fields);
    }
    known = false;
    return 1;
}

constexpr unsigned kAllSeen = (1U << std::size(kIntegerSettings)) - 1;

// Reads one setting. `seen` has one bit for each row of kIntegerSettings. `known` becomes false for any other
// word.
int read_setting(ASCIIParser& p, tagProjectSettings& settings, unsigned& seen, bool& known) {
    for (std::size_t i = 0; i < std::size(kIntegerSettings); ++i) {
        if (is_word(p, kIntegerSettings[i].keyword)) {
            seen |= 1U << i;
            known = true;
            return read_integer(p, kIntegerSettings[i], settings);
        }
    }
    return read_optional(p, settings, known);
}

int fail_missing(const ASCIIParser& p, unsigned seen) {
    if (p.Observer() == nullptr) {
        return 0;
    }
    std::string missing;
    for (std::size_t i = 0; i < std::size(kIntegerSettings); ++i) {
        if ((seen & (1U << i)) == 0) {
            missing += (missing.empty() ? "" : ", ") + std::string(kIntegerSettings[i].keyword);
        }
    }
    return fail(p, ReadErrorCode::missing_setting, missing + " before COMPOSITION");
}

}  // namespace

int read_settings(ASCIIParser& p, tagProjectSettings& settings) {
    unsigned seen = 0;
    bool known = true;
    while (known) {
        if (p.nextsym(0) != kTokenIdentifier) {
            return fail(p, ReadErrorCode::expected_setting, "a setting or COMPOSITION");
        }
        if (read_setting(p, settings, seen, known) == 0) {
            return 0;
        }
    }
    if (!is_word(p, "COMPOSITION")) {
        return fail(p, ReadErrorCode::unknown_setting, "a setting or COMPOSITION");
    }
    return seen == kAllSeen ? 1 : fail_missing(p, seen);
}
