#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostic/diagnostic.h"

namespace cli {

/// What a check refuses files for, and what it does not mention. Without any words: errors, and nothing.
class CheckPolicy {
  public:
    /// `word` is a severity, which means that one and every more serious one, or one of `codes`. Returns what
    /// is wrong with any other word; empty for a good one.
    std::string fail_on(const std::string& word, const std::vector<diagnostic::CodeInfo>& codes);
    /// The same for a code that is not mentioned.
    std::string ignore(const std::string& word, const std::vector<diagnostic::CodeInfo>& codes);

    [[nodiscard]] bool refuses(const diagnostic::Diagnostic& diagnostic) const;
    [[nodiscard]] bool ignores(const diagnostic::Diagnostic& diagnostic) const;

  private:
    diagnostic::Severity least_ = diagnostic::Severity::error;
    std::set<std::string, std::less<>> refused_;
    std::set<std::string, std::less<>> ignored_;
};

/// The words of "loss,name-cut"; empty ones, too, which are no word of any option.
[[nodiscard]] std::vector<std::string> comma_separated(std::string_view text);

}  // namespace cli
