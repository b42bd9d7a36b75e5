#include "texture/value/texture_report.h"

#include <algorithm>
#include <array>

namespace {

using diagnostic::Severity;

constexpr auto kNotices = std::to_array<diagnostic::CodeRow<TextureNotice>>({
    {TextureNotice::row_cleared,
     {"row-cleared", Severity::loss, "A channel of a row does not decode to the row's length.",
      "this channel of the row becomes 0"}},
    {TextureNotice::row_repeated,
     {"row-repeated", Severity::loss, "A channel of a row has an unknown flag.",
      "this channel of the row repeats the previous row"}},
    {TextureNotice::chunk_skipped,
     {"chunk-skipped", Severity::warning, "The reader does not know this chunk.",
      "the chunk is skipped with everything in it"}},
    {TextureNotice::layer_without_alpha,
     {"layer-without-alpha", Severity::warning, "The colour mode of a layer has no alpha.",
      "the layer's alpha channel becomes 0"}},
    {TextureNotice::outside_picture,
     {"outside-picture", Severity::loss, "A row extends beyond the picture.",
      "pixels outside the picture are dropped"}},
    {TextureNotice::second_header,
     {"second-header", Severity::loss, "A texture header follows another.",
      "everything read before it is dropped"}},
    {TextureNotice::cut_off,
     {"cut-off", Severity::loss, "The file ends between two items inside a chunk.",
      "the missing chunks are unknown; the chunks that are there are used"}},
    {TextureNotice::rows_missing,
     {"rows-missing", Severity::loss,
      "The picture, or one of its alpha channels, has more rows than the file.", "the missing rows are 0"}},
});
static_assert(diagnostic::in_order(kNotices, TextureNotice::rows_missing));

bool names_a_chunk(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '_';
}

}  // namespace

std::span<const diagnostic::CodeRow<TextureNotice>> texture_notices() {
    return kNotices;
}

const diagnostic::CodeInfo& code_info(TextureNotice notice) {
    return kNotices[static_cast<std::size_t>(notice)].info;
}

std::string chunk_name(std::int32_t id) {
    const auto bits = static_cast<std::uint32_t>(id);
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) {
        name += static_cast<char>((bits >> shift) & 0xFF);
    }
    const bool readable = std::all_of(name.begin(), name.end(),
                                      [](char c) { return names_a_chunk(static_cast<unsigned char>(c)); });
    return readable ? name : std::to_string(id);
}

std::string chunk_path(const std::vector<std::string>& within) {
    std::string path;
    for (const std::string& name : within) {
        path += path.empty() ? "" : " > ";
        path += name;
    }
    return path;
}
