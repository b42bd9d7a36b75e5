#include "host/bridge/reports.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>

#include "host/bridge/underlying_host.h"

namespace bridge {
namespace {

constexpr std::size_t kMaxText = 256;
constexpr std::size_t kMaxExcerpt = 60;

template <typename... Values>
void report_values(const char* format, Values... values) noexcept {
    std::array<A_char, kMaxText> text = {};
    std::snprintf(text.data(), text.size(), format, values...);
    report(text.data());
}

// The last part of the text before the fault, with a question mark for every unit that is not printable
// ASCII.
template <typename View>
std::array<A_char, kMaxExcerpt + 1> excerpt(View path, std::size_t fault) {
    std::array<A_char, kMaxExcerpt + 1> shown = {};
    const View before = path.substr(0, fault);
    const View end = before.substr(before.size() - std::min(before.size(), kMaxExcerpt));
    std::transform(end.begin(), end.end(), shown.begin(),
                   [](auto unit) { return unit >= ' ' && unit <= '~' ? static_cast<A_char>(unit) : '?'; });
    return shown;
}

struct WaitingReport {
    AEGP_PluginID plugin_id = 0;
    std::array<A_char, kMaxText> text = {};
};

// An array, so that keeping a report needs no memory.
struct WaitingReports {
    static constexpr std::size_t kMost = 8;
    std::array<WaitingReport, kMost> reports;
    std::size_t count = 0;
};

std::mutex waiting_mutex;
WaitingReports waiting;
std::atomic<bool> any_waiting = false;  // a look without the lock, for every callback

WaitingReports take_waiting_reports() {
    const std::lock_guard lock(waiting_mutex);
    any_waiting = false;
    return std::exchange(waiting, {});
}

void show(AEGP_PluginID plugin_id, const A_char* text) noexcept {
    const HostSuite<AEGP_UtilitySuite7> utility("AEGP Utility Suite", 7);
    if (utility.get() != nullptr) {
        answer_of([&] { return utility.get()->AEGP_ReportInfo(plugin_id, text); });
    }
}

}  // namespace

void report(const A_char* text) noexcept {
    if (on_main_thread()) {
        show(underlying_host.plugin_id, text);
    } else {
        keep_report(underlying_host.plugin_id, text);
    }
}

void keep_report(AEGP_PluginID plugin_id, const A_char* text) noexcept {
    WaitingReport added;
    added.plugin_id = plugin_id;
    std::snprintf(added.text.data(), added.text.size(), "%s", text == nullptr ? "" : text);
    const std::lock_guard lock(waiting_mutex);
    const auto* const end = waiting.reports.begin() + waiting.count;
    const bool known = std::any_of(waiting.reports.cbegin(), end, [&added](const WaitingReport& other) {
        return other.plugin_id == added.plugin_id && other.text == added.text;
    });
    if (!known && waiting.count < WaitingReports::kMost) {
        waiting.reports[waiting.count++] = added;
        any_waiting = true;
    }
}

void show_waiting_reports() noexcept {
    if (!any_waiting || !on_main_thread()) {
        return;
    }
    // Taken first: while the host shows a report, it may call the plug-in.
    const WaitingReports taken = take_waiting_reports();
    for (std::size_t i = 0; i < taken.count; ++i) {
        show(taken.reports[i].plugin_id, taken.reports[i].text.data());
    }
}

void forget_waiting_reports() noexcept {
    take_waiting_reports();
}

void report_missing_suite(const A_char* name, A_long version) noexcept {
    report_values("This plug-in needs the suite \"%s\" %d, which the host does not offer.", name,
                  static_cast<int>(version));
}

void report_invalid_path(std::string_view path, std::size_t fault) noexcept {
    report_values(
        "A path cannot be given to the host: it is not valid UTF-8 (byte %02X behind \"%s\"), and no "
        "file has this name read as Windows-1252 or as Mac Roman.",
        static_cast<unsigned>(static_cast<unsigned char>(path[fault])), excerpt(path, fault).data());
}

void report_invalid_path(std::u16string_view path, std::size_t fault) noexcept {
    report_values("A path of the host cannot be used: it is not valid UTF-16 (unit %04X behind \"%s\").",
                  static_cast<unsigned>(path[fault]), excerpt(path, fault).data());
}

void report_long_path(std::size_t most_bytes) noexcept {
    report_values("A path of the host cannot be used: in UTF-8 it is longer than %zu bytes.", most_bytes);
}

void report_no_path() noexcept {
    report("A path of the host cannot be used: it is missing.");
}

void report_unreadable_file(std::string_view path, bool exists, A_Err err) noexcept {
    const std::size_t separator = path.find_last_of("/\\");
    const std::string_view name = separator == std::string_view::npos ? path : path.substr(separator + 1);
    const auto shown = excerpt(name, name.size());
    if (exists) {
        report_values(
            "\"%s\" cannot be drawn: the file could not be read again (error %d). Check the file, "
            "then choose Reload Footage.",
            shown.data(), static_cast<int>(err));
    } else {
        report_values(
            "\"%s\" cannot be drawn: the file is not there any more. Put it back, or choose "
            "Replace Footage.",
            shown.data());
    }
}

void report_unknown_file(A_Err err) noexcept {
    report_values("A texture cannot be drawn: the host does not say where its file is (error %d).",
                  static_cast<int>(err));
}

void report_not_aimed() noexcept {
    report(
        "A camera or light does not turn towards its point of interest, because After Effects refused the "
        "setting. Select it and choose Layer > Transform > Auto-Orient.");
}

void report_no_room(const A_char* things, std::size_t room) noexcept {
    report_values("This plug-in registers more %s than there is room for (%zu).", things, room);
}

}  // namespace bridge
