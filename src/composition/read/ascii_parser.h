#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "composition/read/plain_number.h"
#include "composition/read/text_cursor.h"
#include "host/host_interface.h"
#include "limit/limits.h"
#include "texture/file/base_file.h"
#include "texture/file/filename.h"

class PlainKeySink;
class ReadObserver;

/// Token kinds: the values of ASCIIParser::sym. 8 is unused. A subclass may add keyword codes of its own.
enum TokenKind : A_long {
    kTokenNone = 0,  ///< end of input, read error, or a token that could not be finished; its text is empty
    kTokenIdentifier = 1,
    kTokenString = 2,        ///< "..."
    kTokenSingleQuoted = 3,  ///< '...'
    kTokenNumber = 4,        ///< not validated: a lone minus sign is a number token
    kTokenLineEnd = 5,       ///< only when line ends are tokens
    kTokenOpenBrace = 6,
    kTokenCloseBrace = 7,
    kTokenEquals = 9,
    kTokenComma = 10,
    kTokenSemicolon = 11,
    kTokenPlus = 12,
    kTokenTilde = 13,
    kTokenOther = 14,  ///< any other single character
};

/// ASCIIParser::status once the input is exhausted; hex FFFFF000.
inline constexpr A_long kStatusEndOfInput = -4096;
/// ASCIIParser::status after a block that could not be read completely.
inline constexpr A_long kStatusReadFailed = 1;

/// Why the current token is of kind kTokenNone. For the observer only; no reader acts on it.
enum class TokenCut {
    none,           ///< the token is complete
    end_of_input,   ///< there was no further token
    inside_word,    ///< the input ended in a word or number, which needs a character after it
    inside_string,  ///< the input ended before the closing quote
    word_too_long,  ///< a word or number of 512 characters or more
    read_failed,    ///< the rest of the file could not be read
    out_of_memory,  ///< a quoted string did not fit into memory
};

/// Turns a composition file into tokens: skips blanks and "/" comments, and classifies each token by its
/// first character. Reads the file in blocks of 2000 bytes and counts lines. Constructed and initialised once
/// per file. Never fails by itself: the grammar readers decide which tokens are errors.
class ASCIIParser {
  public:
    ASCIIParser();
    // Deliberately not virtual: the two operations below are the only slots. Never delete through a base
    // class.
    ~ASCIIParser();
    ASCIIParser(const ASCIIParser&) = delete;
    ASCIIParser& operator=(const ASCIIParser&) = delete;

    /// The token kind of `word`: a keyword code, or 0 for a plain identifier. The base class knows no
    /// keywords.
    virtual A_long CompareIdent(char* word);
    /// The token kind of the single character `c`; never 0 in the base class.
    virtual A_long CompareOperator(char c);

    /// Opens `name` and reads the first token. `open_flag` is passed to BaseFile::Open; with `eol_is_token`
    /// line ends are tokens, otherwise blanks. Returns 0, or 4 when the file does not open, is empty, or has
    /// 2 GiB or more.
    A_long Init(const Filename& name, int open_flag, int eol_is_token);

    /// Delivers the next character into `*out` (which may be null). Returns 1 while `status` is 0, else 0;
    /// the character is then meaningless.
    int nextchar(char* out);
    /// Skips blanks and comments; the character after them is delivered next. Returns the last nextchar's
    /// result.
    int skipspaces();
    /// Skips the rest of the line, then blanks. Returns the last nextchar's result.
    int skiplinetoend();
    /// Reads the next token into `sym` and `text` and returns its kind. With `no_numbers` a digit, "." or "-"
    /// begins an identifier or operator instead of a number.
    A_long nextsym(int no_numbers);
    /// Makes the next nextsym return the current token again.
    void rewindsym();

    /// Reads entries of the word KEY and `least` to `most` plain numbers, at most 9, into `sink`: as many as
    /// follow directly. To everything else in this class they are what as many calls of nextsym read: tokens,
    /// lines and characters are counted alike. Rarer forms, comments and mistakes are left for nextsym.
    /// Several times faster than nextsym.
    void ReadPlainKeys(std::size_t least, std::size_t most, PlainKeySink& sink);

    /// Converts a number token and returns 1; returns 0 for any other kind. The target is unchanged for any
    /// other kind, and for a number token without a value (a lone "-"), which still returns 1.
    int GetReal(float& f);
    int GetLong(A_long& l);

    /// Sets the observer of the reading; null, as in the plug-in, for none. Not owned. Call before Init.
    void SetObserver(ReadObserver* observer) { observer_ = observer; }
    [[nodiscard]] ReadObserver* Observer() const { return observer_; }

    /// Where the current token begins; the end of the input when there was none. Unlike `line`, never ahead.
    [[nodiscard]] const TextPosition& TokenStart() const { return token_start_; }
    /// Where the character delivered last is.
    [[nodiscard]] TextPosition CharPosition() const { return cursor_.last(); }
    /// Why `sym` is kTokenNone.
    [[nodiscard]] TokenCut Cut() const { return cut_; }

    static constexpr A_long kBlockBytes = 2000;
    /// The longest word or number and its terminating NUL.
    static constexpr std::size_t kTextBytes = static_cast<std::size_t>(limits::kWord.value) + 1;

    BaseFile* file = nullptr;
    Filename filename;  ///< the path given to Init; footage is looked for in its folder
    A_long status = 0;  ///< 0 while reading, else kStatusReadFailed or kStatusEndOfInput; never returns to 0
    A_long sym = kTokenNone;
    unsigned char charClass[256] = {};  ///< 1 for the characters of identifiers
    A_long pushedBack = 0;              ///< 1 when `curChar` will be delivered again
    A_long rewound = 0;                 ///< 1 when the current token will be returned again
    A_long fileLength = 0;
    A_long bytesLeft = 0;    ///< bytes of the file not yet read into `buffer`
    A_long charCount = 0;    ///< nextchar calls since Init; counted, never read
    char* buffer = nullptr;  ///< one block and two bytes
    char* bufPos = nullptr;  ///< next unread byte in `buffer`
    A_long bufCount = 0;     ///< bytes left in `buffer`
    char curChar = 0;
    char lastEol = 0;  ///< the character counted last; 0 for none or after a completed line end pair
    /// Words, numbers and operators use the two buffers in turn, so the previous token's text stays readable.
    char textA[kTextBytes] = {};
    char textB[kTextBytes] = {};
    char* text = nullptr;   ///< text of the current token: textA, textB, or a heap string of quoted text
    A_long textOnHeap = 0;  ///< 1 while `text` is a heap string of this object
    A_long eolIsToken = 0;
    A_long openFlag = 0;
    /// Lines counted so far, from 1. Deliberately runs ahead: a word or number reads the character after it,
    /// and the end of the input may count its last line end twice. The plug-in's message shows this number.
    A_long line = 1;

  private:
    /// Adds, saturating at the largest value: counts of a file near 2 GiB can exceed 32 bits.
    static void CountUp(A_long& number, std::int64_t by = 1) {
        number = static_cast<A_long>(std::min(number + by, std::int64_t{std::numeric_limits<A_long>::max()}));
    }

    bool JoinNextBlock();
    bool ReadBlock(A_long bytes);
    bool TakeByte();
    void Advance(const char* to);
    bool SkipBlanksInBlock();
    bool TakeWordInBlock(bool number);
    void Refill();
    void CountLine();
    void MoveTo(const char* next, const TextCursor& cursor, std::int64_t delivered_again);
    int Skip(bool skipping, bool comments);
    A_long ReadWord(bool number);
    A_long ReadString(char quote);
    A_long ReadOperator();
    A_long CutToken(TokenCut cut);
    [[nodiscard]] bool CanLookAhead() const;
    void TakeTokens(const char* next, TextCursor cursor, std::int64_t tokens);

    /// The most that may be left of a block when the next one is joined to it, and how many bytes before that
    /// stay.
    static constexpr A_long kJoinedBytes = 256;
    static constexpr std::ptrdiff_t kKeptBytes = plain_number::kBytesBefore + 1;

    char* memory_ = nullptr;             // `buffer` and the room before it
    const char* block_begin_ = nullptr;  // the first valid byte: in `buffer` or before it
    bool failed_early_ = false;          // the next block, already in `buffer`, could not be read completely

    // Position tracking; never affects parsing.
    TextCursor cursor_;
    TextPosition token_start_;
    TokenCut cut_ = TokenCut::none;
    ReadObserver* observer_ = nullptr;
};

/// Compares two words exactly, case-sensitively: 0 when equal, else as strcmp.
int Compare(const char* a, const char* b);
