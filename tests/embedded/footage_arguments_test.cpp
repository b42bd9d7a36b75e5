// Bad arguments of the suites for items, footage and what input modules say about it.

#include <cmath>

#include "embedded/argument_checks.h"

namespace {

using embedded::RuleViolation;

AEGP_FootageInterp interpretation(BundleSide& b, AEGP_ItemH item) {
    AEGP_FootageInterp record{};
    b.footage_suite->AEGP_GetFootageInterpretation(item, 0, &record);
    return record;
}

/// Sets an interpretation of which `change` breaks one member.
template <class Change>
A_Err set_changed(BundleSide& b, const Change& change) {
    const AEGP_ItemH item = b.placeholder_item();
    AEGP_FootageInterp record = interpretation(b, item);
    change(record);
    return b.footage_suite->AEGP_SetFootageInterpretation(item, 0, &record);
}

A_Err new_footage(BundleSide& b, const AEGP_FileSequenceImportOptions& options) {
    AEGP_FootageH made = nullptr;
    return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a1.png", nullptr, &options, 0, nullptr,
                                            &made);
}

const BadArgument kItemCases[] = {
    {"a second project", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ProjectH project = nullptr;
         return b.project_suite->AEGP_GetProjectByIndex(1, &project);
     }},
    {"project without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.project_suite->AEGP_GetProjectByIndex(0, nullptr); }},
    {"root folder of a null project", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH root = nullptr;
         return b.project_suite->AEGP_GetProjectRootFolder(nullptr, &root);
     }},
    {"root folder without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ProjectH project = nullptr;
         b.project_suite->AEGP_GetProjectByIndex(0, &project);
         return b.project_suite->AEGP_GetProjectRootFolder(project, nullptr);
     }},
    {"folder without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder(nullptr, b.root(), &made);
     }},
    {"folder in a null folder", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", nullptr, &made);
     }},
    {"folder in a foreign folder", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", foreign<AEGP_ItemH>(), &made);
     }},
    {"folder in a composition's handle", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", reinterpret_cast<AEGP_ItemH>(b.comp()), &made);
     }},
    {"folder in a composition's item", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", b.item_of(b.comp()), &made);
     }},
    {"folder without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.item_suite->AEGP_CreateNewFolder("f", b.root(), nullptr); }},
};

TEST(ArgumentChecks, RefuseEveryBadItem) {
    expect_refused(kItemCases);
}

const BadArgument kFootageCases[] = {
    {"footage without a path", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), nullptr, nullptr, nullptr, 0, nullptr,
                                                 &made);
     }},
    {"footage with a layer key", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(
             b.host.plugin_id(), "a.png", foreign<AEGP_FootageLayerKey*>(), nullptr, 0, nullptr, &made);
     }},
    {"footage with a dialog", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a.png", nullptr, nullptr, 1, nullptr,
                                                 &made);
     }},
    {"footage with the reserved argument set", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a.png", nullptr, nullptr, 0, &b, &made);
     }},
    {"footage without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a.png", nullptr, nullptr, 0, nullptr,
                                                 nullptr);
     }},
    {"sequence that starts below -1", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return new_footage(b, {1, 0, -2, -1});
     }},
    {"sequence that ends below -1", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return new_footage(b, {1, 0, -1, -2});
     }},
    {"sequence that ends before it starts", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return new_footage(b, {1, 0, 5, 4});
     }},
    {"placeholder without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), nullptr, 1, 1,
                                                            &b.four_seconds, &made);
     }},
    {"placeholder of width 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 0, 1, &b.four_seconds,
                                                            &made);
     }},
    {"placeholder of height -1", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 1, -1, &b.four_seconds,
                                                            &made);
     }},
    {"placeholder without a duration", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 1, 1, nullptr, &made);
     }},
    {"placeholder with a duration on a scale of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 1, 1, &b.no_scale,
                                                            &made);
     }},
    {"null footage added", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         return b.footage_suite->AEGP_AddFootageToProject(nullptr, b.root(), &item);
     }},
    {"footage added twice", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         const AEGP_FootageH footage = b.placeholder();
         b.footage_suite->AEGP_AddFootageToProject(footage, b.root(), &item);
         return b.footage_suite->AEGP_AddFootageToProject(footage, b.root(), &item);
     }},
    {"footage added to footage", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         return b.footage_suite->AEGP_AddFootageToProject(b.placeholder(), b.placeholder_item(), &item);
     }},
    {"interpretation of a folder", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageInterp record{};
         return b.footage_suite->AEGP_GetFootageInterpretation(b.root(), 0, &record);
     }},
    {"interpretation of a proxy", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageInterp record{};
         return b.footage_suite->AEGP_GetFootageInterpretation(b.placeholder_item(), 1, &record);
     }},
    {"interpretation without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.footage_suite->AEGP_GetFootageInterpretation(b.placeholder_item(), 0, nullptr);
     }},
    {"interpretation set to null", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.footage_suite->AEGP_SetFootageInterpretation(b.placeholder_item(), 0, nullptr);
     }},
    {"interpretation with unknown fields", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.interlace.type = 2; }); }},
    {"interpretation with an unknown field order", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.interlace.order = 2; }); }},
    {"interpretation with unknown alpha flags", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.alpha.flags = 8; }); }},
    {"interpretation with a pixel aspect of 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.pixel_aspect.num = 0; }); }},
    {"interpretation with a pixel aspect denominator of 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.pixel_aspect.den = 0; }); }},
    {"interpretation with a negative frame rate", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.conform_fps = -1.0; }); }},
    {"interpretation with a frame rate of NaN", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.conform_fps = std::nan(""); }); }},
};

TEST(ArgumentChecks, RefuseEveryBadFootage) {
    expect_refused(kFootageCases);
}

const BadArgument kInSpecCases[] = {
    {"options of a null in-spec", RuleViolation::bad_argument,
     [](BundleSide& b) {
         void* options = nullptr;
         return b.io_in_suite->AEGP_GetInSpecOptionsHandle(nullptr, &options);
     }},
    {"options without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_GetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")),
                                                           nullptr);
     }},
    {"options without an output pointer for the old ones", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")),
                                                           nullptr, nullptr);
     }},
    {"options that are not a memory handle", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         void* old = nullptr;
         return b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")), &b,
                                                           &old);
     }},
    {"options that belong to another in-spec", RuleViolation::bad_argument,
     [](BundleSide& b) {
         void* old = nullptr;
         const AEGP_MemHandle memory = b.memory();
         b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")), memory,
                                                    &old);
         return b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("y")),
                                                           memory, &old);
     }},
    {"rate of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecNativeFPS(b.host.in_spec_handle(b.host.new_in_spec("x")), 0);
     }},
    {"depth of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecDepth(b.host.in_spec_handle(b.host.new_in_spec("x")), 0);
     }},
    {"size below 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecSize(b.host.in_spec_handle(b.host.new_in_spec("x")), -1);
     }},
    {"null alpha label", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecAlphaLabel(b.host.in_spec_handle(b.host.new_in_spec("x")),
                                                        nullptr);
     }},
    {"alpha label of an unknown type", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_AlphaLabel label{};
         label.alpha_type = 4;
         return b.io_in_suite->AEGP_SetInSpecAlphaLabel(b.host.in_spec_handle(b.host.new_in_spec("x")),
                                                        &label);
     }},
    {"in-spec duration on a scale of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecDuration(b.host.in_spec_handle(b.host.new_in_spec("x")),
                                                      &b.no_scale);
     }},
    {"in-spec of width 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecDimensions(b.host.in_spec_handle(b.host.new_in_spec("x")), 0, 1);
     }},
    {"in-spec that was disposed of", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const embedded::Id in_spec = b.host.new_in_spec("x");
         b.host.dispose(in_spec);
         return b.io_in_suite->AEGP_SetInSpecDepth(b.host.in_spec_handle(in_spec), 24);
     }},
    {"output path of a foreign output", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         char path[260] = {};
         return b.io_out_suite->AEGP_GetOutSpecFilePath(foreign<AEIO_OutSpecH>(), path);
     }},
    {"output path without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_out_suite->AEGP_GetOutSpecFilePath(b.host.new_out_spec("x"), nullptr);
     }},
};

TEST(ArgumentChecks, RefuseEveryBadInSpecOrOutSpec) {
    expect_refused(kInSpecCases);
}

}  // namespace
