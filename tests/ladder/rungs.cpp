#include "ladder/rungs.h"

#include <cstdio>
#include <map>

namespace {

/// The destructor of a static object prints the counts, after all other output.
class Counts {
  public:
    Counts() = default;
    ~Counts() {
        std::printf("rungs: {");
        const char* separator = "";
        for (const auto& [kind, count] : counts_) {
            std::printf("%s\"%s\": %lld", separator, kind.c_str(), static_cast<long long>(count));
            separator = ", ";
        }
        std::printf("}\n");
        std::fflush(stdout);
    }
    Counts(const Counts&) = delete;
    Counts& operator=(const Counts&) = delete;

    void add(const std::string& kind, std::int64_t count) { counts_[kind] += count; }

  private:
    std::map<std::string, std::int64_t> counts_;
};

}  // namespace

void count_rungs(const std::string& kind, std::int64_t count) {
    static Counts counts;
    counts.add(kind, count);
}
