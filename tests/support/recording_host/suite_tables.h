#pragma once

#include <vector>

#include "host/host_interface.h"

/// A suite that a recording host offers.
struct OfferedSuite {
    const char* name;
    A_long version;
    const void* table;
};

/// What the entry point and the import of a classic host acquire.
const std::vector<OfferedSuite>& classic_project_suites();
/// What the input module acquires from a classic host.
const std::vector<OfferedSuite>& classic_module_suites();
/// The seven suites of a current host behind the bridge.
const std::vector<OfferedSuite>& current_suites();
/// The suites of a current host that take names in UTF-16, and those that aim cameras and lights.
const std::vector<OfferedSuite>& named_suites();
/// The Memory and Utility suites, which both generations offer in the same version.
const std::vector<OfferedSuite>& common_suites();
