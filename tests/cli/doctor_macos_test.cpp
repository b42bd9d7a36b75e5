// What `vxr doctor` finds in plug-in folders for macOS, without loading any.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/doctor_inspection.h"
#include "cli/made_bundle.h"
#include "support/made_binary.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using cli::doctor::Answer;
using cli::doctor::Diagnosis;

struct PluginCase {
    const char* name;
    MadePlugin plugin;
    ExitCode code;
    Answer today;  ///< of current hosts on macOS
    std::vector<std::string> findings;
};

std::string signed_for(std::uint32_t processor, MadeMachO mach_o) {
    mach_o.processor = processor;
    return made_mach_o(mach_o);
}

/// Code for both processors, with the same change in both.
std::string both(const MadeMachO& mach_o) {
    return made_universal({signed_for(0x01000007, mach_o), signed_for(0x0100000C, mach_o)});
}

std::string resources_with(const MadeProperty& changed) {
    return made_resource_file({.data = properties_with(false, changed)});
}

TEST(DoctorOnMacosFolders, FindsWhatHostsWouldRefuse) {
    const PluginCase cases[] = {
        {"as hosts require it", {}, ExitCode::fine, Answer::yes, {}},
        {"another name", {.folder = "Sample.bundle"}, ExitCode::refused, Answer::no, {"wrong-name"}},
        {"another package type", {.package_type = "BNDL"}, ExitCode::refused, Answer::no, {"plist-value"}},
        {"another signature", {.signature = "????"}, ExitCode::refused, Answer::no, {"plist-value"}},
        {"no signature", {.signature = ""}, ExitCode::refused, Answer::no, {"plist-value"}},
        {"no name of the code, which is found all the same",
         {.executable_key = ""},
         ExitCode::refused,
         Answer::no,
         {"plist-value"}},
        {"a name of the code that is a path",
         {.executable_key = "../x"},
         ExitCode::refused,
         Answer::no,
         {"plist-value"}},
        {"another name of the code",
         {.executable_key = "Other"},
         ExitCode::refused,
         Answer::no,
         {"executable-missing"}},
        {"no code", {.code = ""}, ExitCode::refused, Answer::no, {"executable-missing"}},
        {"no Info.plist", {.has_plist = false}, ExitCode::refused, Answer::no, {"plist-missing"}},
        {"Info.plist in the binary form",
         {.plist = "bplist00"},
         ExitCode::fine,
         Answer::yes,
         {"plist-binary"}},
        {"Info.plist that is not a property list",
         {.plist = "x"},
         ExitCode::refused,
         Answer::no,
         {"plist-unreadable", "plist-value", "plist-value", "plist-value"}},
        {"code of another system",
         {.code = made_pe()},
         ExitCode::refused,
         Answer::no,
         {"wrong-name", "wrong-kind"}},
        {"code for Arm only", {.code = made_mach_o()}, ExitCode::fine, Answer::yes, {"processor-missing"}},
        {"code for neither",
         {.code = made_mach_o({.wide = false, .processor = 7})},
         ExitCode::refused,
         Answer::no,
         {"wrong-processor"}},
        {"code without a signature",
         {.code = both({.has_signature = false})},
         ExitCode::fine,
         Answer::yes,
         {"not-signed", "not-signed"}},
        {"a universal file with a part that is not code",
         {.code = made_universal({made_mach_o({.processor = 0x01000007}), "other"})},
         ExitCode::refused,
         Answer::no,
         {"damaged", "processor-missing"}},
        {"a library of one machine",
         {.code = both({.needed = {"/opt/lib/a.dylib"}})},
         ExitCode::refused,
         Answer::no,
         {"library-missing"}},
        {"a library without a search path",
         {.code = both({.needed = {"@rpath/a.dylib"}})},
         ExitCode::refused,
         Answer::no,
         {"library-missing"}},
        {"a library that is not in the search path",
         {.code = both({.needed = {"@rpath/a.dylib"}, .run_paths = {"@loader_path/../Resources"}})},
         ExitCode::refused,
         Answer::no,
         {"library-missing"}},
        {"a library in the bundle",
         {.code = both({.needed = {"@rpath/Sample.rsrc"}, .run_paths = {"@loader_path/../Resources"}})},
         ExitCode::fine,
         Answer::yes,
         {}},
        {"a library that is optional",
         {.code = both({.weak = {"/opt/lib/a.dylib"}})},
         ExitCode::fine,
         Answer::yes,
         {"library-elsewhere"}},
        {"a library of the host",
         {.code = both({.needed = {"@executable_path/a.dylib"}})},
         ExitCode::fine,
         Answer::yes,
         {"library-elsewhere"}},
        {"no resources", {.resources = ""}, ExitCode::refused, Answer::no, {"no-properties"}},
        {"resources under another name",
         {.resources_name = "Other.rsrc"},
         ExitCode::refused,
         Answer::no,
         {"no-properties"}},
        {"resources of another type",
         {.resources = made_resource_file({.type = "STR "})},
         ExitCode::refused,
         Answer::no,
         {"no-properties"}},
        {"resources cut short",
         {.resources = made_resource_file().substr(0, 300)},
         ExitCode::refused,
         Answer::no,
         {"properties-damaged"}},
        {"properties in the form of Windows",
         {.resources = made_resource_file({.data = made_property_list()})},
         ExitCode::refused,
         Answer::no,
         {"properties-damaged"}},
        {"no entry point named for Intel",
         {.resources = resources_with({"mi64", ""})},
         ExitCode::refused,
         Answer::no,
         {"property-missing"}},
        {"an entry point for Intel in the form of Windows",
         {.resources = resources_with({"mi64", terminated_data("EntryPointFunc")})},
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"an entry point for Arm in the form of Windows",
         {.resources = resources_with({"ma64", terminated_data("EntryPointFunc")})},
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"an entry point for Arm with an empty name",
         {.resources = resources_with({"ma64", std::string(4, '\0')})},
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"an entry point for Arm that is not exported",
         {.resources = resources_with({"ma64", counted_data("Other")})},
         ExitCode::refused,
         Answer::no,
         {"entry-not-exported"}},
        {"an entry point for a processor without code",
         {.code = made_mach_o(), .resources = resources_with({"mi64", counted_data("Other")})},
         ExitCode::fine,
         Answer::yes,
         {"processor-missing"}},
    };
    for (const PluginCase& one : cases) {
        SCOPED_TRACE(one.name);
        const TemporaryFolder folder;
        const Diagnosis diagnosis = cli::doctor::inspect(write_plugin(folder, one.plugin), listed);
        EXPECT_EQ(diagnosis.code, one.code);
        EXPECT_EQ(answer(diagnosis, "macintosh", "today"), one.today);
        EXPECT_EQ(codes_of(diagnosis), one.findings);
    }
}

TEST(DoctorOnMacosFolders, SaysInWhichFormTheEntryPointIsNamed) {
    const TemporaryFolder folder;
    const Diagnosis diagnosis = cli::doctor::inspect(
        write_plugin(folder, {.resources = resources_with({"ma64", terminated_data("EntryPointFunc")})}),
        listed);
    ASSERT_EQ(diagnosis.findings.size(), 1U);
    EXPECT_EQ(diagnosis.findings[0].reason,
              "the property \"ma64\" names \"EntryPointFunc\" as text that ends with a zero byte; hosts on "
              "this system expect it as text that begins with a byte for its length");
}

}  // namespace
