#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cli/report/check_policy.h"

namespace cli {

class Options;

/// What the user said on the command line, which wins over project files.
struct PolicyChoices {
    std::vector<std::string> fail_on;  ///< each a list with commas
    std::vector<std::string> ignore;
    bool strict = false;  ///< --fail-on warning
};

/// Adds --fail-on and --ignore, which take severities and the codes in the list of `codes`.
void add_policy_options(Options& options, PolicyChoices& choices,
                        std::vector<diagnostic::CodeInfo> (*codes)());

/// The heading in help texts under which options say what counts.
inline constexpr const char* kPolicyGroup = "What counts";

/// What counts in each file: the options, and where they say nothing the nearest `.vxr.toml` in the file's
/// folder or above it. Reads each folder once.
class ProjectPolicies {
  public:
    /// `table` is the verb's in project files: "check". The words in `choices` have been checked.
    ProjectPolicies(const PolicyChoices& choices, std::vector<diagnostic::CodeInfo> codes, std::string table);

    /// For a file as the user named it; for the standard input that of the current folder. Throws
    /// std::runtime_error with file and line for a project file with a mistake in it. Valid as long as this
    /// object.
    const CheckPolicy& policy_of(const std::string& file);

  private:
    std::shared_ptr<const CheckPolicy> policy_in(const std::string& folder);
    [[nodiscard]] std::shared_ptr<const CheckPolicy> read(const std::string& path) const;

    PolicyChoices choices_;
    std::vector<diagnostic::CodeInfo> codes_;
    std::string table_;
    std::shared_ptr<const CheckPolicy> without_file_;
    std::map<std::string, std::shared_ptr<const CheckPolicy>> folders_;
};

}  // namespace cli
