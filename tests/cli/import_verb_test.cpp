#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/temporary_folder.h"

namespace {

using nlohmann::json;

const std::string kLantern = std::string(VXR_EXAMPLES_DIR) + "/interlaced/lantern_010.aec";
const std::string kSettings = "VORTAN XR COMPOSITION\nRESOLUTION 64 36 FROM 1 TO 8 RANGE 9 FPS 25\n";

ProcessResult import_file(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {VXR_PROGRAM, "import"});
    return run_process(arguments);
}

TEST(ImportVerb, TreeOfAScene) {
    const TemporaryFolder folder;
    const std::string scene = folder.write(
        "shot.aec", kSettings +
                        "LOCAL\nCOMPOSITION NRM \"Main\" {\n FSEQ ADD PREMUL \"X:gone0001.tif\"\n"
                        " COMPOSITION MUL \"Inner\" { }\n}\n"
                        "CAMERA \"Cam\" { KEY 1 0 0 0 0 0 0 40\nKEY 8 0 0 0 0 0 0 40 }\n"
                        "LIGHT \"Key\" { TYPE SPOT KEY 3 0 0 0 0 0 0 }\n");
    const ProcessResult run = import_file({scene});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(
        run.out,
        scene +
            ": 2 compositions, 1 footage item (1 missing), 1 camera, 1 light, 0 nulls\n\n"
            "Main/\n"
            "  Main  composition, 64x36, pixel aspect 1, 9 frames at 25 fps\n"
            "    | #  layer         kind         blend     alpha          fields       in  length\n"
            "    | 1  Cam           camera                                              1       8  2 keys, "
            "frames 1-8\n"
            "    | 2  Key           spot light                                          1       8  1 key, "
            "frame 3\n"
            "    | 3  Inner         composition  multiply                               0       9\n"
            "    | 4  gone0001.tif  MISSING      add       premultiplied  progressive   1       8\n"
            "  gone0001.tif  MISSING, replaced by a placeholder, 64x36, 0.32 s long, alpha premultiplied, "
            "progressive, pixel aspect 1, 25 fps\n"
            "  Inner/\n"
            "    Inner  composition, 64x36, pixel aspect 1, 9 frames at 25 fps, empty\n");
    EXPECT_EQ(run.err, "vxr: note: 1 footage file is missing; `vxr check " + scene +
                           "` lists the places that were searched\n");
}

TEST(ImportVerb, ExamplesImportWithoutFindingsAboutThePlugIn) {
    for (const char* example :
         {"square/courtyard_020.aec", "interlaced/lantern_010.aec", "keyframes/orbit_030.aec"}) {
        const ProcessResult run = import_file({std::string(VXR_EXAMPLES_DIR) + "/" + example});
        EXPECT_EQ(run.exit_code, 0) << example;
        EXPECT_EQ(run.out.find("Messages to the user"), std::string::npos) << run.out;
        EXPECT_EQ(run.out.find("did wrong"), std::string::npos) << run.out;
    }
}

TEST(ImportVerb, FileNamedWithoutItsFolder) {
    const ProcessResult run = run_process({"env", "-C", std::string(VXR_EXAMPLES_DIR) + "/interlaced",
                                           VXR_PROGRAM, "import", "lantern_010.aec"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out.substr(0, run.out.find('\n')),
              "lantern_010.aec: 5 compositions, 9 footage items (1 missing), 1 camera, 2 lights, 1 null");
}

struct Refused {
    const char* name;
    std::string text;
    const char* message;
};

TEST(ImportVerb, FilesThatThePlugInIgnoresAreExplained) {
    const Refused cases[] = {
        {"grammar", kSettings + "COMPOSITION NRM 'Main' { }\n",
         ":3:17: error: expected a name in double quotes, found the text \"Main\" in single quotes "
         "[expected-name]\n"},
        {"not importable", "vortan xr",
         ":1:1: error: expected the file to begin with \"VORTAN XR\", found \"vortan xr\" "
         "[not-importable]\n"},
        {"empty", "", ":1:1: error: the file is empty [empty-file]\n"},
    };
    const TemporaryFolder folder;
    for (const Refused& one : cases) {
        const std::string scene = folder.write("shot.aec", one.text);
        const ProcessResult run = import_file({scene});
        EXPECT_EQ(run.exit_code, 1) << one.name;
        EXPECT_EQ(run.out, "") << one.name;
        EXPECT_EQ(run.err.compare(0, scene.size() + std::string(one.message).size(), scene + one.message), 0)
            << one.name << ": " << run.err;
    }
}

TEST(ImportVerb, EveryKindOfHostMakesTheSameProject) {
    for (const char* example : {"square/courtyard_020.aec", "interlaced/lantern_010.aec"}) {
        const std::string scene = std::string(VXR_EXAMPLES_DIR) + "/" + example;
        // The number of changes differs: aiming a camera or light in a current host is one more.
        const auto project_of = [](const ProcessResult& run) {
            json document = json::parse(run.out);
            for (json& step : document["undo_steps"]) {
                step.erase("changes");
            }
            return document.dump();
        };
        const ProcessResult usual = import_file({"--json", scene});
        EXPECT_EQ(usual.exit_code, 0);
        for (const char* kind : {"classic", "today", "9.32", "12.5", "25.3", "classic:25.3", "today:9.32"}) {
            const ProcessResult run = import_file({"--json", "--host", kind, scene});
            EXPECT_EQ(run.exit_code, 0) << kind;
            EXPECT_EQ(project_of(run), project_of(usual)) << kind;
            EXPECT_EQ(run.err, usual.err) << kind;
        }
    }
}

TEST(ImportVerb, NamesThatArriveAsBytesAreShownInAnEncoding) {
    const TemporaryFolder folder;
    const std::string scene = folder.write("shot.aec", kSettings + "COMPOSITION NRM \"caf\x8E\" { }\n");
    const struct {
        std::vector<std::string> options;
        std::string shown;
        json name;
    } cases[] = {
        {{"--host", "classic"}, "caf\\x8e/", {{"bytes", "6361668e"}}},
        {{"--host", "classic", "--name-encoding", "mac-roman"}, "caf\u00E9/", "caf\u00E9"},
        {{"--host", "classic", "--name-encoding", "windows-1252"}, "caf\u017D/", "caf\u017D"},
        {{}, "caf\u017D/", "caf\u017D"},  // the bridge has decoded it
        {{"--name-encoding", "mac-roman"}, "caf\u017D/", "caf\u017D"},
    };
    for (const auto& one : cases) {
        std::vector<std::string> arguments = one.options;
        arguments.push_back(scene);
        const ProcessResult run = import_file(arguments);
        EXPECT_EQ(run.exit_code, 0) << run.err;
        EXPECT_NE(run.out.find("\n" + one.shown + "\n"), std::string::npos) << run.out;
        arguments.insert(arguments.begin(), "--json");
        EXPECT_EQ(json::parse(import_file(arguments).out)["items"][1]["name"], one.name);
    }
}

// The value of the last key is refused, so the key keeps what the zoom had before: 320 / tan(20 degrees), the
// value of the first key.
TEST(ImportVerb, AKeyWithAnotherValueLeavesTheImportUnfinished) {
    const TemporaryFolder folder;
    const std::string scene =
        folder.write("shot.aec",
                     "VORTAN XR COMPOSITION\nRESOLUTION 640 480 FROM 0 TO 9 RANGE 10 FPS 25\n"
                     "COMPOSITION NRM \"Main\" { }\n"
                     "CAMERA \"Cam\" { KEY 0 0 0 0 0 0 0 40\nKEY 9 0 0 0 20 0 0 90 }\n");
    EXPECT_EQ(import_file({scene}).exit_code, 0);
    const ProcessResult run = import_file({"--fail", "AEGP_SetAddKeyframe:8:55", scene});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(
        run.err,
        "vxr: error: the import did not finish: camera \"Cam\" has the zoom 879.1928, and the scene says "
        "320, at frame 9\n");
    EXPECT_EQ(
        json::parse(
            import_file({"--json", "--fail", "AEGP_SetAddKeyframe:8:55", scene}).out)["import"]["finished"],
        false);
}

TEST(ImportVerb, NullsOfAStillAreAsLongAsTheHostsStills) {
    const TemporaryFolder folder;
    const std::string scene =
        folder.write("shot.aec",
                     "VORTAN XR COMPOSITION\nRESOLUTION 64 36 FROM 0 TO 0 RANGE 1 FPS 25\n"
                     "COMPOSITION NRM \"Main\" { }\nNULL \"Null\" { KEY 0 0 0 0 0 0 0 }\n");
    const auto duration = [&](const std::vector<std::string>& options) {
        std::vector<std::string> arguments = options;
        arguments.insert(arguments.end(), {"--json", scene});
        return json::parse(import_file(arguments).out)["compositions"][0]["layers"][0]["duration"];
    };
    EXPECT_EQ(duration({}), (json{{"value", 1}, {"scale", 25}}));
    EXPECT_EQ(duration({"--still-duration", "composition"}), (json{{"value", 1}, {"scale", 25}}));
    EXPECT_EQ(duration({"--still-duration", "50"}), (json{{"value", 50}, {"scale", 25}}));
    EXPECT_EQ(import_file({"--still-duration", "0", scene}).exit_code, 2);
}

TEST(ImportVerb, TheLogSaysWhichHostItWas) {
    const TemporaryFolder folder;
    const std::string log = folder.path("calls.jsonl");
    const auto footage_versions = [&](const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"--log", log, kLantern};
        arguments.insert(arguments.begin(), options.begin(), options.end());
        EXPECT_EQ(import_file(arguments).exit_code, 0);
        std::istringstream lines(content_of(log));
        std::set<int> versions;
        for (std::string line; std::getline(lines, line);) {
            const json call = json::parse(line);
            if (call.at("suite") == "AEGP Footage Suite") {
                versions.insert(call.at("version").get<int>());
            }
        }
        return versions;
    };
    EXPECT_EQ(footage_versions({}), std::set<int>{11});
    EXPECT_EQ(footage_versions({"--host", "today"}), std::set<int>{11});
    EXPECT_EQ(footage_versions({"--host", "classic"}), std::set<int>{7});
}

// Linux accepts any bytes as a file name; a current host cannot represent a name that is not UTF-8.
TEST(ImportVerb, FileNamesThatAreNotUtf8NeedAClassicHost) {
    const TemporaryFolder folder;
    const std::string scene = folder.write("caf\xE9.aec", kSettings + "COMPOSITION NRM \"Main\" { }\n");
    const ProcessResult today = import_file({scene});
    EXPECT_EQ(today.exit_code, 1);
    EXPECT_EQ(today.out, "");
    const std::string shown = folder.path("caf\\xe9.aec");
    EXPECT_EQ(today.err, "vxr: error: " + shown + ": the path is not UTF-8 (byte 0xE9 at offset " +
                             std::to_string(scene.find('\xE9')) +
                             "), and current hosts take paths in Unicode; only a classic host can take it "
                             "(--host classic)\n");
    const ProcessResult classic = import_file({"--host", "classic", scene});
    EXPECT_EQ(classic.exit_code, 0) << classic.err;
    EXPECT_NE(classic.out.find("1 composition"), std::string::npos) << classic.out;
}

TEST(ImportVerb, FilesThatCannotBeRead) {
    const TemporaryFolder folder;
    for (const std::string& path : {folder.path("missing.aec"), folder.folder().string()}) {
        const ProcessResult run = import_file({path});
        EXPECT_EQ(run.exit_code, 3) << path;
        EXPECT_NE(run.err.find("[cannot-read]\n"), std::string::npos) << run.err;
    }
}

struct Fault {
    const char* name;
    std::vector<std::string> options;
    int exit_code;
    const char* err;  ///< a part of it
    const char* out;  ///< a part of it
};

const Fault kFaults[] = {
    {"composition that fails",
     {"--fail", "AEGP_CreateComp:2:4"},
     1,
     "vxr: error: the import ended with host error 4; what it made before stays\n",
     "Messages to the user:\n  Unable to create composition.\n  Unable to create composition.\n"},
    {"missing suite",
     {"--without-suite", "AEGP Comp Suite:9", "--without-suite", "AEGP Comp Suite:15"},
     1,
     "vxr: error: the import ended because the host does not offer a suite; what it made before stays\n",
     "Messages to the user:\n"
     "  This plug-in needs the suite \"AEGP Comp Suite\" 9, which the host does not offer.\n"},
    {"missing suite in a classic host",
     {"--without-suite", "AEGP Comp Suite:9", "--host", "classic"},
     1,
     "vxr: error: the import ended because the host does not offer a suite; what it made before stays\n",
     "[missing_suite_exception]\n"},
    {"suite that current hosts have only in another version",
     {"--without-suite", "AEGP Footage Suite:7"},
     0,
     "vxr: note: the host never offers \"AEGP Footage Suite\" version 7\n",
     "1 null\n"},
    {"host with narrow names only",
     {"--without-suite", "AEGP Comp Suite:15", "--without-suite", "AEGP Item Suite:13"},
     0,
     "",
     "1 camera"},
    {"camera that is not aimed",
     {"--fail", "AEGP_SetLayerFlag:3:4"},
     1,
     "vxr: error: the import did not finish: camera \"Camera\" looks 3 degrees away from where the scene "
     "says, at frame 17: it does not turn towards its point of interest\n",
     "one-node camera"},
    {"null that stays flat",
     {"--fail", "AEGP_SetLayerFlag:1:4"},
     1,
     "vxr: error: the import did not finish: null \"Pivot\" is not finished\n",
     "1 null"},
    {"light type that is refused",
     {"--fail", "AEGP_SetLightType:1:4"},
     1,
     "vxr: error: the import did not finish: light \"Moon\" is a light, and the scene says parallel light\n",
     "1 camera"},
    {"zoom that is refused",
     {"--fail", "AEGP_SetStreamValue:8:4"},
     1,
     "vxr: error: the import did not finish: camera \"Camera\" is not finished\n",
     "1 camera"},
    {"undo group that does not end",
     {"--fail", "AEGP_EndUndoGroup:1:4"},
     1,
     "vxr: error: the undo group did not end\n",
     "[undo_group_unbalanced]\n"},
    {"preference that is not put back",
     {"--alpha-preference", "2", "--fail", "AEGP_SetData:2:4"},
     1,
     "vxr: error: the preference Pref_DEFAULT_UNLABELED_ALPHA was not put back\n",
     "1 camera"},
    {"layer that the host does not want",
     {"--refuse-layer", "1"},
     1,
     "vxr: error: the import ended with host error 3; what it made before stays\n",
     "item cannot be a layer of this composition [bad_argument]\n"},
    {"object that fails without a message",
     {"--fail", "AEGP_CreateLightInComp:1:4"},
     1,
     "vxr: error: the import did not finish: light \"Moon\" is missing\n",
     "1 null\n"},
    {"last object that fails without a message",
     {"--fail", "AEGP_CreateCameraInComp:1:4"},
     1,
     "vxr: error: the import did not finish: camera \"Camera\" is missing\n",
     "0 cameras, 2 lights, 1 null\n"},
    {"registration that fails",
     {"--fail", "AEGP_RegisterDeathHook:1:4"},
     1,
     "vxr: error: the plug-in was not loaded: ",
     "There was an error registering the plugin.\n"},
    {"fault that never happens",
     {"--fail", "AEGP_CreateComp:99:4"},
     0,
     "vxr: note: AEGP_CreateComp was called 5 times, so its call 99 did not fail\n",
     "1 camera"},
    {"suite that no host offers",
     {"--without-suite", "Nonsense:1"},
     0,
     "vxr: note: the host never offers \"Nonsense\" version 1\n",
     "1 camera"},
    {"older host",
     {"--host-version", "9.31"},
     0,
     "vxr: note: hosts before 9.32 get no cameras, lights and nulls; the file has 4\n",
     "0 cameras, 0 lights, 0 nulls\n"},
    {"first version that gets cameras and lights",
     {"--host-version", "9.32"},
     0,
     "",
     "1 camera, 2 lights, 1 null\n"},
    {"preference", {"--alpha-preference", "2"}, 0, "", "1 camera"},
    {"no such bundle",
     {"--bundle", "/missing.so"},
     3,
     "vxr: error: the plug-in was not loaded: /missing.so: ",
     ""},
    {"log that cannot be written",
     {"--log", "/dev/full"},
     3,
     "vxr: error: cannot write /dev/full: No space left on device\n",
     ""},
    {"document that cannot be created",
     {"--save", "/missing/project.json"},
     3,
     "vxr: error: cannot write /missing/project.json: No such file or directory\n",
     ""},
};

TEST(ImportVerb, HostsThatMisbehave) {
    for (const Fault& fault : kFaults) {
        std::vector<std::string> arguments = fault.options;
        arguments.push_back(kLantern);
        const ProcessResult run = import_file(arguments);
        EXPECT_EQ(run.exit_code, fault.exit_code) << fault.name << ": " << run.err;
        EXPECT_NE(run.err.find(fault.err), std::string::npos) << fault.name << ": " << run.err;
        EXPECT_NE(run.out.find(fault.out), std::string::npos) << fault.name << ": " << run.out;
    }
}

TEST(ImportVerb, UnreadableFootageIsNamedWhenTheImportFails) {
    const TemporaryFolder folder;
    folder.write("notes.tif", "no picture");
    const std::string scene = folder.write(
        "shot.aec", kSettings + "COMPOSITION NRM \"Main\" {\nFILE NRM PREMUL \"X:notes.tif\"\n}\n");
    const ProcessResult run = import_file({scene});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find(scene +
                           ":4:17: error: the footage \"X:notes.tif\" exists but is not a readable image: "),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.err.find("vxr: error: the import ended with host error "), std::string::npos) << run.err;
}

TEST(ImportVerb, JsonSavedDocumentAndLog) {
    const TemporaryFolder folder;
    const ProcessResult run = import_file(
        {"--json", "--save", folder.path("project.json"), "--log", folder.path("calls.jsonl"), kLantern});
    ASSERT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(content_of(folder.path("project.json")), run.out);
    const json document = json::parse(run.out);
    EXPECT_EQ(document["schema"], 2);
    EXPECT_EQ(document["discipline"]["clean"], true);
    EXPECT_EQ(document["import"]["file"], kLantern);
    EXPECT_EQ(document["import"]["exit_code"], 0);
    EXPECT_EQ(document["import"]["finished"], true);
    EXPECT_EQ(document["import"]["importable"], true);
    EXPECT_EQ(document["import"]["result"], 0);

    std::istringstream lines(content_of(folder.path("calls.jsonl")));
    std::int64_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_EQ(json::parse(line)["n"], ++number);
    }
    EXPECT_GT(number, 100);
}

TEST(ImportVerb, OutputsReplaceNeitherTheSceneNorEachOther) {
    const TemporaryFolder folder;
    const std::string text = kSettings + "COMPOSITION NRM \"Main\" { }\n";
    const std::string scene = folder.write("shot.aec", text);
    std::filesystem::create_symlink(scene, folder.path("link.aec"));
    const std::string taken = "shot.aec would be overwritten by the output";
    const struct {
        const char* name;
        std::vector<std::string> options;
        std::string err;
    } cases[] = {
        {"document over the scene", {"--save", scene}, taken},
        {"log over the scene", {"--log", scene}, taken},
        {"scene by another name", {"--log", folder.path("link.aec")}, taken},
        {"both in one file, which is not there yet",
         {"--save", folder.path("out"), "--log", folder.path("./out")},
         "vxr: error: --save and --log would both be written to " + folder.path("./out")},
    };
    for (const auto& one : cases) {
        std::vector<std::string> arguments = one.options;
        arguments.push_back(scene);
        const ProcessResult run = import_file(arguments);
        EXPECT_EQ(run.exit_code, 2) << one.name;
        EXPECT_NE(run.err.find(one.err), std::string::npos) << one.name << ": " << run.err;
        EXPECT_EQ(content_of(scene), text) << one.name;
        EXPECT_FALSE(std::filesystem::exists(folder.path("out"))) << one.name;
    }
}

TEST(ImportVerb, JsonOfARefusedFile) {
    const TemporaryFolder folder;
    const ProcessResult run =
        import_file({"--json", folder.write("shot.aec", "VORTAN XR COMPOSITION\nFPS x\n")});
    EXPECT_EQ(run.exit_code, 1);
    const json document = json::parse(run.out);
    EXPECT_EQ(document["import"]["finished"], false);
    EXPECT_EQ(document["import"]["result"], 0);
    EXPECT_EQ(document["import"]["diagnostics"][0]["code"], "expected-number");
}

TEST(ImportVerb, JsonWithoutABundle) {
    const ProcessResult run = import_file({"--json", "--bundle", "/missing.so", kLantern});
    EXPECT_EQ(run.exit_code, 3);
    const json document = json::parse(run.out);
    EXPECT_EQ(document["import"]["exit_code"], 3);
    EXPECT_EQ(document["import"]["result"], nullptr);
    EXPECT_EQ(document["import"]["problems"].size(), 1U);
}

TEST(ImportVerb, BundleFromTheEnvironment) {
    const ProcessResult run = run_process({VXR_PROGRAM, "import", kLantern}, {{"VXR_BUNDLE", "/missing.so"}});
    EXPECT_EQ(run.exit_code, 3);
}

}  // namespace
