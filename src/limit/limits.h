#pragma once

#include <array>
#include <cstdint>

// Every limit on the content of a composition file or a texture. Readers enforce these limits; tools print
// them and name them in refusals. What a host's interface fixes, such as the 31 bytes of a name or the 259 of
// a classic path, is not a limit of a file and is declared with the interface.

namespace limits {

/// Where a limit comes from.
enum class Rule {
    format,       ///< the file format: writers and readers rely on it
    ours,         ///< chosen here, above what real scenes and textures need
    file_length,  ///< the length of a file: no file is long enough for more
};

struct Limit {
    const char* id;      ///< stable, for scripts
    const char* name;    ///< what is counted, in words
    std::int64_t value;  ///< the largest accepted value
    const char* unit;    ///< of `value`, in the plural
    Rule rule;
    const char* reason;  ///< why there is this limit
    const char* beyond;  ///< what happens to a file that exceeds it
};

// Composition files.

inline constexpr Limit kCompositionFile{
    "composition-file",
    "length of a composition file",
    2147483647,
    "bytes",
    Rule::format,
    "lengths are signed 32-bit numbers in everything that handles these files",
    "refused before anything is read: file-too-large",
};

inline constexpr Limit kCompositionNesting{
    "composition-nesting",
    "nesting of compositions",
    1024,
    "levels",
    Rule::ours,
    "reading, building and deleting a tree stays within 512 KiB of stack; real scenes nest a few deep",
    "refused: nesting-too-deep",
};

inline constexpr Limit kWord{
    "word",
    "length of a word or number",
    511,
    "characters",
    Rule::format,
    "a word has 512 bytes with the zero behind it",
    "refused: word-too-long",
};

inline constexpr Limit kText{
    "text",
    "length of a quoted text",
    kCompositionFile.value,
    "bytes",
    Rule::file_length,
    "it takes as much memory as it has bytes in the file",
    "there is no such file",
};

inline constexpr Limit kPath{
    "path",
    "length of the line of a footage path",
    kCompositionFile.value,
    "bytes",
    Rule::file_length,
    "it takes as much memory as it has bytes in the file",
    "there is no such file",
};

/// "KEY" and seven numbers of one character each, separated by blanks.
inline constexpr std::int64_t kShortestKey_bytes = 16;

inline constexpr Limit kKeys{
    "keys",
    "keys of a composition file",
    kCompositionFile.value / kShortestKey_bytes,
    "keys",
    Rule::file_length,
    "the shortest key has 16 bytes",
    "there is no such file",
};

// Footage of composition files: how far a check looks for files that were not asked for.

/// Names in the folders below a scene that are compared with missing footage: more than a shot has.
inline constexpr std::int64_t kNearbyNames = 100000;
/// Levels of folders below a scene's own in which missing footage is looked for.
inline constexpr std::int64_t kNearbyLevels = 6;
/// The same names, over all scenes of a run, which keeps them in memory.
inline constexpr std::int64_t kNearbyNamesOfRun = 1000000;
/// Frames of a sequence whose headers are read: the first, the last, and others evenly between them.
inline constexpr std::int64_t kSampledFrames = 8;

// Previews: how much memory drawing a frame may take, about 1 GiB together.

/// Pixels of a frame, and of a picture in it: 8192 x 4096, just more than 8K. Decoding such a picture takes
/// 400 MiB for a moment.
inline constexpr std::int64_t kPreviewPixels = std::int64_t{1} << 25;
/// Decoded pictures that are kept for the next frames, and those that one pass over a frame may use at once:
/// eight of 4K.
inline constexpr std::int64_t kPreviewPictures_bytes = std::int64_t{256} << 20;
/// Unfinished compositions of one frame, at 16 bytes a pixel: two of 4K at full height, bands of more.
inline constexpr std::int64_t kPreviewRows_bytes = std::int64_t{256} << 20;
/// Layers that one frame shows, nested ones each time they are seen: a thousand times what scenes have.
inline constexpr std::int64_t kPreviewLayers = 1000000;

/// Pixels and alpha channels of a texture that is shown by itself, as a thumbnail or in a terminal: 16,384 x
/// 16,384 RGB with an alpha channel. File managers make several thumbnails at a time.
inline constexpr std::int64_t kShownTexture_bytes = std::int64_t{1} << 30;

// Textures.

inline constexpr Limit kTextureFile{
    "texture-file",
    "length of a texture file",
    2147483646,
    "bytes",
    Rule::format,
    "lengths and positions are signed 32-bit numbers; the largest of them stands for every longer file",
    "refused before anything is read: over-limit; to write a longer file is an error",
};

inline constexpr Limit kTexturePixels{
    "texture-pixels",
    "pixels of a texture",
    std::int64_t{1} << 30,
    "pixels",
    Rule::ours,
    "32,768 x 32,768, for which the plug-in needs 8 GiB of memory; a header that only claims this size costs "
    "nothing",
    "refused: over-limit",
};

inline constexpr Limit kDecodedBytes{
    "texture-decoded",
    "pixels and alpha channels of a texture together, in the tools",
    std::int64_t{4} << 30,
    "bytes",
    Rule::ours,
    "the largest RGB texture with one alpha channel; the plug-in keeps one, too",
    "refused: over-limit",
};

inline constexpr Limit kRowBytes{
    "row",
    "bytes of a row, pixels times channels",
    std::int64_t{1} << 30,
    "bytes",
    Rule::ours,
    "the largest grey texture in a single row; a row is held in memory as a whole",
    "refused: over-limit",
};

inline constexpr Limit kRowRate{
    "row-rate",
    "bytes of a row beyond 16,777,216, for each byte left in the file",
    64,
    "bytes",
    Rule::ours,
    "a sound row never needs more: two packed bytes become 128; a damaged row of no bytes may still have "
    "16,777,216",
    "refused before memory is asked for: block-too-long",
};

inline constexpr Limit kRepairedBytes{
    "repaired-rows",
    "bytes of all rows together, beyond 64 for each byte of the file",
    std::int64_t{1} << 24,
    "bytes",
    Rule::ours,
    "sound rows never need them; without this limit, 7 bytes could stand for a damaged row of any width",
    "refused: over-limit",
};

inline constexpr Limit kTextureHeaders{
    "texture-headers",
    "texture headers in a file",
    16,
    "headers",
    Rule::ours,
    "a texture needs one; each further one starts the picture over, which takes far longer than reading it",
    "refused: over-limit",
};

inline constexpr Limit kAlphaNesting{
    "alpha-nesting",
    "nesting of alpha-channels chunks",
    64,
    "levels",
    Rule::ours,
    "writers do not nest them, and each level takes stack",
    "refused: over-limit",
};

/// The tag, identifier and version of a chunk.
inline constexpr std::int64_t kChunkStart_bytes = 9;

inline constexpr Limit kChunkNesting{
    "chunk-nesting",
    "nesting of chunks that are skipped",
    kTextureFile.value / kChunkStart_bytes,
    "levels",
    Rule::file_length,
    "levels are only counted, which takes no memory; a chunk begins with 9 bytes",
    "there is no such file",
};

/// All limits, in the order in which `vxr limits` shows them.
inline constexpr std::array kAll{
    &kCompositionFile, &kCompositionNesting, &kWord,         &kText,     &kPath,    &kKeys,
    &kTextureFile,     &kTexturePixels,      &kDecodedBytes, &kRowBytes, &kRowRate, &kRepairedBytes,
    &kTextureHeaders,  &kAlphaNesting,       &kChunkNesting,
};

}  // namespace limits
