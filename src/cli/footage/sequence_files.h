#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/footage/folder_listing.h"

#include "embedded/sequence.h"

namespace cli {

/// The numbers of the files in folders. Each folder is gone through once, however large the number of
/// sequences in it. For one thread.
class SequenceIndex {
  public:
    /// The listing outlives the index.
    explicit SequenceIndex(FolderListing& listing) : listing_(listing) {}

    /// The numbers, as they are written, of the files in `folder` whose names differ from `name` in them
    /// only. Valid as long as the index.
    const std::vector<std::string>& numbers_beside(const std::string& folder,
                                                   const embedded::NumberedName& name);

  private:
    using Numbers = std::unordered_map<std::string, std::vector<std::string>>;

    FolderListing& listing_;
    std::unordered_map<std::string, Numbers> folders_;
    const std::vector<std::string> none_;
};

/// A file of a numbered sequence.
struct SequenceFile {
    std::string name;
    std::int64_t number = 0;
};

/// Every file of the sequence that a host imports for the file at `path`, in the order of their numbers. That
/// file alone if its name has no number.
[[nodiscard]] std::vector<SequenceFile> sequence_files(SequenceIndex& index, const std::string& path);

}  // namespace cli
