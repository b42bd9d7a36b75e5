#pragma once

#include <array>

namespace cli {

/// How the program ends.
enum class ExitCode {
    fine = 0,
    refused = 1,
    usage = 2,
    cannot_read_or_write = 3,
    footage_missing = 4,
    different = 5,
};

struct ExitCodeRow {
    ExitCode code;
    const char* meaning;
};

/// Every exit code, for the help and the manual.
/// A signal ends the program with 128 plus its number: 130 for SIGINT, 143 for SIGTERM.
inline constexpr std::array<ExitCodeRow, 6> kExitCodes{{
    {ExitCode::fine, "everything asked for was done"},
    {ExitCode::refused, "a file was refused, or the import did not finish"},
    {ExitCode::usage, "wrong usage; nothing was written"},
    {ExitCode::cannot_read_or_write, "a file could not be read or written"},
    {ExitCode::footage_missing,
     "all else was done, but footage was not found, or several files may be meant"},
    {ExitCode::different, "compared, and what is handed over is not what the scene says"},
}};

/// With several files the most serious outcome counts. A file that could not be read is more serious than
/// one that was read and refused, and footage that was not found is less serious than both. Wrong usage
/// outranks everything: it is found before any file is read.
constexpr ExitCode most_serious(ExitCode a, ExitCode b) {
    constexpr auto rank = [](ExitCode code) {
        switch (code) {
            case ExitCode::fine:
                return 0;
            case ExitCode::footage_missing:
                return 1;
            case ExitCode::different:
                return 2;
            case ExitCode::refused:
                return 3;
            case ExitCode::cannot_read_or_write:
                return 4;
            case ExitCode::usage:
                break;
        }
        return 5;
    };
    return rank(a) < rank(b) ? b : a;
}

}  // namespace cli
