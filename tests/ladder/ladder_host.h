#pragma once

#include <map>
#include <string>

#include "embedded/testing.h"

/// What became of one rung.
struct Climb {
    std::string complaint;  // what must not be; empty when all is well
    embedded::CallbackResult result;
    bool no_memory_thrown = false;  // std::bad_alloc reached the host
    bool finished = false;          // everything was called that there is to call
    std::map<std::string, std::int64_t> call_counts;
};

/// Loads the built bundle, of which only the exported entries are used, into a host of these options and of
/// the generation that the program is run for; imports the composition file at `path`, or opens, draws and
/// disposes of the texture; unloads the bundle; and looks whether the host's project is sound, the host's
/// rules were kept as far as the options let them, the undo groups are balanced and the preference is put
/// back. `watcher`, if there is one, is told of every passage.
Climb climb(embedded::HostOptions options, const std::string& path, const embedded::Watcher& watcher = {});

/// The host's project after importing, or what was drawn, as text: of runs that must come to the same.
std::string result_of(const std::string& path);
