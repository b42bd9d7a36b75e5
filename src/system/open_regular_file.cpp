#include "system/open_regular_file.h"

#include <new>

namespace os {
namespace {

// Thread-local, because imports run on any thread. Null while no guesses are wanted on the thread, so nothing
// is left behind in the host's threads.
thread_local PathGuesses::Guess current_guess = nullptr;

std::FILE* open_guessed(const char* path) {
    try {
        for (const std::string& guessed : current_guess(path)) {
            if (std::FILE* file = open_exactly(guessed.c_str())) {
                return file;
            }
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return nullptr;
}

}  // namespace

std::FILE* open_regular_file(const char* path) {
    std::FILE* file = open_exactly(path);
    return file == nullptr && current_guess != nullptr ? open_guessed(path) : file;
}

PathGuesses::PathGuesses(Guess guess) : outer_(current_guess) {
    current_guess = guess;
}

PathGuesses::~PathGuesses() {
    current_guess = outer_;
}

}  // namespace os
