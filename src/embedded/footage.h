#pragma once

// Making footage from files: through an input module, as a numbered sequence, or as one image.

#include <optional>
#include <string>

#include "embedded/sequence.h"
#include "embedded/session.h"

namespace embedded {

/// Opens the file and adds it to the session's footage; its id, or a Refusal (the module's own error, else
/// kHostErrorGeneric for what cannot be read). `sequence` is none for a single file. Without a number in its
/// name a sequence is the one file.
Id make_file_footage(Session& session, const std::string& path,
                     const std::optional<SequenceRequest>& sequence);

/// A stand-in for a missing file.
Id make_placeholder(Session& session, std::string name, A_long width, A_long height, const A_Time& duration);

}  // namespace embedded
