// The readers themselves, without a host: what they make of every cut and of every turned bit is sound.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "composition/model/model_invariants.h"
#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "ladder/climbing_file.h"
#include "ladder/rungs.h"
#include "texture/value/texture_complaint.h"
#include "texture/value/texture_file.h"

namespace {

#if defined(VXR_SANITIZED)
constexpr std::size_t kMost = 480;
#else
constexpr std::size_t kMost = std::size_t{8} * 4096;
#endif

std::string scene_complaint(const std::string& path) {
    ASCIIParser parser;
    tagProjectSettings settings;
    const bool opened = parser.Init(Filename(path.c_str()), 1, 0) == 0;
    const bool read = opened && ReadCompositionFile(parser, settings) == 1;
    return validate_model(settings, read ? ModelState::complete : ModelState::broken_off).value_or("");
}

std::string texture_complaint_of(const std::string& path) {
    const TextureReading reading = read_texture(path);
    if (reading.texture.has_value() == reading.error.has_value()) {
        return "neither a texture nor an error, or both";
    }
    return reading.texture.has_value() ? texture_complaint(*reading.texture).value_or("") : "";
}

std::string complaint_of(const Example& example, const ClimbingFile& file) {
    return example.kind == Kind::scene ? scene_complaint(file.path()) : texture_complaint_of(file.path());
}

TEST(ReaderLadder, CutAtEveryLengthAndEveryBitTurned) {
    for (const Example& example : all_examples()) {
        if (example.kind == Kind::footage) {
            continue;
        }
        ClimbingFile file(example, false);
        EXPECT_EQ(complaint_of(example, file), "") << example.name;
        for (const std::size_t length : some_of(file.size_bytes(), kMost / 8)) {
            file.cut(length);
            EXPECT_EQ(complaint_of(example, file), "") << example.name << " cut at " << length;
            count_rungs("cuts");
        }
        constexpr std::size_t kBits = 8;
        for (const std::size_t bit :
             some_of(kBits * file.size_bytes(), file.size_bytes() < 4096 ? kMost : kMost / 16)) {
            file.flip(bit / kBits, static_cast<unsigned>(bit % kBits));
            EXPECT_EQ(complaint_of(example, file), "") << example.name << ", bit " << bit;
            count_rungs("flips");
        }
    }
}

}  // namespace
