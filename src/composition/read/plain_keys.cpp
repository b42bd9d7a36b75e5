#include "composition/read/plain_keys.h"

#include <algorithm>
#include <cstring>

#include "composition/read/ascii_parser.h"
#include "composition/read/plain_number.h"

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

/// A place reached by looking ahead.
struct Ahead {
    const char* next;         ///< the byte that comes next
    TextCursor cursor;        ///< has passed every byte before `next`
    std::int64_t tokens = 0;  ///< between the start and `next`
};

/// Finds entries of plain keys in a block of text.
class KeyScan {
  public:
    /// The block ends before `end`. `key_read_at` is the position of the first KEY if it has already been
    /// read, otherwise null.
    KeyScan(const char* end, const TextPosition* key_read_at) : end_(end), key_read_at_(key_read_at) {}

    /// Stores the next entry, which has `least` to `most` plain numbers, in `key` and moves `place` past it.
    /// Returns false when anything else comes next; `place` is then unspecified.
    bool find(std::size_t least, std::size_t most, Ahead& place, PlainKey& key);
    /// Whether the block ended inside an entry that was plain up to there.
    [[nodiscard]] bool ran_out() const { return ran_out_; }

  private:
    [[nodiscard]] const char* skip_blanks(const char* at) const;
    bool skip_to_word(Ahead& place);
    bool find_word_key(Ahead& place, TextPosition& at);
    std::size_t read_numbers(std::size_t most, Ahead& place, PlainKey& key);

    const char* end_;
    const TextPosition* key_read_at_;
    bool ran_out_ = false;
};

const char* KeyScan::skip_blanks(const char* at) const {
    while (at < end_ && is_blank(*at)) {
        ++at;
    }
    return at;
}

// Moves `place` to the first character of a word, past blanks and at most one line end. Returns false at
// anything else.
bool KeyScan::skip_to_word(Ahead& place) {
    const char* at = skip_blanks(place.next);
    place.cursor.pass_text(at - place.next);
    if (at < end_ && is_line_end(*at)) {
        const char first = *at;
        place.cursor.pass_line_end(first);
        ++at;
        if (at < end_ && is_line_end(*at) && *at != first) {
            place.cursor.pass_line_end(*at);
            ++at;
        }
        const char* const word = skip_blanks(at);
        place.cursor.pass_text(word - at);
        at = word;
    }
    const bool moved = at != place.next;
    place.next = at;
    ran_out_ = at == end_;
    return moved && !ran_out_;
}

// Moves `place` past the word KEY. Returns false when anything else comes next.
bool KeyScan::find_word_key(Ahead& place, TextPosition& at) {
    if (key_read_at_ != nullptr) {
        at = *key_read_at_;
        key_read_at_ = nullptr;
        return true;
    }
    constexpr std::ptrdiff_t kWordBytes = 3;
    if (!skip_to_word(place)) {
        return false;
    }
    const std::ptrdiff_t bytes = std::min(end_ - place.next, kWordBytes);
    if (std::memcmp(place.next, "KEY", static_cast<std::size_t>(bytes)) != 0) {
        return false;
    }
    if (end_ - place.next <= kWordBytes) {
        ran_out_ = true;
        return false;
    }
    at = place.cursor.next();
    place.cursor.pass_text(kWordBytes);
    place.next += kWordBytes;
    ++place.tokens;
    return true;
}

bool KeyScan::find(std::size_t least, std::size_t most, Ahead& place, PlainKey& key) {
    ran_out_ = false;
    if (!find_word_key(place, key.at)) {
        return false;
    }
    key.count = read_numbers(most, place, key);
    if (ran_out_ || key.count < least) {
        return false;
    }
    if (key.count == most && is_line_end(*place.next)) {
        return true;
    }
    // Another number may follow after blanks or on the next line: a letter or brace there rules that out.
    Ahead behind = place;
    return skip_to_word(behind) && *behind.next >= 'A';
}

// Reads the frame and up to `most` - 1 other numbers and moves `place` to the byte behind the last one.
// Returns how many numbers there are.
std::size_t KeyScan::read_numbers(std::size_t most, Ahead& place, PlainKey& key) {
    const char* end = place.next;  // of the word before
    std::size_t count = 0;
    plain_number::Found number;
    const auto next_word = [&] { return skip_blanks(end); };
    if (end_ - end > plain_number::kShortBytes && is_blank(*end)) {
        number.behind = plain_number::find_short_integer(end + 1, key.frame);
    }
    if (number.behind == nullptr && is_blank(*end)) {
        number = plain_number::find_number(next_word(), end_, plain_number::read_integer, key.frame);
    }
    float* value = key.others.data();
    while (number.behind != nullptr) {
        end = number.behind;
        ++count;
        if (count == most || !is_blank(*end)) {
            break;
        }
        if (end_ - end > plain_number::kShortBytes) {
            number.behind = plain_number::find_short_real(end + 1, *value);
        } else {
            number.behind = nullptr;
        }
        if (number.behind == nullptr) {
            number = plain_number::find_number(next_word(), end_, plain_number::read_real, *value);
        }
        ++value;
    }
    ran_out_ = number.cut;
    place.cursor.pass_text(end - place.next);
    place.next = end;
    place.tokens += static_cast<std::int64_t>(count);
    return count;
}

}  // namespace

bool ASCIIParser::CanLookAhead() const {
    const bool key_or_nothing_rewound =
        rewound == 0 || (sym == kTokenIdentifier && Compare(text, "KEY") == 0);
    // A line end that was pushed back is passed once more, so it must not be the second half of a pair.
    const bool at_blank = pushedBack != 0 ? lastEol == curChar : !cursor_.at_line_end();
    return status == 0 && eolIsToken == 0 && textOnHeap == 0 && key_or_nothing_rewound && at_blank &&
           bufPos - block_begin_ > static_cast<std::ptrdiff_t>(plain_number::kBytesBefore);
}

void ASCIIParser::ReadPlainKeys(std::size_t least, std::size_t most, PlainKeySink& sink) {
    PlainKey key;
    bool more = true;
    while (more && CanLookAhead()) {
        Ahead taken = {bufPos - pushedBack, cursor_};
        taken.cursor.step_back(pushedBack);
        KeyScan scan(bufPos + bufCount, rewound != 0 ? &token_start_ : nullptr);
        bool found = true;
        while (found) {
            Ahead place = taken;
            found = scan.find(least, most, place, key);
            more = found ? sink.take(key) : scan.ran_out();
            found = found && more;
            if (found) {
                taken = place;
            }
        }
        TakeTokens(taken.next, taken.cursor, taken.tokens);
        // nextsym would read beyond the end of the block here as well.
        more = more && JoinNextBlock();
    }
}

// Moves the parser past the `tokens` words and numbers that end before `next`. `cursor` has passed them.
void ASCIIParser::TakeTokens(const char* next, TextCursor cursor, std::int64_t tokens) {
    if (tokens == 0) {
        return;
    }
    // The last two tokens are left to nextsym, which sets their texts and everything else that depends on
    // them.
    constexpr std::int64_t kTokensLeft = 2;
    const char* behind = next;
    for (std::int64_t i = 0; i < kTokensLeft; ++i) {
        while (!is_blank(behind[-1])) {
            --behind;
        }
        while (is_blank(behind[-1])) {
            --behind;
        }
    }
    const char* const next_left = behind + 1;  // the token before them was read with the blank after it
    cursor.step_back(next - next_left);
    // For each token two characters are delivered twice: its first one, and the one before it if that was
    // pushed back.
    const std::int64_t taken = tokens - kTokensLeft;
    MoveTo(next_left, cursor, 2 * taken - (pushedBack != 0 ? 0 : 1));
    pushedBack = 1;
    rewound = 0;
    if (taken % 2 != 0) {
        text = text == textB ? textA : textB;
    }
    for (std::int64_t i = 0; i < kTokensLeft; ++i) {
        nextsym(0);
    }
}
