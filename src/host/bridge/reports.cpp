#include "host/bridge/reports.h"

#include <algorithm>
#include <array>
#include <cstdio>

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

}  // namespace

void report(const A_char* text) noexcept {
    const HostSuite<AEGP_UtilitySuite7> utility("AEGP Utility Suite", 7);
    if (utility.get() != nullptr) {
        utility.get()->AEGP_ReportInfo(underlying_host.plugin_id, text);
    }
}

void report_missing_suite(const A_char* name, A_long version) noexcept {
    report_values("This plug-in needs the suite \"%s\" %d, which the host does not offer.", name,
                  static_cast<int>(version));
}

void report_invalid_path(std::string_view path, std::size_t fault) noexcept {
    report_values("A path cannot be given to the host: it is not valid UTF-8 (byte %02X behind \"%s\").",
                  static_cast<unsigned>(static_cast<unsigned char>(path[fault])),
                  excerpt(path, fault).data());
}

void report_invalid_path(std::u16string_view path, std::size_t fault) noexcept {
    report_values("A path of the host cannot be used: it is not valid UTF-16 (unit %04X behind \"%s\").",
                  static_cast<unsigned>(path[fault]), excerpt(path, fault).data());
}

void report_long_path() noexcept {
    report_values("A path of the host cannot be used: in UTF-8 it is longer than %zu bytes.",
                  kClassicPathBytes - 1);
}

void report_no_path() noexcept {
    report("A path of the host cannot be used: there is none.");
}

void report_no_room(const A_char* things, std::size_t room) noexcept {
    report_values("This plug-in registers more %s than there is room for (%zu).", things, room);
}

}  // namespace bridge
