#pragma once

// Outputs of a module's callbacks, as a current host passes them: in memory that was used before.

#include <cstring>
#include <string>

#include "embedded/conformance.h"
#include "embedded/session.h"

namespace embedded {

/// Modules are unlikely to set this byte.
inline constexpr unsigned char kPoison = 0xCD;

/// An output that holds `Value{}` in a classic host and kPoison in every byte in a current one. `Value` is
/// plain data for which any bytes are a value.
template <typename Value>
class Output {
  public:
    explicit Output(const Session& session) : poisoned_(session.options.generation == HostGeneration::today) {
        if (poisoned_) {
            std::memset(&held_, kPoison, sizeof held_);
        }
    }
    Value* address() { return &held_.value; }

    /// The value, after a callback that reported success. Reports an output that still holds poison and
    /// returns `Value{}` for it.
    Value take(Session& session, const char* callback, const char* output) {
        Held poison{};
        std::memset(&poison, kPoison, sizeof poison);
        if (poisoned_ && std::memcmp(&held_, &poison, sizeof held_) == 0) {
            session.conformance.add(conformance_finding(RuleViolation::output_not_set, 0, callback,
                                                        std::string(output) + " was not set"));
            return Value{};
        }
        return held_.value;
    }

  private:
    /// Where `Value` is a pointer, sizeof counts the pointer and not what it points to.
    struct Held {
        Value value;
    };
    Held held_{};
    bool poisoned_;
};

}  // namespace embedded
