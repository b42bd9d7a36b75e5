#include "handover/stable_id.h"

#include <gtest/gtest.h>

#include "handover/made_handover.h"

namespace {

using namespace made;

TEST(StableIds, AreTheHashOfTheWay) {
    // FNV-1a of "shot" and a zero byte, worked out by a program of its own.
    EXPECT_EQ(StableIds::text(StableIds("/a/shot.aec").root()), "vxr-f6a58548f792c7ef");
    EXPECT_EQ(StableIds("C:\\b\\shot.aec").root(), StableIds("shot").root()) << "folders do not count";
    EXPECT_NE(StableIds("shot").root(), StableIds("shot2").root());
    EXPECT_EQ(StableIds(".aec").root(), StableIds("x/.aec").root()) << "a name may begin with its only point";
}

TEST(StableIds, TellEqualNamesApartByTheirOrder) {
    StableIds ids("shot");
    const StableIds::Key first = ids.next(ids.root(), "layer", "a");
    const StableIds::Key second = ids.next(ids.root(), "layer", "a");
    EXPECT_NE(first, second);
    StableIds again("shot");
    EXPECT_EQ(again.next(again.root(), "layer", "a"), first);
    EXPECT_EQ(again.next(again.root(), "layer", "a"), second);
    EXPECT_NE(again.next(again.root(), "lay", "era"), first) << "kind and name are apart";
    EXPECT_NE(again.next(first, "layer", "a"), first) << "the parent counts";
}

std::string id_of_item(const Handover& handover, const std::string& name, ItemKind kind) {
    for (const Item& item : handover.items) {
        if (item.name == name && item.kind == kind) {
            return item.id;
        }
    }
    return "none";
}

TEST(StableIds, StayWhenOtherEntriesComeAndGo) {
    const std::string camera = "CAMERA \"C\" { KEY 0 0 0 0 0 0 0 45 }\n";
    const Handover before = of_text(scene_text("", "FILE NRM STRAIGHT \"x/a.tga\"\n", camera));
    const Handover after = of_text(
        scene_text(
            "ASPECT 1.1 LOCAL",
            "FILE ADD PREMUL \"b.tga\"\nCOMPOSITION NRM \"Nested\" { }\nFILE NRM STRAIGHT \"y/a.tga\"\n",
            "NULL \"N\" { }\n" + camera),
        Version::imported);
    for (const ItemKind kind : {ItemKind::folder, ItemKind::composition}) {
        EXPECT_EQ(id_of_item(before, "Main", kind), id_of_item(after, "Main", kind));
    }
    EXPECT_EQ(id_of_item(before, "a.tga", ItemKind::footage), id_of_item(after, "a.tga", ItemKind::footage))
        << "of footage the last name counts, so that a job may move";
    EXPECT_EQ(layer_named(before, "a.tga").id, layer_named(after, "a.tga").id);
    EXPECT_EQ(layer_named(before, "C").id, layer_named(after, "C").id);
}

}  // namespace
