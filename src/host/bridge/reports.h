#pragma once

#include <cstddef>
#include <string_view>

#include "host/host_interface.h"

// What the bridge tells the user through the host's report function; nothing if the host has none. The texts
// are ASCII and are made without allocating memory, so that they also work when memory is short.

namespace bridge {

/// Off the main thread, where the host may refuse it, the report waits.
void report(const A_char* text) noexcept;

/// Keeps a report for the main thread. The same text is kept once; when too many reports wait, new ones are
/// lost.
void keep_report(AEGP_PluginID plugin_id, const A_char* text) noexcept;

/// On the main thread, shows the reports that wait.
void show_waiting_reports() noexcept;

void forget_waiting_reports() noexcept;

/// `version` is the current one, which the host was asked for.
void report_missing_suite(const A_char* name, A_long version) noexcept;

/// The plug-in's path for the host is not valid UTF-8 at byte `fault`, and no file has its name in another
/// encoding.
void report_invalid_path(std::string_view path, std::size_t fault) noexcept;

/// The host's path for the plug-in is not valid UTF-16 at unit `fault`.
void report_invalid_path(std::u16string_view path, std::size_t fault) noexcept;

/// The host's path does not fit into `most_bytes` bytes of UTF-8.
void report_long_path(std::size_t most_bytes) noexcept;

/// The host passed null for a path.
void report_no_path() noexcept;

/// A texture cannot be drawn, because a module could not load its file (UTF-8) again and returned `err`.
void report_unreadable_file(std::string_view path, bool exists, A_Err err) noexcept;

/// A texture cannot be drawn, because the host does not say where its file is and returned `err`.
void report_unknown_file(A_Err err) noexcept;

/// The host did not make a new camera or light turn towards its point of interest.
void report_not_aimed() noexcept;

/// More than `room` of these ("input modules") were registered.
void report_no_room(const A_char* things, std::size_t room) noexcept;

}  // namespace bridge
