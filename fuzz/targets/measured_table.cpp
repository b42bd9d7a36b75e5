// Reads a text as the table that a measuring script writes, and judges it. A table is read the same whatever
// ends its lines, and the answers to the questions follow from it alone.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <variant>

#include "check.h"
#include "handover/proof/measured_table.h"
#include "handover/proof/open_questions.h"
#include "input.h"

const std::size_t kOptionBytes = 0;

namespace {

using proof::MeasuredTable;
using proof::TableRefusal;

bool is_printable(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

void check_refusal(const TableRefusal& refusal, const std::string& text) {
    const auto ends = static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }));
    require(refusal.line <= ends + 1, "a line is one of the text");
    require(!refusal.reason.empty() && is_printable(refusal.reason),
            "a refusal has a reason that can be shown");
}

void check_table(const MeasuredTable& table) {
    for (const auto& [place, row] : table.points) {
        require(!row.value || (std::isfinite(row.value->at(0)) && std::isfinite(row.value->at(1))),
                "numbers are finite");
    }
    for (const std::string& note : table.notes) {
        require(is_printable(note), "notes can be shown");
    }
    handover::TextureTrial texture;
    texture.color = {0.25, 0.375, 0.125};
    texture.alpha = 0.5;
    for (const bool asked : {false, true}) {
        const auto answers = proof::answers_in(
            table, asked ? std::optional(texture) : std::optional<handover::TextureTrial>());
        for (const proof::QuestionAnswer& answer : answers) {
            require(!answer.text.empty() && is_printable(answer.text), "an answer says why");
            require(answer.answer.empty() == (answer.verdict != proof::Verdict::settled),
                    "what is settled has an answer");
            require(!answer.contradicts || answer.verdict != proof::Verdict::untold,
                    "what is not told contradicts nothing");
        }
    }
}

// With the line ends of another system, if the text has its own kind only.
std::string with_other_ends(const std::string& text) {
    std::string other;
    for (const char c : text) {
        other += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return other;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(Input(data, size).rest_text());
    const auto read = proof::read_measured_table(text);
    if (const auto* const refusal = std::get_if<TableRefusal>(&read)) {
        check_refusal(*refusal, text);
        return 0;
    }
    check_table(std::get<MeasuredTable>(read));
    if (text.find('\r') == std::string::npos && 2 * text.size() < proof::kMostTableBytes) {
        const auto again = proof::read_measured_table(with_other_ends(text));
        require(
            std::holds_alternative<MeasuredTable>(again) &&
                std::get<MeasuredTable>(again).points.size() == std::get<MeasuredTable>(read).points.size(),
            "a table is read the same whatever ends its lines");
    }
    return 0;
}
