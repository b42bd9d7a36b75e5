#include "cli/footage/name_match.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "cli/footage/stored_path.h"

namespace {

using cli::MatchLevel;
using cli::NameMatch;

const struct {
    const char* name;
    std::string one;
    std::string other;
    std::optional<NameMatch> match;  ///< at the loosest level
} kNames[] = {
    {"the same bytes", "plate.tif", "plate.tif", NameMatch::exact},
    {"other letters", "plate.tif", "plane.tif", std::nullopt},
    {"composed and decomposed", "\xC3\xBC.tif", "u\xCC\x88.tif", NameMatch::unicode_form},
    {"bytes of classic Mac OS",
     "K\x9F"
     "che.tif",
     "K\xC3\xBC"
     "che.tif",
     NameMatch::mac_roman},
    {"bytes of Windows",
     "K\xFC"
     "che.tif",
     "K\xC3\xBC"
     "che.tif",
     NameMatch::windows_1252},
    {"bytes on the disk",
     "K\xC3\xBC"
     "che.tif",
     "K\x9F"
     "che.tif",
     NameMatch::mac_roman},
    {"bytes of classic Mac OS, decomposed on the disk", "\x8E.tif", "e\xCC\x81.tif", NameMatch::mac_roman},
    {"capital letters", "PLATE.TIF", "plate.tif", NameMatch::letter_case},
    {"capital letters with accents", "\xC3\x9C.tif", "\xC3\xBC.tif", NameMatch::letter_case},
    // 31 characters: "Background plate of sc#1A2B.tif".
    {"cut with the number of the file", "Background plate of sc#1A2B.tif",
     "Background plate of scene twelve.tif", NameMatch::cut_name},
    {"the other way round", "Background plate of scene twelve.tif", "Background plate of sc#1A2B.tif",
     NameMatch::cut_name},
    {"cut in front of the extension", "Background plate of scene t.tif",
     "Background plate of scene twelve.tif", NameMatch::cut_name},
    {"cut with its extension", "Background plate of scene twelv", "Background plate of scene twelve.tif",
     NameMatch::cut_name},
    {"one character too few to be cut", "Background plate of scene twel",
     "Background plate of scene twelve.tif", std::nullopt},
    {"a mark in a name that is not long", "plate#1A2B.tif", "plate of snow.tif", std::nullopt},
    {"another extension", "Background plate of sc#1A2B.tga", "Background plate of scene twelve.tif",
     std::nullopt},
    {"a number that is none", "Background plate of sc#1G2B.tif", "Background plate of scene twelve.tif",
     std::nullopt},
};

TEST(NameMatch, TellsHowTwoNamesAreEqual) {
    for (const auto& one : kNames) {
        EXPECT_EQ(match_names(cli::ReadName(one.one), cli::ReadName(one.other), MatchLevel::letter_case),
                  one.match)
            << one.name;
        if (one.match && level_of(*one.match) > MatchLevel::exact) {
            const auto closer = static_cast<MatchLevel>(static_cast<int>(level_of(*one.match)) - 1);
            EXPECT_EQ(match_names(cli::ReadName(one.one), cli::ReadName(one.other), closer), std::nullopt)
                << one.name;
        }
    }
}

const struct {
    const char* name;
    const char* path;
    cli::PathRoot root;
    const char* root_name;
    const char* names;  ///< with "|" between them
} kPaths[] = {
    {"nothing", "", cli::PathRoot::none, "", ""},
    {"a name", "a.tif", cli::PathRoot::none, "", "a.tif"},
    {"Unix", "/net/shots/a.tif", cli::PathRoot::slash, "", "net|shots|a.tif"},
    {"a drive", "C:\\shots\\a.tif", cli::PathRoot::drive, "C", "shots|a.tif"},
    {"a drive with slashes", "c:/shots\\a.tif", cli::PathRoot::drive, "c", "shots|a.tif"},
    {"a drive alone", "Z:", cli::PathRoot::drive, "Z", ""},
    {"a server", "\\\\farm\\share\\a.tif", cli::PathRoot::server, "farm", "share|a.tif"},
    {"a server with slashes", "//farm/share/a.tif", cli::PathRoot::server, "farm", "share|a.tif"},
    {"three slashes are Unix", "///net/a.tif", cli::PathRoot::slash, "", "net|a.tif"},
    {"a volume", "Macintosh HD:shots:a.tif", cli::PathRoot::volume, "Macintosh HD", "shots|a.tif"},
    {"a volume with the name of a drive", "C:shots:a.tif", cli::PathRoot::volume, "C", "shots|a.tif"},
    {"a colon in front begins nothing", ":shots:a.tif", cli::PathRoot::none, "", "shots|a.tif"},
    {"a folder and a colon", "shots/a:b.tif", cli::PathRoot::none, "", "shots|a|b.tif"},
    {"dots", "/a/./b/../c.tif", cli::PathRoot::slash, "", "a|c.tif"},
    {"dots do not leave the root", "/../../a.tif", cli::PathRoot::slash, "", "a.tif"},
    {"a separator at the end", "/a/b/", cli::PathRoot::slash, "", "a|b"},
};

TEST(StoredPath, IsTakenApartWhereverItWasMade) {
    for (const auto& one : kPaths) {
        const cli::StoredPath path = cli::split_path(one.path);
        EXPECT_EQ(path.root, one.root) << one.name;
        EXPECT_EQ(path.root_name, one.root_name) << one.name;
        std::string names;
        for (const std::string_view name : path.names) {
            names.append(names.empty() ? "" : "|").append(name);
        }
        EXPECT_EQ(names, one.names) << one.name;
    }
}

}  // namespace
