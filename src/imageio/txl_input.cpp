#include "imageio/txl_input.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <span>

#include "imageio/channel_plan.h"
#include "imageio/texture_spec.h"
#include "system/open_regular_file.h"

namespace imageio {

namespace {

/// Applies OpenImageIO's limit on decoded images if it is below the reader's.
TextureReadOptions read_options() {
    TextureReadOptions options;
    constexpr int kBytesPerMebibyteBits = 20;
    if (const int mebibytes = OIIO::get_int_attribute("limits:imagesize_MB", 0); mebibytes > 0) {
        options.limits.decoded_bytes = std::min(
            options.limits.decoded_bytes, static_cast<std::uint64_t>(mebibytes) << kBytesPerMebibyteBits);
    }
    return options;
}

}  // namespace

TxlInput::~TxlInput() {
    texture_.reset();
}

bool TxlInput::valid_file(const std::string& filename) const {
    // Regular files only: OpenImageIO asks about any name, and a pipe must not make it wait.
    std::FILE* const file = os::open_regular_file(filename.c_str());
    if (file == nullptr) {
        return false;
    }
    std::array<std::uint8_t, 8> start{};
    const std::size_t read = std::fread(start.data(), 1, start.size(), file);
    std::fclose(file);
    return begins_as_texture(std::span(start).first(read));
}

bool TxlInput::open(const std::string& name, OIIO::ImageSpec& newspec) {
    close();
    // OpenImageIO's callers do not expect exceptions.
    try {
        if (!load(name)) {
            close();
            return false;
        }
    } catch (const std::exception& failure) {
        close();
        errorfmt("{}: {}", name, failure.what());
        return false;
    }
    newspec = m_spec;
    return true;
}

bool TxlInput::open(const std::string& name, OIIO::ImageSpec& newspec, const OIIO::ImageSpec& config) {
    if (asks_for_memory(config)) {
        errorfmt("{}: {}", name, kNoMemoryFiles);
        return false;
    }
    return open(name, newspec);
}

bool TxlInput::set_ioproxy(OIIO::Filesystem::IOProxy* ioproxy) {
    if (ioproxy != nullptr) {
        errorfmt("{}", kNoMemoryFiles);
    }
    return ioproxy == nullptr;
}

bool TxlInput::load(const std::string& name) {
    TextureReading reading = read_texture(name, read_options());
    if (reading.error.has_value()) {
        errorfmt("{}", error_text(*reading.error));
        return false;
    }
    m_spec = texture_spec(reading);
    if (const std::string reason = refuse_channels(m_spec.nchannels); !reason.empty()) {
        errorfmt("{}: {}", name, reason);
        return false;
    }
    texture_ = std::move(reading.texture);
    return true;
}

bool TxlInput::close() {
    texture_.reset();
    m_spec = OIIO::ImageSpec();
    return true;
}

bool TxlInput::read_native_scanline(int subimage, int miplevel, int y, int /*z*/, void* data) {
    const lock_guard guard(*this);
    if (!texture_.has_value()) {
        errorfmt("no texture is open");
        return false;
    }
    if (!seek_subimage(subimage, miplevel)) {
        errorfmt("subimage {}, level {}: a texture has only one image", subimage, miplevel);
        return false;
    }
    if (y < 0 || y >= texture_->height_px) {
        errorfmt("row {} is outside the picture, which has {} rows", y, texture_->height_px);
        return false;
    }
    copy_row_out(*texture_, y, static_cast<std::uint8_t*>(data));
    return true;
}

}  // namespace imageio
