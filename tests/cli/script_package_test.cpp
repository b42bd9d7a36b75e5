#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cli/job_folder.h"
#include "support/child_process.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

const std::string kExamples = VXR_PROJECT_DIR "/examples";

Ran packed(const std::string& scene, const std::string& archive) {
    return run({"export", scene, "--bundle", VXR_BUNDLE_PATH, "--to", "jsx", "--package", archive});
}

// Unpacks by another program, as a user would, and returns the names.
std::vector<std::string> unpacked(const std::string& archive, const std::string& folder) {
    const ProcessResult names = run_process({"python3", "-c",
                                             "import sys, zipfile\n"
                                             "archive = zipfile.ZipFile(sys.argv[1])\n"
                                             "assert archive.testzip() is None\n"
                                             "archive.extractall(sys.argv[2])\n"
                                             "print('\\n'.join(archive.namelist()))",
                                             archive, folder});
    EXPECT_EQ(names.exit_code, 0) << names.err;
    std::vector<std::string> lines;
    std::istringstream text(names.out);
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(ScriptPackage, OpensAnywhere) {
    const JobFolder job;
    const std::string archive = job.path("shelf.zip");
    const Ran ran = packed(kExamples + "/textured/shelf_040.aec", archive);
    ASSERT_EQ(ran.code, ExitCode::fine) << ran.err;
    const std::string elsewhere = job.path("elsewhere");
    EXPECT_THAT(unpacked(archive, elsewhere),
                UnorderedElementsAre("shelf_040/shelf_040.jsx", "shelf_040/shelf_040.aec",
                                     "shelf_040/wall.txl", "shelf_040/label.txl", "shelf_040/grain.txl",
                                     "shelf_040/check.txt", "shelf_040/proof.json"));
    const std::string folder = elsewhere + "/shelf_040/";
    EXPECT_EQ(content_of(folder + "wall.txl"), content_of(kExamples + "/textured/wall.txl"));
    EXPECT_EQ(content_of(folder + "shelf_040.aec"), content_of(kExamples + "/textured/shelf_040.aec"));
    const std::string script = content_of(folder + "shelf_040.jsx");
    EXPECT_THAT(script, HasSubstr("\"wall.txl\""));
    EXPECT_THAT(script, Not(HasSubstr(kExamples)))
        << "the script names no folder of the machine that made it";
    EXPECT_EQ(json::parse(content_of(folder + "proof.json"))["schema"], 1);
    // The plug-in finds the footage beside the scene, too.
    const Ran imported = run({"import", folder + "shelf_040.aec", "--bundle", VXR_BUNDLE_PATH, "--json"});
    EXPECT_TRUE(json::parse(imported.out)["import"]["missing_footage"].empty());
}

TEST(ScriptPackage, HasTheFramesThatAreUsed) {
    const JobFolder job;
    for (const int frame : {1, 2, 3, 4, 5}) {
        job.image("glow." + std::to_string(frame) + ".tga");
    }
    job.image("glow.2.old.tga");
    const std::string scene =
        job.scene("shot.aec", "  FSEQ NRM STRAIGHT \"glow.1.tga\"\n", "FROM 2 TO 4 RANGE 3\n");
    const std::string archive = job.path("shot.zip");
    const Ran ran = packed(scene, archive);
    ASSERT_EQ(ran.code, ExitCode::fine) << ran.err;
    std::vector<std::string> names = unpacked(archive, job.path("x"));
    // Of the five files, those of the scene's frames.
    std::erase_if(names, [](const std::string& name) { return name.find(".tga") == std::string::npos; });
    EXPECT_THAT(names, ElementsAre("shot/glow.2.tga", "shot/glow.3.tga", "shot/glow.4.tga"));
}

TEST(ScriptPackage, KeepsFilesOfOneNameApart) {
    const JobFolder job;
    job.image("a/plate.tga");
    job.image("b/Plate.tga");
    const std::string scene =
        job.scene("shot.aec", "  FILE NRM STRAIGHT \"" + job.path("a/plate.tga") +
                                  "\"\n  FILE NRM STRAIGHT \"" + job.path("b/Plate.tga") + "\"\n");
    const std::string archive = job.path("shot.zip");
    ASSERT_EQ(packed(scene, archive).code, ExitCode::fine);
    const std::vector<std::string> names = unpacked(archive, job.path("x"));
    EXPECT_THAT(names, testing::IsSupersetOf({"shot/plate.tga", "shot/2/Plate.tga"}));
    EXPECT_THAT(content_of(job.path("x/shot/shot.jsx")), HasSubstr("2/Plate.tga"));
}

TEST(ScriptPackage, IsRefusedAndLeavesNothing) {
    const JobFolder job;
    job.image("plate.tga");
    const std::string scene = job.scene("shot.aec", "  FILE NRM STRAIGHT \"plate.tga\"\n");
    const std::string there = job.path("there.zip");
    job.write("there.zip", "mine");
    struct Case {
        const char* name;
        std::vector<std::string> arguments;
        const char* error;
        ExitCode code;
    };
    const Case cases[] = {
        {"what exists is not replaced",
         {scene, "--to", "jsx", "--package", there},
         "exists",
         ExitCode::cannot_read_or_write},
        {"a folder that is missing",
         {scene, "--to", "jsx", "--package", job.path("plate.tga/x.zip")},
         "cannot write",
         ExitCode::cannot_read_or_write},
        {"another format",
         {scene, "--to", "glb", "--package", "x.zip"},
         "--package is for --to jsx",
         ExitCode::usage},
        {"two scenes",
         {scene, scene, "--to", "jsx", "--package", "x.zip"},
         "--package is for one SCENE",
         ExitCode::usage},
        {"two places",
         {scene, "--to", "jsx", "--package", "x.zip", "-o", "x.jsx"},
         "exclude each other",
         ExitCode::usage},
        {"the scene itself", {scene, "--to", "jsx", "--package", scene}, "shot.aec", ExitCode::usage},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> arguments{"export", "--bundle", VXR_BUNDLE_PATH};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const Ran ran = run(arguments);
        EXPECT_EQ(ran.code, c.code) << ran.out << ran.err;
        EXPECT_THAT(ran.err, HasSubstr(c.error));
    }
    EXPECT_EQ(content_of(there), "mine");
}

// Something else writes to the file for as long as the package is made.
class Writing {
  public:
    explicit Writing(std::string path)
        : path_(std::move(path)), thread_([this] {
              while (!done_) {
                  std::ofstream(path_, std::ios::app) << '\n';
              }
          }) {}
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;
    ~Writing() {
        done_ = true;
        thread_.join();
    }

  private:
    std::string path_;
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

TEST(ScriptPackage, IsNotMadeOfFilesThatChangeMeanwhile) {
    const JobFolder job;
    job.image("plate.tga");
    const std::string scene = job.scene("shot.aec", "  FILE NRM STRAIGHT \"plate.tga\"\n");
    // Line ends after the last pixel, and after the last word, change nothing of what is read.
    for (const std::string& changing : {job.path("plate.tga"), scene}) {
        SCOPED_TRACE(changing);
        const std::string archive = job.path("shot.zip");
        const std::string script = job.path("shot.jsx");
        {
            const Writing writing(changing);
            // On a busy machine a package may be complete before anything is written.
            Ran ran = packed(scene, archive);
            for (int i = 0; i < 1000 && ran.code == ExitCode::fine; ++i) {
                std::filesystem::remove(archive);
                ran = packed(scene, archive);
            }
            EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write);
            EXPECT_THAT(ran.err, HasSubstr(changing + " was changed while the package was made"));
            // A script alone names the footage and holds none of it.
            EXPECT_EQ(run({"export", scene, "--bundle", VXR_BUNDLE_PATH, "--to", "jsx", "-o", script}).code,
                      ExitCode::fine);
        }
        // The scene, its footage and the script: no archive, and no part of one.
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(job.path(".")), {}), 3);
        EXPECT_FALSE(std::filesystem::exists(archive));
        EXPECT_TRUE(std::filesystem::exists(script));
        EXPECT_EQ(packed(scene, archive).code, ExitCode::fine);
        std::filesystem::remove(archive);
        std::filesystem::remove(script);
    }
}

}  // namespace
