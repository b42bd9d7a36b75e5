#include "cli/footage/search_tree.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "cli/footage/stored_path.h"
#include "embedded/sequence.h"
#include "system/file_identity.h"
#include "system/files.h"
#include "text/unicode_forms.h"

namespace cli {
namespace {

bool is_below(const std::string& path, const std::string& folder) {
    return path.starts_with(joined_path(folder, ""));
}

template <class Index>
void add_found(const Index& index, const std::string& key, std::vector<SearchTree::FileId>& found) {
    if (const auto place = index.find(key); place != index.end()) {
        found.insert(found.end(), place->second.begin(), place->second.end());
    }
}

std::string number_key(const std::string& before, const std::string& after) {
    return text::case_folded(before) + '\0' + text::case_folded(after);
}

}  // namespace

SearchTree::SearchTree(FolderListing& listing, std::vector<std::string> roots)
    : listing_(listing), roots_(std::move(roots)) {
    for (std::string& root : roots_) {
        root = os::canonical_path(root);
    }
}

void SearchTree::walk() {
    if (std::exchange(walked_, true)) {
        return;
    }
    std::vector<std::string> begun;
    for (const std::string& root : roots_) {
        // A root inside another one is walked with that one.
        const bool inside = std::any_of(roots_.begin(), roots_.end(),
                                        [&](const std::string& outer) { return is_below(root, outer); });
        if (!inside && std::find(begun.begin(), begun.end(), root) == begun.end()) {
            begun.push_back(root);
            folders_.push_back({kNone, nullptr, root});
        }
    }
    // The list grows while it is walked.
    for (std::uint32_t folder = 0; folder < folders_.size(); ++folder) {
        const std::string path = folders_[folder].path;
        for (const FolderListing::Entry& entry : listing_.entries(path)) {
            if (entry.kind == os::FileKind::regular) {
                files_.push_back({&entry, folder});
            } else if (entry.kind == os::FileKind::folder && !entry.is_link) {
                folders_.push_back({folder, &entry.name, joined_path(path, entry.name.bytes())});
            }
        }
    }
}

void SearchTree::index_texts() {
    walk();
    if (!by_text_.empty()) {
        return;
    }
    for (FileId file = 0; file < files_.size(); ++file) {
        for (const ReadName::Reading& reading : name_of(file).readings()) {
            by_text_[reading.text].push_back(file);
        }
    }
}

void SearchTree::index_folded() {
    walk();
    if (!by_folded_.empty()) {
        return;
    }
    for (FileId file = 0; file < files_.size(); ++file) {
        for (const ReadName::Reading& reading : name_of(file).readings()) {
            by_folded_[text::case_folded(reading.text)].push_back(file);
            sorted_.emplace(reading.text, file);
            for (const CutName& cut : cut_names(reading.text)) {
                by_cut_[cut.beginning].push_back(file);
            }
        }
    }
}

void SearchTree::index_numbers() {
    walk();
    if (!by_number_.empty()) {
        return;
    }
    for (FileId file = 0; file < files_.size(); ++file) {
        for (const ReadName::Reading& reading : name_of(file).readings()) {
            if (const auto split = embedded::split_number(reading.text)) {
                by_number_[number_key(split->prefix, split->suffix)].push_back(file);
            }
        }
    }
}

// Files from whose names `text` was cut.
void SearchTree::add_cut(const std::string& text, std::vector<FileId>& found) const {
    for (const CutName& cut : cut_names(text)) {
        for (auto entry = sorted_.lower_bound(cut.beginning);
             entry != sorted_.end() && entry->first.starts_with(cut.beginning); ++entry) {
            if (is_cut_from(text, entry->first)) {
                found.push_back(entry->second);
            }
        }
    }
}

// Files whose names are what was left of `whole`.
void SearchTree::add_cut_names_of(const std::string& whole, std::vector<FileId>& found) const {
    constexpr std::size_t kMostBytes = kCutNameCharacters * 4;
    for (std::size_t size = 1; size <= std::min(whole.size(), kMostBytes); ++size) {
        std::vector<FileId> begun;
        add_found(by_cut_, whole.substr(0, size), begun);
        for (const FileId file : begun) {
            const auto& readings = name_of(file).readings();
            if (std::any_of(readings.begin(), readings.end(),
                            [&](const ReadName::Reading& one) { return is_cut_from(one.text, whole); })) {
                found.push_back(file);
            }
        }
    }
}

std::vector<SearchTree::FileId> SearchTree::named(const ReadName& name, MatchLevel level) {
    std::vector<FileId> found;
    index_texts();
    for (const ReadName::Reading& reading : name.readings()) {
        add_found(by_text_, reading.text, found);
        if (level >= MatchLevel::cut) {
            index_folded();
            add_cut(reading.text, found);
            add_cut_names_of(reading.text, found);
        }
        if (level >= MatchLevel::letter_case) {
            add_found(by_folded_, text::case_folded(reading.text), found);
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    if (level == MatchLevel::exact) {
        std::erase_if(found, [&](FileId file) { return name_of(file).bytes() != name.bytes(); });
    }
    return found;
}

std::vector<SearchTree::FileId> SearchTree::numbered(const ReadName& before, const ReadName& after) {
    std::vector<FileId> found;
    index_numbers();
    for (const ReadName::Reading& first : before.readings()) {
        for (const ReadName::Reading& last : after.readings()) {
            add_found(by_number_, number_key(first.text, last.text), found);
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::string SearchTree::folder_of(FileId file) const {
    return folders_[files_[file].folder].path;
}

std::string SearchTree::path_of(FileId file) const {
    return joined_path(folder_of(file), name_of(file).bytes());
}

std::size_t SearchTree::tail_length(FileId file, const std::vector<ReadName>& names, MatchLevel level) const {
    std::size_t length = 1;
    for (std::uint32_t folder = files_[file].folder;
         length < names.size() && folders_[folder].name != nullptr; folder = folders_[folder].parent) {
        if (!match_names(names[names.size() - 1 - length], *folders_[folder].name, level)) {
            break;
        }
        ++length;
    }
    return length;
}

std::size_t SearchTree::order_of(FileId file) const {
    const std::string path = path_of(file);
    const auto root = std::find_if(roots_.begin(), roots_.end(),
                                   [&](const std::string& one) { return is_below(path, one); });
    return static_cast<std::size_t>(root - roots_.begin());
}

}  // namespace cli
