// The host preference for unlabelled alpha, which an import changes temporarily, and the quick test before an
// import.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "support/loaded_bundle.h"
#include "support/scene_folder.h"

#include "support/special_files.h"

namespace {

const embedded::PreferenceKey kAlphaPreference = {"Main Pref Section", "Pref_DEFAULT_UNLABELED_ALPHA"};

constexpr const char* kSmallScene = R"(VORTAN XR COMPOSITION
RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25
COMPOSITION NRM "Main" { }
)";

TEST(AlphaPreference, IsTheSameAfterAnImport) {
    const SceneFolder folder;
    const std::string sound = folder.scene(kSmallScene);
    const std::string broken = folder.files().write("broken.aec", "VORTAN XR COMPOSITION\nRESOLUTON 64 48\n");
    const std::string empty = folder.files().write("empty.aec", "");
    for (const std::optional<std::uint8_t> value :
         {std::optional<std::uint8_t>(), {0}, {1}, {2}, {3}, {4}, {127}, {128}, {255}}) {
        SCOPED_TRACE(value ? int{*value} : -1);
        embedded::HostOptions options;
        options.alpha_preference = value;
        LoadedBundle bundle(options);
        const auto before = bundle.host().project().preferences;
        EXPECT_EQ(before.contains(kAlphaPreference), value.has_value());
        for (const std::string& path : {sound, broken, empty, sound}) {
            bundle.host().import_file(path);
            EXPECT_EQ(bundle.host().project().preferences, before) << path;
        }
        EXPECT_EQ(bundle.host().project().compositions.size(), 2U);
    }
}

// An import sets the preference to 3 and restores the old byte at its end. A file that cannot be opened is
// refused before the host is called.
TEST(AlphaPreference, IsChangedForEveryFileThatOpens) {
    const SceneFolder folder;
    const std::pair<std::string, std::int64_t> files[] = {
        {folder.scene(kSmallScene), 2},
        {folder.files().write("broken.aec", "VORTAN XR COMPOSITION\nRESOLUTON 64 48\n"), 2},
        {folder.files().write("empty.aec", ""), 0},
        {folder.files().path("missing.aec"), 0},
    };
    for (const auto& [path, changes] : files) {
        embedded::HostOptions options;
        options.alpha_preference = 1;
        LoadedBundle bundle(options);
        bundle.host().import_file(path);
        const auto counts = bundle.host().call_counts();
        EXPECT_EQ(counts.contains("AEGP_SetData") ? counts.at("AEGP_SetData") : 0, changes) << path;
    }
}

struct FirstBytes {
    const char* name;
    std::string bytes;
    bool importable;
};

const FirstBytes kFirstBytes[] = {
    {"nine bytes and no more", "VORTAN XR", true},
    {"a whole scene", kSmallScene, true},
    {"the tenth byte is ignored", "VORTAN XRX", true},
    {"the eleventh byte is ignored", "VORTAN XR12", true},
    {"nine right bytes, then any text", "VORTAN XR\r\nany text", true},
    {"lower case", "vortan xr COMPOSITION", false},
    {"one letter in lower case", "VORTAN Xr COMPOSITION", false},
    {"two blanks", "VORTAN  XR COMPOSITION", false},
    {"a tab for the blank", "VORTAN\tXR COMPOSITION", false},
    {"no blank", "VORTANXR COMPOSITION", false},
    {"a NUL for the blank", std::string("VORTAN\0XR COMPOSITION", 21), false},
    {"a blank before it", " VORTAN XR COMPOSITION", false},
    {"a byte order mark before it", "\xEF\xBB\xBFVORTAN XR COMPOSITION", false},
    {"eight bytes", "VORTAN X", false},
    {"one byte", "V", false},
    {"nothing", "", false},
    {"another kind of file", "II*\0and so on", false},
};

TEST(VerifyCallback, ComparesNineBytes) {
    const TemporaryFolder folder;
    LoadedBundle bundle;
    bundle.take_calls();
    for (const FirstBytes& first : kFirstBytes) {
        const auto result = bundle.host().verify(folder.write("a.aec", first.bytes));
        EXPECT_EQ(result.importable, first.importable) << first.name;
        EXPECT_EQ(result.callback.code, 0) << first.name;
        EXPECT_FALSE(result.callback.missing_suite) << first.name;
    }
    EXPECT_TRUE(bundle.take_calls().empty()) << "the quick test does not call the host";
}

TEST(VerifyCallback, RefusesEverythingButRegularFiles) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("folder.aec"));
    make_pipe(folder.path("pipe.aec"));
    make_link(folder.path("nowhere"), folder.path("dangling.aec"));
    make_link(folder.path("loop.aec"), folder.path("loop.aec"));
    LoadedBundle bundle;
    for (const char* name : {"missing.aec", "folder.aec", "pipe.aec", "dangling.aec", "loop.aec"}) {
        const auto result = bundle.host().verify(folder.path(name));
        EXPECT_FALSE(result.importable) << name;
        EXPECT_EQ(result.callback.code, 0) << name;
    }
    EXPECT_FALSE(bundle.host().verify("").importable);
}

#if !defined(_WIN32)  // where only administrators may make links
TEST(VerifyCallback, FollowsLinks) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink(folder.write("real.txt", kSmallScene), folder.path("link.aec"));
    LoadedBundle bundle;
    EXPECT_TRUE(bundle.host().verify(folder.path("link.aec")).importable);
}
#endif

}  // namespace
