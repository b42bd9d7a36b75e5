#pragma once

class ASCIIParser;

/// Reads a footage path from `p`, character by character: what stands between the next double quote and the
/// last one of its line. `*result` receives the full path in the host's style, from array-new, owned by the
/// caller: the path as written when it opens, otherwise the file of the same name in the composition file's
/// folder, opened or not. Returns 1, or 0 when there is no such path, when memory is short, and when the file
/// does not open and the composition file has no folder; in that last case alone `*result` is set all the
/// same.
int ReadFilename(ASCIIParser& p, char** result);
