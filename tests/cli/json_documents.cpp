// Every JSON document and call log that the program writes in the tests of a test program is validated
// against docs/schema: all at once when the tests are over, because starting the validator takes longer than
// its work.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/file_content.h"
#include "support/program_output.h"
#include "support/temporary_folder.h"

namespace {

class JsonDocuments : public testing::Environment {
  public:
    JsonDocuments() { kept = this; }

    static void keep(const std::vector<std::string>& command, const std::string& out) {
        const auto program = std::find_if(command.begin(), command.end(), [](const std::string& word) {
            return std::filesystem::path(word).filename() == "vxr";
        });
        if (program != command.end() && program + 1 != command.end()) {
            kept->keep_of_program({program + 1, command.end()}, out);
        }
    }

    void TearDown() override {
        if (folder_ == nullptr) {
            return;
        }
        const std::string command = "python3 -W ignore '" VXR_PROJECT_DIR
                                    "/tests/support/validate_json.py' '" VXR_PROJECT_DIR "/docs/schema' '" +
                                    folder_->folder().string() + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << "a document does not follow its schema";
    }

  private:
    // Larger documents repeat what smaller ones have, and take the validator minutes.
    static constexpr std::size_t kMost_bytes = std::size_t{1} << 19U;

    void keep_of_program(const std::vector<std::string>& words, const std::string& out) {
        const auto has = [&words](const char* option) {
            return std::find(words.begin(), words.end(), option) != words.end();
        };
        if (has("--json") && out.starts_with('{') && out.size() <= kMost_bytes) {
            const std::string verb =
                words[0] == "texture" || words[0] == "batch" ? words[0] + '-' + words[1] : words[0];
            write((has("--list-codes") ? "codes" : verb) + '.' + std::to_string(++count_) + ".json", out);
        }
        const auto log = std::find(words.begin(), words.end(), "--log");
        if (log + 1 < words.end() && std::filesystem::is_regular_file(*(log + 1))) {
            const std::string lines = content_of(*(log + 1));
            if (lines.starts_with("{\"n\":1,") && lines.size() <= kMost_bytes) {
                write("call-log." + std::to_string(++count_) + ".jsonl", lines);
            }
        }
    }

    void write(const std::string& name, const std::string& text) {
        if (folder_ == nullptr) {
            folder_ = std::make_unique<TemporaryFolder>();
        }
        folder_->write(name, text);
    }

    static inline JsonDocuments* kept = nullptr;
    std::unique_ptr<TemporaryFolder> folder_;
    int count_ = 0;
};

// GoogleTest owns it.
[[maybe_unused]] const testing::Environment* const kEnvironment = [] {
    program_output_listener = &JsonDocuments::keep;
    return testing::AddGlobalTestEnvironment(new JsonDocuments);
}();

}  // namespace
