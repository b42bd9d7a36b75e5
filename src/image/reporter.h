#pragma once

#include <exception>
#include <string>

#include "image/functions.h"

namespace image {

/// How an implementation of the function table passes errors and warnings on to the caller.
class Reporter {
  public:
    Reporter(Report report, void* reports) : report_(report), reports_(reports) {}

    void warn(Code code, const std::string& reason) const { report_(reports_, code, reason.c_str()); }
    /// False, for functions that return whether they succeeded.
    [[nodiscard]] bool fail(Code code, const std::string& reason) const {
        report_(reports_, code, reason.c_str());
        return false;
    }

  private:
    Report report_;
    void* reports_;
};

/// Runs `work`, which returns whether it succeeded, and reports an exception as `gave_up`.
template <typename Work>
bool guarded(const Reporter& reporter, const Work& work) {
    try {
        return work();
    } catch (const std::exception& failure) {
        return reporter.fail(Code::gave_up, failure.what());
    }
}

}  // namespace image
