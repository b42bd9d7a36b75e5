#pragma once

#include <functional>
#include <type_traits>
#include <utility>

/// Takes a change back. Tests of what is said about broken values break them in place and mend them again,
/// so that their owners can delete them.
using Undo = std::function<void()>;

/// Gives `at` the value `value` and returns what gives it the old one back.
template <class T>
[[nodiscard]] Undo changed(T& at, std::type_identity_t<T> value) {
    return [&at, before = std::exchange(at, value)] { at = before; };
}
