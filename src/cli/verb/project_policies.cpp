#include "cli/verb/project_policies.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/footage/job_file.h"
#include "cli/options.h"
#include "system/file_content.h"
#include "system/files.h"

namespace cli {
namespace {

constexpr const char* kName = ".vxr.toml";
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 20U;

[[noreturn]] void wrong(const std::string& path, std::int64_t line, const std::string& reason) {
    throw std::runtime_error(path + ':' + std::to_string(line) + ": " + reason);
}

CheckPolicy policy_from(const PolicyChoices& choices, const std::vector<diagnostic::CodeInfo>& codes) {
    CheckPolicy policy;
    if (choices.strict) {
        policy.fail_on("warning", codes);
    }
    for (const std::string& list : choices.fail_on) {
        for (const std::string& word : comma_separated(list)) {
            policy.fail_on(word, codes);
        }
    }
    for (const std::string& list : choices.ignore) {
        for (const std::string& word : comma_separated(list)) {
            policy.ignore(word, codes);
        }
    }
    return policy;
}

}  // namespace

void add_policy_options(Options& options, PolicyChoices& choices,
                        std::vector<diagnostic::CodeInfo> (*codes)()) {
    const auto each_is = [codes](std::string (CheckPolicy::*add)(const std::string&,
                                                                 const std::vector<diagnostic::CodeInfo>&)) {
        return [codes, add](const std::string& list) {
            CheckPolicy policy;
            for (const std::string& word : comma_separated(list)) {
                if (std::string problem = (policy.*add)(word, codes()); !problem.empty()) {
                    return problem;
                }
            }
            return std::string();
        };
    };
    options
        .option("--fail-on", choices.fail_on,
                "refuse files (exit code 1) for this severity and more serious ones, or for this code; "
                "several with commas; errors always")
        .value_name("error|loss|warning|note|CODE")
        .one_value_at_a_time()
        .check(each_is(&CheckPolicy::fail_on))
        .group(kPolicyGroup);
    options.option("--ignore", choices.ignore, "leave out what has this code; several with commas")
        .value_name("CODE")
        .one_value_at_a_time()
        .check(each_is(&CheckPolicy::ignore))
        .group(kPolicyGroup);
}

ProjectPolicies::ProjectPolicies(const PolicyChoices& choices, std::vector<diagnostic::CodeInfo> codes,
                                 std::string table)
    : choices_(choices),
      codes_(std::move(codes)),
      table_(std::move(table)),
      without_file_(std::make_shared<const CheckPolicy>(policy_from(choices_, codes_))) {}

const CheckPolicy& ProjectPolicies::policy_of(const std::string& file) {
    return *policy_in(os::text_of(os::path_of(os::absolute_path(file)).parent_path()));
}

std::shared_ptr<const CheckPolicy> ProjectPolicies::policy_in(const std::string& folder) {
    std::vector<std::string> without;  // folders that have no such file, from below
    std::shared_ptr<const CheckPolicy> policy;
    for (std::string here = folder; policy == nullptr;) {
        if (const auto known = folders_.find(here); known != folders_.end()) {
            policy = known->second;
            break;
        }
        without.push_back(here);
        const std::string path = os::text_of(os::path_of(here) / kName);
        std::string above = os::text_of(os::path_of(here).parent_path());
        if (os::file_state(path).kind != os::FileKind::missing) {
            policy = read(path);
        } else if (above == here || above.empty()) {
            policy = without_file_;
        }
        here = std::move(above);
    }
    for (const std::string& below : without) {
        folders_[below] = policy;
    }
    return policy;
}

std::shared_ptr<const CheckPolicy> ProjectPolicies::read(const std::string& path) const {
    const std::optional<std::string> text = os::content_of(path, kMostBytes);
    if (!text) {
        wrong(path, 1, "this is not a readable regular file of up to 1 MiB");
    }
    std::map<std::string, CheckChoices> verbs;
    try {
        verbs = parse_project_file(*text);
    } catch (const ProjectFileError& error) {
        wrong(path, error.line, error.reason);
    }
    const CheckChoices& file = verbs[table_];
    CheckPolicy said = policy_from(choices_, codes_);
    CheckPolicy unused;
    // What an option overrides is checked, too: a mistake in the file is reported at once.
    CheckPolicy& fail_on = choices_.strict || !choices_.fail_on.empty() ? unused : said;
    CheckPolicy& ignore = choices_.ignore.empty() ? said : unused;
    for (const ProjectWord& word : file.fail_on.value_or(std::vector<ProjectWord>())) {
        if (const std::string problem = fail_on.fail_on(word.text, codes_); !problem.empty()) {
            wrong(path, word.line, problem);
        }
    }
    for (const ProjectWord& word : file.ignore.value_or(std::vector<ProjectWord>())) {
        if (const std::string problem = ignore.ignore(word.text, codes_); !problem.empty()) {
            wrong(path, word.line, problem);
        }
    }
    return std::make_shared<const CheckPolicy>(said);
}

}  // namespace cli
