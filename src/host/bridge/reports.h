#pragma once

#include <cstddef>
#include <string_view>

#include "host/host_interface.h"

// What the bridge tells the user through the host's report function; nothing if the host has none. The texts
// are ASCII and are made without allocating memory, so that they also work when memory is short.

namespace bridge {

void report(const A_char* text) noexcept;

/// `version` is the current one, which the host was asked for.
void report_missing_suite(const A_char* name, A_long version) noexcept;

/// The plug-in's path for the host is not valid UTF-8 at byte `fault`.
void report_invalid_path(std::string_view path, std::size_t fault) noexcept;

/// The host's path for the plug-in is not valid UTF-16 at unit `fault`.
void report_invalid_path(std::u16string_view path, std::size_t fault) noexcept;

/// The host's path does not fit into a classic path's buffer.
void report_long_path() noexcept;

/// The host passed null for a path.
void report_no_path() noexcept;

/// More than `room` of these ("input modules") were registered.
void report_no_room(const A_char* things, std::size_t room) noexcept;

}  // namespace bridge
