#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

#include "handover/handover.h"

namespace handover {

/// Collects text and passes it on in pieces of some 64 KiB.
class JsxText {
  public:
    explicit JsxText(const Sink& sink) : sink_(sink) {}

    JsxText& operator<<(std::string_view text) {
        text_ += text;
        if (text_.size() >= kPiece) {
            flush();
        }
        return *this;
    }
    JsxText& operator<<(const char* text) { return *this << std::string_view(text); }
    JsxText& operator<<(char c) { return *this << std::string_view(&c, 1); }
    JsxText& operator<<(bool value) { return *this << (value ? "true" : "false"); }

    /// The shortest text that reads back to the same number. `number` is finite.
    template <typename Number>
    requires(std::integral<Number> || std::floating_point<Number>) &&
        (!std::same_as<Number, bool> && !std::same_as<Number, char>)JsxText& operator<<(Number number) {
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        return *this << std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
    }

    void flush() {
        if (!text_.empty()) {
            sink_(text_);
            text_.clear();
        }
    }

  private:
    static constexpr std::size_t kPiece = 65536;
    const Sink& sink_;
    std::string text_;
};

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
