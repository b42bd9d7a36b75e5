#pragma once

#include <memory>
#include <string>

namespace cli {

/// A ZIP archive that is being written. Only zip_file_libzip.cpp knows the library; zip_file_none.cpp is for
/// builds without it. Every function throws std::runtime_error with the reason when it fails.
class ZipFile {
  public:
    /// Writes to the file at `path` when it is closed, and makes no other file.
    explicit ZipFile(const std::string& path);
    ~ZipFile();
    ZipFile(const ZipFile&) = delete;
    ZipFile& operator=(const ZipFile&) = delete;

    /// The bytes of the file at `source`, which stays as it is until the archive is closed. Stored, not
    /// packed: pictures hardly get smaller.
    void add_file(const std::string& name, const std::string& source);
    void add_bytes(const std::string& name, const std::string& bytes);
    void close();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace cli
