#include "texture/txl/txl_image_filter.h"

#include <algorithm>
#include <array>

#include "texture/txl/texture_observer.h"
#include "texture/txl/txl_ids.h"
#include "texture/txl/txl_image.h"

bool TXLImageFilter::LoadImage(const char* path, TXLImage* target) {
    file_.SetPrivateData(this);
    if (target == nullptr || file_.Open(kTextureFileIdent, path, PrivateHyperFile::kReading, 0, 0) == 0) {
        return false;
    }
    image_ = target;
    row_bytes_ = 0;
    header_count_ = 0;
    // The result is ignored: the top level has no end tag, so reading it always ends at the end of the file.
    ReadChunk(&file_);
    file_.Close();
    image_ = nullptr;
    return file_.GetError() == 0;
}

bool TXLImageFilter::SaveImage(const char* path, TXLImage* source) {
    file_.SetPrivateData(this);
    if (source == nullptr || file_.Open(kTextureFileIdent, path, PrivateHyperFile::kWriting, 0, 1) == 0) {
        return false;
    }
    image_ = source;
    texture_.WriteObject(&file_, kChunkTexture);
    file_.Close();
    image_ = nullptr;
    return file_.GetError() == 0;
}

void TXLImageFilter::SetObserver(TextureObserver* observer) {
    observer_ = observer;
    file_.SetObserver(observer);
}

bool TXLImageFilter::HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t /*version*/) {
    return id == kChunkTexture && texture_.ReadChunk(hf);
}

bool TXLIdentify(Filename* /*name*/, unsigned char* probe, std::int32_t /*size*/) {
    constexpr std::array<unsigned char, 4> kMark = {'T', 'F', 'F', 0};
    return std::equal(kMark.begin(), kMark.end(), probe);
}

bool TXLLoad(const Filename& /*name*/, BaseBitmap* /*bitmap*/, std::int32_t /*unused*/) {
    return true;
}

bool TXLSave(const Filename& /*name*/, BaseBitmap* /*bitmap*/, int /*unused*/) {
    return true;
}
