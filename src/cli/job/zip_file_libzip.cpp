#include <zip.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>

#include "cli/job/zip_file.h"
#include "system/open_regular_file.h"

namespace cli {
// Where the archive goes. The library's own way is a second temporary file that only it knows, which a signal
// would leave behind. Named, because a member of ZipFile::State has this type.
struct ZipTarget {
    explicit ZipTarget(const std::string& path) : file(os::open_file_to_write(path.c_str())) {
        zip_error_init(&error);
    }
    ZipTarget(const ZipTarget&) = delete;
    ZipTarget& operator=(const ZipTarget&) = delete;
    ~ZipTarget() { zip_error_fini(&error); }

    zip_int64_t fail(int code) {
        zip_error_set(&error, code, errno);
        return -1;
    }

    os::InputFile file;
    zip_error_t error{};
};

namespace {

zip_int64_t seek(ZipTarget& target, void* data, zip_uint64_t length) {
    const zip_int64_t at = std::ftell(target.file.get());
    if (at < 0 || std::fseek(target.file.get(), 0, SEEK_END) != 0) {
        return target.fail(ZIP_ER_SEEK);
    }
    const auto size = static_cast<zip_uint64_t>(std::ftell(target.file.get()));
    const zip_int64_t place =
        zip_source_seek_compute_offset(static_cast<zip_uint64_t>(at), size, data, length, &target.error);
    return place >= 0 && std::fseek(target.file.get(), place, SEEK_SET) == 0 ? 0 : target.fail(ZIP_ER_SEEK);
}

// What the library asks of the place that it writes to, which is empty for it until everything is written.
zip_int64_t answer(void* user, void* data, zip_uint64_t length, zip_source_cmd_t command) {
    ZipTarget& target = *static_cast<ZipTarget*>(user);
    switch (command) {
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(
                ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT, ZIP_SOURCE_ERROR,
                ZIP_SOURCE_FREE, ZIP_SOURCE_SEEK, ZIP_SOURCE_TELL, ZIP_SOURCE_SUPPORTS, ZIP_SOURCE_REMOVE,
                ZIP_SOURCE_BEGIN_WRITE, ZIP_SOURCE_WRITE, ZIP_SOURCE_SEEK_WRITE, ZIP_SOURCE_TELL_WRITE,
                ZIP_SOURCE_COMMIT_WRITE, ZIP_SOURCE_ROLLBACK_WRITE, -1);
        case ZIP_SOURCE_STAT: {
            auto* const about = static_cast<zip_stat_t*>(data);
            zip_stat_init(about);
            about->valid = ZIP_STAT_SIZE;
            return static_cast<zip_int64_t>(sizeof(*about));
        }
        case ZIP_SOURCE_ERROR:
            return zip_error_to_data(&target.error, data, length);
        case ZIP_SOURCE_WRITE:
            return std::fwrite(data, 1, length, target.file.get()) == length
                       ? static_cast<zip_int64_t>(length)
                       : target.fail(ZIP_ER_WRITE);
        case ZIP_SOURCE_SEEK_WRITE:
            return seek(target, data, length);
        case ZIP_SOURCE_TELL_WRITE:
            return std::ftell(target.file.get());
        case ZIP_SOURCE_COMMIT_WRITE:
            return std::fflush(target.file.get()) == 0 ? 0 : target.fail(ZIP_ER_WRITE);
        default:
            return 0;
    }
}

}  // namespace

struct ZipFile::State {
    explicit State(const std::string& path) : target(path) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        if (archive != nullptr) {
            zip_discard(archive);
        }
    }

    [[noreturn]] void fail() const {
        throw std::runtime_error(std::string("the archive: ") + zip_strerror(archive));
    }

    // Takes the source over. Returns its index.
    zip_uint64_t add(const std::string& name, zip_source_t* source) const {
        if (source == nullptr) {
            fail();
        }
        const zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
        if (index < 0) {
            zip_source_free(source);
            fail();
        }
        if (zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0) != 0) {
            fail();
        }
        return static_cast<zip_uint64_t>(index);
    }

    ZipTarget target;
    zip_t* archive = nullptr;
};

ZipFile::ZipFile(const std::string& path) : state_(std::make_unique<State>(path)) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = state_->target.file == nullptr
                                     ? nullptr
                                     : zip_source_function_create(answer, &state_->target, &error);
    if (state_->target.file == nullptr) {
        zip_error_set(&error, ZIP_ER_OPEN, errno);
    }
    if (source != nullptr) {
        state_->archive = zip_open_from_source(source, ZIP_CREATE | ZIP_TRUNCATE, &error);
    }
    if (state_->archive == nullptr) {
        zip_source_free(source);
        const std::string reason = zip_error_strerror(&error);
        zip_error_fini(&error);
        throw std::runtime_error("the archive: " + reason);
    }
    zip_error_fini(&error);
}

ZipFile::~ZipFile() = default;

void ZipFile::add_file(const std::string& name, const std::string& source) {
    constexpr zip_int64_t kToTheEnd = 0;
    (void)state_->add(name, zip_source_file(state_->archive, source.c_str(), 0, kToTheEnd));
}

void ZipFile::add_bytes(const std::string& name, const std::string& bytes) {
    // The library frees it.
    void* const copy = std::malloc(bytes.empty() ? 1 : bytes.size());
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(copy));
    zip_source_t* const source = zip_source_buffer(state_->archive, copy, bytes.size(), 1);
    if (source == nullptr) {
        std::free(copy);
    }
    const zip_uint64_t index = state_->add(name, source);
    // Without a file there is no time: the first one that ZIP knows, so that equal collections are equal.
    constexpr zip_uint16_t kFirstOfJanuary1980 = 0x21;
    if (zip_file_set_dostime(state_->archive, index, 0, kFirstOfJanuary1980, 0) != 0) {
        state_->fail();
    }
}

void ZipFile::close() {
    if (zip_close(state_->archive) != 0) {
        state_->fail();
    }
    state_->archive = nullptr;
    if (std::fclose(state_->target.file.release()) != 0) {
        throw std::runtime_error("the archive: its last bytes could not be written");
    }
}

}  // namespace cli
