#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "texture/container/texture_observer.h"
#include "texture/value/texture_report.h"

/// Keeps what the reader tells: the error with its place, warnings, the headers of layers, and, when asked,
/// the outline of all chunks.
class TextureRecorder final : public TextureObserver {
  public:
    /// `path` names the file in the error. The outline takes memory in proportion to the file's rows.
    TextureRecorder(std::string path, bool outline) : path_(std::move(path)), outline_(outline) {}

    void ChunkStart(std::int32_t id, std::int32_t version, std::int64_t offset_bytes) override;
    void ChunkEnd(std::int64_t end_bytes, bool handled) override;
    void PixelRowsStart(const PixelRows& header) override;
    void Row(const RowBlock& block) override;
    void Layer(const LayerHeader& header) override;
    void Failed(TextureFault fault, std::int64_t offset_bytes, const std::string& reason) override;
    void OverLimit(const limits::Limit& limit) override { limit_ = &limit; }

    /// An error that the container does not see, at the chunk that is being read. It wins over every other:
    /// the ones that follow are its consequences.
    void refuse(TextureFault fault, const std::string& reason);
    /// The same where `limit` is the reason.
    void refuse(const limits::Limit& limit, const std::string& reason);

    /// A notice at the chunk that is being read. `reason` returns its text and is called for the first of a
    /// kind only: a file may give cause for millions.
    template <typename Reason>
    void notice(TextureNotice notice, const Reason& reason) {
        notice_at(notice, open_.empty() ? 0 : open_.back().offset_bytes, reason);
    }

    /// The load is over without an error: chunks that have not ended were cut off.
    void finish();

    /// Name of the layer announced last, UTF-8, as stored.
    [[nodiscard]] const std::string& layer_name() const { return layer_name_; }

    [[nodiscard]] const std::optional<TextureError>& error() const { return error_; }
    [[nodiscard]] std::vector<TextureWarning>& warnings() { return warnings_; }
    [[nodiscard]] std::vector<ChunkOutline::Layer>& layers() { return layers_; }
    [[nodiscard]] std::vector<ChunkOutline>& chunks() { return chunks_; }

  private:
    struct OpenChunk {
        std::int32_t id;
        std::int64_t offset_bytes;
        ChunkOutline* outline;  // in chunks_, null without an outline
    };

    [[nodiscard]] std::vector<std::string> within() const;
    /// Counts one more of a kind that is known already.
    bool count_again(TextureNotice notice);
    template <typename Reason>
    void notice_at(TextureNotice notice, std::int64_t offset_bytes, const Reason& reason) {
        if (!count_again(notice)) {
            warnings_.push_back({notice, 1, offset_bytes, reason(), within()});
        }
    }
    [[nodiscard]] ChunkOutline* outline() const { return open_.empty() ? nullptr : open_.back().outline; }

    std::string path_;
    bool outline_;
    bool refused_ = false;
    const limits::Limit* limit_ = nullptr;  // of the failure that is told next
    std::vector<OpenChunk> open_;           // outermost first
    std::string layer_name_;
    std::optional<TextureError> error_;
    std::vector<TextureWarning> warnings_;
    std::vector<ChunkOutline::Layer> layers_;
    std::vector<ChunkOutline> chunks_;
};
