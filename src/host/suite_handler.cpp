#include "host/suite_handler.h"

AEGP_SuiteHandler::AEGP_SuiteHandler(const SPBasicSuite* basic) : basic_(basic), suites_{} {
    if (basic_ == nullptr) {
        MissingSuiteError();
    }
}

AEGP_SuiteHandler::~AEGP_SuiteHandler() {
    ReleaseAllSuites();
}

A_Err AEGP_SuiteHandler::ReleaseSuite(const A_char* name, A_long version) {
    return basic_->ReleaseSuite(name, version);
}

void AEGP_SuiteHandler::ReleaseAllSuites() {
    struct Row {
        Slot slot;
        const A_char* name;
        A_long version;
    };
#define VXR_RELEASE_ROW(name, version, accessor, type) {k_##accessor, name, version},
    static constexpr Row kRows[] = {VXR_RELEASED_SUITE_ROWS(VXR_RELEASE_ROW)};
#undef VXR_RELEASE_ROW
    for (const Row& row : kRows) {
        if (suites_[row.slot] != nullptr) {
            ReleaseSuite(row.name, row.version);
        }
    }
}

void AEGP_SuiteHandler::MissingSuiteError() const {
    throw long{kMissingSuite};
}

const void* AEGP_SuiteHandler::acquire(const A_char* name, A_long version) const {
    const void* suite = nullptr;
    if (basic_->AcquireSuite(name, version, &suite) != kHostErrorNone || suite == nullptr) {
        MissingSuiteError();
    }
    return suite;
}
