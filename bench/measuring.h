#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What the benchmark programs share. Their numbers are processor time of one thread and wall time; see
// script/bench for how they are collected.

/// Ends the program with exit code 1 and `what` on stderr unless `holds`. For answers, before they are timed:
/// the benchmark library itself ends with 0 whatever a benchmark finds.
void require(bool holds, const std::string& what);

/// How far the process's resident memory rises while `work` runs, in bytes; 0 where the system does not say.
/// What an earlier run left with the allocator is given back first, so that it is counted again.
[[nodiscard]] std::int64_t peak_memory_bytes(const std::function<void()>& work);

/// The same for the first call with this `name`; later calls answer without running `work` again, since the
/// library enters a benchmark several times.
[[nodiscard]] std::int64_t peak_memory_bytes_once(const std::string& name, const std::function<void()>& work);

/// Has the allocator keep what is freed, so that a repetition finds warm pages: fresh ones cost more than the
/// work that is measured on them.
void keep_freed_memory();

/// Runs a program to its end, its output thrown away, and returns the processor time of its process, in
/// seconds.
[[nodiscard]] double child_seconds(const std::vector<std::string>& arguments);

/// main() of a benchmark program whose benchmarks are registered. Fails when its filter leaves none.
int run_benchmarks(int argc, char** argv);
