#pragma once

// Creating footage: from an input module's file, a numbered sequence or one image, and placeholders.

#include <optional>
#include <string>

#include "embedded/sequence.h"
#include "embedded/session.h"

namespace embedded {

/// Opens the file, adds it to the session's footage and returns its id. Throws Refusal with the module's own
/// error, or with kHostErrorGeneric when the file cannot be read. `sequence` is empty for a single file. A
/// sequence whose file name has no number consists of that one file.
Id make_file_footage(Session& session, const std::string& path,
                     const std::optional<SequenceRequest>& sequence);

/// Adds footage that stands in for a missing file and returns its id.
Id make_placeholder(Session& session, std::string name, A_long width, A_long height, const A_Time& duration);

}  // namespace embedded
