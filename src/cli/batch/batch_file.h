#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/batch/batch_verb.h"
#include "cli/footage/job_file.h"

// What a user writes to plan a batch, in TOML. docs/batch.md describes it.

namespace cli {

inline constexpr int kMostItemSeconds = 7 * 24 * 3600;
inline constexpr int kMostItemMemory_mib = 1 << 20;

/// When an item is ended. 0 for the memory means any.
struct ItemLimits {
    int seconds = 600;
    int memory_mib = 4096;
};

/// One verb for many files. Names are as written, relative to the folder of the file.
struct BatchTask {
    const BatchVerb* verb = nullptr;
    std::vector<std::string> options;
    std::vector<std::string> files;  ///< and folders, and patterns
    std::string list;                ///< a file with further names; or empty
    bool null = false;
    bool recursive = false;
    std::string out_dir;    ///< empty: outputs are beside their inputs
    std::string extension;  ///< of the outputs, without a full stop; empty if nothing is written
    std::int64_t line = 1;  ///< where the task begins, and its column
    std::int64_t column = 1;
};

struct BatchFile {
    ItemLimits limits;
    std::vector<BatchTask> tasks;  ///< at least one
};

/// Reads the text of such a file. Throws TomlError, with the place of the mistake.
[[nodiscard]] BatchFile parse_batch_file(std::string_view text);

/// The name of the output for the input at `input` that was found below the folder `below`, or was named
/// itself if that is empty: in the task's folder, if it has one, with the folders between `below` and the
/// input. Empty if the task writes nothing.
[[nodiscard]] std::string output_name(const BatchTask& task, const std::string& input,
                                      const std::string& below);

}  // namespace cli
