#pragma once

#include <memory>
#include <optional>

#include "composition/read/read_error.h"
#include "composition/read/text_cursor.h"

class ASCIIParser;
class CFileItem;

/// Reads a footage path from `p`, character by character: what stands between the next double quote and the
/// last one of its line. `*result` receives the full path in the host's style, from array-new, owned by the
/// caller: the path as written when it opens, otherwise the file of the same name in the composition file's
/// folder, opened or not. Returns 1, or 0 when there is no such path, when memory is short, and when the file
/// does not open and the composition file has no folder; in that last case alone `*result` is set all the
/// same.
int ReadFilename(ASCIIParser& p, char** result);

/// How reading a footage path went.
struct FootagePath {
    std::optional<ReadErrorCode> problem;  ///< none: ReadFilename's 1
    TextPosition at;                  ///< of the opening quote, or of the first character when there was none
    std::unique_ptr<char[]> written;  ///< the path between the quotes; null when it was not found
    bool opens_as_written = false;
};

/// ReadFilename with what an observer wants to know. Reports nothing itself.
[[nodiscard]] FootagePath read_footage_path(ASCIIParser& p, char** result);

/// Reads what follows FILE or FSEQ at the top level into `file`: the mark "<->", alpha word, path. Returns 1,
/// or 0 on the first failure. A path that cannot be read is no failure here; `path` is null then. The caller
/// sets `isSequence`.
int read_top_level_footage(ASCIIParser& p, CFileItem& file);
