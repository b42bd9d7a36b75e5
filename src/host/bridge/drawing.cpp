#include "host/bridge/drawing.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <optional>

#include "host/bridge/path_translation.h"
#include "host/bridge/pictures.h"
#include "host/bridge/registrations.h"
#include "host/bridge/reports.h"
#include "host/bridge/spec_use.h"
#include "host/bridge/underlying_host.h"
#include "limit/limits.h"

namespace bridge {
namespace {

// An in-spec for which a module opens a file. Remembers the picture that the module attaches to it.
class OpenedSpec final : public SpecUse {
  public:
    using SpecUse::SpecUse;

    A_Err set_options(void* options, void** old_options) override {
        // Before the host attaches the options, because attached options must be known and this may throw.
        if (options != nullptr) {
            remember_picture(options, size_);
        }
        void* old = nullptr;
        const A_Err err = SpecUse::set_options(options, &old);
        if (err != kHostErrorNone) {
            forget_picture(options);
            return err;
        }
        options_ = options;
        if (old_options != nullptr) {
            *old_options = size_of_picture(old) ? old : nullptr;
        }
        if (old != options) {
            forget_picture(old);
        }
        return err;
    }

    A_Err set_dimensions(A_long width_px, A_long height_px) override {
        size_ = {width_px, height_px};
        if (options_ != nullptr) {
            remember_picture(options_, size_);
        }
        return SpecUse::set_dimensions(width_px, height_px);
    }

  private:
    void* options_ = nullptr;
    FrameSize size_;
};

// An in-spec that a module disposes of. Hides options that no module attached in this session.
class DisposedSpec final : public SpecUse {
  public:
    using SpecUse::SpecUse;

    A_Err get_options(void** options) override {
        const A_Err err = SpecUse::get_options(options);
        if (err == kHostErrorNone && !size_of_picture(*options)) {
            *options = nullptr;
        }
        if (err == kHostErrorNone) {
            options_ = *options;
        }
        return err;
    }

    [[nodiscard]] const void* options() const { return options_; }

  private:
    const void* options_ = nullptr;
};

bool has_pixels(const A_LRect& region) {
    return region.left < region.right && region.top < region.bottom;
}

// The part of a frame to draw; nothing when the required region lies outside the frame. Deliberately, a
// region without pixels means the whole frame: a host that needs no pixels does not ask.
std::optional<A_LRect> required_part(const AEIO_DrawSparseFramePB* request, const PF_LayerDef& frame) {
    const A_LRect whole = {0, 0, frame.width, frame.height};
    if (request == nullptr || !has_pixels(request->required_region)) {
        return whole;
    }
    const A_LRect& required = request->required_region;
    const A_LRect part = {std::max(required.left, whole.left), std::max(required.top, whole.top),
                          std::min(required.right, whole.right), std::min(required.bottom, whole.bottom)};
    return has_pixels(part) ? std::optional(part) : std::nullopt;
}

// Whether the rows do not overlap.
bool rows_are_apart(const PF_LayerDef& frame) {
    const std::int64_t length = std::abs(std::int64_t{frame.row_bytes});
    return frame.height < 2 || length >= std::int64_t{frame.width} * std::int64_t{sizeof(PF_Pixel)};
}

// An in-spec that a module draws. The module asks for its options before it looks at its frame, so the answer
// to that question can still decide what the frame is.
class DrawnSpec final : public SpecUse {
  public:
    DrawnSpec(std::size_t place, const AEIO_BasicData& data, AEIO_InSpecH spec,
              const AEIO_DrawSparseFramePB* request, const PF_LayerDef* frame)
        : SpecUse(spec), place_(place), data_(data), request_(request), frame_(frame) {
        if (frame_ != nullptr) {
            modules_frame_ = *frame_;
        }
    }

    PF_LayerDef* modules_frame() { return frame_ == nullptr ? nullptr : &modules_frame_; }

    A_Err get_options(void** options) override {
        const A_Err err = SpecUse::get_options(options);
        if (err != kHostErrorNone) {
            return err;
        }
        std::optional<FrameSize> size = size_of_picture(*options);
        if (!size || size->width_px < 1 || size->height_px < 1) {
            const A_Err reloaded = load_again();
            if (reloaded != kHostErrorNone) {
                bridge_reports_ = true;
                return reloaded;
            }
            *options = picture_->options();
            size = picture_->size();
        }
        return frame_ == nullptr || frame_->data == nullptr ? kHostErrorNone : set_up_frame(*size);
    }

    /// After the module has drawn.
    void fill_frame() const {
        if (pixels_ == nullptr) {
            return;
        }
        const PictureRows rows = {pixels_.get(), static_cast<std::size_t>(modules_frame_.width), size_};
        if (size_ == FrameSize{frame_->width, frame_->height}) {
            copy_picture(rows, part_, *frame_);
        } else {
            reduce_picture(rows, part_, *frame_);
        }
    }

  protected:
    [[nodiscard]] bool bridge_reports() const override { return bridge_reports_; }
    [[nodiscard]] OwnMemory* memory() const override {
        return picture_ == nullptr ? nullptr : &picture_->memory();
    }

  private:
    A_Err load_again() {
        if (picture_ != nullptr) {
            return kHostErrorNone;
        }
        const auto* suite = current_suite<AEGP_IOInSuite5>();
        if (suite == nullptr) {
            return kHostErrorMissingSuite;
        }
        std::string path;
        const A_Err err = take_host_path(
            [&](AEGP_MemHandle* handle) { return suite->AEGP_GetInSpecFilePath(spec(), handle); }, &path);
        if (err != kHostErrorNone) {
            report_unknown_file(err);
            return err;
        }
        return reloaded_picture(place_, data_, path, &picture_);
    }

    A_Err set_up_frame(FrameSize size) {
        if (set_up_ || frame_->width == 0 || frame_->height == 0) {
            return kHostErrorNone;
        }
        if (frame_->width < 0 || frame_->height < 0 || !rows_are_apart(*frame_)) {
            return kHostErrorParameter;
        }
        const std::optional<A_LRect> part = required_part(request_, *frame_);
        if (!part) {
            return kHostErrorParameter;
        }
        set_up_ = true;
        part_ = *part;
        size_ = size;
        modules_frame_.width = picture_end(part_.right, frame_->width, size.width_px);
        modules_frame_.height = picture_end(part_.bottom, frame_->height, size.height_px);
        const bool at_the_corner = part_.left == 0 && part_.top == 0;
        if (size == FrameSize{frame_->width, frame_->height} && at_the_corner) {
            return kHostErrorNone;  // the module draws into the host's frame
        }
        return make_own_frame();
    }

    // Covers only the part of the picture that the module must draw.
    A_Err make_own_frame() {
        const std::int64_t row_bytes = std::int64_t{modules_frame_.width} * std::int64_t{sizeof(PF_Pixel)};
        const std::int64_t picture_px = std::int64_t{size_.width_px} * size_.height_px;
        if (row_bytes > std::numeric_limits<A_long>::max() || picture_px > limits::kTexturePixels.value) {
            return kHostErrorAllocation;
        }
        const auto pixels =
            static_cast<std::size_t>(std::int64_t{modules_frame_.width} * modules_frame_.height);
        pixels_.reset(new (std::nothrow) PF_Pixel[pixels]());
        modules_frame_.data = pixels_.get();
        modules_frame_.row_bytes = static_cast<A_long>(row_bytes);
        return pixels_ == nullptr ? kHostErrorAllocation : kHostErrorNone;
    }

    std::size_t place_;
    const AEIO_BasicData& data_;
    const AEIO_DrawSparseFramePB* request_;
    const PF_LayerDef* frame_;  // the host's
    PF_LayerDef modules_frame_ = {};
    bool set_up_ = false;
    bool bridge_reports_ = false;
    A_LRect part_ = {};
    FrameSize size_;
    std::unique_ptr<PF_Pixel[]> pixels_;  // null when the module draws into the host's frame
    std::shared_ptr<ReloadedPicture> picture_;
};

}  // namespace

A_Err open_in_spec(std::size_t place, AEIO_BasicData* data, const A_char* path, AEIO_InSpecH spec) {
    const OpenedSpec opened(spec);
    return input_modules[place].AEIO_InitInSpecFromFile(data, path, spec);
}

A_Err draw_frame(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec,
                 const AEIO_DrawSparseFramePB* request, PF_LayerDef* world, AEIO_DrawingFlags* flags) {
    DrawnSpec drawn(place, *data, spec, request, world);
    const A_Err err =
        input_modules[place].AEIO_DrawSparseFrame(data, spec, request, drawn.modules_frame(), flags);
    if (err == kHostErrorNone) {
        drawn.fill_frame();
    }
    return err;
}

A_Err dispose_in_spec(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec) {
    DisposedSpec disposed(spec);
    const A_Err err = input_modules[place].AEIO_DisposeInSpec(data, spec);
    // The module has deleted the picture even if it could not free the handle.
    forget_picture(disposed.options());
    return err;
}

}  // namespace bridge
