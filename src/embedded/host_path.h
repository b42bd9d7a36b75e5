#pragma once

// A file's path on its way into the bundle.

#include <string>

#include "embedded/host_options.h"
#include "embedded/text_encoding.h"

namespace embedded {

/// Why a host of this generation cannot pass the path on; empty when it can. Current hosts need UTF-8,
/// classic ones take any bytes.
std::string path_problem(HostGeneration generation, const std::string& path);

/// A path in both encodings; a callback takes one of them.
class HostPath {
  public:
    /// The UTF-16 of a path that is not UTF-8, and of every path in a classic host, is empty.
    HostPath(HostGeneration generation, const std::string& path)
        : narrow_(path),
          wide_(generation == HostGeneration::today ? to_utf16(path).value_or(Utf16String())
                                                    : Utf16String()) {}

    // As the callbacks of this record take it.
    [[nodiscard]] const A_char* given_to(const AE_FIM_ImportCallbacks& /*callee*/) const {
        return narrow_.c_str();
    }
    [[nodiscard]] const A_char* given_to(const AEIO_FunctionBlock2& /*callee*/) const {
        return narrow_.c_str();
    }
    [[nodiscard]] const A_UTF16Char* given_to(const AE_FIM_ImportCallbacks3& /*callee*/) const {
        return wide_.c_str();
    }
    [[nodiscard]] const A_UTF16Char* given_to(const AEIO_FunctionBlock4& /*callee*/) const {
        return wide_.c_str();
    }

  private:
    std::string narrow_;
    Utf16String wide_;
};

}  // namespace embedded
