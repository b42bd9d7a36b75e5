#pragma once

#include "host/host_interface.h"

namespace bridge {

/// Puts the bridge before `host` and yields the bridge's basic suite, the same one every time. Asked for one
/// of the seven suites in the classic version that today's hosts do not have, it acquires today's from the
/// host and hands out a table of its own; it releases today's when the classic one is released. An error
/// of the host is passed on; a success without a table counts as 13. Everything else goes to the host as it
/// is.
///
/// One host at a time: what was held and registered with another one is forgotten.
SPBasicSuite* basic_suite_over(const SPBasicSuite* host, AEGP_PluginID plugin_id);

/// The same, without changing anything.
const SPBasicSuite* basic_suite();

}  // namespace bridge
