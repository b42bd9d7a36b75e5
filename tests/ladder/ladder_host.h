#pragma once

#include <map>
#include <string>

#include "embedded/testing.h"

/// The outcome of one rung.
struct Climb {
    std::string violation;  // broken invariants and rules; empty when all is well
    embedded::CallbackResult result;
    bool no_memory_thrown = false;  // std::bad_alloc reached the host
    bool finished = false;          // every callback was called
    std::map<std::string, std::int64_t> call_counts;
};

/// Loads the built bundle through its exported entry point into a host with these options and the generation
/// that the program runs for; imports the composition file at `path`, or opens, draws and disposes of the
/// texture; and unloads the bundle. Then checks that the host's project is sound, that the bundle kept the
/// host's rules as far as the options allow, that the undo groups are balanced and that the preference is
/// restored. `watcher` may be empty; it is told of every passage.
Climb climb(embedded::HostOptions options, const std::string& path, const embedded::Watcher& watcher = {});

/// The host's project after importing the file, or the pixels drawn of the texture, as text for comparisons.
std::string result_of(const std::string& path);
