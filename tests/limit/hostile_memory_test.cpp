// The memory that hostile files make their readers use, with a process for each file and reader. Release
// build only: sanitizers use more memory themselves.
//
// Prints a line `memory: {...}` for scripts.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/scene/scene_reading.h"
#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "embedded/host.h"
#include "limit/hostile_files.h"
#include "limit/limits.h"
#include "support/child_memory.h"
#include "support/temporary_folder.h"
#include "texture/txl/base_bitmap.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/value/texture_file.h"

namespace {

/// The most memory that a reader may use for such a small file.
constexpr std::size_t kSmallFile_bytes = 100;
constexpr std::int64_t kMostOfASmallFile_bytes = std::int64_t{4} << 20;

/// For larger files, in addition: the memory for repaired rows, six bytes of a bitmap for each of their
/// bytes.
constexpr std::int64_t kMostOfRepairs_bytes = 6 * limits::kRepairedBytes.value;

/// And this for each byte of the file. A layer has at least 59 bytes, and for its alpha channel the C library
/// may clear up to 128 KiB that it keeps in reserve; a row of one pixel has 7 bytes and occupies up to two
/// pages of memory.
constexpr std::int64_t kMostOfAByte_bytes = 2400;

std::int64_t most_memory_bytes(std::size_t file_bytes) {
    return file_bytes <= kSmallFile_bytes ? kMostOfASmallFile_bytes
                                          : kMostOfASmallFile_bytes + kMostOfRepairs_bytes +
                                                kMostOfAByte_bytes * static_cast<std::int64_t>(file_bytes);
}

struct Reader {
    const char* name;
    std::function<void(const std::string& path)> read;
};

// One host for all processes: each gets a copy with the bundle loaded and nothing read.
embedded::Host& loaded_host() {
    static embedded::Host host;
    static const bool kLoaded = host.load(VXR_BUNDLE_PATH).ok();
    if (!kLoaded) {
        throw std::runtime_error("the bundle was not loaded");
    }
    return host;
}

const std::vector<Reader>& readers() {
    static const std::vector<Reader> kReaders{
        {"composition",
         [](const std::string& path) {
             tagProjectSettings settings;
             ASCIIParser parser;
             if (parser.Init(Filename(path.c_str()), 1, 0) == 0) {
                 read_composition_file(parser, settings);
             }
         }},
        {"composition with observer", [](const std::string& path) { cli::read_scene(path); }},
        {"bitmap",
         [](const std::string& path) {
             BaseBitmap bitmap;
             ExampleTXLImage image(&bitmap);
             TXLImageFilter filter;
             filter.LoadImage(path.c_str(), &image);
         }},
        {"texture", [](const std::string& path) { (void)read_texture(path); }},
        {"texture with outline",
         [](const std::string& path) { (void)read_texture(path, {.limits = {}, .outline = true}); }},
        {"host",
         [](const std::string& path) {
             embedded::Host& host = loaded_host();
             if (host.module_for(path) != nullptr) {
                 host.open_with_module(path);
             } else if (host.verify(path).importable) {
                 host.import_file(path);
             }
         }},
    };
    return kReaders;
}

/// The run with the most memory.
struct Worst {
    std::int64_t memory_bytes = 0;
    std::string of;
};

struct Measured {
    std::int64_t files = 0;
    std::int64_t runs = 0;
    Worst small;
    Worst large;
    double large_per_byte = 0;  ///< of the memory above the other two allowances
};

void measure(const HostileFile& file, const TemporaryFolder& folder, Measured& measured) {
    const std::string path = folder.write("hostile" + file.extension, file.bytes);
    ++measured.files;
    for (const Reader& reader : readers()) {
        const ChildMemory memory = memory_of([&] {
            reader.read(path);
            return true;
        });
        const std::string run = file.name + " (" + file.extension + ", " + std::to_string(file.bytes.size()) +
                                " bytes) in " + reader.name;
        EXPECT_TRUE(memory.ended_well) << run;
        EXPECT_LE(memory.above_start_bytes(), most_memory_bytes(file.bytes.size())) << run;
        ++measured.runs;
        const bool small = file.bytes.size() <= kSmallFile_bytes;
        Worst& worst = small ? measured.small : measured.large;
        if (memory.above_start_bytes() > worst.memory_bytes) {
            worst = {memory.above_start_bytes(), run};
        }
        if (!small) {
            const std::int64_t above_bytes =
                memory.above_start_bytes() - kMostOfASmallFile_bytes - kMostOfRepairs_bytes;
            measured.large_per_byte =
                std::max(measured.large_per_byte,
                         static_cast<double>(above_bytes) / static_cast<double>(file.bytes.size()));
        }
    }
}

// The measurement itself: with nothing read, with memory used, and with a crash.
TEST(HostileMemory, UsedMemoryIsMeasured) {
    constexpr std::int64_t kTaken_bytes = std::int64_t{64} << 20;
    const ChildMemory nothing = memory_of([] { return true; });
    EXPECT_TRUE(nothing.ended_well);
    EXPECT_LT(nothing.above_start_bytes(), kMostOfASmallFile_bytes / 4);
    const ChildMemory touched = memory_of([&] {
        const std::string taken(static_cast<std::size_t>(kTaken_bytes), 'x');
        return taken[taken.size() / 2] == 'x';
    });
    EXPECT_TRUE(touched.ended_well);
    EXPECT_GE(touched.above_start_bytes(), kTaken_bytes);
    const ChildMemory crashed = memory_of([]() -> bool { ::_exit(0); });
    EXPECT_FALSE(crashed.ended_well) << "work that does not finish is no measurement";
}

TEST(HostileMemory, StaysInProportionToTheFile) {
    loaded_host();
    const TemporaryFolder folder;
    Measured measured;
    std::vector<HostileFile> files = hostile_files();
    ASSERT_EQ(std::count_if(files.begin(), files.end(),
                            [](const HostileFile& file) { return file.bytes.size() <= kSmallFile_bytes; }),
              22);
    const std::vector<HostileFile> kept = former_finds(VXR_REGRESSIONS_DIR);
    files.insert(files.end(), kept.begin(), kept.end());
    for (const HostileFile& file : files) {
        measure(file, folder, measured);
    }
    std::cout << "memory: "
              << nlohmann::ordered_json{{"files", measured.files},
                                        {"runs", measured.runs},
                                        {"small_file_bytes", kSmallFile_bytes},
                                        {"small_allowed_bytes", kMostOfASmallFile_bytes},
                                        {"small_worst_bytes", measured.small.memory_bytes},
                                        {"small_worst", measured.small.of},
                                        {"large_allowed_bytes",
                                         kMostOfASmallFile_bytes + kMostOfRepairs_bytes},
                                        {"large_allowed_bytes_per_byte", kMostOfAByte_bytes},
                                        {"large_worst_bytes_per_byte", measured.large_per_byte},
                                        {"large_worst_bytes", measured.large.memory_bytes},
                                        {"large_worst", measured.large.of}}
                     .dump()
              << '\n';
}

}  // namespace
