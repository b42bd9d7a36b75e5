#include "cli/scene/scene_reading.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>

#include "cli/report/diagnostic_text.h"
#include "cli/report/tool_code.h"
#include "composition/model/model_invariants.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "embedded/sequence.h"
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

// The name of the mark that the text begins with, which no editor shows; null if there is none.
const char* byte_order_mark(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) {
        return "a byte order mark of UTF-8";
    }
    return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") ? "a byte order mark of UTF-16"
                                                                        : nullptr;
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
        const char* const mark = byte_order_mark(found);
        Diagnostic error =
            diagnostic::make(ToolCode::not_importable, beginning_of(reading.file),
                             "expected the file to begin with \"VORTAN XR\", found " +
                                 (mark != nullptr ? std::string(mark) : '"' + std::string(found) + '"'));
        if (mark != nullptr) {
            error.effects.emplace_back("save the file as ASCII or UTF-8 without a byte order mark");
        }
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

/// Also tells how far reading has come.
class WatchedObserver final : public SceneObserver {
  public:
    WatchedObserver(SceneFacts& facts, const ReadingWatch& watch, std::uint64_t file_bytes)
        : SceneObserver(facts), watch_(watch), file_bytes_(file_bytes) {}

    void on_keyword(std::string_view keyword, const TextPosition& at) override {
        SceneObserver::on_keyword(keyword, at);
        tell(at);
    }
    void on_plain_key(const TextPosition& at, std::int32_t frame, std::span<const float> others) override {
        SceneObserver::on_plain_key(at, frame, others);
        tell(at);
    }
    void on_footage(const ReadFootage& footage) override {
        SceneObserver::on_footage(footage);
        tell(footage.at);
    }
    void on_ignored(std::string_view text, const TextPosition& at) override {
        SceneObserver::on_ignored(text, at);
        tell(at);
    }

  private:
    // So seldom that watching takes no time, and still many times a second.
    static constexpr int kEventsBetween = 1024;

    void tell(const TextPosition& at) {
        if (--events_left_ == 0) {
            events_left_ = kEventsBetween;
            watch_(at.offset_bytes, file_bytes_);
        }
    }

    const ReadingWatch& watch_;
    std::uint64_t file_bytes_;
    int events_left_ = 1;
};

std::unique_ptr<SceneObserver> observer_of(SceneReading& reading, const ReadingWatch& watch) {
    if (watch) {
        return std::make_unique<WatchedObserver>(reading.facts, watch, reading.version.size_bytes);
    }
    return std::make_unique<SceneObserver>(reading.facts);
}

void read_into(SceneReading& reading, const ReadingWatch& watch = {}) {
    reading.version = os::version_of(reading.full_path);
    reading.error = quick_test(reading, reading.code);
    if (reading.error) {
        return;
    }
    const std::string& file = reading.file;
    // As in a current host.
    const os::PathGuesses guesses(paths_in_other_encodings);
    const std::unique_ptr<SceneObserver> observer = observer_of(reading, watch);
    tagProjectSettings& settings = *reading.settings;
    ASCIIParser parser;
    parser.SetObserver(observer.get());
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
        add_source_lines({&*reading.error, 1}, reading.full_path);
    }
}

SceneReading read_standard_input() {
    SceneReading reading;
    reading.file = "-";
    std::string error;
    reading.input =
        StandardInputFile::read(static_cast<std::uint64_t>(limits::kCompositionFile.value), error);
    if (reading.input) {
        reading.full_path = reading.input->path();
        read_into(reading);
    } else {
        reading.error = diagnostic::make(ToolCode::cannot_read, {reading.file},
                                         "the standard input could not be kept in a file: " + error);
        reading.code = ExitCode::cannot_read_or_write;
    }
    return reading;
}

}  // namespace

std::int64_t layer_length(const tagProjectSettings& settings) {
    return std::int64_t{settings.to} - settings.from + 1;
}

SceneReading read_scene(const std::string& file, const ReadingWatch& watch) {
    if (is_standard_input(file)) {
        return read_standard_input();
    }
    SceneReading reading;
    reading.file = file;
    reading.full_path = os::absolute_path(file);
    read_into(reading, watch);
    return reading;
}

std::vector<std::string> footage_files(const SceneReading& reading) {
    embedded::SequenceIndex index;
    std::vector<std::string> files;
    for (const SceneFootage& footage : reading.facts.footage) {
        if (footage.file == nullptr || footage.file->path == nullptr) {
            continue;
        }
        const std::string path = footage.file->path;
        files.push_back(path);
        const std::vector<std::string> others = paths_in_other_encodings(path);
        files.insert(files.end(), others.begin(), others.end());
        const auto name = footage.file->isSequence != 0
                              ? embedded::split_number(os::text_of(os::path_of(path).filename()))
                              : std::nullopt;
        if (name) {
            const std::filesystem::path folder = os::path_of(path).parent_path();
            for (const std::string& digits : index.numbers_beside(os::text_of(folder), *name)) {
                files.push_back(os::text_of(folder / os::path_of(name->prefix + digits + name->suffix)));
            }
        }
    }
    return files;
}

}  // namespace cli
