#include "cli/texture/texture_outline.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/texture/row_coding.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

struct Line {
    std::string label;   // indented
    std::string offset;  // empty for lines that are not chunks
    std::string size;
    std::string content;
    bool dim = false;
};

std::string layer_text(const ChunkOutline::Layer& layer) {
    std::string text = "layer " + text::quoted(layer.name) + ", colour mode " +
                       std::to_string(layer.color_mode) + ", attributes";
    for (const std::uint8_t byte : layer.attributes) {
        text += ' ' + std::to_string(byte);
    }
    return text;
}

std::string rows_text(const TextureObserver::PixelRows& rows) {
    std::string text = std::to_string(rows.rows) + (rows.rows == 1 ? " row of " : " rows of ") +
                       std::to_string(rows.count) + " pixels, " + std::to_string(rows.channels) +
                       (rows.channels == 1 ? " channel" : " channels");
    if (rows.x != 0 || rows.y != 0) {
        text += ", from " + std::to_string(rows.x) + ", " + std::to_string(rows.y);
    }
    return text;
}

std::string content_of(const ChunkOutline& chunk) {
    std::string text = chunk.layer.has_value()                 ? layer_text(*chunk.layer)
                       : chunk.rows.has_value()                ? rows_text(*chunk.rows)
                       : chunk.handled || chunk.size_bytes < 0 ? std::string()
                                                               : "skipped";
    if (chunk.size_bytes < 0) {
        text += text.empty() ? "no end" : ", no end";
    }
    return text;
}

std::string channel_text(const ChannelCoding& coding) {
    const std::pair<std::int64_t, const char*> counts[] = {
        {coding.raw, "raw"},
        {coding.packed, "packed"},
        {coding.raw_short, "raw and too short"},
        {coding.packed_bad, "packed and wrong"},
        {coding.unknown_flag, "with an unknown flag"},
    };
    std::string text;
    for (const auto& [count, what] : counts) {
        if (count > 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + what;
        }
    }
    return text + "; " + coding_text(coding.decoded_bytes, coding.coded_bytes);
}

/// The reader bounds the depth.
void add_lines(const std::vector<ChunkOutline>& chunks, std::size_t depth, std::vector<Line>& lines) {
    constexpr std::size_t kMostChannels = 16;  // the rest is counted: a layer may claim any number
    const std::string indent(2 * depth, ' ');
    for (const ChunkOutline& chunk : chunks) {
        lines.push_back({indent + chunk_name(chunk.id) + " v" + std::to_string(chunk.version),
                         text::hexadecimal(static_cast<std::uint64_t>(chunk.offset_bytes)),
                         chunk.size_bytes < 0 ? "?" : std::to_string(chunk.size_bytes), content_of(chunk),
                         !chunk.handled});
        const std::vector<ChannelCoding> channels = channel_codings(chunk);
        for (std::size_t i = 0; i < std::min(channels.size(), kMostChannels); ++i) {
            lines.push_back({indent + "  channel " + std::to_string(i), {}, {}, channel_text(channels[i])});
        }
        if (channels.size() > kMostChannels) {
            lines.push_back(
                {indent + "  and " + std::to_string(channels.size() - kMostChannels) + " more", {}, {}, {}});
        }
        add_lines(chunk.children, depth + 1, lines);
    }
}

std::string padded(const std::string& text, std::size_t width, bool right) {
    const std::string blanks(width - std::min(width, text.size()), ' ');
    return right ? blanks + text : text + blanks;
}

Json rows_json(const ChunkOutline& chunk) {
    if (!chunk.rows.has_value()) {
        return {};
    }
    Json coding = Json::array();
    std::int64_t number = 0;
    for (const ChannelCoding& channel : channel_codings(chunk)) {
        coding.push_back({{"channel", number++},
                          {"raw", channel.raw},
                          {"packed", channel.packed},
                          {"raw_short", channel.raw_short},
                          {"packed_bad", channel.packed_bad},
                          {"unknown_flag", channel.unknown_flag},
                          {"coded_bytes", channel.coded_bytes},
                          {"decoded_bytes", channel.decoded_bytes}});
    }
    return {{"x", chunk.rows->x},
            {"y", chunk.rows->y},
            {"count", chunk.rows->count},
            {"rows", chunk.rows->rows},
            {"channels", chunk.rows->channels},
            {"coding", coding}};
}

Json layer_json(const ChunkOutline& chunk) {
    if (!chunk.layer.has_value()) {
        return {};
    }
    return {{"name", embedded::json_text(chunk.layer->name)},
            {"color_mode", chunk.layer->color_mode},
            {"attributes", chunk.layer->attributes}};
}

}  // namespace

std::string outline_text(const std::vector<ChunkOutline>& chunks, const Paint& paint) {
    std::vector<Line> lines;
    add_lines(chunks, 0, lines);
    if (lines.empty()) {
        return {};
    }
    Line widest{"chunk", "offset", "bytes", {}};
    for (const Line& line : lines) {
        widest.label.resize(std::max(widest.label.size(), line.label.size()));
        widest.offset.resize(std::max(widest.offset.size(), line.offset.size()));
        widest.size.resize(std::max(widest.size.size(), line.size.size()));
    }
    lines.insert(lines.begin(), Line{"chunk", "offset", "bytes", "content", true});
    std::string text;
    for (const Line& line : lines) {
        std::string row = "  " + padded(line.label, widest.label.size(), false) + "  " +
                          padded(line.offset, widest.offset.size(), true) + "  " +
                          padded(line.size, widest.size.size(), true) + "  " + line.content;
        row.erase(row.find_last_not_of(' ') + 1);
        text += paint(line.dim ? Ink::dim : Ink::plain, row) + '\n';
    }
    return text;
}

embedded::Json outline_json(const std::vector<ChunkOutline>& chunks) {
    Json list = Json::array();
    for (const ChunkOutline& chunk : chunks) {
        list.push_back({{"chunk", chunk_name(chunk.id)},
                        {"id", chunk.id},
                        {"version", chunk.version},
                        {"offset_bytes", chunk.offset_bytes},
                        {"size_bytes", chunk.size_bytes < 0 ? Json() : Json(chunk.size_bytes)},
                        {"handled", chunk.handled},
                        {"layer", layer_json(chunk)},
                        {"rows", rows_json(chunk)},
                        {"chunks", outline_json(chunk.children)}});
    }
    return list;
}

std::string coding_text(std::int64_t decoded_bytes, std::int64_t coded_bytes) {
    std::string text = std::to_string(decoded_bytes) + " bytes as " + std::to_string(coded_bytes);
    if (coded_bytes > 0) {
        char ratio[32];
        std::snprintf(ratio, sizeof ratio, ", %.2f : 1",
                      static_cast<double>(decoded_bytes) / static_cast<double>(coded_bytes));
        text += ratio;
    }
    return text;
}

}  // namespace cli
