#include "ladder/climbing_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <set>
#include <stdexcept>

#include "support/file_content.h"
#include "support/regressions.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kScene =
    "VORTAN XR COMPOSITION\nRESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n"
    "COMPOSITION NRM \"Main\" {\nFILE NRM PREMUL \"C:\\";

bool is_one_of(const std::string& text, std::initializer_list<const char*> all) {
    return std::find(all.begin(), all.end(), text) != all.end();
}

void add_examples(std::vector<Example>& examples) {
    const fs::path root = VXR_EXAMPLES_DIR;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (!entry.is_regular_file() || is_one_of(extension, {"", ".md", ".gitattributes"})) {
            continue;
        }
        const Kind kind = extension == ".aec"   ? Kind::scene
                          : extension == ".txl" ? Kind::texture
                                                : Kind::footage;
        examples.push_back({entry.path().string(), fs::relative(entry.path(), root).string(), kind, {}});
    }
}

void add_regressions(std::vector<Example>& examples) {
    for (const Regression& kept : regressions_in(VXR_REGRESSIONS_DIR)) {
        if (!kept.extension.empty()) {
            examples.push_back({kept.path, kept.name + kept.extension,
                                kept.extension == ".aec" ? Kind::scene : Kind::texture, kept.bytes});
        }
    }
}

}  // namespace

const std::vector<Example>& all_examples() {
    static const std::vector<Example> all = [] {
        std::vector<Example> examples;
        add_examples(examples);
        add_regressions(examples);
        std::sort(examples.begin(), examples.end(),
                  [](const Example& a, const Example& b) { return a.path < b.path; });
        return examples;
    }();
    return all;
}

bool is_sound(const Example& example) {
    return example.path.starts_with(VXR_EXAMPLES_DIR "/");
}

std::vector<Example> examples_of(Kind kind) {
    std::vector<Example> examples;
    for (const Example& example : all_examples()) {
        if (example.kind == kind) {
            examples.push_back(example);
        }
    }
    return examples;
}

ClimbingFile::ClimbingFile(const Example& example, bool with_neighbours)
    : bytes_(is_sound(example) ? content_of(example.path) : example.bytes) {
    const fs::path original = example.path;
    const std::string name = fs::path(example.name).filename().string();
    path_ = folder_.path(name);
    if (with_neighbours) {
        for (const fs::directory_entry& entry : fs::directory_iterator(original.parent_path())) {
            if (entry.is_regular_file() && entry.path().filename() != name) {
                fs::create_symlink(entry.path(), folder_.path(entry.path().filename().string()));
            }
        }
    }
    if (example.kind == Kind::footage) {
        scene_ = folder_.write("climbing.aec", kScene + name + "\"\n}\n");
    }
    constexpr mode_t kOwnFile = 0600;
    descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kOwnFile);
    if (descriptor_ < 0) {
        throw std::runtime_error("cannot write " + path_);
    }
    cut(bytes_.size());
}

ClimbingFile::~ClimbingFile() {
    ::close(descriptor_);
}

// Only what is different is written: most rungs differ from the one before in one byte.
void ClimbingFile::cut(std::size_t length_bytes) {
    if (flipped_bytes_ < length_bytes_) {
        write_at(flipped_bytes_, &bytes_[flipped_bytes_], 1);
    }
    if (length_bytes < length_bytes_) {
        if (::ftruncate(descriptor_, static_cast<off_t>(length_bytes)) != 0) {
            throw std::runtime_error("cannot cut " + path_);
        }
    } else {
        write_at(length_bytes_, bytes_.data() + length_bytes_, length_bytes - length_bytes_);
    }
    length_bytes_ = length_bytes;
}

void ClimbingFile::flip(std::size_t offset_bytes, unsigned bit) {
    cut(bytes_.size());
    const auto byte = static_cast<char>(static_cast<unsigned char>(bytes_[offset_bytes]) ^ (1U << bit));
    write_at(offset_bytes, &byte, 1);
    flipped_bytes_ = offset_bytes;
}

void ClimbingFile::write_at(std::size_t offset_bytes, const char* bytes, std::size_t count) const {
    if (::pwrite(descriptor_, bytes, count, static_cast<off_t>(offset_bytes)) !=
        static_cast<ssize_t>(count)) {
        throw std::runtime_error("cannot write " + path_);
    }
}

std::vector<std::size_t> some_of(std::size_t end, std::size_t most) {
    std::set<std::size_t> chosen;
    if (end <= most) {
        for (std::size_t i = 0; i < end; ++i) {
            chosen.insert(i);
        }
        return {chosen.begin(), chosen.end()};
    }
    constexpr unsigned kSeed = 20260101;
    std::mt19937 random(kSeed);
    while (chosen.size() < most) {
        chosen.insert(random() % end);
    }
    return {chosen.begin(), chosen.end()};
}
