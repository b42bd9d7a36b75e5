// The readers without a host: wherever a file is cut and whichever bit is inverted, the result is a sound
// model or texture, or a refusal with one reason.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>

#include "composition/model/model_invariants.h"
#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "composition/read/read_observer.h"
#include "ladder/climbing_file.h"
#include "ladder/rungs.h"
#include "texture/value/texture_file.h"
#include "texture/value/texture_invariants.h"

namespace {

// The most inverted bits per file; an eighth as many lengths.
#if defined(VXR_SANITIZED)
constexpr std::size_t kMost = 240;
constexpr std::size_t kMostOfASeed = 40;
#else
constexpr std::size_t kMost = std::size_t{8} * 4096;
constexpr std::size_t kMostOfASeed = 1024;
#endif

struct FailureObserver : ReadObserver {
    void on_failure(const diagnostic::Diagnostic& error) override {
        ++failures;
        offset_bytes = error.at.offset_bytes.value_or(-1);
    }
    int failures = 0;
    std::int64_t offset_bytes = 0;
};

/// Reads a scene. Returns what is wrong with the result, or "".
std::string scene_violation(const std::string& path, ReadObserver* observer, bool& read) {
    ASCIIParser parser;
    parser.SetObserver(observer);
    tagProjectSettings settings;
    const bool opened = parser.Init(Filename(path.c_str()), 1, 0) == 0;
    read = opened && read_composition_file(parser, settings) == 1;
    return validate_model(settings, read ? ModelState::complete : ModelState::broken_off).value_or("");
}

/// Reads a scene as the bundle does and, with an observer, as the tools do: both must agree.
std::string scene_violation(const std::string& path) {
    bool read = false;
    bool read_by_tools = false;
    FailureObserver observer;
    const std::string violation =
        scene_violation(path, nullptr, read) + scene_violation(path, &observer, read_by_tools);
    if (read != read_by_tools) {
        return violation + "an observer changes whether the file is read";
    }
    if (observer.failures != (read ? 0 : 1)) {
        return violation + std::to_string(observer.failures) + " reasons";
    }
    const auto size_bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
    if (observer.offset_bytes < 0 || observer.offset_bytes > size_bytes) {
        return violation + "the place is outside the file";
    }
    return violation;
}

std::string texture_violation_of(const std::string& path) {
    const TextureReading reading = read_texture(path);
    if (reading.texture.has_value() == reading.error.has_value()) {
        return "neither a texture nor an error, or both";
    }
    return reading.texture.has_value() ? validate_texture(*reading.texture).value_or("") : "";
}

std::string violation_of(const Example& example, const ClimbingFile& file) {
    return example.kind == Kind::scene ? scene_violation(file.path()) : texture_violation_of(file.path());
}

std::size_t most_bits(const Example& example, const ClimbingFile& file) {
    if (example.origin == Origin::seed && !example.path.empty()) {
        return kMostOfASeed;
    }
    return file.size_bytes() < 4096 ? kMost : kMost / 16;
}

TEST(ReaderLadder, CutAtEveryLengthAndEveryBitInverted) {
    constexpr std::size_t kBits = 8;
    for (const Example& example : examples_and_seeds()) {
        if (example.kind == Kind::footage) {
            continue;
        }
        ClimbingFile file(example, false);
        EXPECT_EQ(violation_of(example, file), "") << example.name;
        const std::size_t most =
            example.origin == Origin::seed && !example.path.empty() ? kMostOfASeed : kMost;
        for (const std::size_t length : some_of(file.size_bytes(), most / kBits)) {
            file.cut(length);
            EXPECT_EQ(violation_of(example, file), "") << example.name << " cut at " << length;
            count_rungs("cuts");
        }
        for (const std::size_t bit : some_of(kBits * file.size_bytes(), most_bits(example, file))) {
            file.flip(bit / kBits, static_cast<unsigned>(bit % kBits));
            EXPECT_EQ(violation_of(example, file), "") << example.name << ", bit " << bit;
            count_rungs("flips");
        }
    }
}

TEST(ReaderLadder, EveryByteOfASceneReplaced) {
    for (const Example& example : examples_and_seeds()) {
        if (example.kind != Kind::scene) {
            continue;
        }
        ClimbingFile file(example, false);
        for (const std::size_t offset :
             some_of(file.size_bytes(), most_bits(example, file) / std::size(kBytesThatMatter))) {
            for (const char byte : kBytesThatMatter) {
                file.replace(offset, byte);
                EXPECT_EQ(violation_of(example, file), "")
                    << example.name << ", byte " << offset << " is " << static_cast<int>(byte);
                count_rungs("replaced_bytes");
            }
        }
    }
}

// Every length and every byte of the scene with every construct, also in builds with sanitizers.
TEST(ReaderLadder, EveryConstructCutAndReplacedEverywhere) {
    const Example& scene = all_seeds().front();
    ASSERT_EQ(scene.name, "every_construct.aec");
    ClimbingFile file(scene, false);
    bool read = false;
    EXPECT_EQ(scene_violation(file.path(), nullptr, read), "");
    EXPECT_TRUE(read);
    int accepted = 0;
    for (std::size_t length = 0; length < file.size_bytes(); ++length) {
        file.cut(length);
        EXPECT_EQ(scene_violation(file.path()), "") << "cut at " << length;
        EXPECT_EQ(scene_violation(file.path(), nullptr, read), "");
        accepted += read ? 1 : 0;
        count_rungs("cuts");
    }
    EXPECT_GT(accepted, 0) << "a file may end behind any of its sections";
    EXPECT_LT(accepted, 300);
    int refused = 0;
    for (std::size_t offset = 0; offset < file.size_bytes(); ++offset) {
        for (const char byte : kBytesThatMatter) {
            file.replace(offset, byte);
            EXPECT_EQ(scene_violation(file.path()), "")
                << "byte " << offset << " is " << static_cast<int>(byte);
            EXPECT_EQ(scene_violation(file.path(), nullptr, read), "");
            refused += read ? 0 : 1;
            count_rungs("replaced_bytes");
        }
    }
    EXPECT_GT(refused, 0);
}

}  // namespace
