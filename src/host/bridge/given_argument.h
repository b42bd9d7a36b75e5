#pragma once

#include <array>
#include <cstdint>
#include <type_traits>

#include "host/host_interface.h"

namespace bridge {

/// Whether a module's callback writes to what a pointer argument of this type points to.
template <typename Value>
inline constexpr bool kIsOutput =
    std::is_same_v<Value, A_Boolean> || std::is_same_v<Value, A_long> || std::is_same_v<Value, A_u_long> ||
    std::is_same_v<Value, std::uint64_t> || std::is_same_v<Value, A_Time> || std::is_same_v<Value, A_LRect> ||
    std::is_same_v<Value, AEIO_Verbiage> || std::is_same_v<Value, AEIO_Handle>;

/// An argument that the host passes to a callback of a module, for the duration of the call. Modules do not
/// test their outputs for null and do not set all of them. Current hosts may pass null for an output that
/// they do not need, or memory with any content. So an output is cleared, and a stand-in replaces null. Other
/// arguments pass unchanged.
template <typename Argument>
class GivenArgument {
  public:
    explicit GivenArgument(Argument argument) : argument_(argument) {}
    [[nodiscard]] Argument get() const { return argument_; }

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
    [[nodiscard]] Value* get() const { return output_; }

  private:
    Value stand_in_{};
    Value* output_;
};

/// A text output is cleared to the empty text.
template <>
class GivenArgument<A_char*> {
  public:
    // cppcheck-suppress uninitMemberVar; cppcheck takes the members of the template above for its own
    explicit GivenArgument(A_char* text) : text_(text == nullptr ? stand_in_.data() : text) { *text_ = 0; }
    GivenArgument(const GivenArgument&) = delete;
    GivenArgument& operator=(const GivenArgument&) = delete;
    [[nodiscard]] A_char* get() const { return text_; }

  private:
    std::array<A_char, kClassicPathBytes> stand_in_{};
    A_char* text_;
};

}  // namespace bridge
