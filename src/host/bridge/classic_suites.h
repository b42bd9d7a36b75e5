#pragma once

#include "host/host_interface.h"

// The classic suites that today's hosts do not offer, as the bridge hands them out: tables of functions that
// call today's. Slots that this system never calls are null. Each function answers 13 while its suite is not
// held.

namespace bridge {

/// The death hook and the input modules are registered behind functions of the bridge, which keep exceptions
/// in and give each callback basic data with the bridge's basic suite.
const AEGP_RegisterSuite4* register_suite();

/// The import callbacks are registered behind functions of the bridge, which make their paths narrow and keep
/// exceptions in. Their refcon stays as it is.
const AEGP_FileImportManagerSuite2* file_import_manager_suite();

const AEGP_PersistentDataSuite1* persistent_data_suite();

const AEGP_ProjSuite5* proj_suite();

/// Footage is made from wide paths; names pass as they are.
const AEGP_FootageSuite7* footage_suite();

/// Sizes are 64-bit in the host: none below 0 is passed on (3), and what is beyond 32 bits is shown as the
/// largest there is.
const AEGP_IOInSuite1* io_in_suite();

const AEGP_IOOutSuite1* io_out_suite();

/// Frees the places of everything that was registered: for the next host.
void forget_registrations();

}  // namespace bridge
