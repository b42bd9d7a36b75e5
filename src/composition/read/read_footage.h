#pragma once

#include <memory>
#include <optional>

#include "composition/read/read_error.h"
#include "composition/read/text_cursor.h"

class ASCIIParser;
class CFileItem;

/// Reads a footage path from `p`, character by character: the text between the next double quote and the last
/// one on its line. `*result` receives the full path in the platform's style, from array-new, owned by the
/// caller: the path as written when it opens, otherwise the file of the same name in the composition file's
/// folder, whether or not that opens. Returns 1, or 0 when there is no such path, when out of memory, and
/// when the file does not open and the composition file was named without a folder; only in the last case is
/// `*result` set nevertheless.
int ReadFilename(ASCIIParser& p, char** result);

/// The result of reading a footage path.
struct FootagePath {
    std::optional<ReadErrorCode> problem;  ///< empty where ReadFilename returns 1
    TextPosition at;                  ///< of the opening quote, or of the first character when there was none
    std::unique_ptr<char[]> written;  ///< the path between the quotes; null when it was not found
    bool opens_as_written = false;
};

/// ReadFilename with everything that an observer is told. Reports nothing itself.
[[nodiscard]] FootagePath read_footage_path(ASCIIParser& p, char** result);

/// Reads what follows FILE or FSEQ at the top level into `file`: the mark "<->", alpha word, path. Returns 1,
/// or 0 on the first failure. A path that cannot be read is no failure here; `path` is null then. The caller
/// sets `isSequence`.
int read_top_level_footage(ASCIIParser& p, CFileItem& file);
