#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "cli/report/codes.h"
#include "cli/report/diagnostic.h"
#include "cli/scene/scene_reading.h"

namespace cli {

/// The warnings about one file, in the order of their places. Of each code the first `kMostOfOneCode` are
/// kept and the rest is counted: a script that writes a thousand wrong lines has made one mistake.
class WarningList {
  public:
    static constexpr std::int64_t kMostOfOneCode = 50;

    explicit WarningList(const SceneReading& reading) : reading_(reading) {}

    /// The new warning, for its effects and count; of one that is only counted they are not kept.
    Diagnostic& add(Code code, const TextPosition& at, std::string reason, std::vector<std::string> within);

    /// Everything, with source lines.
    [[nodiscard]] std::vector<Diagnostic> finish();

  private:
    struct Overflow {
        Diagnostic first;
        std::int64_t count = 0;
    };

    const SceneReading& reading_;
    std::vector<Diagnostic> kept_;
    std::map<Code, std::int64_t> counts_;
    std::map<Code, Overflow> overflow_;
    Diagnostic uncounted_;
};

}  // namespace cli
