// The program with and without the image library's module, in every layout of files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "binary_file/binary_file.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "system/program_path.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

const std::string kModule = "vxr_image_library.so";
/// A scene with a PNG that is named like a TIFF, about which only the library is asked.
const std::string& unusual_scene() {
    static const TemporaryFolder folder;
    static const std::string scene = [] {
        folder.write("picture.tif", content_of(VXR_EXAMPLES_DIR "/square/contact.png"));
        return folder.write("unusual.aec",
                            "VORTAN XR COMPOSITION\nRESOLUTION 640 360\nFROM 0\nTO 0\nRANGE 1\nFPS 25\n"
                            "COMPOSITION NRM \"Main\" {\n  FILE NRM STRAIGHT \"picture.tif\"\n}\n");
    }();
    return scene;
}

// Has files of the usual forms only.
const std::string kUsualScene = std::string(VXR_EXAMPLES_DIR) + "/interlaced/lantern_010.aec";

std::vector<std::string> needed_by(const std::string& path) {
    const std::string bytes = content_of(path);
    const binary_file::BinaryFile read = binary_file::read_binary_file(bytes).value();
    std::vector<std::string> names;
    for (const binary_file::NeededLibrary& library : read.images.front().needed) {
        names.emplace_back(library.name);
    }
    return names;
}

/// A copy of the program with nothing beside it.
class MovedProgram {
  public:
    MovedProgram() {
        folder_.make_folder("bin");
        fs::copy_file(VXR_PROGRAM, program());
        if (write_texture(folder_.path("a.txl"), made_texture(4, 3, Texture::kRgb, 1)).has_value()) {
            throw std::runtime_error("cannot write a texture");
        }
    }

    [[nodiscard]] fs::path program() const { return folder_.folder() / "bin" / "vxr"; }
    [[nodiscard]] std::string path(const char* name) const { return folder_.path(name); }

    void put_module(const fs::path& place) const {
        fs::create_directories(place.parent_path());
        fs::copy_file(VXR_IMAGE_LIBRARY_PATH, place);
    }

    [[nodiscard]] ProcessResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), program().string());
        return run_process(arguments);
    }

  private:
    TemporaryFolder folder_;
};

TEST(ImageLibrary, IsNeededByTheModuleOnly) {
    EXPECT_THAT(needed_by(VXR_IMAGE_LIBRARY_PATH), Contains(HasSubstr("OpenImageIO")));
    EXPECT_THAT(needed_by(VXR_PROGRAM), Not(Contains(HasSubstr("OpenImageIO"))));
}

TEST(ImageLibrary, IsFoundInEveryPlaceBesideTheProgram) {
    const std::size_t places = os::paths_beside(MovedProgram().program(), kModule).size();
    ASSERT_EQ(places, 3U);
    const std::string expected = run_process({VXR_PROGRAM, "check", unusual_scene()}).err;
    for (std::size_t i = 0; i < places; ++i) {
        const MovedProgram moved;
        const fs::path place = os::paths_beside(moved.program(), kModule)[i];
        moved.put_module(place);
        const ProcessResult check = moved.run({"check", unusual_scene()});
        EXPECT_EQ(check.exit_code, 0) << place << check.err;
        EXPECT_EQ(check.err, expected) << place;
        const ProcessResult convert =
            moved.run({"texture", "convert", moved.path("a.txl"), "-o", moved.path("a.png")});
        EXPECT_EQ(convert.exit_code, 0) << place << convert.err;
        EXPECT_TRUE(fs::is_regular_file(moved.path("a.png"))) << place;
    }
}

TEST(ImageLibrary, IsReportedMissingWithThePlacesSearchedAndOnlyWhenAnImageIsMet) {
    const MovedProgram moved;
    struct Case {
        const char* name;
        std::vector<std::string> arguments;
        int exit_code;
    };
    const std::vector<Case> cases{
        {"a texture is read without it", {"texture", "info", moved.path("a.txl")}, 0},
        {"a texture becomes a texture without it",
         {"texture", "convert", moved.path("a.txl"), "-o", moved.path("b.txl")},
         0},
        {"footage of usual forms is checked without it", {"check", kUsualScene}, 4},
        {"footage of usual forms is imported without it",
         {"import", "--bundle", VXR_BUNDLE_PATH, kUsualScene},
         0},
        {"footage that exists", {"check", unusual_scene()}, 3},
        {"an import of footage that exists", {"import", "--bundle", VXR_BUNDLE_PATH, unusual_scene()}, 3},
        {"an image to write", {"texture", "convert", moved.path("a.txl"), "-o", moved.path("b.png")}, 3},
        {"an image to read",
         {"texture", "convert", std::string(VXR_EXAMPLES_DIR) + "/interlaced/post.rla", "-o",
          moved.path("b.txl")},
         3},
        {"a frame to write",
         {"frame", "--bundle", VXR_BUNDLE_PATH, moved.path("a.txl"), "-o", moved.path("b.png")},
         3},
    };
    std::string places;
    for (const fs::path& place : os::paths_beside(moved.program(), kModule)) {
        places += (places.empty() ? "" : ", ") + place.string();
    }
    for (const Case& one : cases) {
        const ProcessResult run = moved.run(one.arguments);
        EXPECT_EQ(run.exit_code, one.exit_code) << one.name << run.err;
        const std::string reason = "images need the image library, which is in none of " + places;
        EXPECT_EQ(run.err.find(reason) != std::string::npos, one.exit_code == 3) << one.name << run.err;
    }
}

TEST(ImageLibrary, ThatCannotBeLoadedIsReportedWithTheReasonOfTheSystem) {
    const MovedProgram moved;
    const fs::path place = os::paths_beside(moved.program(), kModule).back();
    std::ofstream(place) << "no library";
    const ProcessResult run = moved.run({"check", unusual_scene()});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_THAT(run.err,
                HasSubstr("images need the image library, which cannot be loaded: " + place.string()));
}

TEST(ImageLibrary, OfAnotherVersionIsReportedWithWhatItLacks) {
    const MovedProgram moved;
    const fs::path place = os::paths_beside(moved.program(), kModule).back();
    fs::copy_file(VXR_BUNDLE_PATH, place);
    ProcessResult run = moved.run({"check", unusual_scene()});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_THAT(run.err, HasSubstr(kModule + " has no function vxr_image_functions"));

    fs::copy_file(VXR_NEWER_MODULE, place, fs::copy_options::overwrite_existing);
    run = moved.run({"check", unusual_scene()});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_THAT(run.err, HasSubstr(kModule + " has version 1000 of the functions"));
}

}  // namespace
