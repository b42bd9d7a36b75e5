#pragma once

// Driving a registered input module as a host does.

#include <string>
#include <string_view>

#include "embedded/host.h"
#include "embedded/session.h"

namespace embedded {

/// The file name's extension in lower case with its full stop; empty without one.
std::string lower_extension(std::string_view path);

/// The text of an extension record in lower case: ".txl".
std::string extension_text(const AEIO_FileExt& extension);

/// The module that reads files with this extension, or null.
const Module* module_for(const Session& session, std::string_view path);

/// Creates an in-spec that has a path and nothing else.
Id make_in_spec(Session& session, const std::string& path);

/// Has the module verify the file, initialise an in-spec, and give its info, dimensions and duration. If it
/// leaves dimensions or duration to the host, what it set in the in-spec counts.
OpenResult open_with_module(Session& session, const Module& module, const std::string& path);

/// Has the module dispose of what it keeps; the in-spec is dead afterwards, whatever the module answers.
CallbackResult dispose_in_spec(Session& session, Id in_spec);

}  // namespace embedded
