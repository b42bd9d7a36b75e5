// Files that are refused, including files that are almost acceptable. A refused file leaves the project and
// the preference exactly as they were; no message is shown and nothing waits.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <unistd.h>

#include "embedded/project_json.h"
#include "support/deadline.h"
#include "support/loaded_bundle.h"
#include "support/scene_folder.h"
#include "support/small_stack.h"
#include "support/special_files.h"

namespace {

using testing::IsEmpty;

constexpr const char* kSettings = "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25 ";

embedded::HostOptions with_preference() {
    embedded::HostOptions options;
    options.alpha_preference = 1;
    return options;
}

std::string everything_in(const embedded::Project& project) {
    return embedded::project_to_json(project).dump();
}

struct Refused {
    const char* name;
    std::string text;
};

std::string scene(const std::string& rest) {
    return kSettings + rest;
}

const Refused kRefused[] = {
    {"another header word", "VORTAN XS COMPOSITION"},
    {"a header alone", "VORTAN XR COMPOSITION\n"},
    {"binary rubbish", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16)},
    {"NUL bytes", std::string(5000, '\0')},
    {"a misspelt setting",
     "VORTAN XR COMPOSITION RESOLUTON 64 48 FROM 0 TO 3 RANGE 4 FPS 25 COMPOSITION NRM \"A\" { } "},
    {"a setting missing",
     "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 COMPOSITION NRM \"A\" { } "},
    {"a frame rate of 0",
     "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 0 COMPOSITION NRM \"A\" { } "},
    {"a negative first frame",
     "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM -1 TO 3 RANGE 4 FPS 25 COMPOSITION NRM \"A\" { } "},
    {"an aspect out of range",
     "VORTAN XR COMPOSITION ASPECT 100.5 RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25 "
     "COMPOSITION NRM \"A\" { } "},
    {"no composition", scene("")},
    {"an unknown blend word", scene("COMPOSITION SUB \"A\" { } ")},
    {"a keyword in quotes", scene("COMPOSITION \"NRM\" \"A\" { } ")},
    {"a name in single quotes", scene("COMPOSITION NRM 'A' { } ")},
    {"a block that is not closed", scene("COMPOSITION NRM \"A\" { COMPOSITION NRM \"B\" { } ")},
    {"a number among the entries", scene("COMPOSITION NRM \"A\" { 7 } ")},
    {"footage without a line end", scene("COMPOSITION NRM \"A\" { FILE NRM PREMUL \"a.tga\" }")},
    {"footage without an alpha word", scene("COMPOSITION NRM \"A\" { FILE NRM \"a.tga\"\n } ")},
    {"footage without a closing quote", scene("COMPOSITION NRM \"A\" { FILE NRM PREMUL \"a.tga\n } ")},
    {"top-level footage with a blend word", scene("COMPOSITION NRM \"A\" { } FILE NRM PREMUL \"a.tga\"\n")},
    {"an object of no kind", scene("COMPOSITION NRM \"A\" { } SPHERE \"S\" { } ")},
    {"a camera key without a view", scene("COMPOSITION NRM \"A\" { } CAMERA \"C\" { KEY 0 0 0 0 0 0 0 } ")},
    {"a colour in a null", scene("COMPOSITION NRM \"A\" { } NULL \"N\" { COLOR 1 1 1 } ")},
    {"a broken object behind sound ones",
     scene("COMPOSITION NRM \"A\" { } NULL \"N\" { } LIGHT \"L\" { } LIGHT \"M\" { TYPE spot } ")},
    {"a word of 512 characters", scene("COMPOSITION NRM \"A\" { " + std::string(512, 'x') + " } ")},
};

TEST(RefusedFiles, LeaveEverythingAsItWas) {
    const Deadline deadline;
    const SceneFolder folder;
    folder.image("a.tga");
    LoadedBundle bundle(with_preference());
    // The project is not empty.
    ASSERT_EQ(bundle.host().import_file(folder.scene(scene("COMPOSITION NRM \"Before\" { } "))).code, 0);
    const std::string before = everything_in(bundle.host().project());
    for (const Refused& refused : kRefused) {
        SCOPED_TRACE(refused.name);
        bundle.take_calls();
        const auto result = bundle.host().import_file(folder.scene(refused.text));
        EXPECT_EQ(result.code, 0) << "ignored without a message";
        EXPECT_FALSE(result.missing_suite);
        EXPECT_EQ(everything_in(bundle.host().project()), before);
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
    }
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
    // The bundle still works.
    EXPECT_EQ(bundle.host().import_file(folder.scene(scene("COMPOSITION NRM \"After\" { } "))).code, 0);
    EXPECT_NE(bundle.host().project().find_item("After"), nullptr);
}

TEST(RefusedFiles, ThatCannotBeOpenedHaveTheirOwnError) {
    const Deadline deadline;
    const TemporaryFolder folder;
    const std::string file = folder.write("a file", "VORTAN XR");
    std::filesystem::create_directory(folder.path("folder.aec"));
    make_pipe(folder.path("pipe.aec"));
    make_link(folder.path("pipe.aec"), folder.path("link_to_pipe.aec"));
    make_link(folder.path("loop.aec"), folder.path("loop.aec"));
    make_link(folder.path("nowhere"), folder.path("dangling.aec"));
    const std::pair<const char*, std::string> paths[] = {
        {"empty", folder.write("empty.aec", "")},
        {"missing", folder.path("missing.aec")},
        {"a folder", folder.path("folder.aec")},
        {"a pipe", folder.path("pipe.aec")},
        {"a link to a pipe", folder.path("link_to_pipe.aec")},
        {"a link to itself", folder.path("loop.aec")},
        {"a link to nowhere", folder.path("dangling.aec")},
        {"a device", "/dev/null"},
        {"a device without end", "/dev/zero"},
        {"below a file", file + "/shot.aec"},
        {"longer than paths are", folder.path(std::string(5000, 'a') + ".aec")},
        {"empty path", ""},
    };
    LoadedBundle bundle(with_preference());
    const std::string before = everything_in(bundle.host().project());
    bundle.take_calls();
    for (const auto& [name, path] : paths) {
        SCOPED_TRACE(name);
        EXPECT_EQ(bundle.host().import_file(path).code, 3);
        EXPECT_EQ(everything_in(bundle.host().project()), before);
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
        EXPECT_THAT(bundle.take_calls(), IsEmpty()) << "refused before the host is called";
    }
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

#if !defined(_WIN32)  // which has other users and permissions
/// Becomes a user who may not read everything if the tests run as one who may.
class OrdinaryUser {
  public:
    OrdinaryUser() {
        constexpr uid_t kNobody = 65534;
        if (was_ == 0 && ::seteuid(kNobody) != 0) {
            throw std::runtime_error("cannot become an ordinary user");
        }
    }
    ~OrdinaryUser() {
        if (::seteuid(was_) != 0) {
            std::abort();
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    uid_t was_ = ::geteuid();
};

TEST(RefusedFiles, ThatMayNotBeReadHaveTheirOwnError) {
    const TemporaryFolder folder;
    const std::string path = folder.write("shot.aec", scene("COMPOSITION NRM \"A\" { } "));
    std::filesystem::permissions(folder.folder(), std::filesystem::perms(0755));
    LoadedBundle bundle(with_preference());
    for (const auto& [mode, code, compositions] : {std::tuple{0644, 0, 1U}, std::tuple{0, 3, 1U}}) {
        std::filesystem::permissions(path, std::filesystem::perms(mode));
        const OrdinaryUser user;
        EXPECT_EQ(bundle.host().verify(path).importable, code == 0);
        EXPECT_EQ(bundle.host().import_file(path).code, code);
        EXPECT_EQ(bundle.host().project().compositions.size(), compositions);
    }
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
}
#endif

// Footage that is not a regular file counts as missing.
TEST(RefusedFiles, FootageThatIsNotAFileBecomesAPlaceholder) {
    const Deadline deadline;
    const SceneFolder folder;
    std::filesystem::create_directory(folder.files().path("folder.tga"));
    make_pipe(folder.files().path("pipe.rla"));
    LoadedBundle bundle;
    ASSERT_EQ(bundle.host()
                  .import_file(folder.scene(scene("COMPOSITION NRM \"A\" {\n"
                                                  "FILE NRM PREMUL \"C:\\folder.tga\"\n"
                                                  "FILE NRM PREMUL \"C:\\pipe.rla\"\n"
                                                  "FSEQ NRM PREMUL \"/dev/zero\"\n"
                                                  "} ")))
                  .code,
              0);
    ASSERT_EQ(bundle.host().project().footage.size(), 3U);
    for (const embedded::Footage& footage : bundle.host().project().footage) {
        EXPECT_EQ(footage.kind, embedded::FootageKind::placeholder);
    }
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

std::string nested(int levels) {
    std::string text = kSettings;
    for (int level = 0; level < levels; ++level) {
        text += "COMPOSITION NRM \"c\" {\n";
    }
    for (int level = 0; level < levels; ++level) {
        text += "}\n";
    }
    return text;
}

// Reading, building and deleting need no more stack than a host's thread has at least left.
TEST(Nesting, OfMoreThan1024LevelsIsRefusedWithinASmallStack) {
    const Deadline deadline;
    const SceneFolder folder;
    for (const auto& [levels, built] : {std::pair{1024, std::size_t{1024}}, {1025, std::size_t{0}}}) {
        SCOPED_TRACE(levels);
        const std::string path = folder.scene(nested(levels));
        LoadedBundle bundle(with_preference());
        bundle.host().log_calls(nullptr);
        const std::string before = everything_in(bundle.host().project());
        embedded::CallbackResult result;
        run_on_small_stack([&] { result = bundle.host().import_file(path); });
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(bundle.host().project().compositions.size(), built);
        EXPECT_EQ(everything_in(bundle.host().project()) == before, built == 0);
        EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
    }
}

// There is one report for each level that could not be finished, and the stack suffices for that too.
TEST(Nesting, AFailureAtTheDeepestLevelIsReportedByEveryLevel) {
    const Deadline deadline;
    const SceneFolder folder;
    const std::string path = folder.scene(nested(1024));
    embedded::HostOptions options = with_preference();
    options.faults = {{"AEGP_CreateComp", 1024, 4}};
    // The thread that loads the bundle must also import: reports from other threads wait.
    run_on_small_stack([&] {
        LoadedBundle bundle(options);
        bundle.host().log_calls(nullptr);
        const embedded::CallbackResult result = bundle.host().import_file(path);
        EXPECT_EQ(result.code, 4);
        EXPECT_EQ(bundle.host().messages().size(), 1024U + 1U);
        EXPECT_EQ(bundle.host().project().compositions.size(), 1023U);
        EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
    });
}

// --- a file that ends where an entry ends, and just before

// built_from_first says what is complete at each mark: a file may end where an entry ends. A word that the
// end of the file cuts off does not count.
constexpr std::string_view kCutScene =
    "VORTAN XR COMPOSITION\n"
    "RESOLUTION 4 3 FROM 0 TO 1 RANGE 2 FPS 25\n"
    "COMPOSITION NRM \"A\" {\n"
    "}\n"
    "FILE <-> PREMUL \"C:\\b.tga\"\n"
    "NULL \"N\" {\n"
    "KEY 0 1 2 3 4 5 6\n"
    "}\n";

struct Built {
    std::size_t compositions = 0;
    std::size_t placeholders = 0;
    std::size_t files = 0;
    std::size_t nulls = 0;
    friend bool operator==(const Built&, const Built&) = default;
};

std::size_t length_through(std::string_view mark) {
    const std::size_t at = kCutScene.find(mark);
    if (at == std::string_view::npos) {
        throw std::runtime_error("no mark " + std::string(mark));
    }
    return at + mark.size();
}

Built built_from_first(std::size_t length) {
    const Built nothing;
    const Built root = {1, 0, 0, 0};
    if (length < length_through("NRM \"A\"")) {
        return nothing;
    }
    if (length < length_through("NRM \"A\" {")) {
        return root;  // a composition without a block
    }
    if (length < length_through("NRM \"A\" {\n}")) {
        return nothing;  // in the block
    }
    if (length < length_through("FILE ")) {
        return root;
    }
    if (length < length_through("<-> PREMUL ")) {
        return nothing;
    }
    if (length < length_through("b.tga\"\n")) {
        return {1, 1, 0, 0};  // footage without a readable path is kept, and missing
    }
    if (length < length_through("NULL ")) {
        return {1, 0, 1, 0};
    }
    if (length < length_through("5 6\n}")) {
        return nothing;  // in the object's block
    }
    return {1, 0, 1, 1};
}

Built count(const embedded::Project& project) {
    Built built;
    built.compositions = project.compositions.size();
    for (const embedded::Footage& footage : project.footage) {
        ++(footage.kind == embedded::FootageKind::placeholder ? built.placeholders : built.files);
    }
    built.nulls = project.layers.size();
    return built;
}

Built operator-(const Built& after, const Built& before) {
    return {after.compositions - before.compositions, after.placeholders - before.placeholders,
            after.files - before.files, after.nulls - before.nulls};
}

// 0, and at each mark the last length that does not hold it and the first that does; tests/ladder has every
// length.
std::set<std::size_t> lengths_that_matter() {
    std::set<std::size_t> lengths = {0, kCutScene.size()};
    for (const char* mark : {"NRM \"A\"", "NRM \"A\" {", "NRM \"A\" {\n}", "FILE ", "<-> PREMUL ",
                             "b.tga\"\n", "NULL ", "5 6\n}"}) {
        lengths.insert({length_through(mark) - 1, length_through(mark)});
    }
    return lengths;
}

TEST(CutFiles, ChangeTheProjectOnlyWhenTheyAreComplete) {
    const Deadline deadline;
    const SceneFolder folder;
    folder.image("b.tga");
    LoadedBundle bundle(with_preference());
    bundle.host().log_calls(nullptr);
    for (const std::size_t length : lengths_that_matter()) {
        SCOPED_TRACE("the first " + std::to_string(length) + " bytes");
        const Built before = count(bundle.host().project());
        const std::string everything_before = everything_in(bundle.host().project());
        const auto result = bundle.host().import_file(folder.scene(kCutScene.substr(0, length)));
        EXPECT_EQ(result.code, length == 0 ? 3 : 0);
        const Built built = built_from_first(length);
        EXPECT_EQ(count(bundle.host().project()) - before, built);
        EXPECT_EQ(everything_in(bundle.host().project()) == everything_before, built == Built{});
        EXPECT_EQ(bundle.host().project().preferences.begin()->second.at(0), 1);
    }
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

}  // namespace
