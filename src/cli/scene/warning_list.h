#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/report/diagnostic_text.h"
#include "cli/report/tool_code.h"
#include "cli/scene/scene_reading.h"

namespace cli {

/// The warnings about one file, in the order of their places. The first `kMostOfOneCode` of each code are
/// kept and the rest is counted: a script that writes a thousand wrong lines has made one mistake.
class WarningList {
  public:
    static constexpr std::int64_t kMostOfOneCode = 50;

    explicit WarningList(const SceneReading& reading) : reading_(reading) {}

    /// Adds a warning and returns it, so that the caller can add effects and a count. A warning that is only
    /// counted does not keep them.
    Diagnostic& add(ToolCode code, const TextPosition& at, std::string reason,
                    std::vector<std::string> within);

    /// Everything, with source lines.
    [[nodiscard]] std::vector<Diagnostic> finish();

  private:
    struct Overflow {
        Place first;
        std::int64_t count = 0;
    };

    const SceneReading& reading_;
    std::vector<Diagnostic> kept_;
    std::map<ToolCode, std::int64_t> counts_;
    std::map<ToolCode, Overflow> overflow_;
    std::optional<Diagnostic> overflowing_;  ///< what add() returned last, if it was only counted
};

}  // namespace cli
