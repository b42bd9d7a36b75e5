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
    "memory grows with the bytes that are read",
    "there is no such file",
};

inline constexpr Limit kPath{
    "path",
    "length of the line of a footage path",
    kCompositionFile.value,
    "bytes",
    Rule::file_length,
    "memory grows with the bytes that are read",
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

// Textures.

inline constexpr Limit kTextureFile{
    "texture-file",
    "length of a texture file",
    2147483646,
    "bytes",
    Rule::format,
    "lengths and positions are signed 32-bit numbers, and the largest stands for every longer file",
    "refused before anything is read: over-limit; a longer file that was just written is an error",
};

inline constexpr Limit kTexturePixels{
    "texture-pixels",
    "pixels of a texture",
    std::int64_t{1} << 30,
    "pixels",
    Rule::ours,
    "32,768 x 32,768, for which the plug-in takes 8 GiB; a header that only claims a size costs nothing",
    "refused: over-limit",
};

inline constexpr Limit kDecodedBytes{
    "texture-decoded",
    "pixels and alpha channels of a texture together, in the tools",
    std::int64_t{4} << 30,
    "bytes",
    Rule::ours,
    "the most pixels in RGB, with one alpha channel, which is also what the plug-in keeps",
    "refused: over-limit",
};

inline constexpr Limit kRowBytes{
    "row",
    "bytes of a row, pixels times channels",
    std::int64_t{1} << 30,
    "bytes",
    Rule::ours,
    "a row of the most pixels in grey; a row is held in memory as a whole",
    "refused: over-limit",
};

inline constexpr Limit kRowRate{
    "row-rate",
    "bytes of a row for each byte that the file still has, and one",
    64,
    "bytes",
    Rule::format,
    "the best that the row coding does: two bytes give 128, and a last run may borrow its second byte",
    "refused before memory is asked for: block-too-long",
};

inline constexpr Limit kRepairedBytes{
    "repaired-rows",
    "bytes of all rows beyond 64 for each byte of the file",
    std::int64_t{1} << 24,
    "bytes",
    Rule::ours,
    "sound rows need none of it; damaged ones would let 7 bytes stand for a row of any width",
    "refused: over-limit",
};

inline constexpr Limit kTextureHeaders{
    "texture-headers",
    "texture headers in a file",
    16,
    "headers",
    Rule::ours,
    "writers write one; each makes the picture anew, which costs more than the bytes that ask for it",
    "refused: over-limit",
};

inline constexpr Limit kAlphaNesting{
    "alpha-nesting",
    "nesting of alpha-channels chunks",
    64,
    "levels",
    Rule::ours,
    "writers nest none; following them takes stack",
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
    "levels are counted and not followed; the shortest beginning of a chunk has 9 bytes",
    "there is no such file",
};

/// All limits, in the order in which `vxr limits` shows them.
inline constexpr std::array kAll{
    &kCompositionFile, &kCompositionNesting, &kWord,         &kText,     &kPath,    &kKeys,
    &kTextureFile,     &kTexturePixels,      &kDecodedBytes, &kRowBytes, &kRowRate, &kRepairedBytes,
    &kTextureHeaders,  &kAlphaNesting,       &kChunkNesting,
};

}  // namespace limits
