#pragma once

#include <string>
#include <vector>

#include "cli/terminal/terminal.h"
#include "embedded/json_values.h"
#include "texture/value/texture_report.h"

namespace cli {

/// The chunks of a texture file as a tree: one line per chunk with its offset, size and content, and one line
/// for each channel of its rows. Ends with a line break; empty without chunks.
std::string outline_text(const std::vector<ChunkOutline>& chunks, const Paint& paint);

/// [{"chunk","id","version","offset_bytes","size_bytes","handled","layer","rows","chunks"}]; absent
/// members are null. "rows" is
/// {"x","y","count","rows","channels","coding":[{"channel","raw","packed","raw_short",
/// "packed_bad","unknown_flag","coded_bytes","decoded_bytes"}]}.
embedded::Json outline_json(const std::vector<ChunkOutline>& chunks);

/// "12288 bytes as 9301, 1.32 : 1"
std::string coding_text(std::int64_t decoded_bytes, std::int64_t coded_bytes);

}  // namespace cli
