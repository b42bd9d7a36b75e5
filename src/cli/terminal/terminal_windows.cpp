#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "cli/terminal/terminal.h"
#include "system/signal_cleanup.h"
#include "system/wide_path_windows.h"

namespace cli {

namespace {

struct FreeLocally {
    void operator()(LPWSTR* arguments) const { LocalFree(arguments); }
};

/// The program reads its environment as bytes; the file names in it must be UTF-8, as everywhere else.
void make_utf8(const wchar_t* wide_name, const char* name) {
    const DWORD size = GetEnvironmentVariableW(wide_name, nullptr, 0);
    if (size == 0) {
        return;
    }
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(wide_name, value.data(), size));
    _putenv_s(name, os::utf8_text(value).c_str());
}

}  // namespace

bool is_terminal(int descriptor) {
    // Only a console that understands the escape sequences for colour and for wiping a line counts.
    const HANDLE handle = GetStdHandle(descriptor == 1 ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0 &&
           SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::optional<std::size_t> terminal_columns(int descriptor) {
    CONSOLE_SCREEN_BUFFER_INFO about{};
    const HANDLE handle = GetStdHandle(descriptor == 1 ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    return GetConsoleScreenBufferInfo(handle, &about) != 0 && about.srWindow.Right >= about.srWindow.Left
               ? std::optional<std::size_t>(
                     static_cast<std::size_t>(about.srWindow.Right - about.srWindow.Left + 1))
               : std::nullopt;
}

std::vector<std::string> begin_program(int /*argc*/, char** /*argv*/) {
    os::end_on_signals();
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    make_utf8(L"VXR_BUNDLE", "VXR_BUNDLE");
    // The arguments of main() are in the system's code page, which cannot represent most names.
    int count = 0;
    const std::unique_ptr<LPWSTR, FreeLocally> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; wide != nullptr && i < count; ++i) {
        arguments.push_back(os::utf8_text(wide.get()[i]));
    }
    return arguments;
}

}  // namespace cli
