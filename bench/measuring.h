#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What the benchmark programs share. They report the processor time of one thread and wall time, which
// script/bench collects.

/// Ends the program with exit code 1 and `what` on stderr unless `holds`. Checks answers before they are
/// timed: the benchmark library itself always exits with 0.
void require(bool holds, const std::string& what);

/// How far the resident memory of the process rises while `work` runs, in bytes; 0 where the system does not
/// tell. First returns the memory that the allocator kept from an earlier run, so that it is counted again.
[[nodiscard]] std::int64_t peak_memory_bytes(const std::function<void()>& work);

/// peak_memory_bytes for the first call with this `name`. Later calls return the same number without running
/// `work`, because the library enters a benchmark several times.
[[nodiscard]] std::int64_t peak_memory_bytes_once(const std::string& name, const std::function<void()>& work);

/// Makes the allocator keep freed memory, so that a repetition finds warm pages: fresh ones cost more than
/// the work that is measured.
void keep_freed_memory();

/// Runs a program to its end, discards its output, requires that it ends with `exit_code`, and returns the
/// processor time of the process in seconds.
[[nodiscard]] double child_seconds(const std::vector<std::string>& arguments, int exit_code = 0);

/// The rest of main() once all benchmarks are registered. Fails when the filter matches none.
int run_benchmarks(int argc, char** argv);
