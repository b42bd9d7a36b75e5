#pragma once

#include <cstdint>

/// A place in a text file, as an editor shows it. Lines end with CR, LF, CR LF or LF CR; a line end belongs
/// to the line that it ends.
struct TextPosition {
    std::int64_t offset_bytes = 0;  ///< from the start of the file
    std::int64_t line = 1;          ///< counted from 1
    std::int64_t column = 1;        ///< in bytes, counted from 1
};

/// Counts bytes, lines and columns while the bytes of a text are passed in order. A copy can look ahead.
class TextCursor {
  public:
    /// Of the byte passed last; before the first byte, offset -1 and column 0.
    [[nodiscard]] TextPosition last() const {
        return {offset_bytes_, line_, offset_bytes_ - line_begin_bytes_ + 1};
    }
    /// Of the byte that comes next.
    [[nodiscard]] TextPosition next() const {
        const std::int64_t offset_bytes = offset_bytes_ + 1;
        return line_ended_ ? TextPosition{offset_bytes, line_ + 1, 1}
                           : TextPosition{offset_bytes, line_, offset_bytes - line_begin_bytes_ + 1};
    }
    /// Whether the byte passed last is a line end.
    [[nodiscard]] bool at_line_end() const { return line_ended_; }
    /// Line ends passed so far; a pair is one.
    [[nodiscard]] std::int64_t line_ends() const { return line_ - 1 + (line_ended_ ? 1 : 0); }

    /// Passes the next byte.
    void pass(char c) {
        if (c == '\n' || c == '\r') {
            pass_line_end(c);
        } else {
            pass_text(1);
        }
    }
    /// Passes `bytes` bytes, none of which is a line end.
    void pass_text(std::int64_t bytes) {
        if (bytes > 0) {
            begin_line_after_end();
            offset_bytes_ += bytes;
            first_of_pair_ = 0;
        }
    }
    /// Passes CR or LF.
    void pass_line_end(char c) {
        const bool completes_pair = first_of_pair_ != 0 && first_of_pair_ != c;
        if (!completes_pair) {
            begin_line_after_end();
        }
        ++offset_bytes_;
        line_ended_ = true;
        first_of_pair_ = completes_pair ? '\0' : c;
    }
    /// Goes back by `bytes` bytes within the line, or before the line end that ends it.
    void step_back(std::int64_t bytes) {
        offset_bytes_ -= bytes;
        line_ended_ = false;
        first_of_pair_ = 0;
    }

  private:
    void begin_line_after_end() {
        if (line_ended_) {
            ++line_;
            line_begin_bytes_ = offset_bytes_ + 1;
            line_ended_ = false;
        }
    }

    std::int64_t offset_bytes_ = -1;
    std::int64_t line_ = 1;  // of the byte passed last
    std::int64_t line_begin_bytes_ = 0;
    bool line_ended_ = false;
    char first_of_pair_ = 0;  // a line end that the other one may complete to a pair, or 0
};
