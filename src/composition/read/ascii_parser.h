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

/// Token kinds: the values of ASCIIParser::sym. 8 is free. A subclass may add keyword codes of its own.
enum TokenKind : A_long {
    kTokenNone = 0,  ///< end of input, read error, or a token that could not be finished; its text is empty
    kTokenIdentifier = 1,
    kTokenString = 2,        ///< "..."
    kTokenSingleQuoted = 3,  ///< '...'
    kTokenNumber = 4,        ///< not validated: a lone minus sign is one
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
/// ASCIIParser::status after a block that could not be read whole.
inline constexpr A_long kStatusReadFailed = 1;

/// Why the current token is of kind kTokenNone. Told to the observer; no reader decides by it.
enum class TokenCut {
    none,           ///< the token is whole
    end_of_input,   ///< there was no further token
    inside_word,    ///< the input ended in a word or number: one needs a character behind it
    inside_string,  ///< the input ended before the closing quote
    word_too_long,  ///< a word or number of 512 characters or more
    read_failed,    ///< the file could not be read on
    out_of_memory,  ///< a quoted string did not fit into memory
};

/// Turns a composition file into tokens: skips blanks and "/" comments, and classifies each token by its
/// first character. Reads the file in blocks of 2000 bytes and counts lines. Constructed and initialised once
/// per file. Never fails by itself: what a token may be is for the grammar readers to say.
class ASCIIParser {
  public:
    ASCIIParser();
    // Deliberately not virtual: the two operations below are the only slots. Never deleted through a base.
    ~ASCIIParser();
    ASCIIParser(const ASCIIParser&) = delete;
    ASCIIParser& operator=(const ASCIIParser&) = delete;

    /// The kind of token that `word` is: a keyword code, or 0 for a plain identifier. The base knows no
    /// keywords.
    virtual A_long CompareIdent(char* word);
    /// The kind of token that the single character `c` is; never 0 in the base.
    virtual A_long CompareOperator(char c);

    /// Opens `name` and reads the first token. `openFlag` is handed to BaseFile::Open; with `eolIsToken` line
    /// ends are tokens, otherwise blanks. Returns 0, or 4 when the file does not open, is empty, or has 2 GiB
    /// or more.
    A_long Init(const Filename& name, int open_flag, int eol_is_token);

    /// Delivers the next character into `*out` (which may be null). Returns 1 while `status` is 0, else 0; a
    /// character delivered with 0 means nothing.
    int nextchar(char* out);
    /// Skips blanks and comments; the character behind them is delivered next. Returns the last nextchar's
    /// result.
    int skipspaces();
    /// Skips the rest of the line, then blanks. Returns the last nextchar's result.
    int skiplinetoend();
    /// Reads the next token into `sym` and `text` and returns its kind. With `no_numbers` a digit, "." or "-"
    /// begins an identifier or operator.
    A_long nextsym(int no_numbers);
    /// Makes the next nextsym return the current token again.
    void rewindsym();

    /// Reads entries of the word KEY and `least` to `most` plain numbers, at most 9, into `sink`: as many as
    /// follow directly. To everything else in this class they are what as many calls of nextsym read: tokens,
    /// lines and characters are counted alike. Rarer forms, comments and mistakes are left for nextsym.
    /// Several times faster than nextsym.
    void ReadPlainKeys(std::size_t least, std::size_t most, PlainKeySink& sink);

    /// Converts a number token. Returns 0 and leaves the target for any other kind; otherwise 1, also when
    /// the text has no value, which leaves the target unchanged.
    int GetReal(float& f);
    int GetLong(A_long& l);

    /// Who is told about reading; null, as in the plug-in, for nobody. Not owned. Set before Init.
    void SetObserver(ReadObserver* observer) { observer_ = observer; }
    [[nodiscard]] ReadObserver* Observer() const { return observer_; }

    /// Where the current token begins; the end of the input when there was none. True on any line, unlike
    /// `line`.
    [[nodiscard]] const TextPosition& TokenStart() const { return token_start_; }
    /// Where the character delivered last stands.
    [[nodiscard]] TextPosition CharPosition() const { return cursor_.last(); }
    /// Why `sym` is kTokenNone.
    [[nodiscard]] TokenCut Cut() const { return cut_; }

    static constexpr A_long kBlockBytes = 2000;
    /// A word or number with the zero behind it.
    static constexpr std::size_t kTextBytes = static_cast<std::size_t>(limits::kWord.value) + 1;

    BaseFile* file = nullptr;
    Filename filename;  ///< the path given to Init; footage is looked for in its folder
    A_long status = 0;  ///< 0 while reading, else kStatusReadFailed or kStatusEndOfInput; never returns to 0
    A_long sym = kTokenNone;
    unsigned char charClass[256] = {};  ///< 1 for the characters of identifiers
    A_long pushedBack = 0;              ///< 1 when `curChar` is to be delivered once more
    A_long rewound = 0;                 ///< 1 when the current token is to be returned once more
    A_long fileLength = 0;
    A_long bytesLeft = 0;    ///< bytes of the file that are not yet in `buffer`
    A_long charCount = 0;    ///< nextchar calls since Init; kept, never read
    char* buffer = nullptr;  ///< one block and two bytes
    char* bufPos = nullptr;  ///< next unread byte in `buffer`
    A_long bufCount = 0;     ///< bytes left in `buffer`
    char curChar = 0;
    char lastEol = 0;  ///< the character counted last; 0 for none or after a completed pair of line ends
    char textA[kTextBytes] = {};  ///< the two buffers take turns, so that the text of the token before stays
                                  ///< readable
    char textB[kTextBytes] = {};
    char* text = nullptr;   ///< text of the current token: textA, textB, or a heap string of quoted text
    A_long textOnHeap = 0;  ///< 1 while `text` is a heap string of this object
    A_long eolIsToken = 0;
    A_long openFlag = 0;
    /// Lines counted so far, from 1. Runs ahead: a word or number reads the character behind it, and the end
    /// of the input may count its last line end twice. Deliberately kept so: the plug-in's message shows this
    /// number.
    A_long line = 1;

  private:
    /// Adds and stays at the largest value: a file of line ends alone has more than a 32-bit number counts.
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

    /// What may be left of a block when the next one is joined to it, and what stays of the bytes before.
    static constexpr A_long kJoinedBytes = 256;
    static constexpr std::ptrdiff_t kKeptBytes = plain_number::kBytesBefore + 1;

    char* memory_ = nullptr;             // `buffer`, and room before it
    const char* block_begin_ = nullptr;  // the first byte that is known: `buffer`, or before it
    bool failed_early_ = false;  // the block in `buffer` is still to come, and could not be read whole

    // Position tracking; never affects parsing.
    TextCursor cursor_;
    TextPosition token_start_;
    TokenCut cut_ = TokenCut::none;
    ReadObserver* observer_ = nullptr;
};

/// Compares two words, exactly and by case: 0 when equal, else as strcmp.
int Compare(const char* a, const char* b);
