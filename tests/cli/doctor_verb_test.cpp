// `vxr doctor` as a process: real files, and plug-ins that misbehave while they are loaded.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "cli/doctor/bundle_files.h"
#include "cli/made_bundle.h"
#include "cli/terminal/child_process.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

using nlohmann::json;

using Environment = std::vector<std::pair<std::string, std::string>>;

ProcessResult doctor(std::vector<std::string> arguments, const Environment& environment = {}) {
    arguments.insert(arguments.begin(), {VXR_PROGRAM, "doctor"});
    return run_process(arguments, environment);
}

json document(const std::string& bundle, int exit_code, const Environment& environment = {},
              const std::string& timeout = "60") {
    const ProcessResult run = doctor({"--json", "--timeout", timeout, bundle}, environment);
    EXPECT_EQ(run.exit_code, exit_code) << run.err;
    EXPECT_EQ(run.err, "");
    return json::parse(run.out);
}

/// The answers in order: Windows, macOS, embedded host, each for current and for classic hosts.
std::vector<json> answers(const json& diagnosis) {
    std::vector<json> all;
    for (const json& verdict : diagnosis.at("verdicts")) {
        all.push_back(verdict.at("lists"));
    }
    return all;
}

std::vector<std::string> codes(const json& diagnosis) {
    std::vector<std::string> all;
    for (const json& finding : diagnosis.at("findings")) {
        all.push_back(finding.at("code"));
    }
    return all;
}

TEST(DoctorVerb, TheBundleOfThisBuildIsListedByBothGenerations) {
    const json diagnosis = document(VXR_BUNDLE_PATH, 0);
    EXPECT_EQ(diagnosis.at("schema"), 1);
    EXPECT_EQ(codes(diagnosis), std::vector<std::string>());
    EXPECT_EQ(answers(diagnosis), (std::vector<json>{false, false, false, false, true, true}));
    EXPECT_EQ(diagnosis.at("images").at(0).at("entries"), json({"EntryPointFunc", "Main_VORTANXR_AE"}));
    EXPECT_EQ(diagnosis.at("images").at(0).at("export_count"), 2);
    ASSERT_EQ(diagnosis.at("trials").size(), 2U);
    for (const json& load_test : diagnosis.at("trials")) {
        EXPECT_EQ(
            load_test.at("registered"),
            json::parse(R"([{"kind": "importer", "name": "VORTAN XR Composition", "extensions": [".aec"]},
                                  {"kind": "input module", "name": "Texalon 3D", "extensions": [".txl"]}])"));
    }
}

TEST(DoctorVerb, WithoutAnArgumentItInspectsTheBundleOfTheProgram) {
    const ProcessResult run = doctor({});
    EXPECT_EQ(run.exit_code, 0) << run.out << run.err;
    EXPECT_NE(run.out.find("VORTANXR_AE.so\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("embedded host, today    yes       1 importer, 1 input module\n"),
              std::string::npos)
        << run.out;
}

TEST(DoctorVerb, OtherFilesOfThisMachineAreNotPlugIns) {
    const TemporaryFolder folder;
    EXPECT_EQ(codes(document("/bin/ls", 1)), std::vector<std::string>{"wrong-kind"});
    EXPECT_EQ(codes(document(folder.write("a.txt", "text\n"), 1)), std::vector<std::string>{"not-a-binary"});
    EXPECT_EQ(codes(document(folder.folder().string(), 1)), std::vector<std::string>{"not-a-bundle"});
    EXPECT_EQ(codes(document(folder.path("missing"), 3)), std::vector<std::string>{"cannot-read"});
    // The loader refuses a library as bare as this one.
    EXPECT_EQ(codes(document(folder.write("a.so", made_elf()), 1)), std::vector<std::string>{"not-loadable"});
}

TEST(DoctorVerb, TheWindowsBundleIsListedOnWindows) {
    const std::string bundle = VXR_PROJECT_DIR "/build/windows/lib/VORTANXR_AE.aex";
    // The cross build takes minutes and is not part of this preset: the test runs wherever script/windows has
    // built the bundle. tests/windows/doctor_test.py always inspects it, under Wine.
    if (!std::filesystem::exists(bundle)) {
        GTEST_SKIP() << "script/windows has not built " << bundle;
    }
    const json diagnosis = document(bundle, 0);
    EXPECT_EQ(codes(diagnosis), std::vector<std::string>());
    EXPECT_EQ(answers(diagnosis), (std::vector<json>{true, false, false, false, nullptr, nullptr}));
    std::vector<std::pair<std::string, std::string>> properties;
    for (const json& property : diagnosis.at("property_lists").at(0).at("properties")) {
        properties.emplace_back(property.at("key"), property.at("value"));
    }
    EXPECT_EQ(properties, (std::vector<std::pair<std::string, std::string>>{{"kind", "AEgx"},
                                                                            {"name", "VORTAN XR"},
                                                                            {"catg", "General Plugin"},
                                                                            {"vers", "3.0"},
                                                                            {"8664", "EntryPointFunc"}}));
}

/// Replaces each @NAME@ of the template by a value, as CMake does.
std::string filled_in(std::string text) {
    for (std::size_t at = text.find('@'); at != std::string::npos; at = text.find('@')) {
        text.replace(at, text.find('@', at + 1) + 1 - at, "1.0.0");
    }
    return text;
}

TEST(DoctorVerb, TheMacosFilesOfThisProjectAreListed) {
    const TemporaryFolder folder;
    const ProcessResult written =
        run_process({VXR_PROJECT_DIR "/script/pipl", "rsrc", folder.path("resources")});
    ASSERT_EQ(written.exit_code, 0) << written.err;
    const std::string bundle = write_plugin(
        folder,
        {.folder = "VORTANXR_AE.plugin",
         .executable = "VORTANXR_AE",
         .plist = filled_in(cli::doctor::read_file(VXR_PROJECT_DIR "/src/entry/Info.plist.in").bytes.value()),
         .resources = ""});
    std::filesystem::rename(folder.path("resources"), bundle + "/Contents/Resources/VORTANXR_AE.rsrc");
    const json diagnosis = document(bundle, 0);
    EXPECT_EQ(codes(diagnosis), std::vector<std::string>());
    EXPECT_EQ(answers(diagnosis), (std::vector<json>{false, false, true, false, nullptr, nullptr}));
    EXPECT_EQ(diagnosis.at("universal"), true);
    EXPECT_EQ(diagnosis.at("info_plist"), json({{"CFBundlePackageType", "AEgx"},
                                                {"CFBundleSignature", "FXTC"},
                                                {"CFBundleExecutable", "VORTANXR_AE"}}));
    EXPECT_EQ(diagnosis.at("property_lists").at(0).at("properties").size(), 6U);
}

struct Unruly {
    const char* how;
    const char* code;
    const char* end;
    const char* reason;
    std::vector<std::string> messages;
};

TEST(DoctorVerb, APlugInThatMisbehavesIsReportedAndDoesNoHarm) {
    const Unruly cases[] = {
        {"abort",
         "load-crashed",
         "crashed",
         "the process that loaded it was ended by SIGABRT, Aborted",
         {"the plug-in's last words"}},
        {"segv",
         "load-crashed",
         "crashed",
         "the process that loaded it was ended by SIGSEGV, Segmentation fault",
         {}},
        {"exit",
         "load-crashed",
         "crashed",
         "the process that loaded it ended with the exit code 0 and no result",
         {}},
        {"hang", "load-timed-out", "timed-out", "the process that loaded it had not ended after 1 s", {}},
        {"fail", "entry-failed", "failed", "the entry point failed with host error 2", {}},
        {"talk", "registers-nothing", "listed", "", {}},
        {"", "registers-nothing", "listed", "", {}},
    };
    for (const Unruly& one : cases) {
        SCOPED_TRACE(one.how);
        const bool hangs = std::string(one.how) == "hang";
        const json diagnosis = document(VXR_UNRULY_BUNDLE, std::string(one.end) == "listed" ? 0 : 1,
                                        {{"VXR_UNRULY", one.how}}, hangs ? "1" : "60");
        EXPECT_EQ(codes(diagnosis), std::vector<std::string>(2, one.code));
        ASSERT_EQ(diagnosis.at("trials").size(), 2U);
        for (const json& load_test : diagnosis.at("trials")) {
            EXPECT_EQ(load_test.at("end"), one.end);
            EXPECT_EQ(load_test.at("reason"), one.reason);
            EXPECT_EQ(load_test.at("messages"), json(one.messages));
        }
    }
}

TEST(DoctorVerb, OnlyLooksWhenItIsTold) {
    // A bundle that would end the process shows that nothing of it is run.
    const ProcessResult run = doctor({"--json", "--no-load", VXR_UNRULY_BUNDLE}, {{"VXR_UNRULY", "abort"}});
    EXPECT_EQ(run.exit_code, 0) << "no error was found";
    const json diagnosis = json::parse(run.out);
    EXPECT_EQ(codes(diagnosis), std::vector<std::string>());
    EXPECT_EQ(diagnosis.at("trials"), json::array());
    EXPECT_EQ(answers(diagnosis), (std::vector<json>{false, false, false, false, nullptr, nullptr}));
    EXPECT_EQ(diagnosis.at("verdicts").at(4).at("reason"), "it was not loaded, as --no-load says");
}

TEST(DoctorVerb, OnlyLooksAtThePlugInsOfOthers) {
    const TemporaryFolder folder;
    const std::string other = folder.write("other.so", made_elf({.exports = {"EntryPointFunc"}}));
    const json looked = document(other, 0);
    EXPECT_EQ(codes(looked), std::vector<std::string>{"one-generation"});
    EXPECT_EQ(looked.at("trials"), json::array());
    EXPECT_EQ(looked.at("verdicts").at(4).at("reason"),
              "it is not a plug-in of VORTAN XR, so none of its code was run; --always-load runs it");
    const ProcessResult loaded = doctor({"--json", "--always-load", other});
    EXPECT_EQ(loaded.exit_code, 1);
    EXPECT_EQ(codes(json::parse(loaded.out)), (std::vector<std::string>{"one-generation", "not-loadable"}));
}

TEST(DoctorVerb, UsageIsChecked) {
    EXPECT_EQ(doctor({"--timeout", "0", "a"}).exit_code, 2);
    EXPECT_EQ(doctor({"--load", "tomorrow", "a"}).exit_code, 2);
    EXPECT_EQ(doctor({"a", "b"}).exit_code, 2);
}

TEST(ChildProcess, ReadsWhatItIsGiven) {
    using std::chrono::seconds;
    const std::string piece(100000, 'a');
    int pieces = 0;
    const auto input = [&]() -> std::string_view {
        return pieces++ < 30 ? std::string_view(piece) : std::string_view();
    };
    const cli::ChildResult all = cli::run_child("/usr/bin/wc", {"-c"}, {seconds(60)}, input);
    EXPECT_EQ(all.out, "3000000\n");
    EXPECT_EQ(pieces, 31);

    // The signal that ends a program which writes to nobody does not end this one.
    pieces = 0;
    const cli::ChildResult some =
        cli::run_child("/bin/sh", {"-c", "head -c 5 > /dev/null; exit 4"}, {seconds(60)}, input);
    EXPECT_EQ(some.exit_code, 4);
    EXPECT_LT(pieces, 30);

    EXPECT_THROW((void)cli::run_child("/bin/cat", {}, {seconds(60)},
                                      []() -> std::string_view { throw std::runtime_error("no more"); }),
                 std::runtime_error);
}

TEST(ChildProcess, EndsWhatTakesMoreMemoryThanAllowed) {
    using std::chrono::seconds;
    constexpr std::uint64_t kMost_bytes = 64U << 20U;
    // The text of one line that tail keeps has no end.
    const cli::ChildResult hog = cli::run_child("/usr/bin/tail", {"/dev/zero"}, {seconds(60), kMost_bytes});
    EXPECT_TRUE(hog.over_memory);
    EXPECT_FALSE(hog.timed_out);
    EXPECT_FALSE(hog.exit_code.has_value());
    const cli::ChildResult small =
        cli::run_child("/usr/bin/tail", {"-c", "5", "/dev/null"}, {seconds(60), kMost_bytes});
    EXPECT_FALSE(small.over_memory);
    EXPECT_EQ(small.exit_code, 0);
    const cli::ChildResult both = cli::run_child("/bin/sleep", {"600"}, {seconds(1), kMost_bytes});
    EXPECT_TRUE(both.timed_out) << "a process within its memory still has a time";
    EXPECT_FALSE(both.over_memory);
}

TEST(ChildProcess, EndsWhatWritesMoreThanAllowed) {
    using std::chrono::seconds;
    constexpr std::size_t kMost_bytes = 100000;
    const auto writes = [](const char* script) {
        return cli::run_child("/bin/sh", {"-c", script}, {seconds(60), 0, kMost_bytes});
    };
    const cli::ChildResult most = writes("head -c 100000 /dev/zero; head -c 100000 /dev/zero >&2");
    EXPECT_FALSE(most.over_output) << "each stream has as much";
    EXPECT_EQ(most.exit_code, 0);
    for (const char* script : {"head -c 100001 /dev/zero", "head -c 100001 /dev/zero >&2", "cat /dev/zero"}) {
        const cli::ChildResult more = writes(script);
        EXPECT_TRUE(more.over_output) << script;
        EXPECT_FALSE(more.timed_out) << script;
        EXPECT_FALSE(more.exit_code.has_value()) << script;
        EXPECT_LE(more.out.size(), kMost_bytes) << script;
    }
}

TEST(ChildProcess, OfAnotherThreadKeepsNoPipeOpen) {
    using std::chrono::seconds;
    // A long process that had inherited the pipes of a short one would make it as long.
    std::vector<std::thread> threads;
    std::atomic<int> late = 0;
    threads.reserve(32);
    for (int i = 0; i < 32; ++i) {
        threads.emplace_back([&late, i] {
            if (i % 2 == 0) {
                (void)cli::run_child("/bin/sleep", {"3"}, {seconds(60)});
            } else {
                late += cli::run_child("/bin/sleep", {"0.1"}, {seconds(2)}).timed_out ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(late, 0);
}

TEST(ChildProcess, ReturnsOutputAndHowTheProgramEnded) {
    using std::chrono::seconds;
    const cli::ChildResult fine =
        cli::run_child("/bin/sh", {"-c", "echo out; echo err >&2; exit 7"}, {seconds(60)});
    EXPECT_EQ(fine.error, "");
    EXPECT_EQ(fine.exit_code, 7);
    EXPECT_EQ(fine.out, "out\n");
    EXPECT_EQ(fine.err, "err\n");

    const cli::ChildResult input = cli::run_child("/bin/cat", {}, {seconds(60)});
    EXPECT_EQ(input.exit_code, 0) << "its standard input is empty";

    const cli::ChildResult missing = cli::run_child("/nowhere/program", {}, {seconds(60)});
    EXPECT_EQ(missing.error, "No such file or directory");
    EXPECT_FALSE(missing.exit_code.has_value());

    const cli::ChildResult killed = cli::run_child("/bin/sh", {"-c", "kill -KILL $$"}, {seconds(60)});
    EXPECT_EQ(killed.signal, "SIGKILL, Killed");
    EXPECT_FALSE(killed.exit_code.has_value());

    const cli::ChildResult flood =
        cli::run_child("/bin/sh", {"-c", "head -c 6000000 /dev/zero"}, {seconds(60)});
    EXPECT_EQ(flood.exit_code, 0) << "it is not ended early";
    EXPECT_EQ(flood.out.size(), cli::kMostOutput);

    const cli::ChildResult closed =
        cli::run_child("/bin/sh", {"-c", "exec >&- 2>&-; sleep 600"}, {seconds(1)});
    EXPECT_TRUE(closed.timed_out);
    // What a process starts ends with it, whether it ends in time or not.
    const TemporaryFolder folder;
    const std::string late = folder.path("late");
    const cli::ChildResult left = cli::run_child(
        "/bin/sh", {"-c", "(sleep 2; echo > '" + late + "') >/dev/null 2>&1 & exit 3"}, {seconds(60)});
    EXPECT_EQ(left.exit_code, 3);
    const cli::ChildResult hanging =
        cli::run_child("/bin/sh", {"-c", "(sleep 2; echo > '" + late + "') & wait"}, {seconds(1)});
    EXPECT_TRUE(hanging.timed_out);
    std::this_thread::sleep_for(std::chrono::milliseconds(2200));
    EXPECT_FALSE(std::filesystem::exists(late));

    const cli::ChildResult silent = cli::run_child("/bin/sleep", {"600"}, {seconds(1)});
    EXPECT_TRUE(silent.timed_out);
}

}  // namespace
