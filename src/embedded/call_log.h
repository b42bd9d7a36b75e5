#pragma once

// The host-call log: one JSON object for each call of the bundle into the host, in the order of the calls.
//   {"n":12,"suite":"AEGP Comp
//   Suite","version":9,"function":"AEGP_CreateComp","args":{...},"out":{...},"result":0}
// docs/project-json.md describes every member.

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace embedded {

class CallLog {
  public:
    /// Takes one line without its line break. What it throws is ignored.
    using Sink = std::function<void(std::string_view)>;

    /// Null turns the log off, as it is at first. While it is off, calls are numbered and nothing is written.
    void set_sink(Sink sink);
    [[nodiscard]] bool on() const { return static_cast<bool>(sink_); }

    /// Numbers a call; the caller ends it under this number. Calls nest when a host function calls back into
    /// the bundle. Lines are still written in the order of their numbers: an inner call's line waits for the
    /// outer's.
    std::int64_t begin() {
        ++last_;
        if (on()) {
            waiting_.push_back({last_, false, {}});
        }
        return last_;
    }
    /// `line` is the whole JSON object, without a line break.
    void end(std::int64_t n, std::string line);

    /// The number of the call begun last; 0 before the first.
    [[nodiscard]] std::int64_t last() const { return last_; }

  private:
    struct Waiting {
        std::int64_t n = 0;
        bool done = false;
        std::string line;
    };
    void flush();

    Sink sink_;
    std::int64_t last_ = 0;
    std::deque<Waiting> waiting_;
};

}  // namespace embedded
