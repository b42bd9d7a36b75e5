#pragma once

#include <cstdio>
#include <string>

#include "support/recording_host.h"

// For the functions of a recording host's suites: the host that answers, and the arguments of a call as text.

inline RecordingHost& host() {
    return RecordingHost::current();
}

inline std::string text(const void* handle) {
    return host().name_of(handle);
}
inline std::string text(const A_char* string) {
    return string == nullptr ? "null" : '"' + std::string(string) + '"';
}
/// u"text" in ASCII, other units as \uXXXX.
inline std::string text(const A_UTF16Char* string) {
    if (string == nullptr) {
        return "null";
    }
    std::string out = "u\"";
    for (; *string != 0; ++string) {
        const char16_t unit = *string;
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, unit >= ' ' && unit <= '~' ? "%c" : "\\u%04x",
                      static_cast<unsigned>(unit));
        out += escaped;
    }
    return out + '"';
}
inline std::string text(A_long number) {
    return std::to_string(number);
}
inline std::string text(A_u_long number) {
    return std::to_string(number);
}
inline std::string text(AEIO_FileSize number) {
    return std::to_string(number);
}
inline std::string text(A_short number) {
    return std::to_string(number);
}
inline std::string text(A_Boolean number) {
    return std::to_string(number);
}
inline std::string text(double number) {
    return shortest(number);
}
inline std::string text(const A_Time* time) {
    return time == nullptr ? "null" : text(time->value) + "@" + text(time->scale);
}
inline std::string text(const A_Ratio* ratio) {
    return ratio == nullptr ? "null" : text(ratio->num) + "/" + text(ratio->den);
}
inline std::string text(const A_FloatPoint& point) {
    return "(" + text(point.x) + ", " + text(point.y) + ")";
}
inline std::string text(const AEGP_LayerTransferMode* mode) {
    return text(mode->mode) + "/" + text(mode->flags) + "/" + text(mode->track_matte);
}
inline std::string text(const AEGP_FileSequenceImportOptions* options) {
    if (options == nullptr) {
        return "null";
    }
    return "{" + text(options->all_in_folder) + ", " + text(options->force_alphabetical) + ", " +
           text(options->start_frame) + ", " + text(options->end_frame) + "}";
}

template <typename... Arguments>
std::string list(const Arguments&... arguments) {
    std::string out;
    ((out += (out.empty() ? "" : ", ") + text(arguments)), ...);
    return out;
}
