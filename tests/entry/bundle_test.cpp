// The bundle in the build folder: what it exports, what it needs, and that it loads.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/recording_host.h"
#include "support/temporary_folder.h"
#include "system/dynamic_library.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kBundle = VXR_BUNDLE;

#if !defined(_WIN32)  // tests/windows examines the file there
/// The lines that a command prints. Throws if it cannot be run or fails, so that a failure does not look like
/// an empty list of symbols.
std::vector<std::string> lines_of(const std::string& command) {
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    std::string output;
    std::array<char, 4096> part{};
    while (const std::size_t read = std::fread(part.data(), 1, part.size(), pipe)) {
        output.append(part.data(), read);
    }
    if (::pclose(pipe) != 0) {
        throw std::runtime_error("failed: " + command);
    }
    std::istringstream in(output);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(Bundle, ExportsItsTwoEntryPointsAndNothingElse) {
    std::vector<std::string> names;
    for (const std::string& line :
         lines_of(VXR_NM " --dynamic --defined-only --format=posix '" + kBundle + "'")) {
        std::istringstream fields(line);
        std::string name;
        std::string kind;
        fields >> name >> kind;
        names.push_back(name.append(1, ' ').append(kind));
    }
    EXPECT_THAT(names, ElementsAre("EntryPointFunc T", "Main_VORTANXR_AE T"));
}

TEST(Bundle, NeedsTheStandardLibraryAndThePlatformOnly) {
    std::vector<std::string> allowed = {"libm.so.6", "libgcc_s.so.1", "libc.so.6", "ld-linux-x86-64.so.2",
                                        "ld-linux-aarch64.so.1"};
#if defined(_LIBCPP_VERSION)
    allowed.insert(allowed.end(), {"libc++.so.1", "libc++abi.so.1", "libunwind.so.1"});
#else
    allowed.emplace_back("libstdc++.so.6");
#endif
    if (VXR_SANITIZED) {
        allowed.insert(allowed.end(), {"libasan.so.8", "libubsan.so.1"});
    }
    std::size_t needed = 0;
    for (const std::string& line : lines_of(VXR_READELF " --dynamic --wide '" + kBundle + "'")) {
        if (line.find("(NEEDED)") == std::string::npos) {
            continue;
        }
        ++needed;
        const std::size_t begin = line.find('[') + 1;
        EXPECT_THAT(allowed, ::testing::Contains(line.substr(begin, line.find(']') - begin)));
    }
    EXPECT_GE(needed, 2U) << "at least the C and the C++ library; or else nothing was read";
}

TEST(Bundle, IsHardenedAgainstDamagedMemoryInReleaseBuilds) {
    if (!VXR_HARDENED) {
        GTEST_SKIP() << "only the optimised build without sanitizers has these checks";
    }
    const std::vector<std::string> symbols =
        lines_of(VXR_NM " --dynamic --undefined-only --demangle '" + kBundle + "'");
    // The function that each check calls when it finds damage; a bundle without the check does not import it.
    for (const char* check : {"__stack_chk_fail", "__memcpy_chk", "std::__glibcxx_assert_fail"}) {
        EXPECT_THAT(symbols, ::testing::Contains(::testing::HasSubstr(check)));
    }
}
#endif

/// With every symbol resolved. Throws if it does not load.
std::unique_ptr<os::DynamicLibrary> open_bundle() {
    std::string error;
    std::unique_ptr<os::DynamicLibrary> bundle = os::DynamicLibrary::open(kBundle, error);
    if (bundle == nullptr) {
        throw std::runtime_error(error);
    }
    return bundle;
}

TEST(Bundle, LoadsWithEverySymbolResolvedAndServesAHost) {
    const auto bundle = open_bundle();
    const auto entry = reinterpret_cast<AEGP_PluginInitFunc>(bundle->function("Main_VORTANXR_AE"));
    ASSERT_NE(entry, nullptr);

    RecordingHost host;
    EXPECT_EQ(entry(host.basic(), 11, 0, "", "", RecordingHost::kPluginId, nullptr), 0);
    EXPECT_EQ(host.calls.size(), 5U);

    const TemporaryFolder folder;
    const std::string path = folder.write("shot.aec",
                                          "VORTAN XR COMPOSITION\n"
                                          "RESOLUTION 64 48 FROM 0 TO 9 RANGE 10 FPS 25\n"
                                          "COMPOSITION NRM \"Main\" {\n}\n");
    A_Boolean importable = 0;
    EXPECT_EQ(host.registered_callbacks.verify_cb(path.c_str(), nullptr, &importable), 0);
    EXPECT_EQ(importable, 1);
    host.calls.clear();
    EXPECT_EQ(
        host.registered_callbacks.import_cb(path.c_str(), nullptr, kSpecialActionNone, nullptr, nullptr), 0);
    EXPECT_THAT(host.calls_of({"CreateComp"}),
                ElementsAre("CreateComp(folder1, \"Main\", 64, 48, 100/100, 10@25, 2500/100) -> comp1"));
    EXPECT_THAT(host.left_open(), IsEmpty());
}

TEST(Bundle, TheMissingSuiteExceptionReachesTheHostsSide) {
    const auto bundle = open_bundle();
    const auto entry = reinterpret_cast<AEGP_PluginInitFunc>(bundle->function("Main_VORTANXR_AE"));
    ASSERT_NE(entry, nullptr);
    RecordingHost host;
    host.withhold_suite("AEGP Register Suite", 4);
    long caught = 0;
    try {
        entry(host.basic(), 11, 0, "", "", RecordingHost::kPluginId, nullptr);
    } catch (long value) {
        caught = value;
    }
    EXPECT_EQ(caught, 516);
}

TEST(Bundle, ItsSecondEntryPointServesCurrentHosts) {
    const auto bundle = open_bundle();
    const auto entry = reinterpret_cast<AEGP_PluginInitFuncCurrent>(bundle->function("EntryPointFunc"));
    ASSERT_NE(entry, nullptr);

    CurrentHost host;
    EXPECT_EQ(entry(host.basic(), 13, 28, RecordingHost::kPluginId, nullptr), 0);
    EXPECT_EQ(host.calls.size(), 5U);
    EXPECT_THAT(host.left_open(), ElementsAre("AEGP Register Suite 6 x 1"))
        << "the plug-in deliberately keeps the classic one";
    ASSERT_EQ(host.importers.size(), 1U);
    ASSERT_EQ(host.modules.size(), 1U);

    const TemporaryFolder folder;
    folder.write("\xD0\xBA\xD0\xB0\xD0\xB4\xD1\x80 \xF0\x9F\x8E\xAC.aec", "VORTAN XR COMPOSITION\n");
    const std::u16string path = folder.folder().u16string() + u"/\x043A\x0430\x0434\x0440 \xD83C\xDFAC.aec";
    A_Boolean importable = 0;
    EXPECT_EQ(host.importers[0].verify_cb(path.c_str(), nullptr, &importable), 0);
    EXPECT_EQ(importable, 1);
    // The import ends at the first suite that this host lacks.
    EXPECT_EQ(host.importers[0].import_cb(path.c_str(), nullptr, kSpecialActionNone, nullptr, nullptr), 0);
    EXPECT_EQ(host.held("AEGP Persistent Data Suite", 3), 1) << "kept like the other suite";
}

TEST(Bundle, NoExceptionReachesACurrentHost) {
    const auto bundle = open_bundle();
    const auto entry = reinterpret_cast<AEGP_PluginInitFuncCurrent>(bundle->function("EntryPointFunc"));
    ASSERT_NE(entry, nullptr);
    CurrentHost host;
    host.withhold_suite("AEGP File Import Manager Suite", 3);
    EXPECT_EQ(entry(host.basic(), 13, 28, RecordingHost::kPluginId, nullptr), 13);
    EXPECT_THAT(host.reports,
                ElementsAre("This plug-in needs the suite \"AEGP File Import Manager Suite\" 3, "
                            "which the host does not offer."));
}

}  // namespace
