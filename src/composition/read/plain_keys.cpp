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

}  // namespace

// Begins where the parser is.
void PlainKeyReader::Begin() {
    const ASCIIParser& p = p_;
    block_ = p.block_begin_;
    end_ = 0;
    found_ = taken_ = {};
    const std::ptrdiff_t next = p.bufPos - block_;
    // A camera's key without a distance has had the word behind it read already.
    key_is_read_ = p.rewound != 0;
    const bool can_begin = p.status == 0 && (p.pushedBack != 0 || !p.line_ended_) &&
                           (!key_is_read_ || (p.sym == kTokenIdentifier && Compare(p.text, "KEY") == 0)) &&
                           p.textOnHeap == 0 && p.eolIsToken == 0 &&
                           next > static_cast<std::ptrdiff_t>(plain_number::kBytesBefore);
    if (!can_begin) {
        return;
    }
    end_ = next + p.bufCount;
    begin_ = next - 1;
    found_.pending = p.pushedBack != 0 ? begin_ : next;
    found_.line_begin = begin_ - (p.char_position_.column - 1);
    begin_pair_may_follow_ = p.lastEol == p.curChar;
    taken_ = found_;
}

// Moves `place` to the first character of a word behind blanks and at most one line end. False at anything
// else.
bool PlainKeyReader::SkipToWord(Place& place) {
    std::ptrdiff_t at = place.pending;
    while (at < end_ && is_blank(block_[at])) {
        ++at;
    }
    if (at < end_ && is_line_end(block_[at])) {
        const bool pair_may_follow = at != begin_ || begin_pair_may_follow_;
        const char first = block_[at];
        ++at;
        if (at < end_ && is_line_end(block_[at]) && block_[at] != first && pair_may_follow) {
            ++at;
        }
        ++place.lines;
        place.line_begin = at;
        while (at < end_ && is_blank(block_[at])) {
            ++at;
        }
    }
    const bool moved = at != place.pending;
    place.pending = at;
    ran_out_ = at == end_;
    return moved && !ran_out_;
}

// Moves found_ behind the word KEY. False when that does not come next.
bool PlainKeyReader::FindKey(TextPosition& at) {
    if (key_is_read_) {
        key_is_read_ = false;
        at = p_.token_start_;
        return end_ != 0;
    }
    constexpr std::ptrdiff_t kWordBytes = 3;
    if (end_ == 0 || !SkipToWord(found_)) {
        return false;
    }
    const std::ptrdiff_t bytes = std::min(end_ - found_.pending, kWordBytes);
    if (std::memcmp(block_ + found_.pending, "KEY", static_cast<std::size_t>(bytes)) != 0) {
        return false;
    }
    if (end_ - found_.pending <= kWordBytes) {
        ran_out_ = true;
        return false;
    }
    at = {p_.char_position_.offset_bytes + (found_.pending - begin_), p_.char_position_.line + found_.lines,
          found_.pending - found_.line_begin + 1};
    found_.pending += kWordBytes;
    ++found_.tokens;
    return true;
}

bool PlainKeyReader::Next(std::size_t least, std::size_t most, PlainKey& key) {
    if (NextInBlock(least, most, key)) {
        return true;
    }
    if (!ran_out_) {
        return false;
    }
    // Token by token it would be read beyond the end of the block as well.
    Finish();
    const bool joined = p_.JoinNextBlock();
    Begin();
    return joined && NextInBlock(least, most, key);
}

bool PlainKeyReader::NextInBlock(std::size_t least, std::size_t most, PlainKey& key) {
    ran_out_ = false;
    if (!FindKey(key.at)) {
        return false;
    }
    key.count = ReadNumbers(most, key);
    if (ran_out_ || key.count < least) {
        return false;
    }
    if (key.count == most && is_line_end(block_[found_.pending])) {
        return true;
    }
    // A further number may stand behind blanks or on the next line: a letter or brace there says that it does
    // not.
    Place behind = found_;
    return SkipToWord(behind) && block_[behind.pending] >= 'A';
}

// Reads the frame and up to `most` - 1 other numbers behind found_.pending and moves it to the byte behind
// the last one. Returns how many.
std::size_t PlainKeyReader::ReadNumbers(std::size_t most, PlainKey& key) {
    const char* const limit = block_ + end_;
    const char* end = block_ + found_.pending;  // of the word before
    std::size_t count = 0;
    plain_number::Found number;
    const auto next_word = [&] {
        const char* at = end;
        while (at < limit && is_blank(*at)) {
            ++at;
        }
        return at;
    };
    if (limit - end > plain_number::kShortBytes && is_blank(*end)) {
        number.behind = plain_number::find_short_integer(end + 1, key.frame);
    }
    if (number.behind == nullptr && is_blank(*end)) {
        number = plain_number::find_number(next_word(), limit, plain_number::read_integer, key.frame);
    }
    float* value = key.others.data();
    while (number.behind != nullptr) {
        end = number.behind;
        ++count;
        if (count == most || !is_blank(*end)) {
            break;
        }
        if (limit - end > plain_number::kShortBytes) {
            number.behind = plain_number::find_short_real(end + 1, *value);
        } else {
            number.behind = nullptr;
        }
        if (number.behind == nullptr) {
            number = plain_number::find_number(next_word(), limit, plain_number::read_real, *value);
        }
        ++value;
    }
    ran_out_ = number.cut;
    found_.pending = end - block_;
    found_.tokens += static_cast<std::int64_t>(count);
    return count;
}

void PlainKeyReader::Take() {
    taken_ = found_;
}

void PlainKeyReader::Finish() {
    if (taken_.tokens == 0) {
        return;
    }
    // The texts of the last two tokens, where nextsym would have left them.
    const auto begin_of = [this](std::ptrdiff_t end) {
        while (end > 0 && !is_blank(block_[end - 1])) {
            --end;
        }
        return end;
    };
    const auto keep = [this](char* to, std::ptrdiff_t begin, std::ptrdiff_t end) {
        const auto length = static_cast<std::size_t>(end - begin);
        std::memcpy(to, block_ + begin, length);
        to[length] = '\0';
    };
    char* const own = p_.text == p_.textB ? p_.textB : p_.textA;
    char* const other = p_.text == p_.textB ? p_.textA : p_.textB;
    p_.text = taken_.tokens % 2 == 0 ? own : other;
    const std::ptrdiff_t last = begin_of(taken_.pending);
    keep(p_.text, last, taken_.pending);
    std::ptrdiff_t before = last;
    while (is_blank(block_[before - 1])) {
        --before;
    }
    keep(p_.text == own ? other : own, begin_of(before), before);
    p_.rewound = 0;
    p_.sym = kTokenNumber;
    p_.cut_ = TokenCut::none;
    // Everything up to the byte behind the last number ...
    const bool counted = is_line_end(block_[begin_]);
    ASCIIParser::CountUp(p_.line, taken_.lines - (counted && taken_.lines > 0 ? 1 : 0));
    p_.char_position_ = {p_.char_position_.offset_bytes + (taken_.pending - 1 - begin_),
                         p_.char_position_.line + taken_.lines, taken_.pending - taken_.line_begin};
    p_.token_start_ = p_.char_position_;
    p_.token_start_.offset_bytes -= taken_.pending - last - 1;
    p_.token_start_.column -= taken_.pending - last - 1;
    p_.line_ended_ = false;
    p_.curChar = p_.lastEol = block_[taken_.pending - 1];
    p_.bufPos += taken_.pending - begin_ - 1;
    p_.bufCount = static_cast<A_long>(end_ - taken_.pending);
    // Of each token two characters are delivered twice: its first, and the one before it if that was pushed
    // back.
    const std::int64_t twice = 2 * taken_.tokens - (p_.pushedBack != 0 ? 0 : 1);
    ASCIIParser::CountUp(p_.charCount, taken_.pending - 1 - begin_ + twice);
    // ... and that byte, which may be a line end.
    p_.pushedBack = 0;
    p_.nextchar(nullptr);
    p_.pushedBack = 1;
}
