#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/terminal/terminal.h"
#include "diagnostic/diagnostic.h"

namespace cli {

/// What was found in many files: how many came out how, and what occurs how often.
class CheckSummary {
  public:
    /// For each file once. `ignored` is the number of diagnostics that were left out on demand.
    void add(const std::string& file, ExitCode code, const std::vector<diagnostic::Diagnostic>& diagnostics,
             std::size_t ignored);

    /// "300 files: 12 ok, 288 incomplete", and below it a table with a line for each code, the most serious
    /// and most frequent first, with the three files in which it occurs most. Each line ends with a line
    /// break.
    [[nodiscard]] std::string text(const Paint& paint) const;

    /// {"files","ok","incomplete","refused","unreadable","ignored","codes":[{"code","severity","count","files",
    /// "most":[{"file","count"}]}]}
    [[nodiscard]] nlohmann::ordered_json json() const;

  private:
    struct OfCode {
        diagnostic::Code code;
        std::int64_t count = 0;
        std::size_t files = 0;
        std::vector<std::pair<std::string, std::int64_t>> most = {};  ///< at most three, the largest first
    };

    [[nodiscard]] std::vector<OfCode> in_order() const;

    std::array<std::size_t, kExitCodes.size()> outcomes_{};  ///< by exit code
    std::size_t ignored_ = 0;
    std::map<std::string, OfCode> codes_;
};

}  // namespace cli
