#include "composition/build/import_guards.h"

#include "host/suite_handler.h"

namespace {

constexpr const A_char* kSection = "Main Pref Section";
constexpr const A_char* kKey = "Pref_DEFAULT_UNLABELED_ALPHA";
constexpr A_u_long kValueBytes = 1;
constexpr A_u_char kGuessAlpha = 3;

}  // namespace

AlphaPreferenceGuard::AlphaPreferenceGuard(AEGP_SuiteHandler& suites)
    : persistent_data_(suites.PersistentDataSuite1()), changed_(Change()) {}

AlphaPreferenceGuard::~AlphaPreferenceGuard() {
    if (changed_) {
        persistent_data_->AEGP_SetData(blob_, kSection, kKey, kValueBytes, &saved_);
    }
}

bool AlphaPreferenceGuard::Change() {
    if (persistent_data_->AEGP_GetApplicationBlob(&blob_) != kHostErrorNone || blob_ == nullptr) {
        return false;
    }
    A_Boolean exists = 0;
    if (persistent_data_->AEGP_DoesKeyExist(blob_, kSection, kKey, &exists) != kHostErrorNone ||
        exists == 0) {
        return false;
    }
    const A_u_char default_value = 0;
    if (persistent_data_->AEGP_GetData(blob_, kSection, kKey, kValueBytes, &default_value, &saved_) !=
        kHostErrorNone) {
        return false;
    }
    return persistent_data_->AEGP_SetData(blob_, kSection, kKey, kValueBytes, &kGuessAlpha) == kHostErrorNone;
}

UndoGroup::UndoGroup(AEGP_SuiteHandler& suites, const A_char* name)
    : utility_(suites.UtilitySuite7()), error_(utility_->AEGP_StartUndoGroup(name)) {}

UndoGroup::~UndoGroup() {
    if (error_ == kHostErrorNone) {
        utility_->AEGP_EndUndoGroup();
    }
}
