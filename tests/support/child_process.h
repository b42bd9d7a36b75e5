#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/file_content.h"
#include "support/program_output.h"
#include "support/temporary_folder.h"

/// What a program did. The exit code of a program that a signal ended is -1.
struct ProcessResult {
    int exit_code = 0;
    std::string out;
    std::string err;
};

/// Runs a program with an empty standard input and waits for it. `arguments` begin with the program, which is
/// looked up in PATH; `environment` is added to the test's own.
inline ProcessResult run_process(const std::vector<std::string>& arguments,
                                 const std::vector<std::pair<std::string, std::string>>& environment = {}) {
    const TemporaryFolder folder;
    const std::string out = folder.path("out");
    const std::string err = folder.path("err");
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));  // execvp does not change them
    }
    pointers.push_back(nullptr);

    const pid_t child = ::fork();
    if (child < 0) {
        throw std::runtime_error("cannot start " + arguments.front());
    }
    if (child == 0) {
        constexpr mode_t kOwnFile = 0600;
        constexpr int kNotStarted = 127;
        for (const auto& [name, value] : environment) {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
        ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
        ::dup2(::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, kOwnFile), STDOUT_FILENO);
        ::dup2(::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, kOwnFile), STDERR_FILENO);
        ::execvp(pointers.front(), pointers.data());
        ::_exit(kNotStarted);
    }
    int status = 0;
    ::waitpid(child, &status, 0);

    ProcessResult result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, content_of(out), content_of(err)};
    if (program_output_listener != nullptr) {
        program_output_listener(arguments, result.out);
    }
    return result;
}
