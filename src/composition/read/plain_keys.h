#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "composition/read/text_position.h"
#include "host/host_interface.h"

class ASCIIParser;

/// The word KEY and its numbers.
struct PlainKey {
    TextPosition at;  ///< of KEY
    A_long frame = 0;
    std::array<float, 8> others{};  ///< in the order written
    std::size_t count = 0;          ///< of all numbers, the frame included
};

/// The way past nextsym for what a file of keyframes consists of: entries of the word KEY and plain numbers,
/// each ended by a line end. One that lies across the end of the parser's block has the next block joined to
/// it. What it takes is, to the parser, what
/// as many calls of nextsym take: tokens, lines and characters are counted alike. Everything else is left for
/// nextsym to read, whatever it is: rarer forms, comments, mistakes.
class PlainKeyReader {
  public:
    /// `p` must not be used before Finish.
    explicit PlainKeyReader(ASCIIParser& p) : p_(p) { Begin(); }

    /// The next entry, when it has at least `least` and at most `most` plain numbers, `most` being 9 at the
    /// most. False when what follows is anything else.
    bool Next(std::size_t least, std::size_t most, PlainKey& key);
    /// Takes the entry that Next has just found.
    void Take();
    /// Puts the parser behind the last entry taken.
    void Finish();

  private:
    /// How far reading has come.
    struct Place {
        std::ptrdiff_t pending = 0;     ///< the byte that comes next
        std::ptrdiff_t line_begin = 0;  ///< of the line that `pending` belongs to; negative in a block before
        std::int64_t lines = 0;         ///< line ends passed since the beginning, without `pending`
        std::int64_t tokens = 0;
    };

    void Begin();
    bool NextInBlock(std::size_t least, std::size_t most, PlainKey& key);
    bool FindKey(TextPosition& at);
    bool SkipToWord(Place& place);
    std::size_t ReadNumbers(std::size_t most, PlainKey& key);

    ASCIIParser& p_;
    const char* block_ = nullptr;
    std::ptrdiff_t end_ = 0;    ///< bytes in the block; 0 when nothing can be taken
    std::ptrdiff_t begin_ = 0;  ///< the byte that the parser delivered last
    bool begin_pair_may_follow_ =
        false;                  ///< whether the byte there, a line end, may be the first half of a pair
    bool key_is_read_ = false;  ///< the first KEY is the parser's current token, given back
    bool ran_out_ = false;      ///< the block ends inside an entry that has been plain so far
    Place found_;
    Place taken_;
};
