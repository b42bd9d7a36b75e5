#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "handover/handover.h"

namespace handover {

/// Collects text and passes it on in pieces of at most 64 KiB; a longer text is a piece of its own. Numbers
/// are written where they are collected: scenes have millions.
class JsxText {
  public:
    explicit JsxText(const Sink& sink) : sink_(sink), buffer_(kPiece) {}

    JsxText& operator<<(std::string_view text) {
        if (text.size() > kPiece - used_) {
            flush();
        }
        if (text.size() > kPiece) {
            sink_(text);
            return *this;
        }
        std::copy(text.begin(), text.end(), buffer_.data() + used_);
        used_ += text.size();
        return *this;
    }
    JsxText& operator<<(const char* text) { return *this << std::string_view(text); }
    JsxText& operator<<(char c) {
        make_room(1);
        buffer_[used_++] = c;
        return *this;
    }
    JsxText& operator<<(bool value) { return *this << (value ? "true" : "false"); }

    /// The shortest text that reads back to the same number. `number` is finite.
    template <typename Number>
    requires(std::integral<Number> || std::floating_point<Number>) &&
        (!std::same_as<Number, bool> && !std::same_as<Number, char>)JsxText& operator<<(Number number) {
        return write_shortest(number);
    }

    /// A text that is nearer to `number` than to any other float, and hardly ever longer than necessary. Most
    /// floats of scenes were written with up to three decimals, which takes a third of the time to find out.
    JsxText& operator<<(float number) {
        constexpr float kMost = 4096;  // floats are less than a thousandth apart up to here
        const int thousandths = std::abs(number) < kMost ? static_cast<int>(std::lround(number * 1000.0)) : 0;
        if (thousandths != 0 && static_cast<float>(thousandths / 1000.0) == number) {
            return write_thousandths(thousandths);
        }
        return write_shortest(number);
    }

    void flush() {
        if (used_ > 0) {
            sink_({buffer_.data(), used_});
            used_ = 0;
        }
    }

  private:
    static constexpr std::size_t kPiece = 65536;
    static constexpr std::size_t kLongestNumber = 32;

    template <typename Number>
    JsxText& write_shortest(Number number) {
        make_room(kLongestNumber);
        char* const begin = buffer_.data() + used_;
        used_ += static_cast<std::size_t>(std::to_chars(begin, begin + kLongestNumber, number).ptr - begin);
        return *this;
    }

    // Not 0. Without zeros at the end.
    JsxText& write_thousandths(int thousandths) {
        make_room(kLongestNumber);
        char* at = buffer_.data() + used_;
        if (thousandths < 0) {
            *at++ = '-';
            thousandths = -thousandths;
        }
        at = std::to_chars(at, buffer_.data() + kPiece, thousandths / 1000).ptr;
        int rest = thousandths % 1000;
        if (rest != 0) {
            *at++ = '.';
        }
        for (; rest != 0; rest = rest * 10 % 1000) {
            *at++ = static_cast<char>('0' + rest / 100);
        }
        used_ = static_cast<std::size_t>(at - buffer_.data());
        return *this;
    }

    void make_room(std::size_t size) {
        if (size > kPiece - used_) {
            flush();
        }
    }

    const Sink& sink_;
    std::vector<char> buffer_;
    std::size_t used_ = 0;
};

/// What a script says in place of a number that is not finite.
[[nodiscard]] inline double finite_or_zero(double number) {
    return std::isfinite(number) ? number : 0;
}

/// Any bytes as ASCII that can stand in a string of the script and on one line of a comment: UTF-8 as \uXXXX,
/// surrogates that are written in the manner of UTF-8 among it, quotes, backslashes, control characters and
/// "<" too. Bytes that are no UTF-8 become \ufffd.
[[nodiscard]] std::string jsx_escaped(std::string_view text);

/// The text as a string of the script, in double quotes.
[[nodiscard]] std::string jsx_string(std::string_view text);

/// A path as a URI of the script's host: "/" between components, a drive as the first component, all other
/// bytes than letters, digits and "-_.~" written with "%".
[[nodiscard]] std::string jsx_uri(std::string_view path);

/// Whether a path begins at a root, in the style of any system.
[[nodiscard]] bool jsx_is_absolute(std::string_view path);

/// The way from a folder to a file, "../renders/a.tif"; both begin at a root. Empty if they have no folder in
/// common.
[[nodiscard]] std::string jsx_way(std::string_view folder, std::string_view file);

}  // namespace handover
