#pragma once

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/file_content.h"

/// A kept input of a fuzzer: a former find in fuzz/regress/TARGET or a seed in fuzz/corpus/TARGET.
struct FuzzInput {
    std::string path;
    std::string name;       ///< "TARGET/FILE"
    std::string extension;  ///< of the file in it; empty for a target whose inputs no host reads
    std::string bytes;      ///< of the file in it, without the options that the target reads first
};

namespace fuzz_targets {

struct Target {
    const char* name;
    const char* extension;
    std::size_t option_bytes;  // before the file, as fuzz/targets/NAME.cpp reads them
};

inline constexpr Target kAll[] = {
    {"bitmap", ".txl", 0},           {"byte_encoding", "", 0},    {"composition", ".aec", 0},
    {"footage_finder", "", 1},       {"footage_path", ".aec", 0}, {"handover", ".aec", 3},
    {"hyper_file", "", 0},           {"import", ".aec", 13},      {"input_module", ".txl", 26},
    {"measured_table", "", 0},       {"oiio_reader", ".txl", 0},  {"pack_bits_decode", "", 0},
    {"pack_bits_round_trip", "", 0}, {"picture_header", "", 1},   {"scaled_frame", "", 0},
    {"texture", ".txl", 0},          {"tokenizer", ".aec", 1},    {"toml_files", "", 0},
};

}  // namespace fuzz_targets

/// Every input below `folder`, by name. Throws for one of a target that is not known here.
inline std::vector<FuzzInput> fuzz_inputs_in(const std::filesystem::path& folder) {
    using fuzz_targets::kAll;
    std::vector<FuzzInput> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.path().extension() == ".md") {
            continue;
        }
        const std::string name = entry.path().lexically_relative(folder).string();
        const auto* const target =
            std::find_if(std::begin(kAll), std::end(kAll), [&](const fuzz_targets::Target& candidate) {
                return name.starts_with(std::string(candidate.name) + "/");
            });
        if (target == std::end(kAll)) {
            throw std::runtime_error(name + " is an input of a target that is not known here");
        }
        const std::string bytes = content_of(entry.path());
        all.push_back({entry.path().string(), name, target->extension,
                       bytes.substr(std::min(target->option_bytes, bytes.size()))});
    }
    std::sort(all.begin(), all.end(), [](const FuzzInput& a, const FuzzInput& b) { return a.name < b.name; });
    return all;
}
