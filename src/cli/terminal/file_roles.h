#pragma once

#include <map>
#include <string>

#include "system/file_identity.h"

namespace cli {

/// Keeps what a verb reads and what it writes apart: no file is written that is read, and none twice. Files
/// are compared, not names, so links of either kind change nothing. Every verb that writes asks here before
/// it creates its first output.
class FileRoles {
  public:
    /// The verb reads the file at `path`, which need not exist. `use` says what it is, unless the user named
    /// it: "footage of shot.aec".
    void reads(const std::string& path, const std::string& use = {});

    /// The verb is about to write to `path`; `source` is what the user knows the output by, such as "--save"
    /// or the input that it is made from. Returns why that must not happen; empty when it may.
    [[nodiscard]] std::string writes(const std::string& path, const std::string& source);

  private:
    struct Role {
        std::string path;
        std::string text;  ///< the use or the source
    };
    std::map<os::FileIdentity, Role> read_;
    std::map<os::FileIdentity, Role> written_;
};

}  // namespace cli
