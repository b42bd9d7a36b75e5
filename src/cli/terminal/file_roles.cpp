#include "cli/terminal/file_roles.h"

namespace cli {

void FileRoles::reads(const std::string& path, const std::string& use) {
    read_.emplace(os::identity_of(path), Role{path, use});
}

std::string FileRoles::writes(const std::string& path, const std::string& source) {
    const os::FileIdentity file = os::identity_of(path);
    const auto other_name = [&path](const Role& role) {
        return role.path == path ? std::string() : ", which is the same file as " + role.path;
    };
    if (const auto read = read_.find(file); read != read_.end()) {
        const Role& role = read->second;
        return role.path + (role.text.empty() ? "" : ", " + role.text + ',') +
               " would be overwritten by the output" + (role.path == path ? "" : " " + path);
    }
    const auto [written, added] = written_.emplace(file, Role{path, source});
    if (added) {
        return {};
    }
    return written->second.text + " and " + source + " would both be written to " + path +
           other_name(written->second);
}

}  // namespace cli
