#pragma once

class ASCIIParser;
struct tagProjectSettings;

/// Reads a whole composition file into `settings`, which must be new: header, settings, root composition,
/// top-level footage, scene objects. `p` has been initialised and holds the first token. Returns 1, or 0 on
/// the first failure; `settings` then has what was read up to there. A read error before the end of what
/// counts is a failure, too.
int read_composition_file(ASCIIParser& p, tagProjectSettings& settings);
