#include "cli/batch/item_work.h"

#include <chrono>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "cli/job/digest.h"
#include "cli/terminal/child_process.h"
#include "system/file_content.h"
#include "system/file_identity.h"
#include "system/files.h"
#include "system/program_path.h"
#include "system/replacement_file.h"
#include "text/printable.h"

namespace cli {
namespace {

// An item that writes more to one of its streams is ended: its output is kept whole or not at all.
constexpr std::size_t kMostItemOutput = std::size_t{16} << 20U;
// A result holds the output as text, of which a control character takes six bytes ("\u0001").
constexpr std::uint64_t kMostResultBytes = 6 * std::uint64_t{kMostItemOutput} + 65536;

/// Nothing for a file that was changed a moment ago: it may be changed again within the precision of the
/// file system's clock.
std::optional<InputState> settled_state(const std::string& path) {
    constexpr std::chrono::seconds kClockPrecision(2);
    const os::FileVersion version = os::version_of(path);
    if (version == os::FileVersion() ||
        std::filesystem::file_time_type::clock::now() - version.changed < kClockPrecision) {
        return std::nullopt;
    }
    // Without the number of the file system, which differs between machines.
    const auto& number = version.number.number;
    return InputState{
        version.size_bytes,
        std::chrono::duration_cast<std::chrono::nanoseconds>(version.changed.time_since_epoch()).count(),
        text::hexadecimal(number[0]) + ' ' + text::hexadecimal(number[1])};
}

bool is_there(const std::string& path) {
    return os::file_state(path).kind == os::FileKind::regular;
}

/// Does not wait for the disk, which would take longer than the item itself: what a loss of power leaves of a
/// result is no result, so its item is done again.
void replace_content(const std::string& path, std::string_view bytes) {
    std::string error;
    auto file = os::ReplacementFile::create(path, error);
    if (!file || !file->fill(bytes, error) || !file->put_in_place(error, os::ReplacementFile::Flush::no)) {
        throw std::runtime_error("cannot write " + error);
    }
}

void remove_file(const std::string& path) {
    std::error_code failure;
    std::filesystem::remove(os::native_path(path), failure);
    if (failure) {
        throw std::runtime_error("cannot remove " + path + ": " + failure.message());
    }
}

ItemStanding standing_of(const ChildResult& child) {
    constexpr int kEndedBySignal = 128;
    if (child.timed_out) {
        return ItemStanding::too_long;
    }
    if (child.over_memory || child.over_output) {
        return ItemStanding::too_large;
    }
    if (!child.exit_code) {
        // These come from outside: from a person, a scheduler, or a system without memory.
        for (const char* const name : {"SIGKILL", "SIGTERM", "SIGINT", "SIGHUP"}) {
            if (child.signal.starts_with(name)) {
                return ItemStanding::not_done;
            }
        }
        return ItemStanding::crashed;
    }
    if (*child.exit_code >= kEndedBySignal) {
        return ItemStanding::not_done;  // a signal that the program ended in order upon
    }
    switch (static_cast<ExitCode>(*child.exit_code)) {
        case ExitCode::fine:
            return ItemStanding::fine;
        case ExitCode::refused:
            return ItemStanding::refused;
        case ExitCode::usage:
            return ItemStanding::misused;
        case ExitCode::cannot_read_or_write:
            return ItemStanding::failed;
        case ExitCode::footage_missing:
            return ItemStanding::incomplete;
        case ExitCode::different:
            return ItemStanding::different;
    }
    return ItemStanding::crashed;
}

/// What the process wrote about its work, and how it ended if not by itself.
std::string log_of(const ChildResult& child, const ItemLimits& limits) {
    std::string log = child.err;
    if (child.timed_out) {
        log += "vxr: error: ended after " + std::to_string(limits.seconds) + " s\n";
    } else if (child.over_memory) {
        log += "vxr: error: ended because it took more than " + std::to_string(limits.memory_mib) + " MiB\n";
    } else if (child.over_output) {
        log += "vxr: error: ended because it wrote more than 16 MiB\n";
    } else if (!child.exit_code) {
        log += "vxr: error: ended by " + child.signal + '\n';
    }
    return log;
}

}  // namespace

ItemWork::ItemWork(const JobFolder& folder, const BatchPlan& plan, std::string version)
    : folder_(folder), plan_(plan), version_(std::move(version)), program_(os::program_path()) {}

KnownItem ItemWork::look(const BatchItem& item) const {
    KnownItem known;
    if (const auto text = os::content_of(folder_.result_path(item), kMostResultBytes)) {
        known.result = parse_item_result(*text);
    }
    known.state = settled_state(item.input);
    const bool same_state = known.result && known.state && known.result->state == known.state;
    known.input_sha256 =
        same_state ? known.result->input_sha256 : sha256_of_file(item.input).value_or(std::string());
    if (!known.result || (known.result->wrote && !is_there(item.output))) {
        return known;
    }
    const std::vector<std::string> words = words_of(plan_.tasks[item.task], item);
    known.current = known.result->key == item_key(version_, words, known.input_sha256);
    return known;
}

ItemStanding ItemWork::run(const BatchItem& item, bool& worked) const {
    const KnownItem known = look(item);
    const bool had_log = !known.result || known.result->has_log;
    worked = !known.current;
    if (known.current) {
        if (known.result->state != known.state) {
            // Next time the state tells.
            ItemResult same = *known.result;
            same.state = known.state;
            replace_content(folder_.result_path(item), item_result_text(same));
        }
        return known.result->standing;
    }
    const std::vector<std::string> words = words_of(plan_.tasks[item.task], item);
    constexpr std::uint64_t kMebibyte = 1U << 20U;
    const ChildLimits limits{std::chrono::seconds(plan_.limits.seconds),
                             static_cast<std::uint64_t>(plan_.limits.memory_mib) * kMebibyte,
                             kMostItemOutput};
    const ChildResult child = run_child(program_, words, limits);
    if (!child.error.empty()) {
        throw std::runtime_error("cannot start " + os::text_of(program_) + ": " + child.error);
    }
    ItemResult result;
    result.standing = standing_of(child);
    if (result.standing == ItemStanding::not_done) {
        return result.standing;
    }
    result.key = item_key(version_, words, known.input_sha256);
    result.input_sha256 = known.input_sha256;
    result.state = known.state;
    result.exit_code = child.exit_code;
    result.signal = child.signal;
    result.wrote = !item.output.empty() && is_there(item.output);
    // Of a process that was ended there may be more or less each time.
    result.out = child.over_output ? std::string() : child.out;
    keep(item, result, log_of(child, plan_.limits), had_log);
    return result.standing;
}

void ItemWork::keep(const BatchItem& item, const ItemResult& result, const std::string& log,
                    bool had_log) const {
    // The log comes first, because the result says that it is there.
    if (!log.empty()) {
        replace_content(folder_.log_path(item), log);
    } else if (had_log) {
        remove_file(folder_.log_path(item));
    }
    ItemResult kept = result;
    kept.has_log = !log.empty();
    replace_content(folder_.result_path(item), item_result_text(kept));
}

void ItemWork::forget(const BatchItem& item) const {
    remove_file(folder_.result_path(item));
}

}  // namespace cli
