#include "cli/batch/batch_submit.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace cli {
namespace {

/// The job folder's path as a word. A line end at its end, which script_word() cannot keep, is no longer
/// there.
std::string folder_word(const JobFolder& folder) {
    return script_word(folder.path().ends_with('\n') ? folder.path() + "/." : folder.path());
}

bool is_visible_ascii(char c) {
    return c >= ' ' && c <= '~';
}

/// One byte in the format of printf(1).
std::string printf_byte(char c) {
    if (c == '%') {
        return "%%";
    }
    if (is_visible_ascii(c) && c != '\\' && c != '\'') {
        return std::string(1, c);
    }
    std::array<char, 8> octal{};
    std::snprintf(octal.data(), octal.size(), "\\%03o",
                  static_cast<unsigned int>(static_cast<unsigned char>(c)));
    return octal.data();
}

}  // namespace

std::string script_word(std::string_view text) {
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:,+@%=";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos) {
        return std::string(text);
    }
    std::string word;
    if (std::all_of(text.begin(), text.end(), is_visible_ascii)) {
        for (const char c : text) {
            word += c == '\'' ? "'\\''" : std::string(1, c);
        }
        return '\'' + word + '\'';
    }
    // Quotes would keep the bytes, but not the line.
    for (const char c : text) {
        word += printf_byte(c);
    }
    return "\"$(printf '" + word + "')\"";
}

std::size_t part_count(std::size_t items, std::size_t most) {
    return std::min(items, most);
}

std::string part_command(const std::string& program, const JobFolder& folder, const BatchPart& part) {
    return script_word(program) + " batch run --quiet --jobs 1 --part " + std::to_string(part.number) + '/' +
           std::to_string(part.of) + " -- " + folder_word(folder);
}

std::string slurm_script(const std::string& program, const JobFolder& folder, std::size_t parts) {
    const std::string job = folder_word(folder);
    return "#!/bin/sh\n"
           "# A task of a batch of vxr.\n"
           "exec >>" +
           job +
           "/logs/slurm-\"$SLURM_ARRAY_JOB_ID-$SLURM_ARRAY_TASK_ID\".log 2>&1\n"
           "exec " +
           script_word(program) +
           " batch run --quiet --jobs \"${SLURM_CPUS_PER_TASK:-1}\" --part "
           "\"$SLURM_ARRAY_TASK_ID/" +
           std::to_string(parts) + "\" -- " + job + '\n';
}

}  // namespace cli
