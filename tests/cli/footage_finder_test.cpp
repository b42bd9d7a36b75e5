#include "cli/footage/footage_finder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

namespace {

using cli::Finding;
using cli::FootageFinder;
using cli::Preference;

// A folder "scenes" for the scene, and the disk of a case beside it. "%" in paths is that folder.
class Job {
  public:
    Job() { disk_.make_folder("scenes"); }

    void add(const std::string& file) const {
        if (const std::size_t slash = file.rfind('/'); slash != std::string::npos) {
            disk_.make_folder(file.substr(0, slash));
        }
        disk_.write(file, "pixels of " + file);
    }

    [[nodiscard]] std::string full(std::string text) const {
        if (const std::size_t sign = text.find('%'); sign != std::string::npos) {
            text.replace(sign, 1, disk_.folder().string());
        }
        return text;
    }

    // Below this folder.
    [[nodiscard]] std::string below(const std::string& path) const {
        return path.empty() ? path : path.substr(disk_.folder().string().size() + 1);
    }

    [[nodiscard]] std::string scene() const { return disk_.path("scenes/shot.aec"); }
    [[nodiscard]] const TemporaryFolder& disk() const { return disk_; }

  private:
    TemporaryFolder disk_;
};

struct Case {
    const char* name;
    std::vector<std::string> files;
    std::vector<std::string> search;
    std::vector<std::string> maps;
    std::string written;
    const char* rule;    ///< empty: missing
    std::string result;  ///< empty: ambiguous or missing
    std::vector<std::string> candidates = {};
    bool is_sequence = false;
    Preference prefer = Preference::none;
};

const Case kCases[] = {
    {"as written", {"a/plate.tif", "scenes/plate.tif"}, {}, {}, "%/a/plate.tif", "as-written", "a/plate.tif"},
    {"beside the scene",
     {"scenes/plate.tif", "s/plate.tif"},
     {"s"},
     {},
     "C:\\r\\plate.tif",
     "beside-scene",
     "scenes/plate.tif"},
    {"a path without a root is looked for beside the scene",
     {"scenes/plate.tif"},
     {},
     {},
     "r/plate.tif",
     "beside-scene",
     "scenes/plate.tif"},
    {"found nowhere", {"s/other.tif"}, {"s"}, {}, "C:\\r\\plate.tif", "", ""},
    {"a folder is no footage", {"s/plate.tif/x"}, {"s"}, {}, "C:\\r\\plate.tif", "", ""},

    {"behind a mapped drive",
     {"m/shots/plate.tif"},
     {},
     {"C:=%/m"},
     "C:\\shots\\plate.tif",
     "map",
     "m/shots/plate.tif"},
    {"a mapped drive is a letter of either case, with either slash",
     {"m/plate.tif"},
     {},
     {"c:/Shots=%/m"},
     "C:\\SHOTS\\plate.tif",
     "map",
     "m/plate.tif"},
    {"behind a mapped volume",
     {"m/plate.tif"},
     {},
     {"Macintosh HD:Renders=%/m"},
     "Macintosh HD:Renders:plate.tif",
     "map",
     "m/plate.tif"},
    {"a volume is mapped with or without its colon",
     {"m/Renders/plate.tif"},
     {},
     {"Macintosh HD=%/m"},
     "Macintosh HD:Renders:plate.tif",
     "map",
     "m/Renders/plate.tif"},
    {"behind a mapped server",
     {"m/plate.tif"},
     {},
     {"//farm/share=%/m"},
     "\\\\FARM\\share\\plate.tif",
     "map",
     "m/plate.tif"},
    {"behind a mapped folder of Unix",
     {"m/plate.tif"},
     {},
     {"/net/renders=%/m"},
     "/net/renders/plate.tif",
     "map",
     "m/plate.tif"},
    {"folders of Unix differ by the case of letters",
     {"m/plate.tif"},
     {},
     {"/net/Renders=%/m"},
     "/net/renders/plate.tif",
     "",
     ""},
    {"a prefix ends with a name", {"m/2/plate.tif"}, {}, {"/net/r=%/m"}, "/net/r2/plate.tif", "", ""},
    {"the longer prefix goes first",
     {"m/b/plate.tif", "n/plate.tif"},
     {},
     {"C:\\a=%/m", "C:\\a\\b=%/n"},
     "C:\\a\\b\\plate.tif",
     "map",
     "n/plate.tif"},
    {"a map goes before a search",
     {"m/plate.tif", "s/r/plate.tif"},
     {"s"},
     {"C:\\r=%/m"},
     "C:\\r\\plate.tif",
     "map",
     "m/plate.tif"},
    {"a map that leads nowhere leaves it to the search",
     {"s/plate.tif"},
     {"s"},
     {"C:\\r=%/m"},
     "C:\\r\\plate.tif",
     "tail",
     "s/plate.tif"},
    {"the prefix in bytes of classic Mac OS",
     {"m/plate.tif"},
     {},
     {"Disk:K\xC3\xBC"
      "che=%/m"},
     "Disk:K\x9F"
     "che:plate.tif",
     "map",
     "m/plate.tif"},
    {"the name behind a map in bytes of Windows",
     {"m/K\xC3\xBC"
      "che.tif"},
     {},
     {"C:=%/m"},
     "C:\\K\xFC"
     "che.tif",
     "windows-1252",
     "m/K\xC3\xBC"
     "che.tif"},
    {"the folder behind a map in bytes of classic Mac OS",
     {"m/K\xC3\xBC"
      "che/plate.tif"},
     {},
     {"Disk=%/m"},
     "Disk:K\x9F"
     "che:plate.tif",
     "mac-roman",
     "m/K\xC3\xBC"
     "che/plate.tif"},

    {"the name alone", {"s/x/plate.tif"}, {"s"}, {}, "C:\\r\\plate.tif", "tail", "s/x/plate.tif"},
    {"the longest tail",
     {"s/old/plate.tif", "s/new/shot/plate.tif"},
     {"s"},
     {},
     "C:\\r\\shot\\plate.tif",
     "tail",
     "s/new/shot/plate.tif"},
    {"the longest tail, whichever folder it lies in",
     {"s/plate.tif", "t/shot/plate.tif"},
     {"s", "t"},
     {},
     "C:\\r\\shot\\plate.tif",
     "tail",
     "t/shot/plate.tif"},
    {"the search folder's own name is no part of the tail",
     {"shot/plate.tif", "t/plate.tif"},
     {"shot", "t"},
     {},
     "C:\\r\\shot\\plate.tif",
     "tail",
     "",
     {"shot/plate.tif", "t/plate.tif"}},
    {"equal rank in one folder",
     {"s/a/plate.tif", "s/b/plate.tif"},
     {"s"},
     {},
     "C:\\r\\plate.tif",
     "tail",
     "",
     {"s/a/plate.tif", "s/b/plate.tif"}},
    {"equal rank in two folders",
     {"s/plate.tif", "t/plate.tif"},
     {"t", "s"},
     {},
     "C:\\r\\plate.tif",
     "tail",
     "",
     {"t/plate.tif", "s/plate.tif"}},
    {"a folder that is searched twice holds one file",
     {"s/a/plate.tif"},
     {"s", "s/a", "s"},
     {},
     "C:\\r\\plate.tif",
     "tail",
     "s/a/plate.tif"},
    {"a folder in bytes of classic Mac OS makes the tail longer",
     {"s/K\xC3\xBC"
      "che/plate.tif",
      "s/b/plate.tif"},
     {"s"},
     {},
     "Disk:K\x9F"
     "che:plate.tif",
     "tail",
     "s/K\xC3\xBC"
     "che/plate.tif"},

    {"decomposed on the disk",
     {"s/u\xCC\x88.tif"},
     {"s"},
     {},
     "C:\\\xC3\xBC.tif",
     "unicode-form",
     "s/u\xCC\x88.tif"},
    {"composed and decomposed beside each other",
     {"s/u\xCC\x88.tif", "s/\xC3\xBC.tif"},
     {"s"},
     {},
     "C:\\\xC3\xBC.tif",
     "tail",
     "s/\xC3\xBC.tif"},
    {"the path itself, decomposed",
     {"a/u\xCC\x88.tif"},
     {},
     {},
     "%/a/\xC3\xBC.tif",
     "unicode-form",
     "a/u\xCC\x88.tif"},
    {"bytes of classic Mac OS beside the scene",
     {"scenes/\xC3\xBC.tif"},
     {},
     {},
     "Disk:\x9F.tif",
     "mac-roman",
     "scenes/\xC3\xBC.tif"},
    // 0x9F is "ü" on classic Mac OS and "Ÿ" on Windows.
    {"both encodings have a file",
     {"s/\xC3\xBC.tif", "s/\xC5\xB8.tif"},
     {"s"},
     {},
     "C:\\\x9F.tif",
     "mac-roman",
     "",
     {"s/\xC3\xBC.tif", "s/\xC5\xB8.tif"}},

    {"cut at 31 characters",
     {"s/Background plate of scene twelve.tif"},
     {"s"},
     {},
     "Disk:Background plate of sc#1A2B.tif",
     "cut-name",
     "s/Background plate of scene twelve.tif"},
    {"cut on the disk",
     {"s/Background plate of sc#1A2B.tif"},
     {"s"},
     {},
     "C:\\Background plate of scene twelve.tif",
     "cut-name",
     "s/Background plate of sc#1A2B.tif"},
    {"a name of 31 characters is whole",
     {"s/Background plate of scene x.tif"},
     {"s"},
     {},
     "Disk:Background plate of sc#1A2B.tif",
     "",
     ""},
    {"two long names that one was cut from",
     {"s/Background plate of scene eleven.tif", "s/Background plate of scene twelve.tif"},
     {"s"},
     {},
     "Disk:Background plate of sc#1A2B.tif",
     "cut-name",
     "",
     {"s/Background plate of scene eleven.tif", "s/Background plate of scene twelve.tif"}},
    {"a cut name of a sequence is its first frame",
     {"s/Background plate of scene 12.0002.tif", "s/Background plate of scene 12.0001.tif"},
     {"s"},
     {},
     "Disk:Background plate of sc#1A2B.tif",
     "cut-name",
     "s/Background plate of scene 12.0001.tif",
     {},
     true},

    {"letters of another case", {"s/Plate.TIF"}, {"s"}, {}, "C:\\r\\PLATE.tif", "letter-case", "s/Plate.TIF"},
    {"two files of other cases",
     {"s/Plate.tif", "s/plate.TIF"},
     {"s"},
     {},
     "C:\\r\\PLATE.TIF",
     "letter-case",
     "",
     {"s/Plate.tif", "s/plate.TIF"}},
    {"folders behind a map of another case",
     {"m/Shots/plate.tif"},
     {},
     {"C:=%/m"},
     "C:\\SHOTS\\plate.tif",
     "letter-case",
     "m/Shots/plate.tif"},
    {"a cut name goes before the case of letters",
     {"s/Background plate of scene twelve.tif", "s/BACKGROUND PLATE OF SC#1A2B.TIF"},
     {"s"},
     {},
     "Disk:Background plate of sc#1A2B.tif",
     "cut-name",
     "s/Background plate of scene twelve.tif"},

    {"another frame",
     {"s/plate.0003.tif", "s/plate.0002.tif"},
     {"s"},
     {},
     "C:\\r\\plate.0001.tif",
     "other-frame",
     "s/plate.0002.tif",
     {},
     true},
    {"another frame where the path leads",
     {"a/plate2.tif"},
     {},
     {},
     "%/a/plate1.tif",
     "other-frame",
     "a/plate2.tif",
     {},
     true},
    {"a single picture has no other frames",
     {"s/plate.0002.tif"},
     {"s"},
     {},
     "C:\\r\\plate.0001.tif",
     "",
     ""},
    {"frames of another padding", {"s/plate.02.tif"}, {"s"}, {}, "C:\\r\\plate.0001.tif", "", "", {}, true},
    {"frames in two folders",
     {"s/a/p2.tif", "s/b/p3.tif"},
     {"s"},
     {},
     "C:\\r\\p1.tif",
     "other-frame",
     "",
     {"s/a/p2.tif", "s/b/p3.tif"},
     true},
    {"frames of the longest tail",
     {"s/a/p2.tif", "s/b/p3.tif"},
     {"s"},
     {},
     "C:\\r\\b\\p1.tif",
     "other-frame",
     "s/b/p3.tif",
     {},
     true},
    {"another frame in the right folder, the named one in two others",
     {"s/b/p1.tif", "s/c/p1.tif", "s/a/p2.tif"},
     {"s"},
     {},
     "C:\\r\\a\\p1.tif",
     "other-frame",
     "s/a/p2.tif",
     {},
     true},
    {"another frame in a folder that fits no better than two with the named one",
     {"s/b/p1.tif", "s/c/p1.tif", "s/d/p2.tif"},
     {"s"},
     {},
     "C:\\r\\a\\p1.tif",
     "tail",
     "",
     {"s/b/p1.tif", "s/c/p1.tif"},
     true},
    {"another frame in other letters",
     {"s/Plate.0002.TIF"},
     {"s"},
     {},
     "C:\\r\\plate.0001.tif",
     "other-frame",
     "s/Plate.0002.TIF",
     {},
     true},
    {"the frame itself goes first",
     {"s/x/p1.tif", "s/p2.tif"},
     {"s"},
     {},
     "C:\\r\\p1.tif",
     "tail",
     "s/x/p1.tif",
     {},
     true},

    {"the first by the order of the search",
     {"s/plate.tif", "t/plate.tif"},
     {"t", "s"},
     {},
     "C:\\plate.tif",
     "tail",
     "t/plate.tif",
     {"t/plate.tif", "s/plate.tif"},
     false,
     Preference::first},
    {"two that are first",
     {"s/a/plate.tif", "s/b/plate.tif"},
     {"s"},
     {},
     "C:\\plate.tif",
     "tail",
     "",
     {"s/a/plate.tif", "s/b/plate.tif"},
     false,
     Preference::first},
    {"the largest",
     {"s/a/plate.tif", "s/longer name/plate.tif"},
     {"s"},
     {},
     "C:\\plate.tif",
     "tail",
     "s/longer name/plate.tif",
     {"s/longer name/plate.tif", "s/a/plate.tif"},
     false,
     Preference::largest},
    {"two that are largest",
     {"s/a/plate.tif", "s/b/plate.tif"},
     {"s"},
     {},
     "C:\\plate.tif",
     "tail",
     "",
     {"s/a/plate.tif", "s/b/plate.tif"},
     false,
     Preference::largest},
};

cli::FinderOptions options_of(const Job& job, const Case& one) {
    cli::FinderOptions options;
    for (const std::string& folder : one.search) {
        job.disk().make_folder(folder);
        options.search.push_back(job.disk().path(folder));
    }
    for (const std::string& map : one.maps) {
        options.maps.push_back(*cli::parse_path_map(job.full(map)));
    }
    options.prefer = one.prefer;
    return options;
}

TEST(FootageFinder, FollowsTheRulesInTheirOrder) {
    for (const Case& one : kCases) {
        const Job job;
        for (const std::string& file : one.files) {
            job.add(file);
        }
        FootageFinder finder(options_of(job, one));
        const Finding found = finder.find({job.scene(), job.full(one.written), one.is_sequence});
        const bool missing = std::string(one.rule).empty();
        EXPECT_EQ(std::string(label(found.outcome)), missing              ? "missing"
                                                     : one.result.empty() ? "ambiguous"
                                                                          : "found")
            << one.name;
        if (!missing) {
            EXPECT_STREQ(label(found.rule), one.rule) << one.name;
        }
        EXPECT_EQ(job.below(found.path), one.result) << one.name;
        std::vector<std::string> candidates;
        for (const cli::FootageCandidate& candidate : found.candidates) {
            candidates.push_back(job.below(candidate.path));
        }
        EXPECT_EQ(candidates, one.candidates) << one.name;
    }
}

TEST(FootageFinder, TakesTheNewest) {
    const Job job;
    job.add("s/a/plate.tif");
    job.add("s/b/plate.tif");
    const std::filesystem::path older = job.disk().path("s/a/plate.tif");
    std::filesystem::last_write_time(older, std::filesystem::last_write_time(older) - std::chrono::hours(1));
    FootageFinder finder({{job.disk().path("s")}, {}, Preference::newest, {}});
    EXPECT_EQ(job.below(finder.find({job.scene(), "C:\\plate.tif", false}).path), "s/b/plate.tif");
}

TEST(FootageFinder, OneFileUnderTwoNamesIsOneCandidate) {
    const Job job;
    job.add("s/a/plate.tif");
    job.disk().make_folder("s/b");
    std::filesystem::create_hard_link(job.disk().path("s/a/plate.tif"), job.disk().path("s/b/plate.tif"));
    // A circle, which the search must not follow.
    std::filesystem::create_directory_symlink(job.disk().path("s"), job.disk().path("s/b/circle"));
    FootageFinder finder({{job.disk().path("s")}, {}, Preference::none, {}});
    EXPECT_EQ(job.below(finder.find({job.scene(), "C:\\plate.tif", false}).path), "s/a/plate.tif");
}

TEST(FootageFinder, WhatWasDecidedGoesBeforeMapAndSearch) {
    const Job job;
    job.add("s/plate.tif");
    job.add("k/other.tif");
    FootageFinder finder({{job.disk().path("s")}, {}, Preference::none, {}});
    finder.keep("C:\\plate.tif", job.disk().path("k/other.tif"));
    finder.keep("C:\\gone\\plate.tif", job.disk().path("k/gone.tif"));
    const Finding kept = finder.find({job.scene(), "C:\\plate.tif", false});
    EXPECT_EQ(job.below(kept.path), "k/other.tif");
    EXPECT_STREQ(label(kept.rule), "kept");
    EXPECT_EQ(job.below(finder.find({job.scene(), "C:\\gone\\plate.tif", false}).path), "s/plate.tif");
}

TEST(FootageFinder, ReadsEachFolderOnce) {
    const Job job;
    job.add("s/a/plate.tif");
    job.add("s/b/c/other.tif");
    std::map<std::string, int> reads;
    cli::Disk disk = cli::real_disk();
    disk.entries_in = [&](const std::string& folder) {
        ++reads[folder];
        return os::entries_in(folder);
    };
    FootageFinder finder({{job.disk().path("s")}, {}, Preference::none, {}}, disk);
    for (int i = 0; i < 20; ++i) {
        (void)finder.find({job.scene(), "C:\\r\\missing" + std::to_string(i) + ".tif", true});
        (void)finder.find({job.scene(), job.full("%/s/a/PLATE.TIF"), false});
    }
    EXPECT_GE(reads.size(), 4U) << "the search folder has four folders";
    for (const auto& [folder, count] : reads) {
        EXPECT_EQ(count, 1) << folder;
    }
}

TEST(FootageFinder, GivesUpOnPathsThatNoSystemHas) {
    const Job job;
    job.add("s/a/plate.tif");
    FootageFinder finder({{job.disk().path("s")}, {}, Preference::none, {}});
    const std::string file = "/plate.tif";
    const std::string folder(65536 - file.size(), 'x');
    EXPECT_EQ(job.below(finder.find({job.scene(), folder + file, false}).path), "s/a/plate.tif");
    EXPECT_EQ(job.below(finder.find({job.scene(), folder + "x" + file, false}).path), "");
}

}  // namespace
