#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "cli/job/collect_plan.h"
#include "cli/job/collect_run.h"
#include "cli/job_folder.h"
#include "cli/json_schema.h"
#include "support/child_process.h"
#include "support/program_run.h"

namespace {

using cli::ExitCode;
using nlohmann::json;
using Names = std::set<std::string>;

Ran collect(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "collect");
    return run(arguments);
}

// The names of the footage that the import of the scene finds.
Names footage_of(const std::string& scene) {
    const Ran imported = run({"import", "--bundle", VXR_BUNDLE_PATH, "--json", scene});
    EXPECT_EQ(imported.code, ExitCode::fine) << imported.err;
    Names names;
    const json document = json::parse(imported.out);
    for (const json& footage : document.at("footage")) {
        names.insert((footage["kind"] == "placeholder" ? "MISSING " : "") +
                     footage["name"].get<std::string>());
    }
    return names;
}

std::string sha256_by_coreutils(const std::string& path) {
    return run_process({"sha256sum", "-b", path}).out.substr(0, 64);
}

TEST(CollectVerb, WorksWhereverTheFolderGoes) {
    const JobFolder job;
    job.image("r/plate.tga");
    for (const char* frame : {"r/glow0001.tga", "r/glow0002.tga", "r/glow0003.tga"}) {
        job.image(frame);
    }
    job.image("r/glow.tga");
    const std::string scene = job.scene("job/shot.aec", "FILE NRM STRAIGHT \"" + job.path("r/plate.tga") +
                                                            "\"\nFSEQ ADD PREMUL \"C:\\gone\\glow0002.tga\"\n"
                                                            "FILE NRM STRAIGHT \"C:\\gone\\gone.tga\"\n");
    const Ran ran = collect({scene, "--search", job.path("r"), "-o", job.path("out")});
    EXPECT_EQ(ran.code, ExitCode::footage_missing) << ran.err;
    const Names expected{"shot.aec",     "plate.tga",    "glow0001.tga",
                         "glow0002.tga", "glow0003.tga", "manifest.json"};
    EXPECT_EQ(job.names_in("out"), expected);

    std::filesystem::rename(job.path("out"), job.path("elsewhere"));
    std::filesystem::remove_all(job.path("r"));
    EXPECT_EQ(footage_of(job.path("elsewhere/shot.aec")),
              (Names{"plate.tga", "glow[0001-0003].tga", "MISSING gone.tga"}));

    EXPECT_EQ(schema_faults("manifest.json", job.content("elsewhere/manifest.json")), "");
    const json manifest = json::parse(job.content("elsewhere/manifest.json"));
    EXPECT_EQ(manifest["schema"], 1);
    ASSERT_EQ(manifest["files"].size(), expected.size() - 1);
    for (const json& file : manifest["files"]) {
        const std::string path = job.path("elsewhere/" + file["path"].get<std::string>());
        EXPECT_EQ(file["sha256"], sha256_by_coreutils(path)) << path;
        EXPECT_EQ(file["bytes"], std::filesystem::file_size(path)) << path;
    }
    EXPECT_EQ(manifest["files"][0]["path"], "glow0001.tga");
    EXPECT_EQ(manifest["files"][0]["source"], job.path("r/glow0001.tga"));
}

TEST(CollectVerb, KeepsFilesOfOneNameApart) {
    const JobFolder job;
    job.image("a/plate.tga", 1);
    job.image("b/plate.tga", 2);
    job.image("c/PLATE.tga", 3);
    job.image("a/s.0001.tga", 4);
    job.image("a/s.0002.tga", 5);
    job.image("b/s.0003.tga", 6);
    job.image("b/s.0004.tga", 7);
    job.image("b/n1.tga", 8);
    job.image("c/n2.tga", 9);
    const auto entry = [&](const char* kind, const char* name) {
        return std::string(kind) + " NRM STRAIGHT \"" + job.path(name) + "\"\n";
    };
    const std::string scene =
        job.scene("shot.aec", entry("FILE", "a/plate.tga") + entry("FILE", "b/plate.tga") +
                                  entry("FILE", "c/PLATE.tga") + entry("FILE", "a/plate.tga") +
                                  entry("FSEQ", "a/s.0001.tga") + entry("FSEQ", "b/s.0003.tga") +
                                  entry("FILE", "c/n2.tga") + entry("FSEQ", "b/n1.tga"));
    const Ran ran = collect({scene, "-o", job.path("out")});
    EXPECT_EQ(ran.code, ExitCode::fine) << ran.err;
    EXPECT_EQ(job.names_in("out"),
              (Names{"shot.aec", "manifest.json", "plate.tga", "plate-2.tga", "PLATE-3.tga", "s.0001.tga",
                     "s.0002.tga", "s-2.0003.tga", "s-2.0004.tga", "n2.tga", "n-2-1.tga"}));
    EXPECT_EQ(job.content("out/plate-2.tga"), job.content("b/plate.tga"));
    EXPECT_EQ(job.content("out/PLATE-3.tga"), job.content("c/PLATE.tga"));
    EXPECT_EQ(job.content("out/s-2.0004.tga"), job.content("b/s.0004.tga"));
    EXPECT_EQ(footage_of(job.path("out/shot.aec")),
              (Names{"plate.tga", "plate-2.tga", "PLATE-3.tga", "s.[0001-0002].tga", "s-2.[0003-0004].tga",
                     "n2.tga", "n-2-[1-1].tga"}));
}

TEST(CollectVerb, AMissingPictureIsNotReplacedByAnother) {
    const JobFolder job;
    job.image("a/plate.tga");
    const std::string scene =
        job.scene("shot.aec", "FILE NRM STRAIGHT \"" + job.path("a/plate.tga") + "\"\nFILE NRM STRAIGHT \"" +
                                  job.path("gone/Plate.tga") + "\"\n");
    EXPECT_EQ(collect({scene, "-o", job.path("out")}).code, ExitCode::footage_missing);
    EXPECT_EQ(job.names_in("out"), (Names{"shot.aec", "manifest.json", "plate-2.tga"}));
    EXPECT_EQ(footage_of(job.path("out/shot.aec")), (Names{"plate-2.tga", "MISSING Plate.tga"}));
}

struct Trimming {
    const char* name;
    const char* settings;  ///< the last ones count
    Names frames;
};

const Trimming kTrimmings[] = {
    {"as many frames as the range has", "FROM 0 TO 1 RANGE 8\n", {"s05.tga", "s06.tga"}},
    {"whatever the numbers of the range are", "FROM 6 TO 7 RANGE 8\n", {"s05.tga", "s06.tga"}},
    {"no more than the composition has", "FROM 0 TO 7 RANGE 1\n", {"s05.tga"}},
    {"what begins late in the composition is cut", "LOCAL FROM 6 TO 9 RANGE 8\n", {"s05.tga", "s06.tga"}},
    {"always one", "LOCAL FROM 9 TO 9 RANGE 8\n", {"s05.tga"}},
    {"a gap counts as frames", "FROM 0 TO 4 RANGE 8\n", {"s05.tga", "s06.tga", "s09.tga"}},
    {"the gap alone", "FROM 0 TO 3 RANGE 8\n", {"s05.tga", "s06.tga"}},
};

TEST(CollectVerb, TrimsToTheFramesThatAreShown) {
    for (const Trimming& one : kTrimmings) {
        const JobFolder job;
        for (const char* frame : {"r/s05.tga", "r/s06.tga", "r/s09.tga", "r/s10.tga"}) {
            job.image(frame);
        }
        // The path names a frame that may be trimmed away.
        const std::string scene =
            job.scene("shot.aec", "FSEQ NRM STRAIGHT \"" + job.path("r/s10.tga") + "\"\n", one.settings);
        EXPECT_EQ(collect({scene, "--trim", "-o", job.path("out")}).code, ExitCode::fine) << one.name;
        Names expected = one.frames;
        expected.insert({"shot.aec", "manifest.json"});
        EXPECT_EQ(job.names_in("out"), expected) << one.name;
        EXPECT_EQ(footage_of(job.path("out/shot.aec")).begin()->find("MISSING"), std::string::npos)
            << one.name;
    }
}

TEST(CollectVerb, GoesOnAndOverwritesNothing) {
    const JobFolder job;
    job.image("a/plate.tga", 1);
    job.image("a/logo.tga", 2);
    const std::string scene =
        job.scene("shot.aec", "FILE NRM STRAIGHT \"" + job.path("a/plate.tga") + "\"\nFILE NRM STRAIGHT \"" +
                                  job.path("a/logo.tga") + "\"\n");
    const std::vector<std::string> command{scene, "-o", job.path("out"), "--json"};
    ASSERT_EQ(collect(command).code, ExitCode::fine);
    std::filesystem::remove(job.path("out/logo.tga"));
    std::filesystem::remove(job.path("out/shot.aec"));

    const Ran again = collect(command);
    EXPECT_EQ(again.code, ExitCode::fine) << again.err;
    EXPECT_EQ(schema_faults("collect.json", again.out), "");
    std::set<std::pair<std::string, std::string>> arrivals;
    const json all_files = json::parse(again.out).at("files");
    for (const json& file : all_files) {
        arrivals.emplace(file["path"].get<std::string>(), file["arrival"].get<std::string>());
    }
    EXPECT_EQ(arrivals, (std::set<std::pair<std::string, std::string>>{
                            {"logo.tga", "copied"}, {"plate.tga", "there"}, {"shot.aec", "copied"}}));

    // As long as the picture, but another one.
    job.image("out/plate.tga", 9);
    const std::string other = job.content("out/plate.tga");
    std::filesystem::remove(job.path("out/logo.tga"));
    const Ran refused = collect(command);
    EXPECT_EQ(refused.code, ExitCode::refused);
    EXPECT_NE(refused.out.find("is another file"), std::string::npos) << refused.out;
    EXPECT_EQ(job.content("out/plate.tga"), other);
    EXPECT_FALSE(std::filesystem::exists(job.path("out/logo.tga"))) << "nothing is written then";
}

TEST(CollectVerb, StaysOffFilesThatAreInTheWay) {
    const JobFolder job;
    job.image("a/plate.tga");
    const std::string scene =
        job.scene("shot.aec", "FILE NRM STRAIGHT \"" + job.path("a/plate.tga") + "\"\n");
    job.write("one/manifest.json", "{\"mine\": true}\n");
    EXPECT_EQ(collect({scene, "-o", job.path("one")}).code, ExitCode::refused);
    EXPECT_EQ(job.names_in("one"), Names{"manifest.json"});

    // The scene's own folder: its name is taken by the scene itself.
    const std::string text = job.content("shot.aec");
    EXPECT_EQ(collect({scene, "-o", job.path("")}).code, ExitCode::refused);
    EXPECT_EQ(job.content("shot.aec"), text);
    EXPECT_FALSE(std::filesystem::exists(job.path("manifest.json")));

    // A link that leads nowhere is something, too.
    job.folder().make_folder("two");
    std::filesystem::create_symlink("nowhere", job.path("two/plate.tga"));
    EXPECT_EQ(collect({scene, "-o", job.path("two")}).code, ExitCode::refused);
    EXPECT_EQ(job.names_in("two"), Names{"plate.tga"});

    job.write("three", "mine");
    const Ran file = collect({scene, "-o", job.path("three")});
    EXPECT_EQ(file.code, ExitCode::refused);
    EXPECT_NE(file.err.find("three is not a folder; nothing is collected"), std::string::npos) << file.err;
    EXPECT_EQ(job.content("three"), "mine");

    job.write("there.zip", "not a zip");
    EXPECT_EQ(collect({scene, "-o", job.path("there.zip")}).code, ExitCode::refused);
    EXPECT_EQ(job.content("there.zip"), "not a zip");
}

TEST(CollectVerb, SecondScenesJoinTheFirst) {
    const JobFolder job;
    job.image("a/plate.tga", 1);
    job.image("b/logo.tga", 2);
    const std::string one =
        job.scene("x/shot.aec", "FILE NRM STRAIGHT \"" + job.path("a/plate.tga") + "\"\n");
    const std::string two = job.scene("y/shot.aec", "FILE NRM STRAIGHT \"" + job.path("b/logo.tga") + "\"\n");
    const std::string three =
        job.scene("y/other.aec", "FILE NRM STRAIGHT \"" + job.path("a/plate.tga") + "\"\n");
    ASSERT_EQ(collect({one, two, "-o", job.path("out")}).code, ExitCode::fine);
    ASSERT_EQ(collect({three, "-o", job.path("out")}).code, ExitCode::fine);
    EXPECT_EQ(job.names_in("out"),
              (Names{"shot.aec", "shot-2.aec", "other.aec", "plate.tga", "logo.tga", "manifest.json"}));
    EXPECT_EQ(json::parse(job.content("out/manifest.json"))["files"].size(), 5U);
}

TEST(CollectVerb, LinksInsteadOfCopying) {
    const JobFolder job;
    job.image("a/plate.tga", 1);
    std::filesystem::create_symlink(job.path("a/plate.tga"), job.path("a/link.tga"));
    const std::string scene = job.scene("shot.aec", "FILE NRM STRAIGHT \"" + job.path("a/link.tga") + "\"\n");
    ASSERT_EQ(collect({scene, "--by", "hardlink", "-o", job.path("out")}).code, ExitCode::fine);
    EXPECT_TRUE(std::filesystem::equivalent(job.path("out/link.tga"), job.path("a/plate.tga")));
    EXPECT_FALSE(std::filesystem::is_symlink(job.path("out/link.tga")));
    // Where the disk cannot share blocks, a copy is made.
    ASSERT_EQ(collect({scene, "--by", "reflink", "-o", job.path("clone")}).code, ExitCode::fine);
    EXPECT_FALSE(std::filesystem::equivalent(job.path("clone/link.tga"), job.path("a/plate.tga")));
    EXPECT_EQ(job.content("clone/link.tga"), job.content("a/plate.tga"));
    EXPECT_EQ(job.names_in("clone"), (Names{"link.tga", "shot.aec", "manifest.json"}));
}

TEST(CollectVerb, WritesAnArchive) {
    const JobFolder job;
    job.image("a/pl\xC3\xA4tte.tga", 1);
    const std::string scene =
        job.scene("shot.aec", "FILE NRM STRAIGHT \"" + job.path("a/pl\xC3\xA4tte.tga") + "\"\n");
    const Ran ran = collect({scene, "-o", job.path("job.ZIP")});
    ASSERT_EQ(ran.code, ExitCode::fine) << ran.err;
    const ProcessResult unpacked =
        run_process({"python3", "-c",
                     "import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); assert z.testzip() is None; "
                     "z.extractall(sys.argv[2]); print(*sorted(z.namelist()))",
                     job.path("job.ZIP"), job.path("out")});
    EXPECT_EQ(unpacked.out, "manifest.json pl\xC3\xA4tte.tga shot.aec\n") << unpacked.err;
    EXPECT_EQ(job.content("out/pl\xC3\xA4tte.tga"), job.content("a/pl\xC3\xA4tte.tga"));
    const json all_files = json::parse(job.content("out/manifest.json")).at("files");
    for (const json& file : all_files) {
        EXPECT_EQ(file["sha256"], sha256_by_coreutils(job.path("out/" + file["path"].get<std::string>())));
    }
    std::filesystem::remove_all(job.path("a"));
    EXPECT_EQ(footage_of(job.path("out/shot.aec")), Names{"pl\xC3\xA4tte.tga"});
    EXPECT_EQ(job.names_in(""), (Names{"job.ZIP", "out", "shot.aec"})) << "nothing hidden stays";
}

TEST(CollectVerb, ComparesTheFreeSpaceFirst) {
    const JobFolder job;
    const std::string huge = job.image("a/huge.tga");
    std::error_code failure;
    std::filesystem::resize_file(huge, std::uintmax_t{1} << 42U, failure);
    if (failure) {
        GTEST_SKIP() << "this disk holds no file of 4 TiB, not even an empty one";
    }
    const std::string scene = job.scene("shot.aec", "FILE NRM STRAIGHT \"" + huge + "\"\n");
    for (const char* output : {"out", "out.zip"}) {
        const Ran ran = collect({scene, "-o", job.path(output)});
        EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write) << output;
        EXPECT_NE(ran.err.find("4,398,046,511,104 bytes are needed"), std::string::npos) << ran.err;
        EXPECT_FALSE(std::filesystem::exists(job.path(output))) << output;
    }
    ASSERT_EQ(cli::space_problem(10, 10), "");
    ASSERT_EQ(cli::space_problem(11, 10), "there is too little space: 11 bytes are needed, and 10 are free");
}

TEST(CollectVerb, ADryRunWritesNothing) {
    const JobFolder job;
    job.image("a/plate.tga");
    const std::string scene =
        job.scene("shot.aec", "FILE NRM STRAIGHT \"" + job.path("a/plate.tga") + "\"\n");
    const Ran ran = collect({scene, "-o", job.path("out"), "--dry-run"});
    EXPECT_EQ(ran.code, ExitCode::fine);
    EXPECT_NE(ran.out.find(job.path("a/plate.tga") + " -> plate.tga\n"), std::string::npos) << ran.out;
    EXPECT_FALSE(std::filesystem::exists(job.path("out")));
}

TEST(PortableName, IsOneOnEverySystem) {
    const std::array<std::array<std::string, 3>, 8> cases{{
        {"a plain name", "plate.0001.tif", "plate.0001.tif"},
        {"separators of every system", "a:b\\c.tif", "a_b_c.tif"},
        {"what Windows forbids", "<a>|\"b\"?*.tif", "_a___b___.tif"},
        {"control characters", "a\x01\x7F.tif", "a__.tif"},
        {"bytes that are not UTF-8", "\x9F\xFF.tif", "__.tif"},
        {"a decomposed letter", "u\xCC\x88.tif", "\xC3\xBC.tif"},
        {"a full stop at the end", "plate.", "plate_"},
        {"a blank at the end", "plate ", "plate_"},
    }};
    for (const auto& [name, given, portable] : cases) {
        EXPECT_EQ(cli::portable_name(given), portable) << name;
    }
}

}  // namespace
