#pragma once

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/file_content.h"

/// A former find of the fuzzers, kept in fuzz/regress/TARGET.
struct Regression {
    std::string path;
    std::string name;       ///< "TARGET/NNNN-what-it-was"
    std::string extension;  ///< of the file in it; empty when a host can be given no such file
    std::string bytes;      ///< of the file in it, or all of them
};

namespace regression_targets {

struct Target {
    const char* name;
    const char* extension;
    std::size_t option_bytes;  // before the file, as fuzz/targets/NAME.cpp has them
};

inline constexpr Target kAll[] = {
    {"bitmap", ".txl", 0},      {"composition", ".aec", 0},  {"footage_path", ".aec", 0},
    {"hyper_file", "", 0},      {"import", ".aec", 13},      {"input_module", ".txl", 26},
    {"oiio_reader", ".txl", 0}, {"pack_bits_decode", "", 0}, {"pack_bits_round_trip", "", 0},
    {"texture", ".txl", 0},     {"tokenizer", ".aec", 1},
};

}  // namespace regression_targets

/// Every regression below `folder`, by name. Throws for one of a target that is not known here.
inline std::vector<Regression> regressions_in(const std::filesystem::path& folder) {
    using regression_targets::kAll;
    std::vector<Regression> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.path().extension() == ".md") {
            continue;
        }
        const std::string name = entry.path().lexically_relative(folder).string();
        const auto* const target =
            std::find_if(std::begin(kAll), std::end(kAll), [&](const regression_targets::Target& candidate) {
                return name.starts_with(std::string(candidate.name) + "/");
            });
        if (target == std::end(kAll)) {
            throw std::runtime_error(name + " is a regression of a target that is not known here");
        }
        const std::string bytes = content_of(entry.path());
        all.push_back({entry.path().string(), name, target->extension,
                       bytes.substr(std::min(target->option_bytes, bytes.size()))});
    }
    std::sort(all.begin(), all.end(),
              [](const Regression& a, const Regression& b) { return a.name < b.name; });
    return all;
}
