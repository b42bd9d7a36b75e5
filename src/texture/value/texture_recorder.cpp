#include "texture/value/texture_recorder.h"

#include <algorithm>
#include <utility>

#include "text/utf8.h"
#include "texture/txl/txl_ids.h"

void TextureRecorder::on_chunk_start(std::int32_t id, std::int32_t version, std::int64_t offset_bytes) {
    ChunkOutline* added = nullptr;
    if (outline_) {
        // Pointers into these vectors stay valid while a chunk is open: siblings are added only after its
        // end.
        ChunkOutline* parent = outline();
        std::vector<ChunkOutline>& siblings = parent == nullptr ? chunks_ : parent->children;
        added = &siblings.emplace_back();
        added->id = id;
        added->version = version;
        added->offset_bytes = offset_bytes;
        added->size_bytes = -1;
    }
    open_.push_back({id, offset_bytes, added});
    rows_header_ = {};
    row_blocks_ = 0;
}

void TextureRecorder::on_chunk_end(std::int64_t end_bytes, bool handled) {
    const OpenChunk& ended = open_.back();
    if (ended.outline != nullptr) {
        ended.outline->size_bytes = end_bytes - ended.offset_bytes;
        ended.outline->handled = handled;
    }
    if (!handled) {
        notice(TextureNotice::chunk_skipped,
               [&] { return "chunk " + chunk_name(ended.id) + " was skipped"; });
    }
    open_.pop_back();
}

void TextureRecorder::on_pixel_rows(const PixelRows& header) {
    rows_header_ = header;
    row_blocks_ = 0;
    if (ChunkOutline* chunk = outline(); chunk != nullptr) {
        chunk->rows = header;
    }
}

void TextureRecorder::on_row(const RowBlock& block) {
    ++row_blocks_;
    if (ChunkOutline* chunk = outline(); chunk != nullptr) {
        chunk->blocks.push_back(block);
    }
    if (block.outcome == RowOutcome::raw || block.outcome == RowOutcome::packed) {
        return;
    }
    const auto where = [&block] {
        return "row " + std::to_string(block.row) + ", channel " + std::to_string(block.channel) + ": ";
    };
    if (block.outcome == RowOutcome::unknown_flag) {
        notice_at(TextureNotice::row_repeated, block.offset_bytes, [&] {
            return where() + "flag " + std::to_string(block.flag) + " is unknown; the previous row was kept";
        });
        return;
    }
    notice_at(TextureNotice::row_cleared, block.offset_bytes, [&] {
        return where() + "its " + std::to_string(block.coded_bytes) + " bytes with flag " +
               std::to_string(block.flag) + " do not decode to the row's length";
    });
}

void TextureRecorder::on_layer(const LayerHeader& header) {
    layer_name_ = text::utf8_of_units(header.name);
    layers_.push_back({header.color_mode, {header.attributes.begin(), header.attributes.end()}, layer_name_});
    if (ChunkOutline* chunk = outline(); chunk != nullptr) {
        chunk->layer = layers_.back();
    }
    layer_has_no_alpha_ = header.color_mode < 2 || header.color_mode > 5;
    if (layer_has_no_alpha_) {
        notice(TextureNotice::layer_without_alpha, [&] {
            return "a layer in colour mode " + std::to_string(header.color_mode) + " has no alpha";
        });
    }
}

void TextureRecorder::on_failure(const diagnostic::Diagnostic& failure) {
    if (!refused_) {
        error_ = failure;
        error_->at.file = path_;
        error_->within = within();
        if (std::string rows = rows_until_failure(failure); !rows.empty()) {
            error_->effects.push_back(std::move(rows));
        }
    }
}

std::string TextureRecorder::rows_until_failure(const diagnostic::Diagnostic& failure) const {
    const bool in_rows = !open_.empty() && open_.back().id == kChunkPixelRows && failure.limit == nullptr &&
                         rows_header_.channels > 0 && rows_header_.rows > 0;
    if (!in_rows || (row_blocks_ == 0 && failure.code != TextureFault::short_transfer)) {
        return {};
    }
    return "the file holds " + std::to_string(row_blocks_ / rows_header_.channels) + " of the " +
           std::to_string(rows_header_.rows) + " rows that the chunk announces";
}

void TextureRecorder::refuse(TextureFault fault, std::string reason, const limits::Limit* limit) {
    diagnostic::Place at;
    if (!open_.empty()) {
        at.offset_bytes = open_.back().offset_bytes;
    }
    diagnostic::Diagnostic failure = diagnostic::make(fault, std::move(at), std::move(reason));
    failure.limit = limit;
    on_failure(failure);
    refused_ = true;
}

bool TextureRecorder::count_again(TextureNotice notice) {
    const auto same =
        std::find_if(warnings_.begin(), warnings_.end(),
                     [notice](const diagnostic::Diagnostic& known) { return known.code == notice; });
    if (same == warnings_.end()) {
        return false;
    }
    ++same->count;
    return true;
}

void TextureRecorder::finish() {
    if (!open_.empty()) {
        notice(TextureNotice::cut_off,
               [this] { return "the file ends before chunk " + chunk_name(open_.back().id) + " does"; });
    }
}

std::vector<std::string> TextureRecorder::within() const {
    std::vector<std::string> names;
    names.reserve(open_.size());
    for (const OpenChunk& chunk : open_) {
        names.push_back(chunk_name(chunk.id));
    }
    return names;
}
