// What happens to files that must stay as they are: nothing that a verb reads or that a scene uses is
// written, whatever it is called; a signal leaves no temporary file; owners and permissions are kept.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
constexpr const char* kOrbit = VXR_EXAMPLES_DIR "/keyframes/orbit_030.aec";
constexpr const char* kCourtyard = VXR_EXAMPLES_DIR "/square/courtyard_020.aec";

using Command = std::vector<std::string>;

ProcessResult vxr_in(const TemporaryFolder& folder, const Command& arguments) {
    Command command{"env", "-C", folder.folder().string(), "timeout", "60", VXR_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_process(command);
}

// A scene with an image, a sequence and a texture, none of which must change.
void make_job(const TemporaryFolder& folder) {
    ASSERT_FALSE(write_texture(folder.path("a.txl"), made_texture(8, 8, Texture::kRgb, 0)).has_value());
    ASSERT_FALSE(write_texture(folder.path("b.txl"), made_texture(8, 8, Texture::kRgb, 0)).has_value());
    for (const char* image : {"plate.tga", "pass.0001.tga", "pass.0002.tga"}) {
        ASSERT_EQ(vxr_in(folder, {"texture", "convert", "b.txl", "-o", image}).exit_code, 0);
    }
    folder.write("s.aec",
                 "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 1 RANGE 2 FPS 25\n"
                 "COMPOSITION NRM \"Main\" {\n  FILE NRM STRAIGHT \"C:\\old\\plate.tga\"\n"
                 "  FSEQ NRM STRAIGHT \"pass.0001.tga\"\n  FILE NRM STRAIGHT \"a.txl\"\n}\n");
    folder.make_folder("sub");
    make_link("../a.txl", folder.path("sub/link.txl"));
    make_link(folder.folder().string(), folder.path("sub/here"));
    make_link("plate.tga", folder.path("link.png"));
    make_link("s.aec", folder.path("link.aec"));
    make_link(VXR_BUNDLE_PATH, folder.path("plug-in.png"));
    make_link("new.png", folder.path("new-too.png"));
    fs::create_hard_link(folder.path("pass.0002.tga"), folder.path("hard.tga"));
}

struct Overwriting {
    const char* name;
    Command arguments;
    const char* message;
};

TEST(WrittenFiles, AreNeverFilesThatAreReadOrUsedAsFootage) {
    const Overwriting cases[] = {
        {"texture over itself", {"frame", "a.txl", "-o", "a.txl"}, "a.txl would be overwritten"},
        {"texture through a link", {"frame", "a.txl", "-o", "sub/link.txl"}, "a.txl would be overwritten"},
        {"the plug-in through a link",
         {"frame", "a.txl", "-o", "plug-in.png"},
         "the plug-in, would be overwritten"},
        {"scene through a link", {"import", "s.aec", "--save", "link.aec"}, "s.aec would be overwritten"},
        {"scene through a folder's link",
         {"import", "s.aec", "--log", "sub/here/s.aec"},
         "s.aec would be overwritten"},
        {"footage beside the scene",
         {"import", "s.aec", "--save", "plate.tga"},
         "footage of s.aec, would be overwritten"},
        {"footage through a link",
         {"import", "s.aec", "--log", "link.png"},
         "footage of s.aec, would be overwritten"},
        {"a later frame of a sequence",
         {"import", "s.aec", "--save", "pass.0002.tga"},
         "footage of s.aec, would be overwritten"},
        {"a frame by another name",
         {"import", "s.aec", "--save", "hard.tga"},
         "footage of s.aec, would be overwritten"},
        {"texture as footage",
         {"import", "s.aec", "--save", "sub/link.txl"},
         "footage of s.aec, would be overwritten"},
        {"another input through a link",
         {"texture", "convert", "b.txl", "-o", "sub/here/b.txl"},
         "b.txl would be overwritten"},
        {"the input after it",
         {"texture", "convert", "sub/link.txl", "b.txl", "--to", "txl", "--out-dir", "sub"},
         "sub/link.txl would be overwritten"},
        {"two outputs, one a link to the other, which is missing",
         {"import", "s.aec", "--save", "new.png", "--log", "new-too.png"},
         "--save and --log would both be written to new-too.png, which is the same file as new.png"},
        {"two outputs in one folder by two names",
         {"texture", "convert", "a.txl", "sub/../a.txl", "--to", "png", "--out-dir", "sub/here"},
         "a.txl and sub/../a.txl would both be written to"},
    };
    const TemporaryFolder folder;
    make_job(folder);
    const auto contents = [&] {
        std::vector<std::string> all;
        for (const std::string& name : names_in(folder.folder())) {
            if (fs::is_regular_file(folder.path(name))) {
                all.push_back(name + content_of(folder.path(name)));
            }
        }
        return all;
    };
    const std::vector<std::string> before = contents();
    for (const Overwriting& one : cases) {
        const ProcessResult run = vxr_in(folder, one.arguments);
        EXPECT_EQ(run.exit_code, 2) << one.name << ": " << run.err;
        EXPECT_THAT(run.err, HasSubstr(one.message)) << one.name;
        EXPECT_TRUE(contents() == before) << one.name;
    }
    // The same verbs do write elsewhere.
    EXPECT_EQ(vxr_in(folder, {"import", "s.aec", "--save", "p.json", "--log", "c.jsonl"}).exit_code, 0);
    EXPECT_EQ(vxr_in(folder, {"frame", "a.txl", "-o", "frame.png"}).exit_code, 0);
}

// Starts the program with these arguments and a pipe as its standard input, whose other end stays open, waits
// until it has made its temporary file, and ends it with a signal. Returns its exit code.
int exit_code_after(const TemporaryFolder& folder, const Command& arguments, int signal) {
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        return -1;
    }
    std::string program = VXR_PROGRAM;
    Command words = arguments;
    std::vector<char*> argv{program.data()};
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[0], STDIN_FILENO);
        ::close(ends[1]);
        if (::chdir(folder.folder().c_str()) == 0) {
            ::execv(VXR_PROGRAM, argv.data());
        }
        ::_exit(127);
    }
    ::close(ends[0]);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (names_in(folder.folder()).empty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_FALSE(names_in(folder.folder()).empty()) << "it has begun";
    ::kill(child, signal);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(ends[1]);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Signals, RemoveTheTemporaryFileAndAreTheExitCode) {
    const Command document{"import", "-", "--save", "out.json"};
    const Command page{"report", "-", "-o", "out.html", "--bundle", VXR_BUNDLE_PATH};
    const struct {
        Command arguments;
        int signal;
        int exit_code;
    } cases[] = {
        {document, SIGINT, 130}, {document, SIGTERM, 143}, {document, SIGHUP, 129}, {page, SIGINT, 130}};
    for (const auto& one : cases) {
        const TemporaryFolder folder;
        EXPECT_EQ(exit_code_after(folder, one.arguments, one.signal), one.exit_code);
        EXPECT_THAT(names_in(folder.folder()), ElementsAre()) << one.signal;
    }
}

TEST(Signals, WhileAnOutputIsWrittenTheOldFileStays) {
    // The log fills a pipe that nobody empties, so the document is never finished.
    const TemporaryFolder folder;
    folder.write("out.json", "old");
    make_pipe(folder.path("pipe"));
    const std::string script =
        R"sh(exec 3<>pipe; "$0" import --save out.json --log pipe "$1" >/dev/null & )sh"
        R"sh(for i in $(seq 1000); do [ "$(ls -A | wc -l)" -gt 2 ] && break; sleep 0.01; done; )sh"
        R"sh(sleep 0.2; ls -A | wc -l; kill -TERM $!; wait $!; echo $?)sh";
    const ProcessResult run = run_process(
        {"env", "-C", folder.folder().string(), "timeout", "60", "bash", "-c", script, VXR_PROGRAM, kOrbit});
    EXPECT_EQ(run.out, "3\n143\n") << run.err;
    EXPECT_EQ(content_of(folder.path("out.json")), "old");
    EXPECT_THAT(names_in(folder.folder()), ElementsAre("out.json", "pipe"));
}

TEST(Signals, WhileAnArchiveIsWrittenNothingStays) {
    // Large enough to be written for a while; the disk does not hold its zeros.
    constexpr std::uintmax_t kSize_bytes = 400'000'000;
    const TemporaryFolder folder;
    folder.write("plate.tga", "");
    fs::resize_file(folder.path("plate.tga"), kSize_bytes);
    folder.write("s.aec",
                 "VORTAN XR COMPOSITION\nRESOLUTION 4 4 FROM 0 TO 0 RANGE 1 FPS 25\nCOMPOSITION NRM \"M\" {\n"
                 "FILE NRM STRAIGHT \"plate.tga\"\n}\n");
    folder.make_folder("out");
    const std::string script =
        R"sh("$0" collect s.aec -o out/s.zip >/dev/null & )sh"
        R"sh(for i in $(seq 4000); do [ -n "$(find out -type f -size +0)" ] && break; sleep 0.005; done; )sh"
        R"sh(kill -TERM $!; wait $!; echo $?)sh";
    const ProcessResult run = run_process(
        {"env", "-C", folder.folder().string(), "timeout", "60", "bash", "-c", script, VXR_PROGRAM});
    EXPECT_EQ(run.out, "143\n") << run.err;
    EXPECT_THAT(names_in(folder.folder() / "out"), ElementsAre());
}

TEST(Signals, WhileAReportDrawsItsPicturesNothingStays) {
    // A picture is a file for a moment, in the folder for temporary files.
    const TemporaryFolder folder;
    folder.write("out.html", "old");
    folder.make_folder("tmp");
    const std::string script =
        R"sh(TMPDIR=$PWD/tmp env --default-signal=INT "$0" report "$1" -o out.html --bundle "$2" >/dev/null & )sh"
        R"sh(for i in $(seq 4000); do [ -n "$(ls -A tmp)" ] && echo drawing && break; done; )sh"
        R"sh(kill -INT $!; wait $!; echo $?)sh";
    const ProcessResult run = run_process({"env", "-C", folder.folder().string(), "timeout", "60", "bash",
                                           "-c", script, VXR_PROGRAM, kCourtyard, VXR_BUNDLE_PATH});
    EXPECT_EQ(run.out, "drawing\n130\n") << run.err;
    EXPECT_EQ(content_of(folder.path("out.html")), "old");
    EXPECT_THAT(names_in(folder.folder()), ElementsAre("out.html", "tmp"));
    EXPECT_THAT(names_in(folder.folder() / "tmp"), ElementsAre());
}

TEST(FullDisk, AReportThatDoesNotFitLeavesTheOldOne) {
    // No file may pass 64 KiB, which the page does.
    const TemporaryFolder folder;
    folder.write("out.html", "old");
    const ProcessResult run = run_process(
        {"env", "-C", folder.folder().string(), "timeout", "60", "bash", "-c",
         R"sh(trap "" XFSZ; ulimit -f 64; exec "$0" report "$1" -o out.html --pictures 0 --bundle "$2")sh",
         VXR_PROGRAM, kOrbit, VXR_BUNDLE_PATH});
    EXPECT_EQ(run.exit_code, 3) << run.err;
    EXPECT_THAT(run.err, HasSubstr("out.html"));
    EXPECT_EQ(content_of(folder.path("out.html")), "old");
    EXPECT_THAT(names_in(folder.folder()), ElementsAre("out.html"));
}

TEST(Signals, ThatWereIgnoredStayIgnored) {
    const ProcessResult run = run_process(
        {"bash", "-c",
         R"(trap "" INT; { sleep 0.3; printf x; } | "$0" check - & sleep 0.1; kill -INT $!; wait $!; echo $?)",
         VXR_PROGRAM});
    EXPECT_THAT(run.out, HasSubstr("-: refused\n1\n")) << run.err;
}

struct stat state_of(const std::string& path) {
    struct stat about {};
    EXPECT_EQ(::stat(path.c_str(), &about), 0) << path;
    return about;
}

constexpr uid_t kOther = 65534;

TEST(Ownership, IsKeptWhereTheSystemAllowsIt) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root may give files away";
    }
    const TemporaryFolder folder;
    make_job(folder);
    const std::string output = folder.write("out.png", "old");
    ASSERT_EQ(::chmod(output.c_str(), 0640), 0);
    ASSERT_EQ(::chown(output.c_str(), kOther, kOther), 0);
    const ProcessResult run = vxr_in(folder, {"frame", "a.txl", "-o", "out.png"});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(state_of(output).st_uid, kOther);
    EXPECT_EQ(state_of(output).st_gid, kOther);
    EXPECT_EQ(state_of(output).st_mode & 07777U, 0640U);
}

TEST(Ownership, ThatCannotBeKeptIsSaidAndGivesNobodyMoreRights) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can make a file of another user";
    }
    const TemporaryFolder folder;
    make_job(folder);
    fs::permissions(folder.folder(), fs::perms(0777));
    fs::permissions(folder.path("a.txl"), fs::perms(0644));
    const std::string output = folder.write("out.png", "old");
    ASSERT_EQ(::chown(output.c_str(), 1234, 1234), 0);
    ASSERT_EQ(::chmod(output.c_str(), 0666), 0);
    const std::string list = folder.write("out.json", "old");
    ASSERT_EQ(::chown(list.c_str(), 1234, 1234), 0);
    ASSERT_EQ(::chmod(list.c_str(), 0672), 0);
    const Command user{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    Command command = user;
    command.insert(command.end(),
                   {"env", "-C", folder.folder().string(), VXR_PROGRAM, "frame", "a.txl", "-o", "out.png"});
    const ProcessResult run = run_process(command);
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err,
              "vxr: note: out.png: its owner, user 1234, and its group 1234 could not be kept: Operation not "
              "permitted\n");
    EXPECT_EQ(state_of(output).st_uid, kOther);
    EXPECT_EQ(state_of(output).st_mode & 07777U, 0666U);
    // The group is another one now, and may do no more than everybody could.
    command = user;
    command.insert(command.end(), {"env", "-C", folder.folder().string(), VXR_PROGRAM, "import", "--save",
                                   "out.json", kCourtyard});
    EXPECT_EQ(run_process(command).exit_code, 0);
    EXPECT_EQ(state_of(list).st_mode & 07777U, 0622U);
}

}  // namespace
