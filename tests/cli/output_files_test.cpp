// What happens to the files that the verbs write when the disk is full or something else is in their place:
// the old file stays, no partial or temporary file remains, and a message says what is wrong and where.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <future>
#include <string>
#include <utility>
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

constexpr const char* kLantern = VXR_EXAMPLES_DIR "/interlaced/lantern_010.aec";
constexpr const char* kOld = "what was there";

using Command = std::vector<std::string>;

/// Runs the program in `folder` for at most a minute. No file may exceed `limit_blocks` blocks of 512 bytes.
Command command_in(const TemporaryFolder& folder, const Command& arguments, const std::string& limit_blocks) {
    Command command{"env", "-C", folder.folder().string(), "timeout", "60", "sh", "-c"};
    command.insert(command.end(), {R"(ulimit -f "$1"; shift; exec "$@")", "sh", limit_blocks, VXR_PROGRAM});
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

ProcessResult vxr(const TemporaryFolder& folder, const Command& arguments,
                  const std::string& limit_blocks = "unlimited") {
    return run_process(command_in(folder, arguments, limit_blocks));
}

/// Runs the program as an unprivileged user when the tests run as root.
ProcessResult vxr_of_ordinary_user(const TemporaryFolder& folder, const Command& arguments) {
    Command command = command_in(folder, arguments, "unlimited");
    if (::geteuid() == 0) {
        const Command user{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
        command.insert(command.begin(), user.begin(), user.end());
    }
    return run_process(command);
}

void make_texture(const TemporaryFolder& folder, std::int32_t mode, int alphas, std::int32_t size_px = 64) {
    ASSERT_FALSE(
        write_texture(folder.path("a.txl"), made_texture(size_px, size_px, mode, alphas)).has_value());
}

struct Format {
    const char* extension;
    std::int32_t mode = Texture::kRgb;
    int alphas = 0;
};

// Every format that can be written, by one of its extensions; some several times, once for each path through
// the writer.
constexpr Format kFormats[] = {
    {"bmp"},
    {"dpx"},
    {"exr", Texture::kRgb, 3},
    {"fits"},
    {"gif"},
    {"hdr"},
    {"ico"},
    {"jp2"},
    {"jpg"},
    {"pgm", Texture::kGrey},
    {"png"},
    {"ppm"},
    {"png", Texture::kGrey, 1},
    {"rla"},
    {"rla", Texture::kGrey, 1},
    {"sgi"},
    {"tga"},
    {"tif", Texture::kRgb, 2},
    {"txl"},
    {"txl", Texture::kRgb, 2},
    {"heic"},
    {"webp"},
    {"zfile", Texture::kGrey},
};

TEST(FullDisk, EveryFormatLeavesTheOldFileAndNothingElse) {
    // Codecs hold memory until the process ends.
    const std::vector<std::pair<std::string, std::string>> environment{{"ASAN_OPTIONS", "detect_leaks=0"}};
    for (const Format& format : kFormats) {
        const TemporaryFolder folder;
        make_texture(folder, format.mode, format.alphas);
        const std::string output = std::string("b.") + format.extension;
        const Command arguments{"texture", "convert", "a.txl", "-o", output};
        SCOPED_TRACE(output + ", " + std::to_string(format.alphas) + " alphas");
        folder.write(output, kOld);
        // The file can be written when there is space, so the failure below is about space.
        const ProcessResult room = run_process(command_in(folder, arguments, "unlimited"), environment);
        ASSERT_EQ(room.exit_code, 0) << room.err;
        const auto whole_bytes = static_cast<int>(fs::file_size(folder.path(output)));
        for (const int blocks : {1, (whole_bytes - 1) / 512}) {
            folder.write(output, kOld);
            const ProcessResult run =
                run_process(command_in(folder, arguments, std::to_string(blocks)), environment);
            EXPECT_EQ(run.exit_code, 3) << blocks << " blocks of " << whole_bytes << " bytes";
            EXPECT_TRUE(content_of(folder.path(output)) == kOld) << blocks;
            EXPECT_THAT(names_in(folder), ElementsAre("a.txl", output)) << blocks;
        }
    }
}

struct Reason {
    const char* extension;
    const char* text;
};

// Covers files that are written in memory first, by the program itself, and by writers that write only to
// files.
TEST(FullDisk, TheMessageSaysWhatAndWhere) {
    const Reason reasons[] = {
        {"png", "b.png: error: b.png: File too large [not-written]\n"},
        {"jpg", "b.jpg: error: b.jpg: File too large [not-written]\n"},
        {"txl", "b.txl: error: the bytes could not be written: File too large [short-transfer]\n"},
    };
    const TemporaryFolder folder;
    make_texture(folder, Texture::kRgb, 0);
    for (const Reason& reason : reasons) {
        const std::string output = std::string("b.") + reason.extension;
        const ProcessResult run = vxr(folder, {"texture", "convert", "a.txl", "-o", output}, "1");
        EXPECT_EQ(run.exit_code, 3);
        EXPECT_EQ(run.err, reason.text);
    }
    EXPECT_THAT(names_in(folder), ElementsAre("a.txl"));
}

TEST(FullDisk, AFrameLeavesTheOldImage) {
    const TemporaryFolder folder;
    make_texture(folder, Texture::kRgb, 1);
    folder.write("frame.png", kOld);
    const ProcessResult run = vxr(folder, {"frame", "a.txl", "-o", "frame.png"}, "1");
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_EQ(run.err, "vxr: error: frame.png: File too large\n");
    EXPECT_EQ(content_of(folder.path("frame.png")), kOld);
    EXPECT_THAT(names_in(folder), ElementsAre("a.txl", "frame.png"));
}

TEST(FullDisk, AnImportLeavesTheOldDocumentAndLog) {
    for (const char* option : {"--save", "--log"}) {
        const TemporaryFolder folder;
        folder.write("out", kOld);
        const ProcessResult run = vxr(folder, {"import", option, "out", kLantern}, "8");
        EXPECT_EQ(run.exit_code, 3) << option;
        EXPECT_THAT(run.err, HasSubstr("vxr: error: cannot write out: File too large\n")) << option;
        EXPECT_EQ(content_of(folder.path("out")), kOld) << option;
        EXPECT_THAT(names_in(folder), ElementsAre("out")) << option;
    }
}

TEST(FullDisk, AResultThatCannotBePrintedIsAnError) {
    const TemporaryFolder folder;
    make_texture(folder, Texture::kRgb, 0);
    const std::vector<Command> verbs = {
        {"check", "--json", kLantern},
        {"frame", "a.txl", "-o", "a.png"},
        {"help", "--man"},
        {"import", kLantern},
        {"modules"},
        {"texture", "convert", "a.txl", "-o", "a.png"},
    };
    for (const Command& verb : verbs) {
        Command command{"env", "-C", folder.folder().string(), "timeout", "60",
                        "sh",  "-c", R"("$@" >/dev/full)",     "sh",      VXR_PROGRAM};
        command.insert(command.end(), verb.begin(), verb.end());
        const ProcessResult run = run_process(command);
        EXPECT_EQ(run.exit_code, 3) << verb.front();
        EXPECT_THAT(run.err, HasSubstr("could not be written to standard output")) << verb.front();
    }
}

/// A verb that writes a file, and the beginning of its error message.
struct Writer {
    const char* name;
    std::string output;
    Command arguments;
    std::string message;
};

const std::vector<Writer>& writers() {
    static const std::vector<Writer> all = {
        {"image", "out.png", {"texture", "convert", "a.txl", "-o", "out.png"}, "out.png: error: out.png: "},
        {"texture", "out.txl", {"texture", "convert", "a.txl", "-o", "out.txl"}, "out.txl: error: out.txl: "},
        {"frame", "out.png", {"frame", "a.txl", "-o", "out.png"}, "vxr: error: out.png: "},
        {"document", "out", {"import", "--save", "out", kLantern}, "vxr: error: cannot write out: "},
        {"log", "out", {"import", "--log", "out", kLantern}, "vxr: error: cannot write out: "},
    };
    return all;
}

struct InTheWay {
    const char* name;
    void (*make)(const TemporaryFolder& folder, const std::string& output);
    std::string reason;       // of images and textures
    std::string text_reason;  // of documents and logs
};

void link_round_in_a_circle(const TemporaryFolder& folder, const std::string& output) {
    make_link(output, folder.path("between"));
    make_link("between", folder.path(output));
}

void link_onto_itself(const TemporaryFolder& folder, const std::string& output) {
    make_link(output, folder.path(output));
}

void link_into_no_folder(const TemporaryFolder& folder, const std::string& output) {
    make_link("missing/" + output, folder.path(output));
}

void folder_there(const TemporaryFolder& folder, const std::string& output) {
    folder.make_folder(output);
}

void pipe_without_reader(const TemporaryFolder& folder, const std::string& output) {
    make_pipe(folder.path(output));
}

void link_to_full_device(const TemporaryFolder& folder, const std::string& output) {
    make_link("/dev/full", folder.path(output));
}

TEST(SomethingInTheWay, IsAnErrorAndStaysAsItWas) {
    const InTheWay cases[] = {
        {"links in a circle", link_round_in_a_circle, "Too many levels of symbolic links",
         "Too many levels of symbolic links"},
        {"link onto itself", link_onto_itself, "Too many levels of symbolic links",
         "Too many levels of symbolic links"},
        {"link into a missing folder", link_into_no_folder, "No such file or directory",
         "No such file or directory"},
        {"folder", folder_there, "not a regular file", "not a regular file"},
        {"pipe without a reader", pipe_without_reader, "not a regular file", "No such device or address"},
        {"device that is full", link_to_full_device, "not a regular file", "No space left on device"},
    };
    for (const InTheWay& one : cases) {
        for (const Writer& writer : writers()) {
            SCOPED_TRACE(std::string(one.name) + ", " + writer.name);
            const TemporaryFolder folder;
            make_texture(folder, Texture::kRgb, 0, 8);
            one.make(folder, writer.output);
            const std::vector<std::string> before = names_in(folder);
            const fs::file_type type = fs::symlink_status(folder.path(writer.output)).type();
            const ProcessResult run = vxr(folder, writer.arguments);
            EXPECT_EQ(run.exit_code, 3);
            const std::string reason = writer.arguments.front() == "import" ? one.text_reason : one.reason;
            EXPECT_THAT(run.err, HasSubstr(writer.message + reason));
            EXPECT_EQ(names_in(folder), before);
            EXPECT_EQ(fs::symlink_status(folder.path(writer.output)).type(), type);
        }
    }
}

TEST(SomethingInTheWay, FilesAndFoldersThatMayNotBeWrittenStay) {
    struct Permission {
        const char* name;
        int folder_mode;
        int file_mode;
    };
    const Permission permissions[] = {{"file", 0777, 0444}, {"folder", 0555, 0666}};
    for (const Permission& permission : permissions) {
        for (const Writer& writer : writers()) {
            SCOPED_TRACE(std::string(permission.name) + ", " + writer.name);
            const TemporaryFolder folder;
            make_texture(folder, Texture::kRgb, 0, 8);
            fs::permissions(folder.path("a.txl"), fs::perms(0644));
            folder.write(writer.output, kOld);
            fs::permissions(folder.path(writer.output), fs::perms(permission.file_mode));
            fs::permissions(folder.folder(), fs::perms(permission.folder_mode));
            const std::vector<std::string> before = names_in(folder);
            const ProcessResult run = vxr_of_ordinary_user(folder, writer.arguments);
            fs::permissions(folder.folder(), fs::perms(0777));
            EXPECT_EQ(run.exit_code, 3);
            EXPECT_THAT(run.err, HasSubstr(writer.message + "Permission denied"));
            EXPECT_EQ(names_in(folder), before);
            EXPECT_TRUE(content_of(folder.path(writer.output)) == kOld);
        }
    }
}

TEST(SomethingInTheWay, ALinkToAMissingFileCreatesTheFile) {
    for (const Writer& writer : writers()) {
        const TemporaryFolder folder;
        make_texture(folder, Texture::kRgb, 0, 8);
        folder.make_folder("elsewhere");
        make_link("elsewhere/real", folder.path(writer.output));
        const ProcessResult run = vxr(folder, writer.arguments);
        EXPECT_EQ(run.exit_code, 0) << writer.name << run.err;
        std::vector<std::string> made;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.folder() / "elsewhere")) {
            made.push_back(entry.path().filename().string());
        }
        EXPECT_THAT(made, ElementsAre("real")) << writer.name;
        EXPECT_TRUE(fs::is_symlink(folder.path(writer.output))) << writer.name;
    }
}

TEST(WrittenDirectly, DevicesPipesAndTheStandardOutput) {
    const TemporaryFolder folder;
    EXPECT_EQ(vxr(folder, {"import", "--save", "/dev/null", "--log", "/dev/null", kLantern}).exit_code, 2)
        << "both to one file";
    EXPECT_EQ(vxr(folder, {"import", "--log", "/dev/null", kLantern}).exit_code, 0);
    const ProcessResult out = vxr(folder, {"import", "--save", "/dev/stdout", kLantern});
    EXPECT_EQ(out.exit_code, 0) << out.err;
    const ProcessResult piped =
        run_process({"sh", "-c", R"("$0" import --save /dev/stdout "$1" 2>&1 | cat)", VXR_PROGRAM, kLantern});
    EXPECT_THAT(piped.out, HasSubstr("\"schema\": 2"));
    EXPECT_THAT(piped.out, HasSubstr("1 camera, 2 lights"));

    make_pipe(folder.path("pipe"));
    auto read = std::async(std::launch::async, [&] { return content_of(folder.path("pipe")); });
    ProcessResult run;
    do {  // until the reader has opened the pipe
        run = vxr(folder, {"import", "--save", "pipe", kLantern});
    } while (run.exit_code == 3);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_THAT(read.get(), HasSubstr("\"schema\": 2"));
}

TEST(FormatsThatWriteNoFile, AreRefused) {
    const TemporaryFolder folder;
    make_texture(folder, Texture::kRgb, 0, 8);
    for (const char* output : {"a.null", "a.term"}) {
        const ProcessResult run = vxr(folder, {"texture", "convert", "a.txl", "-o", output});
        EXPECT_EQ(run.exit_code, 2) << output;
        EXPECT_THAT(run.err, HasSubstr(std::string("no image format has the extension of ") + output));
    }
    EXPECT_THAT(names_in(folder), ElementsAre("a.txl"));
}

// Some codecs of the library write nothing for an image this small, and report no error.
TEST(FormatsThatWriteNoFile, AnEmptyImageFileIsAnError) {
    const TemporaryFolder folder;
    make_texture(folder, Texture::kRgb, 0, 8);
    const ProcessResult run = vxr(folder, {"texture", "convert", "a.txl", "-o", "a.j2k"});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_EQ(run.err, "a.j2k: error: the image library wrote nothing [not-written]\n");
    EXPECT_THAT(names_in(folder), ElementsAre("a.txl"));
}

}  // namespace
