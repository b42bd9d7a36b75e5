#pragma once

// Outputs of a module's callbacks, as a current host passes them: in memory that was used before.

#include <cstring>
#include <string>

#include "embedded/conformance.h"
#include "embedded/session.h"

namespace embedded {

/// Unlikely to be what a module sets.
inline constexpr unsigned char kPoison = 0xCD;

/// An output, with `Value{}` in a classic host and with poison in a current one. Every byte of a poisoned
/// value is one, so `Value` is plain data for which any bytes are a value.
template <typename Value>
class Output {
  public:
    explicit Output(const Session& session) : poisoned_(session.options.generation == HostGeneration::today) {
        if (poisoned_) {
            std::memset(&value_, kPoison, sizeof value_);
        }
    }
    Value* address() { return &value_; }

    /// After a callback that reported success. Reports an output that is as it was, and gives `Value{}` for
    /// it.
    Value take(Session& session, const char* callback, const char* output) {
        Value poison{};
        std::memset(&poison, kPoison, sizeof poison);
        if (poisoned_ && std::memcmp(&value_, &poison, sizeof poison) == 0) {
            session.conformance.add(conformance_finding(RuleViolation::output_not_set, 0, callback,
                                                        std::string(output) + " was not set"));
            return Value{};
        }
        return value_;
    }

  private:
    Value value_{};
    bool poisoned_;
};

}  // namespace embedded
