#pragma once

// The host-call log: one JSON object a call of the bundle into the host, in the order in which the calls were
// made.
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
    /// Takes one line, without its line break. What it throws is lost.
    using Sink = std::function<void(std::string_view)>;

    /// Null turns the log off, which is how a host starts. While it is off nothing is built or written; calls
    /// are numbered all the same.
    void set_sink(Sink sink);
    [[nodiscard]] bool on() const { return static_cast<bool>(sink_); }

    /// Numbers a call. Every begin is followed by its end; calls may nest, when a host function calls back
    /// into the bundle. Lines come out ordered by `n` all the same: an inner call's line waits for the
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
