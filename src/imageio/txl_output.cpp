#include "imageio/txl_output.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "texture/value/texture_file.h"

namespace imageio {

TxlOutput::~TxlOutput() {
    TxlOutput::close();
}

int TxlOutput::supports(OIIO::string_view feature) const {
    // All rows are kept until the file is written, because a texture's alphas follow its colour, so they may
    // come in any order. Windows and origins are not stored, but who reads that they are supported passes
    // them on, and they are then heeded here; programs that read otherwise crop without a word.
    return feature == "alpha" || feature == "nchannels" || feature == "random_access" ||
                   feature == "displaywindow" || feature == "origin" || feature == "negativeorigin"
               ? 1
               : 0;
}

bool TxlOutput::set_ioproxy(OIIO::Filesystem::IOProxy* ioproxy) {
    if (ioproxy != nullptr) {
        errorfmt("{}", kNoMemoryFiles);
    }
    return ioproxy == nullptr;
}

bool TxlOutput::open(const std::string& name, const OIIO::ImageSpec& newspec, OpenMode mode) {
    writing_.reset();
    if (mode != Create) {
        errorfmt("{}: a texture has only one image, without subimages or smaller levels", name);
        return false;
    }
    if (asks_for_memory(newspec)) {
        errorfmt("{}: {}", name, kNoMemoryFiles);
        return false;
    }
    for (const std::string& reason : {refuse_image(newspec), refuse_channels(newspec.nchannels)}) {
        if (!reason.empty()) {
            errorfmt("{}: {}", name, reason);
            return false;
        }
    }
    m_spec = newspec;
    m_spec.set_format(OIIO::TypeDesc::UINT8);
    // OpenImageIO's callers do not expect exceptions.
    try {
        return prepare(name);
    } catch (const std::exception& failure) {
        errorfmt("{}: {}", name, failure.what());
        return false;
    }
}

bool TxlOutput::prepare(const std::string& name) {
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(name, error);
    if (!file.has_value()) {
        errorfmt("{}", error);
        return false;
    }
    ChannelPlan plan = plan_channels(m_spec);
    const Placement placement = place_image(m_spec);
    Texture texture = make_texture(placement.width_px, placement.height_px, plan, m_spec);
    const int column_px = m_spec.tile_width > 0 ? m_spec.tile_width : m_spec.width;
    const auto columns = static_cast<std::size_t>((m_spec.width - 1) / column_px) + 1;
    std::vector<bool> written(static_cast<std::size_t>(m_spec.height) * columns);
    writing_.emplace(Writing{std::move(*file),
                             name,
                             std::move(plan),
                             placement,
                             std::move(texture),
                             columns,
                             std::move(written),
                             {},
                             static_cast<unsigned>(m_spec.get_int_attribute("oiio:dither", 0))});
    return true;
}

bool TxlOutput::close() {
    if (!writing_.has_value()) {
        return true;
    }
    std::optional<Writing> writing = std::move(writing_);
    writing_.reset();
    try {
        return finish(*writing);
    } catch (const std::exception& failure) {
        errorfmt("{}: {}", writing->name, failure.what());
        return false;
    }
}

bool TxlOutput::finish(Writing& writing) {
    const auto missing = std::find(writing.written.begin(), writing.written.end(), false);
    if (missing != writing.written.end()) {
        const auto row = static_cast<std::size_t>(missing - writing.written.begin()) / writing.columns;
        errorfmt("{}: closed before row {} of {} was written; no file is created", writing.name, row,
                 m_spec.height);
        return false;
    }
    if (std::optional<diagnostic::Diagnostic> error =
            write_texture(writing.file.temporary_path(), writing.texture);
        error.has_value()) {
        error->at.file = writing.name;
        errorfmt("{}", error_text(*error));
        return false;
    }
    std::string error;
    if (!writing.file.put_in_place(error)) {
        errorfmt("{}", error);
        return false;
    }
    return true;
}

bool TxlOutput::write_scanline(int y, int z, OIIO::TypeDesc format, const void* data,
                               OIIO::stride_t xstride) {
    if (!writing_.has_value()) {
        errorfmt("no texture is open");
        return false;
    }
    const int row = y - m_spec.y;
    if (row < 0 || row >= m_spec.height) {
        errorfmt("{}: row {} is outside the picture, which has {} rows", writing_->name, row, m_spec.height);
        return false;
    }
    const void* native = to_native_scanline(format, data, xstride, writing_->scratch, writing_->dither, y, z);
    store(*writing_, OIIO::ROI(0, m_spec.width, row, row + 1), static_cast<const std::uint8_t*>(native),
          m_spec.scanline_bytes(true));
    return true;
}

bool TxlOutput::write_tile(int x, int y, int z, OIIO::TypeDesc format, const void* data,
                           OIIO::stride_t xstride, OIIO::stride_t ystride, OIIO::stride_t zstride) {
    if (!writing_.has_value()) {
        errorfmt("no texture is open");
        return false;
    }
    const int left = x - m_spec.x;
    const int top = y - m_spec.y;
    if (m_spec.tile_width < 1 || m_spec.tile_height < 1 || left < 0 || top < 0 || left >= m_spec.width ||
        top >= m_spec.height || left % m_spec.tile_width != 0 || top % m_spec.tile_height != 0) {
        errorfmt("{}: no tile starts at {}, {}", writing_->name, x, y);
        return false;
    }
    const void* native =
        to_native_tile(format, data, xstride, ystride, zstride, writing_->scratch, writing_->dither, x, y, z);
    store(*writing_, OIIO::ROI(left, left + m_spec.tile_width, top, top + m_spec.tile_height),
          static_cast<const std::uint8_t*>(native),
          static_cast<std::size_t>(m_spec.tile_width) * static_cast<std::size_t>(m_spec.nchannels));
    return true;
}

void TxlOutput::store(Writing& writing, OIIO::ROI part, const std::uint8_t* bytes, std::size_t stride_bytes) {
    const int right = std::min(part.xend, m_spec.width);
    const int bottom = std::min(part.yend, m_spec.height);
    const int column_px = m_spec.tile_width > 0 ? m_spec.tile_width : m_spec.width;
    for (int y = part.ybegin; y < bottom; ++y, bytes += stride_bytes) {
        copy_row_in(writing.texture, writing.plan, writing.placement.x + part.xbegin, writing.placement.y + y,
                    right - part.xbegin, bytes, m_spec.nchannels);
        const auto row = writing.written.begin() +
                         static_cast<std::ptrdiff_t>(y) * static_cast<std::ptrdiff_t>(writing.columns);
        std::fill(row + part.xbegin / column_px, row + (right - 1) / column_px + 1, true);
    }
}

}  // namespace imageio
