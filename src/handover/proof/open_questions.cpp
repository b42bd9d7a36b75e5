#include "handover/proof/open_questions.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "text/plain_number.h"

namespace proof {
namespace {

// What is nearer than this is the same. In every trial, two answers are farther apart than twice as much.
constexpr double kSame_px = 0.5;
constexpr double kSame_color = 0.02;  // five steps of eight bits: each of a few layers rounds

using TrialLandings = std::array<std::array<double, 2>, 2>;

// A way in which After Effects may put the two points of a trial.
struct TrialWay {
    const char* answer;
    const char* trial;
    TrialLandings landings;
};

// src/handover/jsx/runtime/trials.jsx has the trials; these are computed by hand.
//
// aspect: from (0, 0, 0) to (1000, 0, 1000), with a zoom of 1000, in pixels twice as wide as high. Where a
// unit is a pixel, the camera looks along (1, 0, 1) / sqrt 2, and (1000, 0, 500) is 500 / sqrt 2 to its right
// at the depth 1500 / sqrt 2: 200 + 1000 / 3. A y of 300 is 1000 * 300 * sqrt 2 / 1500 = 282.843 down. Where
// space is stretched, x counts twice: along (2, 0, 1) / sqrt 5, (2000, 0, 500) is 1000 / sqrt 5 to the right
// at 4500 / sqrt 5, and what is seen is divided by 2: 200 + 1000 / 9. A y of 300 is 1000 * 300 * sqrt 5 /
// 4500 = 149.071 down.
//
// bank-*: from (200, 150, -1000) straight on, with a zoom of 1000, turned by 30 degrees. (300, 150, 0) is at
// (100, 0) and (200, 50, 0) at (0, -100) from the middle before the turn. A camera that turns clockwise shows
// them turned counter-clockwise: (86.603, -50) and (-50, -86.603). The other way it is (86.603, 50) and (50,
// -86.603).
//
// new-camera: from (200, 150, -1000), aimed at (1200, 150, 0), which is then in the middle; (1200, 50, 0) is
// 100 up at the depth 1000 sqrt 2: 70.711 up. A camera that looks straight on has both 1000 to the right, and
// 0 and 100 up.
constexpr TrialWay kTrialWays[] = {
    {"pixels", "aspect", {{{533.333, 200}, {533.333, 482.843}}}},
    {"stretched", "aspect", {{{311.111, 200}, {311.111, 349.071}}}},
    {"clockwise", "bank-aimed", {{{286.603, 100}, {150, 63.397}}}},
    {"counter-clockwise", "bank-aimed", {{{286.603, 200}, {250, 63.397}}}},
    {"clockwise", "bank-one-node", {{{286.603, 100}, {150, 63.397}}}},
    {"counter-clockwise", "bank-one-node", {{{286.603, 200}, {250, 63.397}}}},
    {"aimed", "new-camera", {{{200, 150}, {200, 79.289}}}},
    {"straight", "new-camera", {{{1200, 150}, {1200, 50}}}},
};

using Color = std::array<double, 3>;

// A way in which colours may come out, over black and over white.
struct ColorWay {
    std::string answer;
    std::string trial;
    std::array<Color, 2> colors;
};

// Half of (0.8, 0.4, 0) over (0.6, 0.2, 1), which is opaque or half itself. Where both are half, a quarter
// shows both, a quarter each of them alone, and a quarter nothing: over white it adds 0.25.
//   Add, colours added up to 1 first: (1, 0.6, 1). Opaque: half of that and half of what is below. Half: a
//   quarter of that, of the source and of what is below. Add of premultiplied colours: (0.4, 0.2, 0) and
//   (0.6, 0.2, 1), up to 1; of half (0.3, 0.1, 0.5). Coverage is added too, or is 0.75 as usual. Multiply:
//   (0.48, 0.08, 0). A quarter of that, of the source and of what is below; or nothing of the source alone,
//   with the coverage of what is below, 0.5.
const ColorWay kColorWays[] = {
    {"normal", "normal-partial", {{{0.55, 0.25, 0.25}, {0.8, 0.5, 0.5}}}},
    {"mixed", "add-opaque", {{{0.8, 0.4, 1}, {0.8, 0.4, 1}}}},
    {"mixed", "add-partial", {{{0.6, 0.3, 0.5}, {0.85, 0.55, 0.75}}}},
    {"summed", "add-opaque", {{{1, 0.4, 1}, {1, 0.4, 1}}}},
    {"summed", "add-partial", {{{0.7, 0.3, 0.5}, {0.7, 0.3, 0.5}}}},
    {"covered", "add-opaque", {{{1, 0.4, 1}, {1, 0.4, 1}}}},
    {"covered", "add-partial", {{{0.7, 0.3, 0.5}, {0.95, 0.55, 0.75}}}},
    {"mixed", "multiply-partial", {{{0.47, 0.17, 0.25}, {0.72, 0.42, 0.5}}}},
    {"inside", "multiply-partial", {{{0.27, 0.07, 0.25}, {0.77, 0.57, 0.75}}}},
};

// An answer that is thought of.
struct ThoughtOf {
    const char* answer;
    const char* text;
};

struct QuestionRow {
    Question question;
    const char* name;
    const char* asks;
    std::vector<const char*> trials;
    std::vector<ThoughtOf> answers;
    const char* taken;  // what the rest of this system takes it to be; empty if it is right either way
};

const std::vector<QuestionRow>& question_table() {
    static const std::vector<QuestionRow> kQuestions = {
        {Question::space_aspect,
         "space-aspect",
         "3D space where pixels are not square",
         {"aspect"},
         {{"pixels", "a unit of space is a pixel, to the right as well as down"},
          {"stretched", "space is stretched as wide as the pixels are"}},
         ""},
        {Question::bank_sense,
         "bank-sense",
         "where a positive angle about z turns a camera",
         {"bank-aimed", "bank-one-node"},
         {{"clockwise", "clockwise, seen from the camera"},
          {"counter-clockwise", "counter-clockwise, seen from the camera"}},
         "clockwise"},
        {Question::new_camera,
         "new-camera",
         "whether a new camera turns to its point of interest",
         {"new-camera"},
         {{"aimed", "it has two nodes: it turns to its point of interest, and stays level"},
          {"straight", "it has one node: it looks straight on"}},
         ""},
        {Question::partial_add,
         "partial-add",
         "Add where something is half covered",
         {"add-opaque", "add-partial"},
         {{"mixed", "colours are added up to 1, then mixed by what is covered"},
          {"summed", "premultiplied colours are added, and so is what is covered"},
          {"covered", "premultiplied colours are added; what is covered is as usual"}},
         "mixed"},
        {Question::partial_multiply,
         "partial-multiply",
         "Multiply where something is half covered",
         {"multiply-partial"},
         {{"mixed", "colours are multiplied, then mixed by what is covered"},
          {"inside", "what lies over nothing is left out"}},
         "mixed"},
        {Question::texture_alpha,
         "texture-alpha",
         "how the colour of a texture arrives",
         {"texture"},
         {{"premultiplied", "as premultiplied with black, as the plug-in says"},
          {"straight", "as straight: edges become darker"},
          {"ignored", "without its alpha"}},
         "premultiplied"},
    };
    return kQuestions;
}

// To thousandths: more than differs.
std::string rounded(double number) {
    constexpr double kParts = 1000;
    return text::plain_number(std::round(number * kParts) / kParts);
}

template <std::size_t Count>
std::string list_of(const std::array<double, Count>& numbers) {
    std::string text;
    for (const double number : numbers) {
        text += (text.empty() ? "" : ", ") + rounded(number);
    }
    return "(" + text + ")";
}

template <std::size_t Count>
bool is_near(const std::array<double, Count>& a, const std::array<double, Count>& b, double same) {
    for (std::size_t i = 0; i < Count; ++i) {
        if (!(std::abs(a[i] - b[i]) <= same)) {
            return false;
        }
    }
    return true;
}

// What was measured in one trial: two places or two colours.
struct Measured {
    std::optional<TrialLandings> landings;
    std::optional<std::array<Color, 2>> colors;
    [[nodiscard]] bool any() const { return landings || colors; }
};

Measured measured_in(const MeasuredTable& table, const std::string& trial) {
    Measured measured;
    if (const auto found = table.trials.find(trial); found != table.trials.end()) {
        const auto first = found->second.find(0);
        const auto second = found->second.find(1);
        if (first != found->second.end() && second != found->second.end() && first->second.value &&
            second->second.value) {
            measured.landings = TrialLandings{*first->second.value, *second->second.value};
        }
    }
    if (const auto found = table.colors.find(trial); found != table.colors.end()) {
        const auto& [black, white] = found->second;
        if (black && white && black->value && white->value) {
            measured.colors = std::array<Color, 2>{*black->value, *white->value};
        }
    }
    return measured;
}

std::string text_of(const Measured& measured) {
    return measured.landings ? list_of((*measured.landings)[0]) + " and " + list_of((*measured.landings)[1])
                             : list_of((*measured.colors)[0]) + " over black and " +
                                   list_of((*measured.colors)[1]) + " over white";
}

class Judge {
  public:
    Judge(const MeasuredTable& table, const std::optional<handover::TextureTrial>& texture)
        : table_(table), texture_(texture) {
        for (const ColorWay& way : kColorWays) {
            color_ways_.push_back(way);
        }
        if (texture) {
            add_texture(*texture);
        }
    }

    [[nodiscard]] QuestionAnswer answer(const QuestionRow& row) const {
        QuestionAnswer result;
        result.question = row.question;
        result.name = row.name;
        result.asks = row.asks;
        result.text = why_untold(row);
        if (!result.text.empty()) {
            return result;
        }
        std::vector<const ThoughtOf*> fitting;
        for (const ThoughtOf& thought : row.answers) {
            if (std::all_of(row.trials.begin(), row.trials.end(),
                            [&](const char* trial) { return fits(thought.answer, trial); })) {
                fitting.push_back(&thought);
            }
        }
        if (fitting.size() == 1) {
            result.verdict = Verdict::settled;
            result.answer = fitting.front()->answer;
            result.text = fitting.front()->text;
            result.contradicts = row.taken[0] != '\0' && result.answer != row.taken;
            return result;
        }
        result.verdict = Verdict::another;
        result.contradicts = true;
        result.text = "none of what was thought of:";
        for (const char* const trial : row.trials) {
            result.text += std::string(" ") + trial + " gave " + text_of(measured_in(table_, trial)) + ';';
        }
        result.text.pop_back();
        return result;
    }

  private:
    // A texture that is premultiplied shows its stored colour over black. Over white, what is not covered is
    // added.
    void add_texture(const handover::TextureTrial& texture) {
        const auto ways = [&](const char* answer, double factor, double white) {
            ColorWay way{answer, "texture", {}};
            for (std::size_t i = 0; i < texture.color.size(); ++i) {
                way.colors[0][i] = texture.color[i] * factor;
                way.colors[1][i] = texture.color[i] * factor + white;
            }
            color_ways_.push_back(way);
        };
        ways("premultiplied", 1, 1 - texture.alpha);
        ways("straight", texture.alpha, 1 - texture.alpha);
        ways("ignored", 1, 0);
    }

    [[nodiscard]] bool fits(const std::string& answer, const std::string& trial) const {
        const Measured measured = measured_in(table_, trial);
        for (const TrialWay& way : kTrialWays) {
            if (way.answer == answer && way.trial == trial) {
                return measured.landings && is_near(way.landings[0], (*measured.landings)[0], kSame_px) &&
                       is_near(way.landings[1], (*measured.landings)[1], kSame_px);
            }
        }
        for (const ColorWay& way : color_ways_) {
            if (way.answer == answer && way.trial == trial) {
                return measured.colors && is_near(way.colors[0], (*measured.colors)[0], kSame_color) &&
                       is_near(way.colors[1], (*measured.colors)[1], kSame_color);
            }
        }
        return false;
    }

    // Empty if the table says something.
    [[nodiscard]] std::string why_untold(const QuestionRow& row) const {
        if (row.question == Question::texture_alpha && !texture_) {
            return "the scene has no texture with a half covered pixel that shows it";
        }
        for (const char* const trial : row.trials) {
            if (!measured_in(table_, trial).any()) {
                return "the table has no sound numbers of the trial " + std::string(trial);
            }
        }
        const bool of_colors = measured_in(table_, row.trials.front()).colors.has_value();
        if (of_colors && table_.linear.value_or(false)) {
            return "the project blends colours linearly (Project Settings, Blend Colors Using 1.0 Gamma): "
                   "switch "
                   "it off and measure again";
        }
        if (of_colors && !fits("normal", "normal-partial")) {
            return "the colours were not read soundly: Normal does not give what it gives everywhere";
        }
        return {};
    }

    const MeasuredTable& table_;
    const std::optional<handover::TextureTrial>& texture_;
    std::vector<ColorWay> color_ways_;
};

}  // namespace

std::vector<QuestionAnswer> answers_in(const MeasuredTable& table,
                                       const std::optional<handover::TextureTrial>& texture) {
    const Judge judge(table, texture);
    std::vector<QuestionAnswer> answers;
    for (const QuestionRow& row : question_table()) {
        answers.push_back(judge.answer(row));
    }
    return answers;
}

}  // namespace proof
