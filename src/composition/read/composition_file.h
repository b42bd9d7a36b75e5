#pragma once

class ASCIIParser;
struct tagProjectSettings;

/// Reads a whole composition file into `settings`, which must be new: header, settings, root composition,
/// top-level footage, scene objects. `p` has been initialised and holds the first token. Returns 1, or 0 on
/// the first failure, with what was read until then in `settings`. A file that could not be read to the end
/// of what counts fails, too.
int ReadCompositionFile(ASCIIParser& p, tagProjectSettings& settings);
