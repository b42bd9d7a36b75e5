#include "handover/proof/measured_table.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>

#include "handover/proof/measured_comparison.h"
#include "handover/proof/measuring_plan.h"
#include "handover/proof/open_questions.h"
#include "proof/made_scene.h"

namespace {

using proof::MeasuredTable;
using proof::Question;
using proof::TableRefusal;
using proof::Verdict;

// Four lines that every table begins with.
const std::string kHead = "vxr-measured\t1\nscene\tvxr-1\nasked\t2\nhost\t24.1\t8\t0\n";

std::string with_end(const std::string& text) {
    std::size_t lines = 0;
    for (const char c : text) {
        lines += c == '\n' ? 1 : 0;
    }
    return text + "end\t" + std::to_string(lines) + "\n";
}

MeasuredTable table_of(const std::string& text) {
    auto read = proof::read_measured_table(text);
    if (const auto* const refusal = std::get_if<TableRefusal>(&read)) {
        ADD_FAILURE() << refusal->line << ": " << refusal->reason;
        return {};
    }
    return std::get<MeasuredTable>(std::move(read));
}

TEST(MeasuredTable, KeepsEveryRow) {
    const MeasuredTable table = table_of(with_end(
        kHead +
        "point\tcorrected\t1\t2\t3\t-12.5\t1e-7\npoint\timported\t1\t2\t3\t-\t4\n"
        "trial\taspect\t0\t533.25\t2e+2\ncolor\tadd-partial\twhite\t0.5\t0\t1\nnote\tA camera is gone.\n"));
    EXPECT_EQ(table.scene, "vxr-1");
    EXPECT_EQ(table.asked, "2");
    EXPECT_EQ(table.version, "24.1");
    EXPECT_EQ(table.bits, 8);
    EXPECT_EQ(table.linear, false);
    ASSERT_EQ(table.points.size(), 2U);
    const auto& corrected = table.points.at({true, 1, 2, 3});
    EXPECT_DOUBLE_EQ(corrected.value->at(0), -12.5);
    EXPECT_DOUBLE_EQ(corrected.value->at(1), 1e-7);
    EXPECT_EQ(corrected.line, 5U);
    EXPECT_FALSE(table.points.at({false, 1, 2, 3}).value.has_value()) << "one number is missing";
    EXPECT_DOUBLE_EQ(table.trials.at("aspect").at(0).value->at(1), 200);
    EXPECT_DOUBLE_EQ(table.colors.at("add-partial")[1]->value->at(2), 1);
    EXPECT_FALSE(table.colors.at("add-partial")[0].has_value());
    ASSERT_EQ(table.notes.size(), 1U);
    EXPECT_EQ(table.notes[0], "A camera is gone.");
}

TEST(MeasuredTable, LinesEndAsOnEverySystem) {
    const std::string text = with_end(kHead + "trial\taspect\t0\t1\t2\n");
    for (const char* const end : {"\r\n", "\r"}) {
        std::string other = "\xEF\xBB\xBF";
        for (const char c : text) {
            other += c == '\n' ? std::string(end) : std::string(1, c);
        }
        EXPECT_EQ(table_of(other).trials.size(), 1U);
    }
    EXPECT_EQ(table_of(text.substr(0, text.size() - 1)).trials.size(), 1U) << "the last line may have no end";
    EXPECT_EQ(table_of(text + "\n\n").trials.size(), 1U) << "empty lines may follow";
}

struct RefusedCase {
    const char* name;
    std::string text;
    std::size_t line;
    const char* reason;
};

TEST(MeasuredTable, RefusesWithLineAndReason) {
    const std::string point = "point\tcorrected\t0\t0\t0\t1\t2\n";
    const RefusedCase cases[] = {
        {"nothing", "", 0, "empty"},
        {"another file", "VORTAN XR COMPOSITION\n", 1, "no table of a script"},
        {"a later version", "vxr-measured\t2\n", 1, "version \"2\""},
        {"a head without its scene", "vxr-measured\t1\nasked\t2\n", 2, "not \"scene\""},
        {"a cut head", "vxr-measured\t1\nscene\tvxr-1\n", 2, "cut"},
        {"a table without its end", kHead + point, 5, "cut"},
        {"a table cut within its last row", (kHead + point).substr(0, kHead.size() + point.size() - 3), 5,
         "6 columns instead of 7"},
        {"lines that are gone", kHead + "end\t5\n", 5, "lines before this one"},
        {"an end that is no number", kHead + "end\tsoon\n", 5, "lines before this one"},
        {"more after the end", with_end(kHead) + point, 6, "more after the last row"},
        {"an unknown row", with_end(kHead + "pixel\t1\n"), 5, "no row \"pixel\""},
        {"an empty line", with_end(kHead + "\n"), 5, "no row \"\""},
        {"a column too few", with_end(kHead + "point\tcorrected\t0\t0\t0\t1\n"), 5, "6 columns instead of 7"},
        {"a column too many", with_end(kHead + "trial\taspect\t0\t1\t2\t3\n"), 5, "6 columns instead of 5"},
        {"very many columns", with_end(kHead + std::string(1000, '\t') + "\n"), 5, "more than 7 columns"},
        {"NaN", with_end(kHead + "trial\taspect\t0\tNaN\t2\n"), 5, "\"NaN\" is no number"},
        {"infinity", with_end(kHead + "trial\taspect\t0\t1e999\t2\n"), 5, "\"1e999\" is no number"},
        {"a number beyond double", with_end(kHead + "trial\taspect\t0\t99e308\t2\n"), 5, "is no number"},
        {"a number of too many digits",
         with_end(kHead + "trial\taspect\t0\t" + std::string(41, '9') + "\t2\n"), 5, "is no number"},
        {"a comma", with_end(kHead + "trial\taspect\t0\t1,5\t2\n"), 5, "\"1,5\" is no number"},
        {"a sign alone", with_end(kHead + "trial\taspect\t0\t1\t-.\n"), 5, "is no number"},
        {"no number at all", with_end(kHead + "trial\taspect\t0\t\t2\n"), 5, "\"\" is no number"},
        {"an index below 0", with_end(kHead + "point\tcorrected\t-1\t0\t0\t1\t2\n"), 5,
         "the camera is \"-1\""},
        {"an index beyond nine digits", with_end(kHead + "point\tcorrected\t0\t0\t1234567890\t1\t2\n"), 5,
         "the point is"},
        {"another project", with_end(kHead + "point\tbuilt\t0\t0\t0\t1\t2\n"), 5, "neither \"corrected\""},
        {"another trial", with_end(kHead + "trial\tshade\t0\t1\t2\n"), 5, "no trial \"shade\""},
        {"a third point of a trial", with_end(kHead + "trial\taspect\t2\t1\t2\n"), 5, "no point \"2\""},
        {"another ground", with_end(kHead + "color\ttexture\tgrey\t1\t1\t1\n"), 5, "neither \"black\""},
        {"another colour trial", with_end(kHead + "color\tscreen\tblack\t1\t1\t1\n"), 5, "no colours of"},
        {"a point that comes again", with_end(kHead + point + "note\tx\n" + point), 7,
         "the same row is on line 5"},
        {"a trial that comes again", with_end(kHead + "trial\taspect\t0\t1\t2\ntrial\taspect\t0\t1\t2\n"), 6,
         "the same row is on line 5"},
        {"a colour that comes again",
         with_end(kHead + "color\ttexture\tblack\t1\t1\t1\ncolor\ttexture\tblack\t1\t1\t1\n"), 6,
         "the same row is on line 5"},
        {"strange bits", "vxr-measured\t1\nscene\tx\nasked\ty\nhost\t24\t9\t0\n", 4, "not 8, 16 or 32"},
        {"strange blending", "vxr-measured\t1\nscene\tx\nasked\ty\nhost\t24\t8\tyes\n", 4, "not 0, 1 or -"},
        {"more bytes than any table has", std::string(proof::kMostTableBytes + 1, '\n'), 0,
         "more than 4194304"},
    };
    for (const RefusedCase& one : cases) {
        const auto read = proof::read_measured_table(one.text);
        const auto* const refusal = std::get_if<TableRefusal>(&read);
        ASSERT_NE(refusal, nullptr) << one.name;
        EXPECT_EQ(refusal->line, one.line) << one.name << ": " << refusal->reason;
        EXPECT_NE(refusal->reason.find(one.reason), std::string::npos) << one.name << ": " << refusal->reason;
    }
}

TEST(MeasuredTable, QuotesAnyBytesInPrintableOnes) {
    const auto read =
        proof::read_measured_table(with_end(kHead + "\x1b[2J\xff" + std::string(100, 'x') + "\n"));
    EXPECT_EQ(std::get<TableRefusal>(read).reason,
              "there is no row \"?[2J?" + std::string(35, 'x') + "...\"");
}

// What a half covered orange over half a blue gives, by hand: see open_questions.cpp. Normal must be right.
const std::string kNormal =
    "color\tnormal-partial\tblack\t0.55\t0.25\t0.25\ncolor\tnormal-partial\twhite\t0.8\t0.5\t0.5\n";

struct AnswerCase {
    const char* name;
    Question question;
    std::string rows;
    Verdict verdict;
    const char* answer;
    bool contradicts;
};

TEST(OpenQuestions, AreDecidedByTheirOwnRows) {
    const std::string add = kNormal +
                            "color\tadd-opaque\tblack\t0.8\t0.4\t1\ncolor\tadd-opaque\twhite\t0.8\t0.4\t1\n"
                            "color\tadd-partial\tblack\t0.6\t0.3\t0.5\n";
    const std::string bank = "trial\tbank-aimed\t0\t286.6\t100\ntrial\tbank-aimed\t1\t150\t63.4\n";
    const AnswerCase cases[] = {
        {"pixels", Question::space_aspect, "trial\taspect\t0\t533.3\t200\ntrial\taspect\t1\t533.3\t482.8\n",
         Verdict::settled, "pixels", false},
        {"half a pixel off is the same", Question::space_aspect,
         "trial\taspect\t0\t533.7\t200\ntrial\taspect\t1\t533.3\t482.5\n", Verdict::settled, "pixels", false},
        {"more is something else", Question::space_aspect,
         "trial\taspect\t0\t534\t200\ntrial\taspect\t1\t533.3\t482.8\n", Verdict::another, "", true},
        {"stretched", Question::space_aspect,
         "trial\taspect\t0\t311.1\t200\ntrial\taspect\t1\t311.1\t349.1\n", Verdict::settled, "stretched",
         false},
        {"one of two points", Question::space_aspect, "trial\taspect\t0\t533.3\t200\n", Verdict::untold, "",
         false},
        {"a point without numbers", Question::space_aspect,
         "trial\taspect\t0\t533.3\t200\ntrial\taspect\t1\t-\t-\n", Verdict::untold, "", false},
        {"cameras of one kind only", Question::bank_sense, bank, Verdict::untold, "", false},
        {"two kinds of cameras that agree", Question::bank_sense,
         bank + "trial\tbank-one-node\t0\t286.6\t100\ntrial\tbank-one-node\t1\t150\t63.4\n", Verdict::settled,
         "clockwise", false},
        {"two kinds of cameras that do not", Question::bank_sense,
         bank + "trial\tbank-one-node\t0\t286.6\t200\ntrial\tbank-one-node\t1\t250\t63.4\n", Verdict::another,
         "", true},
        {"Add as it is thought of", Question::partial_add,
         add + "color\tadd-partial\twhite\t0.85\t0.55\t0.75\n", Verdict::settled, "mixed", false},
        {"Add with another coverage", Question::partial_add,
         add + "color\tadd-partial\twhite\t0.6\t0.3\t0.5\n", Verdict::another, "", true},
        {"a texture that nobody asked for", Question::texture_alpha,
         kNormal + "color\ttexture\tblack\t0\t0\t0\ncolor\ttexture\twhite\t1\t1\t1\n", Verdict::untold, "",
         false},
        {"Normal that is not Normal", Question::partial_multiply,
         "color\tnormal-partial\tblack\t0.9\t0.25\t0.25\ncolor\tnormal-partial\twhite\t0.8\t0.5\t0.5\n"
         "color\tmultiply-partial\tblack\t0.47\t0.17\t0.25\ncolor\tmultiply-partial\twhite\t0.72\t0.42\t0."
         "5\n",
         Verdict::untold, "", false},
    };
    for (const AnswerCase& one : cases) {
        const auto answers = proof::answers_in(table_of(with_end(kHead + one.rows)), {});
        const auto& answer = answers.at(static_cast<std::size_t>(one.question));
        EXPECT_EQ(answer.question, one.question) << one.name;
        EXPECT_EQ(answer.verdict, one.verdict) << one.name << ": " << answer.text;
        EXPECT_EQ(answer.answer, one.answer) << one.name << ": " << answer.text;
        EXPECT_EQ(answer.contradicts, one.contradicts) << one.name;
        EXPECT_FALSE(answer.text.empty()) << one.name;
    }
}

// A camera at the origin that sees 90 degrees in 400 x 300 pixels.
TEST(MeasuredComparison, CountsWhatIsOffAndWhatIsMissing) {
    made::Scene scene(400, 300);
    scene.camera({{0, 0, 0, 0, 0, 0, 0, 90, 1000}});
    const handover::Measuring plan = proof::measuring_plan(scene.settings, "shot.aec", {});
    ASSERT_EQ(plan.cameras.size(), 1U);
    ASSERT_EQ(plan.cameras[0].moments.size(), 2U) << "FROM, where the key is, and TO";
    const std::size_t points = plan.cameras[0].moments[0].points.size();
    EXPECT_GE(2 * points, proof::kMeasuredPoints);
    MeasuredTable table;
    table.scene = plan.scene;
    table.asked = plan.sum;
    const auto truth = proof::true_landings(scene.settings, plan);
    std::size_t seen = 0;
    for (std::size_t moment = 0; moment < 2; ++moment) {
        for (std::size_t point = 0; point < points; ++point) {
            const proof::Landing& landing = truth[0][moment][point];
            ASSERT_TRUE(landing.seen);
            ++seen;
            table.points[{true, 0, moment, point}] = {std::array{landing.x_px, landing.y_px}, 5};
        }
    }
    table.points[{true, 0, 1, 7}].value->at(0) += 3;
    table.points[{true, 0, 1, 7}].value->at(1) -= 4;
    table.points[{true, 0, 0, 1}].value.reset();
    table.points.erase({true, 0, 0, 2});
    EXPECT_EQ(proof::unfit(table, plan).reason, "");
    const proof::MeasuredResult result = proof::judge(table, plan, scene.settings, {});
    const proof::MeasuredTarget& corrected = result.cameras[0].targets[0];
    EXPECT_EQ(corrected.compared, static_cast<std::int64_t>(seen) - 2);
    EXPECT_EQ(corrected.missing, 2);
    EXPECT_NEAR(corrected.largest_px, 5, 1e-9) << "3 and 4 pixels";
    EXPECT_NEAR(corrected.mean_px, 5 / static_cast<double>(seen - 2), 1e-9);
    EXPECT_EQ(corrected.frame, 100);
    EXPECT_FALSE(result.meets_goal());
    const proof::MeasuredTarget& imported = result.cameras[0].targets[1];
    EXPECT_EQ(imported.compared, 0);
    EXPECT_EQ(imported.missing, static_cast<std::int64_t>(seen));

    table.points[{true, 0, 2, 0}] = {std::array{1.0, 2.0}, 9};
    EXPECT_EQ(proof::unfit(table, plan).line, 9U) << "there is no third moment";
    EXPECT_NE(proof::measuring_plan(scene.settings, "take.aec", {}).scene, plan.scene);
    made::Scene other(400, 300);
    other.camera({{0, 0, 0, 0, 0, 0, 0, 91, 1000}});
    EXPECT_NE(proof::measuring_plan(other.settings, "shot.aec", {}).sum, plan.sum);
}

}  // namespace
