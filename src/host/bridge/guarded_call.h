#pragma once

#include "host/host_interface.h"

// The boundary to the host, which another compiler built: no exception may cross it.

namespace bridge {

/// Returns the result of `call(context)`. A missing suite (the exception of AEGP_SuiteHandler) becomes 13 and
/// one report that names the suite, a failed allocation 4, any other exception 1. An outermost call on the
/// main thread first shows the reports that wait for it.
A_Err guarded_call(A_Err (*call)(const void* context), const void* context) noexcept;

/// guarded_call for any callable without parameters.
template <typename Function>
A_Err guarded(const Function& function) noexcept {
    return guarded_call([](const void* context) { return (*static_cast<const Function*>(context))(); },
                        &function);
}

/// The result of a function of the host. An exception of the host becomes the error that guarded_call would
/// return, because one that left a destructor would end the process. The innermost guarded call then fails,
/// even if the plug-in ignores this result.
A_Err host_answer(A_Err (*call)(const void* context), const void* context) noexcept;

/// host_answer for any callable without parameters.
template <typename Function>
A_Err answer_of(const Function& function) noexcept {
    return host_answer([](const void* context) { return (*static_cast<const Function*>(context))(); },
                       &function);
}

/// Remembers, for the innermost guarded call of this thread, which suite could not be acquired: the exception
/// does not say. Has no effect outside of guarded calls.
void note_missing_suite(const A_char* name, A_long version) noexcept;

}  // namespace bridge
