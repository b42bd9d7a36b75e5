// Files as large as real scenes and textures may become are accepted. Each case runs in a process of its own,
// which yields its peak memory and processor time. Release build only.
//
// Prints a line `large: {...}` for scripts after each case.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/program.h"
#include "embedded/host.h"
#include "limit/scene_text.h"
#include "support/child_memory.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

constexpr std::int64_t kMostMemory_bytes = std::int64_t{6} << 30;
constexpr std::int32_t kSide_px = 16384;

/// Value `i` of a plane in which some rows pack well, some a little and some not at all.
std::uint8_t value_at(std::size_t i) {
    const std::size_t x = i % kSide_px;
    const std::size_t y = i / kSide_px;
    switch (y % 3) {
        case 0:
            return static_cast<std::uint8_t>(y);
        case 1:
            return static_cast<std::uint8_t>(x / 7);
        default:
            return static_cast<std::uint8_t>((x * 2654435761U) >> 11U);
    }
}

/// A row of the image. Blue is 0.
struct Row {
    std::string rgb;
    std::string alpha;
};

Row row_at(std::size_t y) {
    Row row;
    for (std::size_t x = 0; x < kSide_px; ++x) {
        const std::uint8_t value = value_at(y * kSide_px + x);
        row.rgb += {static_cast<char>(value), static_cast<char>(~value), '\0'};
        row.alpha += static_cast<char>(value);
    }
    return row;
}

bool write_large_texture(const std::string& path) {
    Texture texture;
    texture.width_px = kSide_px;
    texture.height_px = kSide_px;
    texture.pixels = PixelBuffer(texture.pixel_count() * 3);
    texture.alphas.push_back({"Alpha", PixelBuffer(texture.pixel_count())});
    // Rows whose numbers differ by a multiple of 768 are equal.
    constexpr std::size_t kDifferentRows = std::size_t{3} * 256;
    for (std::size_t first = 0; first < kDifferentRows; ++first) {
        const Row row = row_at(first);
        for (std::size_t y = first; y < kSide_px; y += kDifferentRows) {
            std::memcpy(texture.pixels.data() + y * row.rgb.size(), row.rgb.data(), row.rgb.size());
            std::memcpy(texture.alphas[0].values.data() + y * row.alpha.size(), row.alpha.data(),
                        row.alpha.size());
        }
    }
    return !write_texture(path, texture).has_value();
}

bool read_large_texture(const std::string& path) {
    const TextureReading reading = read_texture(path);
    if (!reading.texture.has_value() || !reading.warnings.empty() || reading.texture->alphas.size() != 1) {
        return false;
    }
    const Texture& texture = *reading.texture;
    for (std::size_t i = 0; i < texture.pixel_count(); i += 4099) {
        const std::uint8_t value = value_at(i);
        if (texture.pixels[3 * i] != value ||
            texture.pixels[3 * i + 1] != static_cast<std::uint8_t>(~value) ||
            texture.alphas[0].values[i] != value) {
            return false;
        }
    }
    return texture.width_px == kSide_px && texture.height_px == kSide_px;
}

/// Opens the texture with the bundle's input module and draws all of it.
bool draw_large_texture(const std::string& path) {
    embedded::Host host;
    if (!host.load(VXR_BUNDLE_PATH).ok()) {
        return false;
    }
    const embedded::OpenResult opened = host.open_with_module(path);
    embedded::FrameShape shape;
    shape.width_px = kSide_px;
    shape.height_px = kSide_px;
    const embedded::DrawResult drawn = host.draw(opened.in_spec, shape);
    if (!drawn.error.empty() || drawn.callback.code != kHostErrorNone) {
        return false;
    }
    const auto pixel_count = static_cast<std::size_t>(kSide_px) * kSide_px;
    for (std::size_t i = 0; i < pixel_count; i += 4099) {
        if (drawn.pixels[i].red != value_at(i) || drawn.pixels[i].alpha != value_at(i)) {
            return false;
        }
    }
    return drawn.pixels.size() == pixel_count;
}

std::string output_of(const std::vector<std::string>& arguments, cli::ExitCode& code) {
    std::ostringstream out;
    std::ostringstream err;
    cli::Terminal terminal{out, err, cli::Paint(false), cli::Paint(false), false};
    code = cli::run_program(arguments, terminal);
    return out.str();
}

bool is_checked(const std::string& path) {
    cli::ExitCode code{};
    output_of({"check", "--quiet", path}, code);
    return code == cli::ExitCode::fine;
}

/// Whether the import succeeds and its first line contains `summary`.
bool is_imported(const std::string& path, const std::string& summary) {
    cli::ExitCode code{};
    const std::string tree = output_of({"import", "--bundle", VXR_BUNDLE_PATH, path}, code);
    return code == cli::ExitCode::fine && tree.substr(0, tree.find('\n')).find(summary) != std::string::npos;
}

std::string scene_with_keys(int objects, int keys_each) {
    std::string keys;
    for (int key = 0; key < keys_each; ++key) {
        keys += "KEY " + std::to_string(key) + " 1.5 2.25 " + std::to_string(key) + ".125 10 20 30\n";
    }
    std::string text = "VORTAN XR COMPOSITION\nRESOLUTION 64 48\nFROM 0\nTO " +
                       std::to_string(keys_each - 1) + "\nRANGE " + std::to_string(keys_each) +
                       "\nFPS 25\nCOMPOSITION NRM \"a\" {\n}\n";
    for (int object = 0; object < objects; ++object) {
        text += "NULL \"" + std::to_string(object) + "\" {\n" + keys + "}\n";
    }
    return text;
}

/// Runs `work` in a process of its own and prints what it used.
void expect_done(const char* name, const std::function<bool()>& work) {
    const ChildMemory memory = memory_of(work);
    EXPECT_TRUE(memory.ended_well) << name;
    EXPECT_LT(memory.peak_bytes, kMostMemory_bytes) << name;
    std::cout << "large: "
              << nlohmann::ordered_json{{"name", name},
                                        {"peak_bytes", memory.peak_bytes},
                                        {"seconds", memory.seconds}}
                     .dump()
              << '\n';
}

TEST(LargeFiles, ATextureOf16384x16384PixelsWithAlpha) {
    const TemporaryFolder folder;
    const std::string path = folder.path("large.txl");
    expect_done("16,384 x 16,384 RGB and alpha, written", [&] { return write_large_texture(path); });
    expect_done("16,384 x 16,384 RGB and alpha, read", [&] { return read_large_texture(path); });
    expect_done("16,384 x 16,384 RGB and alpha, opened and drawn by the input module",
                [&] { return draw_large_texture(path); });
}

TEST(LargeFiles, AThousandLevelsOfNesting) {
    const TemporaryFolder folder;
    const std::string path = folder.write("nested.aec", nested_scene(1000));
    expect_done("1,000 levels of compositions, checked", [&] { return is_checked(path); });
    expect_done("1,000 levels of compositions, imported",
                [&] { return is_imported(path, "1000 compositions"); });
}

TEST(LargeFiles, AMillionKeys) {
    const TemporaryFolder folder;
    const std::string path = folder.write("keys.aec", scene_with_keys(1000, 1000));
    expect_done("1,000,000 keys in 1,000 objects, checked", [&] { return is_checked(path); });
    expect_done("1,000,000 keys in 1,000 objects, imported", [&] { return is_imported(path, "1000 nulls"); });
}

// A host inserts the keys of a stream one by one at their places among the others: quadratic, by design.
TEST(LargeFiles, AHundredThousandKeysInOneObject) {
    const TemporaryFolder folder;
    const std::string path = folder.write("keys.aec", scene_with_keys(1, 100000));
    expect_done("100,000 keys in one object, imported", [&] { return is_imported(path, "1 null"); });
}

}  // namespace
