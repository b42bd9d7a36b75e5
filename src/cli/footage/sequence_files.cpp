#include "cli/footage/sequence_files.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "embedded/sequence.h"
#include "system/files.h"

namespace cli {
std::vector<SequenceFile> sequence_files(embedded::SequenceIndex& index, const std::string& path) {
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
