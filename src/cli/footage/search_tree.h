#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/footage/folder_listing.h"
#include "cli/footage/name_match.h"

namespace cli {

/// Every file below the folders that are searched, found by its name. Folders are read when the first file is
/// asked for. Links to folders are not followed, so that no file counts twice and no circle is walked.
class SearchTree {
  public:
    /// `roots` in the order of the user.
    SearchTree(FolderListing& listing, std::vector<std::string> roots);

    using FileId = std::uint32_t;

    /// Files with this name, within `level`; each once, in the order of the roots and of their paths.
    std::vector<FileId> named(const ReadName& name, MatchLevel level);
    /// Files whose name has this text before its number and that text after it, letter case apart.
    std::vector<FileId> numbered(const ReadName& before, const ReadName& after);

    [[nodiscard]] std::string path_of(FileId file) const;
    [[nodiscard]] std::string folder_of(FileId file) const;
    [[nodiscard]] const ReadName& name_of(FileId file) const { return files_[file].entry->name; }

    /// How many of `names`, from the last one backwards, end the file's path below its root: 1 for its name
    /// alone. The name itself counts without being compared.
    [[nodiscard]] std::size_t tail_length(FileId file, const std::vector<ReadName>& names,
                                          MatchLevel level) const;
    /// The position of the first root above the file.
    [[nodiscard]] std::size_t order_of(FileId file) const;

  private:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    struct Folder {
        std::uint32_t parent;  // kNone for a root
        const ReadName* name;  // null for a root
        std::string path;
    };
    struct File {
        const FolderListing::Entry* entry;
        std::uint32_t folder;
    };
    using Index = std::unordered_map<std::string, std::vector<FileId>>;

    void walk();
    void index_texts();
    void index_folded();
    void index_numbers();
    void add_cut(const std::string& text, std::vector<FileId>& found) const;
    void add_cut_names_of(const std::string& whole, std::vector<FileId>& found) const;

    FolderListing& listing_;
    std::vector<std::string> roots_;
    bool walked_ = false;
    std::vector<Folder> folders_;
    std::vector<File> files_;
    // Indexes, each made when it is first needed.
    Index by_text_;
    Index by_folded_;
    Index by_cut_;  // by what is left of a cut name
    Index by_number_;
    std::multimap<std::string, FileId, std::less<>> sorted_;
};

}  // namespace cli
