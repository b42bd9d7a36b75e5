#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__linux__)
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "system/files.h"

namespace os {

namespace fs = std::filesystem;

namespace {

FileKind kind_of(fs::file_type type) {
    switch (type) {
        case fs::file_type::regular:
            return FileKind::regular;
        case fs::file_type::directory:
            return FileKind::folder;
        case fs::file_type::fifo:
            return FileKind::pipe;
        case fs::file_type::character:
        case fs::file_type::block:
            return FileKind::device;
        case fs::file_type::socket:
            return FileKind::socket;
        default:
            return FileKind::other;
    }
}

/// Most systems tell the kind with the name; only links and the rare kinds cost a look at the file. The C++
/// library remembers the kind for these questions, not for status().
FileKind kind_of_entry(const fs::directory_entry& entry) {
    std::error_code not_readable;
    if (entry.is_regular_file(not_readable)) {
        return FileKind::regular;
    }
    if (entry.is_directory(not_readable)) {
        return kind_of(fs::file_type::directory);
    }
    const fs::file_status status = entry.status(not_readable);
    const bool missing = !fs::status_known(status) || status.type() == fs::file_type::not_found;
    return missing ? FileKind::missing : kind_of(status.type());
}

std::error_code last_error() {
    return {errno, std::generic_category()};
}

/// A descriptor that its scope closes. Opening one never waits and never makes a terminal the controlling
/// one.
class Descriptor {
  public:
    /// The umask takes permissions away from `mode`.
    Descriptor(const std::string& path, int flags, mode_t mode = 0666) {
        descriptor_ = ::open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode);
    }
    ~Descriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    [[nodiscard]] int get() const { return descriptor_; }
    int release() { return std::exchange(descriptor_, -1); }
    /// Some file systems report failed writes only here.
    bool close() { return ::close(release()) == 0; }

  private:
    int descriptor_;
};

/// Opens a file and closes it again.
std::error_code opened(const std::string& path, int flags) {
    Descriptor file(path, flags);
    return file.is_open() && file.close() ? std::error_code() : last_error();
}

constexpr mode_t kOwnerWrites = S_IRUSR | S_IWUSR;
constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;

/// The permissions that a file of mode `mode` may pass on to one of another group: what others may do.
mode_t without_group(mode_t mode) {
    return (mode & (S_IRWXU | S_IRWXO)) | ((mode & S_IRWXO) << 3U);
}

/// Gives the open file the owner and group of `replaced`, or the group alone. Returns the permissions that it
/// may then have.
mode_t take_ownership(int descriptor, const struct stat& replaced, std::string& notice) {
    const mode_t mode = replaced.st_mode & kPermissions;
    struct stat made {};
    if (::fstat(descriptor, &made) != 0 ||
        (made.st_uid == replaced.st_uid && made.st_gid == replaced.st_gid) ||
        ::fchown(descriptor, replaced.st_uid, replaced.st_gid) == 0) {
        return mode;
    }
    const std::string reason = last_error().message();
    constexpr auto kSameOwner = static_cast<uid_t>(-1);
    const bool group_kept =
        made.st_gid == replaced.st_gid || ::fchown(descriptor, kSameOwner, replaced.st_gid) == 0;
    notice = made.st_uid == replaced.st_uid
                 ? "its group " + std::to_string(replaced.st_gid)
                 : "its owner, user " + std::to_string(replaced.st_uid) +
                       (group_kept ? std::string() : ", and its group " + std::to_string(replaced.st_gid));
    notice += " could not be kept: " + reason;
    return group_kept ? mode : without_group(mode);
}

/// Flushes to the disk; true also for files that cannot be flushed.
bool flushed(int descriptor) {
    return ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}

}  // namespace

std::error_code clone_file(const std::string& from, const std::string& to) {
#if defined(__linux__)
    const Descriptor source(from, O_RDONLY);
    Descriptor target(to, O_WRONLY);
    if (!source.is_open() || !target.is_open()) {
        return last_error();
    }
    return ::ioctl(target.get(), FICLONE, source.get()) == 0 && target.close() ? std::error_code()
                                                                               : last_error();
#else
    static_cast<void>(from);
    static_cast<void>(to);
    return std::make_error_code(std::errc::operation_not_supported);
#endif
}

FileState file_state(const std::string& path) {
    FileState state;
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (!fs::status_known(status) || status.type() == fs::file_type::not_found) {
        state.error = failure ? failure.message() : "the file does not exist";
        return state;
    }
    state.kind = kind_of(status.type());
    if (state.kind == FileKind::regular) {
        const std::uintmax_t size = fs::file_size(path, failure);
        state.size_bytes = failure ? 0 : size;
    }
    return state;
}

std::vector<std::string> regular_files_in(const std::string& folder) {
    std::vector<std::string> names;
    for (FolderEntry& entry : entries_in(folder)) {
        if (entry.kind == FileKind::regular) {
            names.push_back(std::move(entry.name));
        }
    }
    return names;
}

std::vector<std::string> matching_files(const std::string& path) {
    return {path};
}

std::vector<FolderEntry> entries_in(const std::string& folder) {
    std::vector<FolderEntry> entries;
    std::error_code failure;
    fs::directory_iterator entry(folder, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        std::error_code not_readable;
        entries.push_back(
            {entry->path().filename().string(), kind_of_entry(*entry), entry->is_symlink(not_readable)});
    }
    return entries;
}

std::string absolute_path(const std::string& path) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(path, failure);
    return failure ? path : absolute.string();
}

std::error_code create_file(const std::string& path) {
    return opened(path, O_WRONLY | O_CREAT | O_EXCL);
}

std::optional<FileNumber> file_number(const std::string& path) {
    struct stat about {};
    if (::stat(path.c_str(), &about) != 0) {
        return std::nullopt;
    }
    return FileNumber{static_cast<std::uint64_t>(about.st_dev),
                      {static_cast<std::uint64_t>(about.st_ino), 0}};
}

std::error_code create_replacement(const std::string& path, const std::string& replaced,
                                   std::string& notice) {
    struct stat about {};
    if (::stat(replaced.c_str(), &about) != 0) {
        return last_error();
    }
    Descriptor file(path, O_WRONLY | O_CREAT | O_EXCL, kOwnerWrites);
    if (!file.is_open()) {
        return last_error();
    }
    const mode_t mode = take_ownership(file.get(), about, notice) | kOwnerWrites;
    if (mode != kOwnerWrites && ::fchmod(file.get(), mode) != 0) {
        notice +=
            (notice.empty() ? "" : "; ") + ("its permissions could not be kept: " + last_error().message());
    }
    return file.close() ? std::error_code() : last_error();
}

std::error_code may_write(const std::string& path) {
    return opened(path, O_WRONLY | O_APPEND);  // and nothing appended
}

std::FILE* open_device(const std::string& path, std::error_code& failure) {
    Descriptor file(path, O_WRONLY);
    // A reader exists, so from here on writing may wait for it.
    const int flags = file.is_open() ? ::fcntl(file.get(), F_GETFL) : -1;
    std::FILE* stream = flags >= 0 && ::fcntl(file.get(), F_SETFL, flags & ~O_NONBLOCK) == 0
                            ? ::fdopen(file.get(), "wb")
                            : nullptr;
    if (stream == nullptr) {
        failure = last_error();
        return nullptr;
    }
    file.release();
    return stream;
}

std::error_code fill_file(const std::string& path, std::string_view bytes) {
    Descriptor file(path, O_WRONLY | O_TRUNC);
    if (!file.is_open()) {
        return last_error();
    }
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return last_error();
        }
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return file.close() ? std::error_code() : last_error();
}

std::error_code flush_file(const std::string& path) {
    Descriptor file(path, O_WRONLY);
    return file.is_open() && flushed(file.get()) && file.close() ? std::error_code() : last_error();
}

std::string link_target(const std::string& path, std::error_code& failure) {
    constexpr int kMostLinks = 40;  // as many as the system follows
    fs::path target = path;
    for (int links = 0; links <= kMostLinks; ++links) {
        if (!fs::is_symlink(fs::symlink_status(target, failure))) {
            failure.clear();  // a missing target is no failure
            return target.string();
        }
        const fs::path parent = target.parent_path();
        const fs::path folder = fs::canonical(parent.empty() ? fs::path(".") : parent, failure);
        if (!failure && folder.native().starts_with("/proc/")) {
            return target.string();
        }
        const fs::path next = failure ? fs::path() : fs::read_symlink(target, failure);
        if (failure) {
            return {};
        }
        target = folder / next;
    }
    failure = std::make_error_code(std::errc::too_many_symbolic_link_levels);
    return {};
}

std::error_code replace_file(const std::string& from, const std::string& to) {
    // The new file was made with the permissions of the old one, but its owner may write it.
    struct stat made {};
    struct stat replaced {};
    if (::stat(from.c_str(), &made) == 0 && ::stat(to.c_str(), &replaced) == 0) {
        const mode_t owner = replaced.st_mode & S_IRWXU;
        if ((made.st_mode & S_IRWXU) != owner) {
            ::chmod(from.c_str(), (made.st_mode & (S_IRWXG | S_IRWXO)) | owner);
        }
    }
    std::error_code failure;
    fs::rename(from, to, failure);
    return failure;
}

fs::path native_path(const std::string& path) {
    return path;
}

fs::path path_of(const std::string& text) {
    return text;
}

std::string text_of(const fs::path& path) {
    return path.string();
}

}  // namespace os
