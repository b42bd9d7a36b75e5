#include "composition/read/ascii_parser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "composition/model/heap_text.h"
#include "composition/read/number_scan.h"

namespace {

// Bits of kCharacters.
constexpr unsigned char kBeginsNumber = 1;
constexpr unsigned char kContinuesNumber = 2;
constexpr unsigned char kBlank = 4;
constexpr unsigned char kLineEnd = 8;

constexpr std::array<unsigned char, 256> classified_characters() {
    std::array<unsigned char, 256> table{};
    const auto add = [&](std::string_view characters, unsigned char bit) {
        for (const char c : characters) {
            table[static_cast<unsigned char>(c)] |= bit;
        }
    };
    add("0123456789.-", kBeginsNumber);
    // Every character of any form of number: decimal, hexadecimal, with an exponent.
    add("0123456789.-abcdefABCDEF+xX", kContinuesNumber);
    add(" \t", kBlank);
    add("\n\r", kLineEnd);
    return table;
}

constexpr std::array<unsigned char, 256> kCharacters = classified_characters();

bool is(char c, unsigned char classes) {
    return (kCharacters[static_cast<unsigned char>(c)] & classes) != 0;
}

constexpr std::size_t kFirstStringCapacity = 50;

}  // namespace

A_long ASCIIParser::CompareIdent(char* /*word*/) {
    return 0;
}

A_long ASCIIParser::CompareOperator(char c) {
    switch (c) {
        case '{':
            return kTokenOpenBrace;
        case '}':
            return kTokenCloseBrace;
        case '=':
            return kTokenEquals;
        case ',':
            return kTokenComma;
        case ';':
            return kTokenSemicolon;
        case '+':
            return kTokenPlus;
        case '~':
            return kTokenTilde;
        case '\n':
        case '\r':
            return kTokenLineEnd;
        default:
            return kTokenOther;
    }
}

int ASCIIParser::nextchar(char* out) {
    if (status != 0) {
        curChar = 0;
    } else if (pushedBack != 0) {
        pushedBack = 0;
    } else {
        const bool taken = TakeByte();
        // Deliberately also when there was no byte to take: a last line end is then counted again.
        CountLine();
        if (taken) {
            cursor_.pass(curChar);
        }
    }
    if (out != nullptr) {
        *out = curChar;
    }
    CountUp(charCount);
    return status == 0 ? 1 : 0;
}

bool ASCIIParser::TakeByte() {
    if (bufCount < 1) {
        Refill();
    }
    if (bufCount < 1) {
        return false;
    }
    curChar = *bufPos;
    ++bufPos;
    --bufCount;
    return true;
}

// Counts `curChar` if it is a line end, unless it completes a pair.
void ASCIIParser::CountLine() {
    if ((curChar == '\n' && lastEol == '\r') || (curChar == '\r' && lastEol == '\n')) {
        lastEol = 0;
        return;
    }
    if (is(curChar, kLineEnd)) {
        CountUp(line);
    }
    lastEol = curChar;
}

// Delivers the bytes of the block up to `next`, the last of which is no line end, as so many calls of
// nextchar do. `cursor` has passed them; `delivered_again` of their characters were pushed back in between.
void ASCIIParser::MoveTo(const char* next, const TextCursor& cursor, std::int64_t delivered_again) {
    CountUp(line, cursor.line_ends() - cursor_.line_ends());
    CountUp(charCount, next - bufPos + delivered_again);
    bufCount -= static_cast<A_long>(next - bufPos);
    bufPos += next - bufPos;
    curChar = lastEol = next[-1];
    cursor_ = cursor;
}

// MoveTo for at least one byte, none of them a line end.
void ASCIIParser::Advance(const char* to) {
    TextCursor cursor = cursor_;
    cursor.pass_text(to - bufPos);
    MoveTo(to, cursor, 0);
}

int ASCIIParser::skipspaces() {
    return Skip(false, true);
}

int ASCIIParser::skiplinetoend() {
    return Skip(true, false);
}

// While `skipping`, every character up to the next line end is skipped; that ends it. With `comments`, "/"
// starts it.
int ASCIIParser::Skip(bool skipping, bool comments) {
    if (!skipping && SkipBlanksInBlock()) {
        return 1;
    }
    char c = 0;
    for (;;) {
        if (nextchar(&c) == 0) {
            return 0;
        }
        if (is(c, kLineEnd)) {
            if (eolIsToken != 0) {
                break;
            }
            skipping = false;
        } else if (comments && c == '/') {  // deliberately one: "//" also occurs and means the same
            skipping = true;
        } else if (!skipping && c != ' ' && c != '\t') {
            break;
        }
    }
    pushedBack = 1;
    return 1;
}

// The fast path of Skip: skips blanks within the block when the character pushed back is a blank or line end.
// Returns true when a token follows, whose first character is then pushed back; otherwise the caller goes on.
bool ASCIIParser::SkipBlanksInBlock() {
    const bool at_blank = pushedBack != 0 && is(curChar, eolIsToken != 0 ? kBlank : kBlank | kLineEnd);
    if (!at_blank || status != 0) {
        return false;
    }
    const char* const end = bufPos + bufCount;
    const char* at = bufPos;
    while (at < end && is(*at, kBlank)) {
        ++at;
    }
    if (at == end || is(*at, kLineEnd) || *at == '/') {
        return false;
    }
    CountUp(charCount);  // the character that was pushed back
    Advance(at + 1);
    return true;
}

A_long ASCIIParser::nextsym(int no_numbers) {
    if (rewound != 0) {
        rewound = 0;
        return sym;
    }
    const bool use_b = textOnHeap != 0 || text != textB;
    if (textOnHeap != 0) {
        delete[] text;
        textOnHeap = 0;
    }
    text = use_b ? textB : textA;
    text[0] = '\0';
    sym = kTokenNone;
    cut_ = TokenCut::none;
    if (skipspaces() == 0) {
        token_start_ = cursor_.next();
        return CutToken(TokenCut::end_of_input);
    }
    token_start_ = cursor_.last();
    const char c = curChar;
    if (no_numbers == 0 && is(c, kBeginsNumber)) {
        return ReadWord(true);
    }
    if (charClass[static_cast<unsigned char>(c)] != 0) {
        return ReadWord(false);
    }
    return c == '"' || c == '\'' ? ReadString(c) : ReadOperator();
}

// Takes a word that ends within the block; its first character has been pushed back. Returns false and takes
// nothing if the word ends elsewhere or is too long.
bool ASCIIParser::TakeWordInBlock(bool number) {
    const char* const end = bufPos + std::min(static_cast<std::size_t>(bufCount), kTextBytes - 1);
    const char* at = bufPos;
    if (number) {
        while (at < end && is(*at, kContinuesNumber)) {
            ++at;
        }
    } else {
        while (at < end && charClass[static_cast<unsigned char>(*at)] != 0) {
            ++at;
        }
    }
    if (at == end) {
        return false;
    }
    const std::ptrdiff_t more = at - bufPos;
    text[0] = curChar;
    std::memcpy(text + 1, bufPos, static_cast<std::size_t>(more));
    text[more + 1] = '\0';
    CountUp(charCount);  // the character that was pushed back
    pushedBack = 0;
    if (more > 0) {
        Advance(at);
    }
    nextchar(nullptr);
    return true;
}

// A number or an identifier. Its first character has been pushed back.
A_long ASCIIParser::ReadWord(bool number) {
    if (!TakeWordInBlock(number)) {
        std::size_t length = 0;
        char c = 0;
        for (;;) {
            if (nextchar(&c) == 0) {
                // Deliberate: a word cut off by the end of the input may be half of one, so it is not a
                // token.
                return CutToken(TokenCut::inside_word);
            }
            const bool belongs =
                number ? is(c, kContinuesNumber) : charClass[static_cast<unsigned char>(c)] != 0;
            if (!belongs) {
                break;
            }
            if (length == kTextBytes - 1) {
                pushedBack = 1;
                return CutToken(TokenCut::word_too_long);
            }
            text[length] = c;
            ++length;
        }
        text[length] = '\0';
    }
    pushedBack = 1;
    sym = number ? A_long{kTokenNumber} : CompareIdent(text);
    if (sym == kTokenNone) {
        sym = kTokenIdentifier;
    }
    return sym;
}

A_long ASCIIParser::ReadOperator() {
    nextchar(text);
    text[1] = '\0';
    sym = CompareOperator(text[0]);
    if (sym == kTokenNone) {
        sym = kTokenOther;
    }
    return sym;
}

A_long ASCIIParser::ReadString(char quote) {
    char* const heap_text = new_text(kFirstStringCapacity + 2);
    if (heap_text == nullptr) {
        return CutToken(TokenCut::out_of_memory);
    }
    text = heap_text;
    text[0] = '\0';
    textOnHeap = 1;
    pushedBack = 0;  // the opening quote
    std::uint64_t capacity = kFirstStringCapacity;
    std::size_t length = 0;
    char c = 0;
    for (;;) {
        if (nextchar(&c) == 0) {
            return CutToken(TokenCut::inside_string);
        }
        if (c == quote) {
            break;
        }
        if (c == '$' && quote == '"') {
            char behind = 0;
            if (nextchar(&behind) == 0) {
                return CutToken(TokenCut::inside_string);
            }
            if (behind == '"') {
                c = behind;
            } else {
                pushedBack = 1;
            }
        }
        text[length] = c;
        ++length;
        if (length == capacity) {
            if (!grow_text(text, length, capacity * 2 + 2)) {
                return CutToken(TokenCut::out_of_memory);
            }
            capacity *= 2;
        }
    }
    text[length] = '\0';
    sym = quote == '"' ? kTokenString : kTokenSingleQuoted;
    return sym;
}

// Ends a token that cannot be finished: kind 0 and an empty text.
A_long ASCIIParser::CutToken(TokenCut cut) {
    text[0] = '\0';
    sym = kTokenNone;
    cut_ = status == kStatusReadFailed ? TokenCut::read_failed : cut;
    return sym;
}

void ASCIIParser::rewindsym() {
    rewound = 1;
}

// Both deliberately return 1 even when the text has no value: "FROM -" keeps the old value and passes.
int ASCIIParser::GetReal(float& f) {
    if (sym != kTokenNumber) {
        return 0;
    }
    StrToReal(text, f);
    return 1;
}

int ASCIIParser::GetLong(A_long& l) {
    if (sym != kTokenNumber) {
        return 0;
    }
    StrToVal(text, l);
    return 1;
}

int Compare(const char* a, const char* b) {
    return std::strcmp(a, b);
}
