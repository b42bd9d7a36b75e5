#include "composition/read/read_values.h"

#include <array>
#include <optional>
#include <string>

#include "composition/model/composition.h"
#include "composition/model/heap_text.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/number_scan.h"
#include "composition/read/read_report.h"

namespace {

constexpr WordValue kBlendWords[] = {{"NRM", kBlendNormal}, {"ADD", kBlendAdd}, {"MUL", kBlendMultiply}};
constexpr WordValue kAlphaWords[] = {{"PREMUL", kAlphaPremultiplied}, {"STRAIGHT", kAlphaStraight}};

// A camera's KEY has the most values, nine.
constexpr std::array<const char*, 9> kOrdinals = {"a",       "a second",  "a third",   "a fourth", "a fifth",
                                                  "a sixth", "a seventh", "an eighth", "a ninth"};

// "NONE, EVEN or ODD"
std::string list_of(std::span<const WordValue> words) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        list += i == 0 ? "" : i + 1 == words.size() ? " or " : ", ";
        list += words[i].word;
    }
    return list;
}

int fail_word(const ASCIIParser& p, ReadErrorCode code, std::span<const WordValue> words,
              std::string_view keyword = {}) {
    if (p.Observer() == nullptr) {
        return 0;
    }
    return fail(p, code,
                keyword.empty() ? list_of(words) : list_of(words) + " after " + std::string(keyword));
}

}  // namespace

bool is_word(const ASCIIParser& p, const char* word) {
    return p.sym == kTokenIdentifier && Compare(p.text, word) == 0;
}

bool find_word(const ASCIIParser& p, std::span<const WordValue> words, A_long& value) {
    for (const WordValue& candidate : words) {
        if (is_word(p, candidate.word)) {
            value = candidate.value;
            return true;
        }
    }
    return false;
}

int read_blend_mode(ASCIIParser& p, A_long& mode) {
    p.nextsym(0);
    return find_word(p, kBlendWords, mode) ? 1
                                           : fail_word(p, ReadErrorCode::expected_blend_mode, kBlendWords);
}

int read_alpha_mode(ASCIIParser& p, A_long& mode) {
    p.nextsym(0);
    return find_word(p, kAlphaWords, mode) ? 1
                                           : fail_word(p, ReadErrorCode::expected_alpha_mode, kAlphaWords);
}

int read_name(ASCIIParser& p, char*& name) {
    if (p.nextsym(0) != kTokenString) {
        return fail(p, ReadErrorCode::expected_name, "a name in double quotes");
    }
    name = copy_text(p.text);
    if (name == nullptr) {
        return fail(p, ReadErrorCode::out_of_memory, "a name that fits into memory");
    }
    name_block(p);
    return 1;
}

ValueReader::ValueReader(ASCIIParser& p, std::string_view keyword)
    : p_(p), keyword_(keyword), keyword_at_(p.TokenStart()) {
    if (ReadObserver* const observer = p.Observer()) {
        observer->on_keyword(keyword, keyword_at_);
    }
}

int ValueReader::read_long(A_long& value) {
    p_.nextsym(0);
    if (p_.GetLong(value) == 0) {
        return number_missing();
    }
    tell(ValueKind::integer, value);
    return 1;
}

int ValueReader::read_real(float& value) {
    p_.nextsym(0);
    return take_real(value);
}

int ValueReader::take_real(float& value) {
    if (p_.GetReal(value) == 0) {
        return number_missing();
    }
    tell(ValueKind::real, static_cast<double>(value));
    return 1;
}

int ValueReader::read_reals(std::span<float> values) {
    for (float& value : values) {
        if (read_real(value) == 0) {
            return 0;
        }
    }
    return 1;
}

int ValueReader::read_word(std::span<const WordValue> words, A_long& value) {
    p_.nextsym(0);
    if (!find_word(p_, words, value)) {
        return fail_word(p_, ReadErrorCode::expected_word, words, keyword_);
    }
    tell(ValueKind::word, 0);
    return 1;
}

int ValueReader::out_of_range(std::string_view allowed) const {
    if (p_.Observer() == nullptr) {
        return 0;
    }
    return fail(p_, ReadErrorCode::out_of_range,
                "a number " + std::string(allowed) + " after " + std::string(keyword_));
}

int ValueReader::number_missing() const {
    if (p_.Observer() == nullptr) {
        return 0;
    }
    return fail(
        p_, ReadErrorCode::expected_number,
        std::string(kOrdinals[static_cast<std::size_t>(index_)]) + " number after " + std::string(keyword_));
}

void ValueReader::tell(ValueKind kind, double kept) {
    if (ReadObserver* const observer = p_.Observer()) {
        observer->on_value({keyword_, keyword_at_, index_, kind, p_.text,
                            kind == ValueKind::word ? std::nullopt : whole_number(p_.text), kept,
                            p_.TokenStart()});
    }
    ++index_;
}
