// What `vxr doctor` finds in plug-ins for Windows, without loading any.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/doctor_inspection.h"
#include "support/made_binary.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using cli::doctor::Answer;
using cli::doctor::Diagnosis;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Case {
    const char* name;
    std::string file_name;
    std::string bytes;
    ExitCode code;
    Answer today;  ///< of current hosts on Windows
    std::vector<std::string> findings;
};

TEST(DoctorOnWindowsFiles, FindsWhatHostsWouldRefuse) {
    const Case cases[] = {
        {"as hosts require it", "a.aex", made_pe(), ExitCode::fine, Answer::yes, {}},
        {"an extension in capitals", "A.AEX", made_pe(), ExitCode::fine, Answer::yes, {}},
        {"another extension", "a.dll", made_pe(), ExitCode::refused, Answer::no, {"wrong-name"}},
        {"a program", "a.aex", made_pe({.flags = 0x22}), ExitCode::refused, Answer::no, {"wrong-kind"}},
        {"for 32-bit hosts",
         "a.aex",
         made_pe({.wide = false, .machine = 0x14C}),
         ExitCode::refused,
         Answer::no,
         {"wrong-processor"}},
        {"for another processor",
         "a.aex",
         made_pe({.machine = 0xAA64}),
         ExitCode::refused,
         Answer::no,
         {"wrong-processor"}},
        {"without resources",
         "a.aex",
         made_pe({.resource_type = "ICON"}),
         ExitCode::refused,
         Answer::no,
         {"no-properties"}},
        {"properties with another number",
         "a.aex",
         made_pe({.resource_number = 1}),
         ExitCode::refused,
         Answer::no,
         {"properties-number"}},
        {"properties cut short",
         "a.aex",
         made_pe({.property_list = made_property_list({.more = 1})}),
         ExitCode::refused,
         Answer::no,
         {"properties-damaged"}},
        {"no kind",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"kind", ""})}),
         ExitCode::refused,
         Answer::no,
         {"property-missing"}},
        {"another kind",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"kind", "TKFe"})}),
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"a kind in the wrong byte order",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"kind", "AEgx"})}),
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"no name",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"name", ""})}),
         ExitCode::refused,
         Answer::no,
         {"property-missing"}},
        {"an empty name",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"name", counted_data("")})}),
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"a name longer than its data",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"name", std::string("\7abc", 4)})}),
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"another category",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"catg", counted_data("Filters")})}),
         ExitCode::fine,
         Answer::yes,
         {"property-unusual"}},
        {"no version",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"vers", ""})}),
         ExitCode::refused,
         Answer::no,
         {"property-missing"}},
        {"another version",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"vers", std::string("\1\0\2\0", 4)})}),
         ExitCode::fine,
         Answer::yes,
         {"property-unusual"}},
        {"no entry point named",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"8664", ""})}),
         ExitCode::refused,
         Answer::no,
         {"property-missing"}},
        {"an entry point with an empty name",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"8664", std::string(4, '\0')})}),
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"an entry point in the form of macOS",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"8664", counted_data("EntryPointFunc")})}),
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"an entry point that is not exported",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"8664", terminated_data("Other")})}),
         ExitCode::refused,
         Answer::no,
         {"entry-not-exported"}},
        {"only the entry of classic hosts",
         "a.aex",
         made_pe({.exports = {"Main_VORTANXR_AE"}}),
         ExitCode::refused,
         Answer::no,
         {"one-generation", "entry-not-exported"}},
        {"no entry",
         "a.aex",
         made_pe({.exports = {"other"}}),
         ExitCode::refused,
         Answer::no,
         {"entry-missing", "entry-not-exported"}},
        {"system libraries in upper and lower case",
         "a.aex",
         made_pe({.needed = {"kernel32.DLL", "api-ms-win-core-file-l1-2-0.dll"}}),
         ExitCode::fine,
         Answer::yes,
         {}},
        {"a library that comes with nothing",
         "a.aex",
         made_pe({.needed = {"libstdc++-6.dll", "libstdc++-6.dll"}}),
         ExitCode::refused,
         Answer::no,
         {"library-missing"}},
        {"a compiler's runtime",
         "a.aex",
         made_pe({.needed = {"VCRUNTIME140.dll"}}),
         ExitCode::fine,
         Answer::yes,
         {"library-elsewhere"}},
        {"a library that is loaded later",
         "a.aex",
         made_pe({.delayed = {"other.dll"}}),
         ExitCode::fine,
         Answer::yes,
         {"library-elsewhere"}},
        {"cut in its headers",
         "a.aex",
         made_pe().substr(0, 0x50),
         ExitCode::refused,
         Answer::no,
         {"damaged", "no-properties"}},
        {"a text file", "a.aex", "text", ExitCode::refused, Answer::no, {"not-a-binary"}},
        {"an empty file", "a.aex", "", ExitCode::refused, Answer::no, {"not-a-binary"}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        const TemporaryFolder folder;
        const Diagnosis diagnosis = cli::doctor::inspect(folder.write(one.file_name, one.bytes), listed);
        EXPECT_EQ(diagnosis.code, one.code);
        EXPECT_EQ(answer(diagnosis, "windows", "today"), one.today);
        EXPECT_EQ(answer(diagnosis, "macintosh", "today"), Answer::no);
        EXPECT_EQ(codes_of(diagnosis), one.findings);
        EXPECT_THAT(diagnosis.load_tests, IsEmpty()) << "this system cannot load it";
    }
}

TEST(DoctorOnWindowsFiles, ALibraryBesideThePlugInIsNotFound) {
    const TemporaryFolder folder;
    folder.write("other.dll", "");
    const Diagnosis diagnosis =
        cli::doctor::inspect(folder.write("a.aex", made_pe({.needed = {"other.dll"}})), listed);
    EXPECT_THAT(codes_of(diagnosis), ElementsAre("library-elsewhere"));
    EXPECT_EQ(
        diagnosis.findings[0].reason,
        "the library \"other.dll\" is beside the plug-in, where Windows does not look for it when a host "
        "loads the plug-in");
}

TEST(DoctorOnWindowsFiles, DamageAnywhereIsReported) {
    const TemporaryFolder folder;
    const std::string whole = made_pe();
    for (std::size_t size = 0; size < whole.size(); size += 3) {
        const Diagnosis diagnosis =
            cli::doctor::inspect(folder.write("a.aex", whole.substr(0, size)), listed);
        EXPECT_EQ(diagnosis.code, ExitCode::refused) << size;
        EXPECT_FALSE(cli::doctor::diagnosis_document(diagnosis).empty());
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string changed = whole;
        changed[at] = static_cast<char>(~static_cast<unsigned char>(changed[at]));
        const Diagnosis diagnosis = cli::doctor::inspect(folder.write("a.aex", changed), listed);
        EXPECT_EQ(diagnosis.code == ExitCode::refused, diagnosis.first_error().has_value()) << at;
        EXPECT_FALSE(cli::doctor::diagnosis_text(diagnosis, cli::Paint()).empty());
    }
}

}  // namespace
