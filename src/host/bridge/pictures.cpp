#include "host/bridge/pictures.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <list>
#include <map>
#include <mutex>
#include <system_error>
#include <utility>

#include "host/bridge/guarded_call.h"
#include "host/bridge/registrations.h"
#include "host/bridge/reports.h"
#include "limit/limits.h"

namespace bridge {
namespace {

// ---- pictures that a module has attached

std::mutex attached_mutex;
std::map<const void*, FrameSize> attached;

// ---- pictures that a module has loaded again

// A file as it was when it was read.
struct FileState {
    std::filesystem::file_time_type written;
    std::uintmax_t size_bytes = 0;
    friend bool operator==(const FileState&, const FileState&) = default;
};

// Nothing when there is no such file.
std::optional<FileState> state_of(const std::string& path) {
    const std::filesystem::path file(std::u8string(path.begin(), path.end()));
    std::error_code error;
    FileState state;
    state.written = std::filesystem::last_write_time(file, error);
    if (!error) {
        state.size_bytes = std::filesystem::file_size(file, error);
    }
    return error ? std::nullopt : std::optional(state);
}

// The picture of one file. Its last member changes under kept_mutex, the others under `loading`.
struct KeptFile {
    KeptFile(std::size_t place_of_module, std::string file) : place(place_of_module), path(std::move(file)) {}
    const std::size_t place;
    const std::string path;
    std::mutex loading;
    std::optional<FileState> state;
    std::shared_ptr<ReloadedPicture> picture;
    bool failure_reported = false;
    std::int64_t size_bytes = 0;
};

// Enough for the textures of one project. A module keeps three colours and an alpha of 16 bits per pixel.
constexpr std::size_t kMostKept = 32;
constexpr std::int64_t kMostKeptBytes = std::int64_t{1} << 30;
constexpr std::int64_t kBytesPerPixel = 8;

using KeptFiles = std::list<std::shared_ptr<KeptFile>>;

void abandon(const KeptFiles& files) {
    for (const std::shared_ptr<KeptFile>& file : files) {
        if (file->picture != nullptr) {
            file->picture->abandon();
        }
    }
}

std::mutex kept_mutex;

// The most recently used file comes first.
struct Kept {
    Kept() = default;
    // If the library is unloaded without a call of the death hook, the host can no longer be called.
    ~Kept() { abandon(files); }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
    KeptFiles files;
};
Kept kept;

std::shared_ptr<KeptFile> kept_file(std::size_t place, const std::string& path) {
    const std::lock_guard lock(kept_mutex);
    KeptFiles& files = kept.files;
    const auto known = std::find_if(files.begin(), files.end(), [place, &path](const auto& file) {
        return file->place == place && file->path == path;
    });
    if (known == files.end()) {
        files.push_front(std::make_shared<KeptFile>(place, path));
    } else {
        files.splice(files.begin(), files, known);
    }
    return files.front();
}

// Notes the size of a file's picture, 0 without one, and gives up the least recently used files for which
// there is no room. Returns them, because freeing a picture calls the module and the host, and no lock may be
// held meanwhile.
KeptFiles make_room(const std::shared_ptr<KeptFile>& changed, std::int64_t size_bytes) {
    KeptFiles given_up;
    const std::lock_guard lock(kept_mutex);
    changed->size_bytes = size_bytes;
    std::size_t files = 0;
    std::int64_t bytes = 0;
    for (auto file = kept.files.begin(); file != kept.files.end();) {
        const auto next = std::next(file);
        bytes += (*file)->size_bytes;
        const bool no_room = ++files > kMostKept || bytes > kMostKeptBytes;
        if (no_room && *file != changed) {
            bytes -= (*file)->size_bytes;
            given_up.splice(given_up.end(), kept.files, file);
        }
        file = next;
    }
    return given_up;
}

}  // namespace

void remember_picture(void* options, FrameSize size) {
    const std::lock_guard lock(attached_mutex);
    attached[options] = size;
}

void forget_picture(const void* options) {
    const std::lock_guard lock(attached_mutex);
    attached.erase(options);
}

std::optional<FrameSize> size_of_picture(const void* options) {
    const std::lock_guard lock(attached_mutex);
    const auto known = attached.find(options);
    return known == attached.end() ? std::nullopt : std::optional(known->second);
}

ReloadedPicture::ReloadedPicture(std::size_t place, const AEIO_BasicData& data, const std::string& path)
    : place_(place), data_(data), error_(kHostErrorGeneric) {
    const auto init = input_modules[place].AEIO_InitInSpecFromFile;
    if (init == nullptr) {
        return;
    }
    LentSpec spec(memory_);
    error_ = guarded([&] { return init(&data_, path.c_str(), spec.spec()); });
    options_ = spec.options();
    size_ = spec.size();
    const bool sound = options_ != nullptr && size_.width_px > 0 && size_.height_px > 0 &&
                       std::int64_t{size_.width_px} * size_.height_px <= limits::kTexturePixels.value;
    if (error_ == kHostErrorNone && !sound) {
        error_ = kHostErrorGeneric;
    }
}

ReloadedPicture::~ReloadedPicture() {
    const auto dispose = input_modules[place_].AEIO_DisposeInSpec;
    if (options_ != nullptr && dispose != nullptr) {
        LentSpec spec(memory_, options_);
        guarded([&] { return dispose(&data_, spec.spec()); });
    }
}

A_Err reloaded_picture(std::size_t place, const AEIO_BasicData& data, const std::string& path,
                       std::shared_ptr<ReloadedPicture>* picture) {
    const std::shared_ptr<KeptFile> file = kept_file(place, path);
    const std::optional<FileState> state = state_of(path);
    A_Err err = kHostErrorNone;
    bool newly_failed = false;
    std::shared_ptr<ReloadedPicture> outdated;
    {
        const std::lock_guard lock(file->loading);
        // Deliberately, a picture outlives its file, as an attached one does.
        const bool usable = file->picture != nullptr && (!state || state == file->state);
        if (!usable) {
            outdated = std::exchange(file->picture, nullptr);
            auto loaded = std::make_shared<ReloadedPicture>(place, data, path);
            err = loaded->error();
            if (err == kHostErrorNone) {
                file->state = state;
                file->picture = std::move(loaded);
            }
            newly_failed = err != kHostErrorNone && !file->failure_reported;
            file->failure_reported = err != kHostErrorNone;
        }
        *picture = file->picture;
    }
    const FrameSize size = err == kHostErrorNone ? (*picture)->size() : FrameSize{};
    make_room(file, std::int64_t{size.width_px} * size.height_px * kBytesPerPixel);
    if (newly_failed) {
        report_unreadable_file(path, state.has_value(), err);
    }
    return err;
}

void free_reloaded_pictures() {
    KeptFiles given_up;  // destroyed last, without the lock
    const std::lock_guard lock(kept_mutex);
    given_up.swap(kept.files);
}

void forget_pictures() {
    {
        const std::lock_guard lock(attached_mutex);
        attached.clear();
    }
    const std::lock_guard lock(kept_mutex);
    abandon(kept.files);
    kept.files.clear();
}

}  // namespace bridge
