#pragma once

#if !defined(_WIN32)
#include <unistd.h>
#endif

/// Ends the program by the alarm's signal when a test hangs. Not a measure of speed: the time is far beyond
/// what a test takes on a busy machine.
class Deadline {
  public:
#if !defined(_WIN32)
    Deadline() {
        constexpr unsigned kPatience_s = 600;
        ::alarm(kPatience_s);
    }
    ~Deadline() {
        ::alarm(0);
    }
#else  // without alarm; ctest has a limit of its own
    Deadline() {}
    ~Deadline() {}
#endif
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;
};
