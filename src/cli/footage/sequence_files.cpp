#include "cli/footage/sequence_files.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "embedded/sequence.h"
#include "system/files.h"

namespace cli {
namespace {

// No name holds the zero byte.
std::string key_of(const embedded::NumberedName& name) {
    return name.prefix + '\0' + name.suffix;
}

}  // namespace

const std::vector<std::string>& SequenceIndex::numbers_beside(const std::string& folder,
                                                              const embedded::NumberedName& name) {
    const auto [place, is_new] = folders_.try_emplace(folder);
    Numbers& numbers = place->second;
    if (is_new) {
        for (const FolderListing::Entry& entry : listing_.entries(folder)) {
            const auto split = entry.kind == os::FileKind::regular
                                   ? embedded::split_number(entry.name.bytes())
                                   : std::nullopt;
            if (split) {
                numbers[key_of(*split)].push_back(split->digits);
            }
        }
    }
    const auto found = numbers.find(key_of(name));
    return found == numbers.end() ? none_ : found->second;
}

std::vector<SequenceFile> sequence_files(SequenceIndex& index, const std::string& path) {
    const std::filesystem::path file = os::path_of(path);
    const std::string name = os::text_of(file.filename());
    const std::optional<embedded::NumberedName> wanted = embedded::split_number(name);
    if (!wanted) {
        return {{name, 0}};
    }
    const std::vector<std::string>& numbers = index.numbers_beside(os::text_of(file.parent_path()), *wanted);
    const std::size_t padding = embedded::padding_of(wanted->digits, numbers);
    std::vector<SequenceFile> sequence;
    for (const std::string& digits : numbers) {
        if (embedded::has_padding(digits, padding)) {
            SequenceFile one{wanted->prefix + digits + wanted->suffix, 0};
            std::from_chars(digits.data(), digits.data() + digits.size(), one.number);
            sequence.push_back(one);
        }
    }
    std::sort(sequence.begin(), sequence.end(),
              [](const SequenceFile& a, const SequenceFile& b) { return a.number < b.number; });
    return sequence;
}

}  // namespace cli
