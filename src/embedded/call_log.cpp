#include "embedded/call_log.h"

namespace embedded {

void CallLog::set_sink(Sink sink) {
    sink_ = std::move(sink);
    waiting_.clear();
}

void CallLog::end(std::int64_t n, std::string line) {
    // Innermost calls end first, so the call is near the back.
    for (auto waiting = waiting_.rbegin(); waiting != waiting_.rend(); ++waiting) {
        if (waiting->n != n) {
            continue;
        }
        waiting->line = std::move(line);
        waiting->done = true;
        break;
    }
    flush();
}

void CallLog::flush() {
    while (!waiting_.empty() && waiting_.front().done) {
        const std::string line = std::move(waiting_.front().line);
        waiting_.pop_front();
        if (sink_) {
            sink_(line);
        }
    }
}

}  // namespace embedded
