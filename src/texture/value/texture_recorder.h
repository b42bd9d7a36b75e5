#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "texture/txl/texture_observer.h"
#include "texture/value/texture_report.h"

/// Records what a load reports: the error with its place, warnings, the headers of layers and, on request,
/// the outline of all chunks.
class TextureRecorder final : public TextureObserver {
  public:
    /// `path` is the file's name in the diagnostics. The outline takes memory in proportion to the file's
    /// rows.
    TextureRecorder(std::string path, bool outline) : path_(std::move(path)), outline_(outline) {}

    void on_chunk_start(std::int32_t id, std::int32_t version, std::int64_t offset_bytes) override;
    void on_chunk_end(std::int64_t end_bytes, bool handled) override;
    void on_pixel_rows(const PixelRows& header) override;
    void on_row(const RowBlock& block) override;
    void on_layer(const LayerHeader& header) override;
    void on_failure(const diagnostic::Diagnostic& failure) override;

    /// Records an error that the container does not see, at the chunk that is being read. `limit` is the
    /// limit that the file exceeds, if that is the reason. Replaces every other error: those that follow are
    /// its consequences.
    void refuse(TextureFault fault, std::string reason, const limits::Limit* limit = nullptr);

    /// Records a notice at the chunk that is being read. `reason` returns the text and is called only for the
    /// first notice of each kind: a file can cause millions.
    template <typename Reason>
    void notice(TextureNotice notice, const Reason& reason) {
        notice_at(notice, chunk_offset_bytes(), reason);
    }
    /// The same at another place of the file.
    template <typename Reason>
    void notice_at(TextureNotice notice, std::int64_t offset_bytes, const Reason& reason) {
        if (!count_again(notice)) {
            warnings_.push_back(diagnostic::make(notice, {path_, offset_bytes}, reason(), within()));
        }
    }

    /// Where the chunk that is being read begins; 0 outside of all chunks.
    [[nodiscard]] std::int64_t chunk_offset_bytes() const {
        return open_.empty() ? 0 : open_.back().offset_bytes;
    }

    /// Ends a load without an error. A chunk that is still open was cut off, which is recorded as a notice.
    void finish();

    /// Name of the layer announced last, as stored, in UTF-8.
    [[nodiscard]] const std::string& layer_name() const { return layer_name_; }
    /// Whether the colour mode of that layer has no alpha, which has been recorded as a notice.
    [[nodiscard]] bool layer_has_no_alpha() const { return layer_has_no_alpha_; }

    [[nodiscard]] const std::optional<diagnostic::Diagnostic>& error() const { return error_; }
    [[nodiscard]] std::vector<diagnostic::Diagnostic>& warnings() { return warnings_; }
    [[nodiscard]] std::vector<ChunkOutline::Layer>& layers() { return layers_; }
    [[nodiscard]] std::vector<ChunkOutline>& chunks() { return chunks_; }

  private:
    struct OpenChunk {
        std::int32_t id;
        std::int64_t offset_bytes;
        ChunkOutline* outline;  // in chunks_; null without an outline
    };

    [[nodiscard]] std::vector<std::string> within() const;
    /// Counts one more notice of a kind; false if it is the first of its kind.
    bool count_again(TextureNotice notice);
    /// What an error inside rows means for them; empty anywhere else.
    [[nodiscard]] std::string rows_until_failure(const diagnostic::Diagnostic& failure) const;
    [[nodiscard]] ChunkOutline* outline() const { return open_.empty() ? nullptr : open_.back().outline; }

    std::string path_;
    bool outline_;
    bool refused_ = false;
    std::vector<OpenChunk> open_;  // outermost first
    std::string layer_name_;
    bool layer_has_no_alpha_ = false;
    PixelRows rows_header_{};      // of the pixel rows read last
    std::int64_t row_blocks_ = 0;  // of those rows, read so far
    std::optional<diagnostic::Diagnostic> error_;
    std::vector<diagnostic::Diagnostic> warnings_;
    std::vector<ChunkOutline::Layer> layers_;
    std::vector<ChunkOutline> chunks_;
};
