#pragma once

#include <functional>
#include <type_traits>
#include <utility>

/// Undoes a change. Tests of invariants break values in place and restore them, so that the owners can delete
/// them.
using Undo = std::function<void()>;

/// Sets `at` to `value` and returns a function that restores the old value.
template <class T>
[[nodiscard]] Undo changed(T& at, std::type_identity_t<T> value) {
    return [&at, before = std::exchange(at, value)] { at = before; };
}
