// What `vxr doctor` finds in bundles of every platform, without loading any.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/doctor/diagnosis.h"
#include "cli/doctor/finding.h"
#include "cli/doctor/inspection.h"
#include "cli/doctor/load_test.h"
#include "cli/made_bundle.h"
#include "support/made_binary.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using cli::doctor::Answer;
using cli::doctor::Diagnosis;
using cli::doctor::LoadOutcome;
using cli::doctor::LoadTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A host in which everything is listed: loading has tests of its own.
LoadTest listed(const std::string&, embedded::HostGeneration generation) {
    return {embedded::generation_label(generation), LoadOutcome::listed, "", {{"importer", "x", {".x"}}}, {}};
}

std::vector<std::string> codes_of(const Diagnosis& diagnosis) {
    std::vector<std::string> codes;
    for (const cli::Diagnostic& finding : diagnosis.findings) {
        codes.push_back(finding.code);
    }
    return codes;
}

Answer answer(const Diagnosis& diagnosis, const std::string& platform, const std::string& generation) {
    for (const cli::doctor::Compatibility& host : diagnosis.compatibility) {
        if (host.platform == platform && host.generation == generation) {
            return host.answer;
        }
    }
    ADD_FAILURE() << "no host for " << platform << ", " << generation;
    return Answer::no;
}

/// The usual properties with one replaced, or left out when its data is empty.
std::string properties_with(bool windows, const MadeProperty& changed) {
    std::vector<MadeProperty> properties;
    for (const MadeProperty& property : usual_properties(windows)) {
        if (property.key != changed.key) {
            properties.push_back(property);
        } else if (!changed.data.empty()) {
            properties.push_back(changed);
        }
    }
    return made_property_list({.windows = windows, .properties = properties});
}

struct Case {
    const char* name;
    std::string file_name;
    std::string bytes;
    ExitCode code;
    Answer today;  ///< of the host on Windows
    std::vector<std::string> findings;
};

TEST(Doctor, WindowsFiles) {
    const Case cases[] = {
        {"as hosts want it", "a.aex", made_pe(), ExitCode::fine, Answer::yes, {}},
        {"the ending in capitals", "A.AEX", made_pe(), ExitCode::fine, Answer::yes, {}},
        {"another ending", "a.dll", made_pe(), ExitCode::refused, Answer::no, {"wrong-name"}},
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
        {"the properties under another number",
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
        {"a kind that reads right in the wrong direction",
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
        {"no function named",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"8664", ""})}),
         ExitCode::refused,
         Answer::no,
         {"property-missing"}},
        {"a function without a name",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"8664", std::string(4, '\0')})}),
         ExitCode::refused,
         Answer::no,
         {"property-wrong"}},
        {"a function that is not exported",
         "a.aex",
         made_pe({.property_list = properties_with(true, {"8664", terminated_data("Other")})}),
         ExitCode::refused,
         Answer::no,
         {"entry-not-exported"}},
        {"the entry of classic hosts alone",
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
        {"system libraries in any spelling",
         "a.aex",
         made_pe({.needed = {"kernel32.DLL", "api-ms-win-core-file-l1-2-0.dll"}}),
         ExitCode::fine,
         Answer::yes,
         {}},
        {"a library that nobody brings",
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
        {"a library that is asked for later",
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
        {"a text", "a.aex", "text", ExitCode::refused, Answer::no, {"not-a-binary"}},
        {"nothing", "a.aex", "", ExitCode::refused, Answer::no, {"not-a-binary"}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        const TemporaryFolder folder;
        const Diagnosis diagnosis = cli::doctor::inspect(folder.write(one.file_name, one.bytes), listed);
        EXPECT_EQ(diagnosis.code, one.code);
        EXPECT_EQ(answer(diagnosis, "windows", "today"), one.today);
        EXPECT_EQ(answer(diagnosis, "macintosh", "today"), Answer::no);
        EXPECT_EQ(codes_of(diagnosis), one.findings);
        EXPECT_THAT(diagnosis.load_tests, IsEmpty()) << "nothing of it is loaded here";
    }
}

TEST(Doctor, ALibraryBesideAWindowsFileIsNoHelp) {
    const TemporaryFolder folder;
    folder.write("other.dll", "");
    const Diagnosis diagnosis =
        cli::doctor::inspect(folder.write("a.aex", made_pe({.needed = {"other.dll"}})), listed);
    EXPECT_THAT(codes_of(diagnosis), ElementsAre("library-elsewhere"));
    EXPECT_EQ(
        diagnosis.findings[0].reason,
        "the library \"other.dll\" lies beside the plug-in, where Windows does not look for it when a host "
        "loads that");
}

struct PluginCase {
    const char* name;
    MadePlugin plugin;
    ExitCode code;
    Answer today;  ///< of the host on a Macintosh
    std::vector<std::string> findings;
};

std::string signed_for(std::uint32_t processor, MadeMachO mach_o) {
    mach_o.processor = processor;
    return made_mach_o(mach_o);
}

/// Both processors, with what a case changes in both.
std::string both(const MadeMachO& mach_o) {
    return made_universal({signed_for(0x01000007, mach_o), signed_for(0x0100000C, mach_o)});
}

std::string resources_with(const MadeProperty& changed) {
    return made_resource_file({.data = properties_with(false, changed)});
}

TEST(Doctor, MacintoshFolders) {
    const PluginCase cases[] = {
        {"as hosts want it", {}, ExitCode::fine, Answer::yes, {}},
        {"another name", {.folder = "Sample.bundle"}, ExitCode::refused, Answer::no, {"wrong-name"}},
        {"another package type", {.package_type = "BNDL"}, ExitCode::refused, Answer::no, {"plist-value"}},
        {"another signature", {.signature = "????"}, ExitCode::refused, Answer::no, {"plist-value"}},
        {"no signature", {.signature = ""}, ExitCode::refused, Answer::no, {"plist-value"}},
        {"no name of the code, which is found nevertheless",
         {.executable_key = ""},
         ExitCode::refused,
         Answer::no,
         {"plist-value"}},
        {"a name of the code that leads elsewhere",
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
        {"Info.plist that is none",
         {.plist = "x"},
         ExitCode::refused,
         Answer::no,
         {"plist-unreadable", "plist-value", "plist-value", "plist-value"}},
        {"code of another system",
         {.code = made_pe()},
         ExitCode::refused,
         Answer::no,
         {"wrong-name", "wrong-kind"}},
        {"code for Arm alone", {.code = made_mach_o()}, ExitCode::fine, Answer::yes, {"processor-missing"}},
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
        {"a universal file with a part that is no code",
         {.code = made_universal({made_mach_o({.processor = 0x01000007}), "other"})},
         ExitCode::refused,
         Answer::no,
         {"damaged", "processor-missing"}},
        {"a library of somebody's machine",
         {.code = both({.needed = {"/opt/lib/a.dylib"}})},
         ExitCode::refused,
         Answer::no,
         {"library-missing"}},
        {"a library that nothing leads to",
         {.code = both({.needed = {"@rpath/a.dylib"}})},
         ExitCode::refused,
         Answer::no,
         {"library-missing"}},
        {"a library that is not where the path leads",
         {.code = both({.needed = {"@rpath/a.dylib"}, .run_paths = {"@loader_path/../Resources"}})},
         ExitCode::refused,
         Answer::no,
         {"library-missing"}},
        {"a library in the bundle",
         {.code = both({.needed = {"@rpath/Sample.rsrc"}, .run_paths = {"@loader_path/../Resources"}})},
         ExitCode::fine,
         Answer::yes,
         {}},
        {"a library that it can do without",
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
        {"no function named for Intel",
         {.resources = resources_with({"mi64", ""})},
         ExitCode::refused,
         Answer::no,
         {"property-missing"}},
        {"a function for Arm that is not exported",
         {.resources = resources_with({"ma64", terminated_data("Other")})},
         ExitCode::refused,
         Answer::no,
         {"entry-not-exported"}},
        {"a function for a processor that is not there",
         {.code = made_mach_o(), .resources = resources_with({"mi64", terminated_data("Other")})},
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

TEST(Doctor, OtherPaths) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("empty.plugin"));
    const struct {
        const char* name;
        std::string path;
        ExitCode code;
        const char* finding;
    } cases[] = {
        {"nothing there", folder.path("missing"), ExitCode::cannot_read_or_write, "cannot-read"},
        {"a device", "/dev/null", ExitCode::cannot_read_or_write, "cannot-read"},
        {"a folder", folder.folder().string(), ExitCode::refused, "not-a-bundle"},
        {"a folder with the right name", folder.path("empty.plugin"), ExitCode::refused, "not-a-bundle"},
        {"the code of a Macintosh bundle alone", folder.write("Sample", made_mach_o()), ExitCode::refused,
         "not-a-bundle"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const Diagnosis diagnosis = cli::doctor::inspect(one.path, listed);
        EXPECT_EQ(diagnosis.code, one.code);
        EXPECT_THAT(codes_of(diagnosis), ElementsAre(one.finding));
    }
}

TEST(Doctor, LibrariesOfALinuxFileAreLookedForAsTheLoaderDoes) {
    const TemporaryFolder folder;
    folder.write("libbeside.so", made_elf());
    folder.write("libother.so", made_elf({.machine = 183}));
    const struct {
        const char* name;
        MadeElf elf;
        std::vector<std::string> findings;
    } cases[] = {
        {"of the system", {.needed = {"libc.so.6", "libm.so.6"}}, {}},
        {"nowhere", {.needed = {"libnowhere.so"}}, {"library-missing"}},
        {"beside it, and not asked for there", {.needed = {"libbeside.so"}}, {"library-missing"}},
        {"beside it", {.needed = {"libbeside.so"}, .run_path = "/nowhere:$ORIGIN"}, {}},
        {"beside it in the other spelling", {.needed = {"libbeside.so"}, .run_path = "${ORIGIN}/."}, {}},
        {"beside it for another processor",
         {.needed = {"libother.so"}, .run_path = "$ORIGIN"},
         {"library-missing"}},
        {"by its whole path", {.needed = {folder.path("libbeside.so")}}, {}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const Diagnosis diagnosis = cli::doctor::inspect(folder.write("a.so", made_elf(one.elf)), listed);
        EXPECT_EQ(codes_of(diagnosis), one.findings);
        EXPECT_EQ(answer(diagnosis, "embedded", "today"), Answer::yes);
    }
}

TEST(Doctor, WhatIsNoPlugInIsNotLoaded) {
    const TemporaryFolder folder;
    int loaded = 0;
    const cli::doctor::RunLoadTest counting = [&loaded](const std::string& path,
                                                        embedded::HostGeneration generation) {
        ++loaded;
        return listed(path, generation);
    };
    const std::pair<std::string, std::string> cases[] = {
        {made_elf({.exports = {"other"}}), "entry-missing"},
        {made_elf({.program = true}), "wrong-kind"},
        {made_elf({.dynamic = false}), "wrong-kind"},
    };
    for (const auto& [bytes, finding] : cases) {
        const Diagnosis diagnosis = cli::doctor::inspect(folder.write("a.so", bytes), counting);
        EXPECT_THAT(codes_of(diagnosis), ElementsAre(finding));
        EXPECT_EQ(answer(diagnosis, "embedded", "classic"), Answer::no);
        EXPECT_EQ(diagnosis.code, ExitCode::refused);
    }
    EXPECT_EQ(loaded, 0);
    EXPECT_EQ(cli::doctor::inspect(folder.write("a.so", made_elf()), counting).code, ExitCode::fine);
    EXPECT_EQ(loaded, 2);
}

TEST(Doctor, EveryEndOfATrialIsAFinding) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.so", made_elf());
    const struct {
        LoadOutcome end;
        const char* finding;
        Answer answer;
        std::size_t findings;  ///< what the system does not load is told once
    } cases[] = {
        {LoadOutcome::listed, "registers-nothing", Answer::yes, 2},
        {LoadOutcome::failed, "entry-failed", Answer::no, 2},
        {LoadOutcome::not_loadable, "not-loadable", Answer::no, 1},
        {LoadOutcome::crashed, "load-crashed", Answer::no, 2},
        {LoadOutcome::timed_out, "load-timed-out", Answer::no, 2},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.finding);
        const Diagnosis diagnosis =
            cli::doctor::inspect(path, [&](const std::string&, embedded::HostGeneration generation) {
                return LoadTest{embedded::generation_label(generation), one.end, "why", {}, {"word"}};
            });
        EXPECT_EQ(codes_of(diagnosis), std::vector<std::string>(one.findings, one.finding));
        EXPECT_EQ(diagnosis.findings[0].effects.front(), "it said: word");
        for (const char* const generation : {"today", "classic"}) {
            EXPECT_EQ(answer(diagnosis, "embedded", generation), one.answer);
        }
    }
}

TEST(Doctor, DamagedBundlesAreReportedWhereverTheyAreDamaged) {
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

TEST(Doctor, ATrialPassesThroughItsLine) {
    const LoadTest load_test{"today",
                             LoadOutcome::failed,
                             "why \"not\"",
                             {{"importer", "n\xC3\xA4me", {".a", ".b"}}, {"input module", "", {}}},
                             {"one", "two"}};
    const std::string line = cli::doctor::load_test_line(load_test);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    const std::optional<LoadTest> back = cli::doctor::read_load_test_line(line);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(cli::doctor::load_test_line(*back), line);
    for (const char* const other : {"", "{}", "[1]", "text", "{\"generation\":\"today\",\"end\":\"other\"}",
                                    "{\"generation\":1,\"end\":\"listed\"}"}) {
        EXPECT_FALSE(cli::doctor::read_load_test_line(other).has_value()) << other;
    }
}

TEST(Doctor, EveryFindingHasItsRowAtItsPlace) {
    std::size_t index = 0;
    for (const cli::doctor::FindingRow& row : cli::doctor::finding_table()) {
        EXPECT_EQ(static_cast<std::size_t>(row.finding), index++) << row.code;
        EXPECT_EQ(std::string(row.meaning).back(), '.') << row.code;
    }
    EXPECT_EQ(index, static_cast<std::size_t>(cli::doctor::Finding::registers_nothing) + 1);
}

}  // namespace
