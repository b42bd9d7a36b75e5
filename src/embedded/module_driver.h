#pragma once

// Driving a registered input module as a host does.

#include <string>
#include <string_view>

#include "embedded/host.h"
#include "embedded/session.h"

namespace embedded {

/// The extension of a file's name in lower case, with its full stop; empty without one.
std::string lower_extension(std::string_view path);

/// Lower-case texts of extension records: ".txl".
std::string extension_text(const AEIO_FileExt& extension);

/// The module that reads files with this extension, or null.
const Module* module_for(const Session& session, std::string_view path);

/// An in-spec that knows its path and nothing else.
Id make_in_spec(Session& session, const std::string& path);

/// Verify, init, info, dimensions, duration. Where the module leaves dimensions or duration to the host, what
/// it put into the in-spec counts.
OpenResult open_with_module(Session& session, const Module& module, const std::string& path);

/// Has the module draw into a frame with guard bytes around its rows.
DrawResult draw_frame(Session& session, Id in_spec, const FrameShape& shape);

/// Has the module dispose of what it keeps; the in-spec is dead afterwards, whatever the module answers.
CallbackResult dispose_in_spec(Session& session, Id in_spec);

}  // namespace embedded
