#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/terminal.h"
#include "texture/value/alpha_use.h"
#include "texture/value/texture_file.h"

namespace cli {

/// A reader's diagnostic as the tools show it: `file` is the name that the user gave, and effects name the
/// limit that the file exceeds and how often a warning occurs.
Diagnostic texture_diagnostic(Diagnostic diagnostic, const std::string& file);

/// The error of a reading, if there is one, then its warnings.
std::vector<Diagnostic> texture_diagnostics(const TextureReading& reading, const std::string& file);

/// Whether the pixels of a texture are straight or premultiplied; nothing without a texture or its alpha
/// channel.
std::optional<AlphaFinding> alpha_finding(const TextureReading& reading);

/// The same as a note.
std::optional<Diagnostic> alpha_note(const TextureReading& reading, const std::string& file);

/// diagnostic_text with the chunks around the place on one line: "in 502 > 599 > 110100 > 501 > TaVx".
std::string texture_diagnostic_text(const Diagnostic& diagnostic, const Paint& paint);

/// Refused for a mistake in the file's content, cannot_read_or_write for what prevents reading or writing it.
ExitCode texture_exit_code(const diagnostic::Diagnostic& error);

/// The exit code for a reading's error; fine without one.
ExitCode texture_exit_code(const TextureReading& reading);

/// "64 x 48, RGB, 1 alpha channel"
std::string texture_size_text(const Texture& texture);

}  // namespace cli
