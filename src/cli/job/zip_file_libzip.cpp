#include <zip.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "cli/job/zip_file.h"

namespace cli {

struct ZipFile::State {
    zip_t* archive = nullptr;

    State() = default;
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
};

ZipFile::ZipFile(const std::string& path) : state_(std::make_unique<State>()) {
    int code = 0;
    state_->archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (state_->archive == nullptr) {
        zip_error_t error;
        zip_error_init_with_code(&error, code);
        const std::string reason = zip_error_strerror(&error);
        zip_error_fini(&error);
        throw std::runtime_error("the archive: " + reason);
    }
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
}

}  // namespace cli
