#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace cli {

/// A text file that a verb writes for the user. What cannot be written throws std::runtime_error with the
/// path and the reason.
class OutputFile {
  public:
    /// Creates the file, replacing what was there.
    explicit OutputFile(std::string path);

    void write(std::string_view text) { stream_ << text; }
    /// Everything is written; throws when it could not be.
    void close();

  private:
    [[noreturn]] void give_up() const;

    std::string path_;
    std::ofstream stream_;
};

}  // namespace cli
