#include "ladder/climbing_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <set>
#include <stdexcept>
#include <utility>

#include "support/file_content.h"
#include "support/fuzz_inputs.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kSceneWithFootage =
    "VORTAN XR COMPOSITION\nRESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n"
    "COMPOSITION NRM \"Main\" {\nFILE NRM PREMUL \"C:\\";

constexpr const char* kEveryConstruct =
    "VORTAN XR COMPOSITION RESOLUTION 7 5 FROM 0 TO 9 RANGE 10 FPS 25 ASPECT 1.5 FIELDS ODD LOCAL\n"
    "COMPOSITION NRM \"M$\"\" { / c\n FILE ADD PREMUL \"a.tif\"\n COMPOSITION MUL \"N\" { } }\r\n"
    "FSEQ <-> STRAIGHT \"a-path-of-more-than-twenty-bytes.tif\"\n"
    "CAMERA \"C\" { KEY 0 1 2 3 4 5 6 40 KEY 1 1 2 3 4 5 6 40 900 }\n"
    "LIGHT \"L\" { TYPE SPOT SHADOW HARD COLOR 1 1 1 INTENSITY 2 ANGLE 3 KEY 0 1 2 3 4 5 6 }\n"
    "NULL \"a name that is longer than fifty characters, so that it grows\" { KEY 0 1 2 3 4 5 6 }\n";

bool is_one_of(const std::string& text, std::initializer_list<const char*> all) {
    return std::find(all.begin(), all.end(), text) != all.end();
}

void add_examples(std::vector<Example>& examples) {
    const fs::path root = VXR_EXAMPLES_DIR;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (!entry.is_regular_file() || is_one_of(extension, {"", ".md", ".py", ".gitattributes"})) {
            continue;
        }
        const Kind kind = extension == ".aec"   ? Kind::scene
                          : extension == ".txl" ? Kind::texture
                                                : Kind::footage;
        examples.push_back(
            {entry.path().string(), fs::relative(entry.path(), root).string(), kind, {}, Origin::example});
    }
}

// Several targets of the fuzzers keep the same file: each content climbs once.
void add_fuzz_inputs(std::vector<Example>& examples, const char* folder, Origin origin) {
    std::set<std::pair<std::string, std::string>> contents;
    for (const FuzzInput& input : fuzz_inputs_in(folder)) {
        if (!input.extension.empty() && contents.emplace(input.extension, input.bytes).second) {
            examples.push_back({input.path, input.name + input.extension,
                                input.extension == ".aec" ? Kind::scene : Kind::texture, input.bytes,
                                origin});
        }
    }
}

}  // namespace

const std::vector<Example>& all_examples() {
    static const std::vector<Example> all = [] {
        std::vector<Example> examples;
        add_examples(examples);
        add_fuzz_inputs(examples, VXR_REGRESSIONS_DIR, Origin::regression);
        std::sort(examples.begin(), examples.end(),
                  [](const Example& a, const Example& b) { return a.name < b.name; });
        return examples;
    }();
    return all;
}

const std::vector<Example>& all_seeds() {
    static const std::vector<Example> all = [] {
        std::vector<Example> seeds;
        seeds.push_back({{}, "every_construct.aec", Kind::scene, kEveryConstruct});
        add_fuzz_inputs(seeds, VXR_CORPUS_DIR, Origin::seed);
        return seeds;
    }();
    return all;
}

std::vector<Example> examples_and_seeds() {
    std::vector<Example> all = all_examples();
    all.insert(all.end(), all_seeds().begin(), all_seeds().end());
    return all;
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
    : bytes_(example.origin == Origin::example ? content_of(example.path) : example.bytes) {
    const std::string name = fs::path(example.name).filename().string();
    path_ = folder_.path(name);
    if (with_neighbours && example.origin == Origin::example) {
        for (const fs::directory_entry& entry :
             fs::directory_iterator(fs::path(example.path).parent_path())) {
            if (entry.is_regular_file() && entry.path().filename() != name) {
                fs::create_symlink(entry.path(), folder_.path(entry.path().filename().string()));
            }
        }
    }
    if (example.kind == Kind::footage) {
        scene_ = folder_.write("climbing.aec", kSceneWithFootage + name + "\"\n}\n");
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

// Writes only what differs: most rungs differ from the one before in one byte.
void ClimbingFile::cut(std::size_t length_bytes) {
    if (changed_bytes_ < length_bytes_) {
        write_at(changed_bytes_, &bytes_[changed_bytes_], 1);
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
    replace(offset_bytes, static_cast<char>(static_cast<unsigned char>(bytes_[offset_bytes]) ^ (1U << bit)));
}

void ClimbingFile::replace(std::size_t offset_bytes, char byte) {
    cut(bytes_.size());
    write_at(offset_bytes, &byte, 1);
    changed_bytes_ = offset_bytes;
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
