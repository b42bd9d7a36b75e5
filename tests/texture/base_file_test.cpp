#include "texture/file/base_file.h"

#if !defined(_WIN32)
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#endif

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <string>

#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

constexpr std::int32_t kRead = 1;

TEST(BaseFile, ClosedFileYieldsNothing) {
    BaseFile file;
    char byte = 'x';
    EXPECT_EQ(file.ReadBytes(&byte, 1, 0), -1);
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(file.GetLength(), -1);
    EXPECT_EQ(file.GetError(), 0);
    EXPECT_EQ(file.Close(), 1) << "closing a closed file succeeds";
}

TEST(BaseFile, ReadsInPiecesAndKeepsItsPlaceWhileMeasuring) {
    const TemporaryFolder folder;
    const std::string path = folder.write("seven", "sevenby");
    BaseFile file;
    ASSERT_EQ(file.Open(Filename(path.c_str()), kRead, 0), 1);
    std::array<char, 16> bytes{};
    EXPECT_EQ(file.ReadBytes(bytes.data(), 5, 0), 5);
    EXPECT_EQ(file.GetLength(), 7);
    EXPECT_EQ(file.ReadBytes(bytes.data() + 5, 10, 0), 2) << "a short read is not a failure";
    EXPECT_STREQ(bytes.data(), "sevenby");
}

TEST(BaseFile, EndOfFileGivesMinusOneAndLengthStillWorks) {
    const TemporaryFolder folder;
    const std::string path = folder.write("three", "abc");
    BaseFile file;
    ASSERT_EQ(file.Open(Filename(path.c_str()), kRead, 0), 1);
    std::array<char, 4> bytes{};
    ASSERT_EQ(file.ReadBytes(bytes.data(), 3, 0), 3);
    EXPECT_EQ(file.ReadBytes(bytes.data(), 1, 0), -1);
    EXPECT_EQ(file.GetError(), 0) << "a failed read does not set the error field";
    EXPECT_EQ(file.GetLength(), 3);
}

TEST(BaseFile, CountsBelowOneReadNothing) {
    const TemporaryFolder folder;
    const std::string path = folder.write("three", "abc");
    BaseFile file;
    ASSERT_EQ(file.Open(Filename(path.c_str()), kRead, 0), 1);
    char byte = 'x';
    EXPECT_EQ(file.ReadBytes(&byte, 0, 0), -1);
    EXPECT_EQ(file.ReadBytes(&byte, -1, 0), -1);
    EXPECT_EQ(byte, 'x');
}

TEST(BaseFile, EveryModeOpensForReading) {
    const TemporaryFolder folder;
    const std::string path = folder.write("kept", "kept");
    for (const std::int32_t mode : {0, 1, 2, 3, -1}) {
        BaseFile file;
        EXPECT_EQ(file.Open(Filename(path.c_str()), mode, 7), 1) << "mode " << mode;
        EXPECT_EQ(file.GetLength(), 4) << "mode " << mode;
    }
}

TEST(BaseFile, OpeningAnotherFileClosesTheFirst) {
    const TemporaryFolder folder;
    const std::string one = folder.write("one", "1");
    const std::string two = folder.write("two", "22");
    BaseFile file;
    ASSERT_EQ(file.Open(Filename(one.c_str()), kRead, 0), 1);
    ASSERT_EQ(file.Open(Filename(two.c_str()), kRead, 0), 1);
    EXPECT_EQ(file.GetLength(), 2);
    EXPECT_EQ(file.Open(Filename(folder.path("missing").c_str()), kRead, 0), 0);
    EXPECT_EQ(file.GetError(), 1);
    EXPECT_EQ(file.GetLength(), -1);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(file.GetError(), 0) << "closing clears the field";
}

TEST(BaseFile, LengthsFromTwoGibibytesAreUnknown) {
    const TemporaryFolder folder;
    const std::string path = folder.write("sparse", "");
    const std::uintmax_t limit = std::uintmax_t{1} << 31;
    BaseFile file;
    std::filesystem::resize_file(path, limit - 1);
    ASSERT_EQ(file.Open(Filename(path.c_str()), kRead, 0), 1);
    EXPECT_EQ(file.GetLength(), 0x7fffffff);
    std::filesystem::resize_file(path, limit);
    EXPECT_EQ(file.GetLength(), -1);
    EXPECT_EQ(GeFExist(path.c_str()), 1) << "footage of that size exists nevertheless";
}

TEST(BaseFile, AllocAndFree) {
    BaseFile* file = AllocBaseFile();
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetLength(), -1);
    FreeBaseFile(file);
    EXPECT_EQ(file, nullptr);
    FreeBaseFile(file);
    EXPECT_EQ(file, nullptr);
}

TEST(GeFExist, FindsRegularFilesOnly) {
    const TemporaryFolder folder;
    const std::string regular = folder.write("regular", "x");
    const std::string empty = folder.write("empty", "");
    const std::string fifo = folder.path("fifo");
    make_pipe(fifo);
    const auto link = [&](const char* name, const std::string& target) {
        make_link(target, folder.path(name));
        return folder.path(name);
    };
#if !defined(_WIN32)  // where only administrators can create links
    const std::string to_file = link("to-file", regular);
#else
    const std::string& to_file = regular;
#endif
    const std::string to_fifo = link("to-fifo", fifo);
    const std::string to_nothing = link("to-nothing", folder.path("missing"));
    const std::string to_itself = link("to-itself", folder.path("to-itself"));

    const std::string socket_path = folder.path("socket");
#if !defined(_WIN32)  // where sockets and pipes leave no name in the folder
    const int socket_fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(socket_path.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, socket_path.c_str(), socket_path.size() + 1);
    ASSERT_EQ(::bind(socket_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
#endif

    const struct {
        const char* why;
        std::string path;
        int exists;
    } cases[] = {
        {"regular file", regular, 1},
        {"empty file", empty, 1},
        {"link to a file", to_file, 1},
        {"directory", folder.folder().string(), 0},
        {"directory with a slash", folder.folder().string() + "/", 0},
        {"pipe without a writer, which must not block", fifo, 0},
        {"link to that pipe", to_fifo, 0},
        {"socket", socket_path, 0},
        {"device", "/dev/null", 0},
        {"endless device", "/dev/zero", 0},
        {"dangling link", to_nothing, 0},
        {"link to itself", to_itself, 0},
        {"missing", folder.path("missing"), 0},
        {"file used as a folder", regular + "/below", 0},
        {"empty path", "", 0},
        {"name longer than any file system allows", folder.path(std::string(5000, 'x')), 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(GeFExist(c.path.c_str()), c.exists) << c.why;
    }
    EXPECT_EQ(GeFExist(nullptr), 0);
#if !defined(_WIN32)
    ::close(socket_fd);
#endif
}

#if !defined(_WIN32)  // whose users and permissions are of another kind
// Root can read every file, so the test asks as another user. The readable neighbour proves that the folder
// itself can be reached.
TEST(GeFExist, UnreadableFilesDoNotExist) {
    const TemporaryFolder folder;
    const std::string secret = folder.write("secret", "x");
    const std::string open = folder.write("open", "x");
    std::filesystem::permissions(folder.folder(), static_cast<std::filesystem::perms>(0755));
    std::filesystem::permissions(open, static_cast<std::filesystem::perms>(0644));
    std::filesystem::permissions(secret, std::filesystem::perms::none);
    const uid_t user = ::geteuid();
    constexpr uid_t kNobody = 65534;
    if (user == 0) {
        ASSERT_EQ(::seteuid(kNobody), 0);
    }
    const int secret_exists = GeFExist(secret.c_str());
    const int open_exists = GeFExist(open.c_str());
    if (user == 0) {
        ASSERT_EQ(::seteuid(user), 0);
    }
    EXPECT_EQ(secret_exists, 0);
    EXPECT_EQ(open_exists, 1);
}
#endif

}  // namespace
