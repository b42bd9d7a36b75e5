#pragma once

#include "host/host_interface.h"

namespace bridge {

/// Puts the bridge in front of `host` and returns the bridge's basic suite, the same one every time. When the
/// plug-in acquires one of the suites below in the classic version, the bridge acquires the current
/// version from the host and hands out a table of its own; it releases the current one when the classic one
/// is released. It passes on the host's errors; a success without a table counts as 13. Everything else goes
/// to the host as it is.
///
/// One host at a time: what was held and registered with another one is forgotten.
SPBasicSuite* basic_suite_over(const SPBasicSuite* host, AEGP_PluginID plugin_id);

/// The bridge's basic suite, unchanged.
const SPBasicSuite* basic_suite();

// The suites as the bridge hands them out: tables of functions that call the current ones. Slots that the
// plug-in never calls are null. Each function returns 13 while its suite is not held.

/// Registers the death hook and the input modules behind functions of the bridge, which stop exceptions and
/// give each callback basic data with the bridge's basic suite.
const AEGP_RegisterSuite4* register_suite();

/// Registers the import callbacks behind functions of the bridge, which convert their paths to UTF-8 and stop
/// exceptions. The refcon stays as it is.
const AEGP_FileImportManagerSuite2* file_import_manager_suite();

const AEGP_PersistentDataSuite1* persistent_data_suite();

const AEGP_ProjSuite5* proj_suite();

/// Makes footage from UTF-16 paths. Hosts make placeholders with narrow names only; the item is renamed if
/// the name does not survive that.
const AEGP_FootageSuite7* footage_suite();

/// Sizes are 64-bit in the host: a negative one is refused (3), one beyond 32 bits becomes the largest
/// A_long. While a callback works on an in-spec, its SpecUse answers in place of the host.
const AEGP_IOInSuite1* io_in_suite();

const AEGP_IOOutSuite1* io_out_suite();

/// The bridge's own memory for pictures that a module loads again for it; otherwise the host's.
const AEGP_MemorySuite1* memory_suite();

/// Lets no exception out, because the plug-in disposes of streams in a destructor.
const AEGP_StreamSuite7* stream_suite();

/// Keeps reports of other threads until the next callback on the main thread: hosts may refuse them
/// elsewhere.
const AEGP_UtilitySuite7* utility_suite();

/// Names in UTF-16, as name_translation.h says.
const AEGP_ItemSuite10* item_suite();

/// Names in UTF-16. Makes every new camera turn towards its point of interest, which alone holds its aim:
/// in a current host a camera looks straight ahead until its flag is set.
const AEGP_CompSuite9* comp_suite();

/// The same for a host that has "AEGP Comp Suite" 9 only: names pass unchanged.
const AEGP_CompSuite9* narrow_comp_suite();

/// Makes spot and parallel lights turn towards their points of interest, when their type is set.
const AEGP_LightSuite2* light_suite();

/// Frees the places of everything that was registered, for the next host.
void forget_registrations();

}  // namespace bridge
