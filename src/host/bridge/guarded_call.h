#pragma once

#include "host/host_interface.h"

// The edge behind which the host is: it was built by another compiler, so no exception may cross.

namespace bridge {

/// `call(context)`, and its result. A missing suite (what AEGP_SuiteHandler throws) becomes 13 and one
/// report, which names the suite; memory that could not be had 4; any other exception 1.
A_Err guarded_call(A_Err (*call)(const void* context), const void* context) noexcept;

/// The same for anything that can be called without arguments.
template <typename Function>
A_Err guarded(const Function& function) noexcept {
    return guarded_call([](const void* context) { return (*static_cast<const Function*>(context))(); },
                        &function);
}

/// Remembers the suite that could not be acquired for the guarded call of this thread that is innermost: the
/// exception does not say which it was. Without effect outside of guarded calls.
void note_missing_suite(const A_char* name, A_long version) noexcept;

}  // namespace bridge
