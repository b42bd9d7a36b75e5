#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

#include "host/host_interface.h"

namespace bridge {

/// What a pointer argument of a module's callback points to when the callback writes it.
template <typename Value>
inline constexpr bool kIsOutput =
    std::is_same_v<Value, A_Boolean> || std::is_same_v<Value, A_long> || std::is_same_v<Value, A_u_long> ||
    std::is_same_v<Value, std::uint64_t> || std::is_same_v<Value, A_Time> || std::is_same_v<Value, A_LRect> ||
    std::is_same_v<Value, AEIO_Verbiage> || std::is_same_v<Value, AEIO_Handle>;

/// An argument of the host's for a callback of a module, for the length of the call. Modules write through
/// their outputs without a look and leave some of them alone. Current hosts may pass null for an output that
/// they do not need, and memory that holds anything; so an output is cleared, and null gets a stand-in. Other
/// arguments pass as they are.
template <typename Argument>
class GivenArgument {
  public:
    explicit GivenArgument(Argument argument) : argument_(argument) {}
    operator Argument() const { return argument_; }  // NOLINT(google-explicit-constructor)

  private:
    Argument argument_;
};

template <typename Value>
requires kIsOutput<Value>
class GivenArgument<Value*> {
  public:
    explicit GivenArgument(Value* output) : output_(output == nullptr ? &stand_in_ : output) {
        *output_ = Value{};
    }
    GivenArgument(const GivenArgument&) = delete;
    GivenArgument& operator=(const GivenArgument&) = delete;
    operator Value*() const { return output_; }  // NOLINT(google-explicit-constructor)

  private:
    Value stand_in_{};
    Value* output_;
};

/// A text output: the empty text.
template <>
class GivenArgument<A_char*> {
  public:
    // cppcheck-suppress uninitMemberVar; it looks at the members of the template above
    explicit GivenArgument(A_char* text) : text_(text == nullptr ? stand_in_.data() : text) { *text_ = 0; }
    GivenArgument(const GivenArgument&) = delete;
    GivenArgument& operator=(const GivenArgument&) = delete;
    operator A_char*() const { return text_; }  // NOLINT(google-explicit-constructor)

  private:
    std::array<A_char, kClassicPathBytes> stand_in_{};
    A_char* text_;
};

}  // namespace bridge
