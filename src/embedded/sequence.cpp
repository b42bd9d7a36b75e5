#include "embedded/sequence.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <utility>

namespace embedded {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::size_t kMaxDigits = 18;  // every such number fits 64 bits

std::int64_t number_of(std::string_view digits) {
    std::int64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

bool is_padded(std::string_view digits) {
    return digits.size() > 1 && digits.front() == '0';
}

// No name holds the zero byte.
std::string key_of(const NumberedName& name) {
    return name.prefix + '\0' + name.suffix;
}

}  // namespace

bool has_padding(std::string_view digits, std::size_t padding) {
    return digits.size() == padding || (digits.size() > padding && !is_padded(digits));
}

std::size_t padding_of(std::string_view digits, const std::vector<std::string>& all) {
    if (is_padded(digits)) {
        return digits.size();
    }
    std::size_t padding = 1;
    for (const std::string& other : all) {
        if (is_padded(other) && other.size() <= digits.size()) {
            padding = std::max(padding, other.size());
        }
    }
    return padding;
}

std::optional<NumberedName> split_number(std::string_view file_name) {
    const std::size_t dot = file_name.rfind('.');
    const std::string_view stem = file_name.substr(0, dot);  // npos: all of it
    const std::size_t last = stem.find_last_of(kDigits);
    if (last == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t before = stem.find_last_not_of(kDigits, last);
    const std::size_t first = before == std::string_view::npos ? 0 : before + 1;
    const std::size_t count = last - first + 1;
    if (count > kMaxDigits) {
        return std::nullopt;
    }
    return NumberedName{std::string(file_name.substr(0, first)), std::string(file_name.substr(first, count)),
                        std::string(file_name.substr(last + 1))};
}

std::vector<FrameRange> gaps_between(const std::vector<std::int64_t>& frames) {
    std::vector<FrameRange> gaps;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        if (frames[i] - frames[i - 1] > 1) {
            gaps.push_back({frames[i - 1] + 1, frames[i] - 1});
        }
    }
    return gaps;
}

const std::vector<std::string>& SequenceIndex::numbers_beside(const std::string& folder,
                                                              const NumberedName& name) {
    const auto [place, is_new] = folders_.try_emplace(folder);
    Numbers& numbers = place->second;
    if (is_new) {
        for (const std::string& file : files_in_(folder.empty() ? "." : folder)) {
            if (auto split = split_number(file)) {
                numbers[key_of(*split)].push_back(std::move(split->digits));
            }
        }
    }
    const auto found = numbers.find(key_of(name));
    return found == numbers.end() ? none_ : found->second;
}

std::optional<SequenceFrames> find_sequence(SequenceIndex& index, const std::string& path,
                                            const SequenceRequest& request) {
    const std::filesystem::path file = os::path_of(path);
    const auto name = split_number(os::text_of(file.filename()));
    if (!name) {
        return std::nullopt;
    }
    return sequence_among(index.numbers_beside(os::text_of(file.parent_path()), *name), *name, request);
}

std::optional<SequenceFrames> sequence_among(const std::vector<std::string>& numbers,
                                             const NumberedName& name, const SequenceRequest& request) {
    const std::size_t padding = padding_of(name.digits, numbers);
    const bool named_file_only = !request.whole_folder && !request.first && !request.last;

    std::vector<std::int64_t> frames;
    for (const std::string& digits : numbers) {
        const std::int64_t frame = number_of(digits);
        if (!has_padding(digits, padding) || (named_file_only && digits != name.digits) ||
            (request.first && frame < *request.first) || (request.last && frame > *request.last)) {
            continue;
        }
        frames.push_back(frame);
    }
    if (frames.empty()) {
        return std::nullopt;
    }
    std::sort(frames.begin(), frames.end());

    SequenceFrames found;
    found.pattern = name.prefix + std::string(padding, '#') + name.suffix;
    found.range = {frames.front(), frames.back()};
    found.count = static_cast<std::int64_t>(frames.size());
    found.padding = static_cast<int>(padding);
    if (!request.ignore_numbers) {
        found.gaps = gaps_between(frames);
    }
    return found;
}

}  // namespace embedded
