#include "cli/scene/scene_reading.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "cli/report/diagnostic_text.h"
#include "cli/report/tool_code.h"
#include "composition/model/model_invariants.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "host/byte_encoding.h"
#include "limit/limits.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "texture/file/filename.h"

namespace cli {
namespace {

constexpr std::string_view kBeginning = "VORTAN XR";

Place beginning_of(const std::string& file) {
    return {file, 0, 1, 1};
}

const char* kind_word(os::FileKind kind) {
    switch (kind) {
        case os::FileKind::folder:
            return "a folder";
        case os::FileKind::pipe:
            return "a pipe";
        case os::FileKind::device:
            return "a device";
        case os::FileKind::socket:
            return "a socket";
        default:
            return "not a regular file";
    }
}

// Why the file cannot be opened; nothing if it can.
std::optional<std::string> obstacle(const os::FileState& state) {
    if (state.kind == os::FileKind::missing) {
        return state.error;
    }
    if (state.kind != os::FileKind::regular) {
        return std::string("this is ") + kind_word(state.kind) + ", and only regular files are read";
    }
    return std::nullopt;
}

// The host's quick test. Returns nothing when the file passes.
std::optional<Diagnostic> quick_test(const SceneReading& reading, ExitCode& code) {
    code = ExitCode::cannot_read_or_write;
    const Place whole_file{reading.file};
    const os::FileState state = os::file_state(reading.full_path);
    if (const auto reason = obstacle(state)) {
        return diagnostic::make(ToolCode::cannot_read, whole_file, *reason);
    }
    const os::InputFile file = os::open_input_file(reading.full_path);
    if (file == nullptr) {
        return diagnostic::make(ToolCode::cannot_read, whole_file, "the file may not be read");
    }
    code = ExitCode::refused;
    std::array<char, kBeginning.size()> bytes{};
    const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file.get());
    if (count == 0 && std::feof(file.get()) != 0) {
        return diagnostic::make(ReadErrorCode::empty_file, beginning_of(reading.file), "the file is empty");
    }
    const std::string_view found(bytes.data(), count);
    if (found != kBeginning) {
        Diagnostic error = diagnostic::make(
            ToolCode::not_importable, beginning_of(reading.file),
            "expected the file to begin with \"VORTAN XR\", found \"" + std::string(found) + '"');
        error.effects.emplace_back(
            "After Effects learns that this is not a composition file and does not offer it for import");
        return error;
    }
    if (state.size_bytes > static_cast<std::uint64_t>(limits::kCompositionFile.value)) {
        Diagnostic error = diagnostic::make(
            ReadErrorCode::file_too_large, whole_file,
            "the file has " + std::to_string(state.size_bytes) + " bytes, and less than 2147483648 are read");
        name_limit(error, &limits::kCompositionFile);
        return error;
    }
    code = ExitCode::fine;
    return std::nullopt;
}

ExitCode exit_code_of(const diagnostic::Code& code) {
    const bool unreadable = code == ReadErrorCode::cannot_open || code == ReadErrorCode::read_failed ||
                            code == ReadErrorCode::out_of_memory;
    return unreadable ? ExitCode::cannot_read_or_write : ExitCode::refused;
}

// Completes the reader's error for the user.
Diagnostic diagnostic_of(Diagnostic error, const std::string& file) {
    error.at.file = file;
    error.effects.emplace_back("After Effects imports nothing and shows no message");
    name_limit(error, error.limit);
    return error;
}

}  // namespace

std::int64_t layer_length(const tagProjectSettings& settings) {
    return std::int64_t{settings.to} - settings.from + 1;
}

SceneReading read_scene(const std::string& file) {
    SceneReading reading;
    reading.file = file;
    reading.full_path = os::absolute_path(file);
    reading.error = quick_test(reading, reading.code);
    if (reading.error) {
        return reading;
    }
    // As in a current host.
    const os::PathGuesses guesses(paths_in_other_encodings);
    SceneObserver observer(reading.facts);
    tagProjectSettings& settings = *reading.settings;
    ASCIIParser parser;
    parser.SetObserver(&observer);
    const bool read = parser.Init(Filename(reading.full_path.c_str()), 1, 0) == 0 &&
                      read_composition_file(parser, settings) != 0;
    if (reading.facts.error) {
        reading.error = diagnostic_of(*reading.facts.error, file);
        reading.code = exit_code_of(reading.facts.error->code);
    } else if (!read) {
        reading.error = diagnostic::make(ToolCode::cannot_read, {file}, "the file could not be read");
        reading.code = ExitCode::cannot_read_or_write;
    }
    const auto violation = validate_model(settings, read ? ModelState::complete : ModelState::broken_off);
    if (const auto defect = internal_error(file, violation)) {
        reading.error = defect;
        reading.code = ExitCode::refused;
    }
    if (reading.error) {
        add_source_line(*reading.error, reading.full_path);
    }
    return reading;
}

}  // namespace cli
