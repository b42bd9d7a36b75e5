#pragma once

#include <span>
#include <string_view>

#include "composition/read/text_cursor.h"
#include "host/host_interface.h"

class ASCIIParser;
enum class ValueKind;

/// A word of the file and its value in the model.
struct WordValue {
    const char* word;
    A_long value;
};

/// Whether the current token is the identifier `word`, exactly. The same text in quotes does not count.
[[nodiscard]] bool is_word(const ASCIIParser& p, const char* word);

/// Looks the current token up. Only identifiers are words; `value` is unchanged when it is none of them.
[[nodiscard]] bool find_word(const ASCIIParser& p, std::span<const WordValue> words, A_long& value);

/// Reads the next token, a blend word, into `mode`. Returns 1, or 0 after telling the observer.
int read_blend_mode(ASCIIParser& p, A_long& mode);
/// Reads the next token, an alpha word, into `mode`. Returns 1, or 0 after telling the observer.
int read_alpha_mode(ASCIIParser& p, A_long& mode);
/// Reads the next token, a name in double quotes, into a new array of its length plus two bytes, and tells
/// the observer that the innermost block has its name. `name` must be null. Returns 1, or 0 after telling the
/// observer.
int read_name(ASCIIParser& p, char*& name);

/// Reads the values after a keyword, one token each, and tells the observer. Construct it while the keyword
/// is the current token; `keyword` must outlive the object. Every reader returns 1, or 0 at a token of the
/// wrong kind or a value out of range, after telling the observer.
class ValueReader {
  public:
    ValueReader(ASCIIParser& p, std::string_view keyword);

    int read_long(A_long& value);
    int read_real(float& value);
    int read_reals(std::span<float> values);
    int read_word(std::span<const WordValue> words, A_long& value);

    /// Reports that the number just read is not `allowed`, such as "greater than 0". Returns 0.
    int out_of_range(std::string_view allowed) const;

    /// Takes the current token as the next value instead of reading one; it must be a number.
    int take_real(float& value);

  private:
    int number_missing() const;
    void tell(ValueKind kind, double kept);

    ASCIIParser& p_;
    std::string_view keyword_;
    TextPosition keyword_at_;
    int index_ = 0;
};
