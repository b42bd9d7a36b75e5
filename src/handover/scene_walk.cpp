#include "handover/scene_walk.h"

#include <algorithm>

namespace handover {
namespace {

// A composition whose children are being walked.
struct Level {
    std::size_t folder;  // its own, a walked item
    std::size_t composition;
    const CListItem* next;  // child
    const CListItem* end;
};

class Walker {
  public:
    explicit Walker(SceneWalk& walk) : walk_(walk) {}

    void compositions(const CComposition& root) {
        begin(root, kNone);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.end) {
                levels_.pop_back();
                continue;
            }
            const auto& child = static_cast<const CCompoChild&>(*level.next);
            level.next = level.next->next;
            if (child.type == kChildComposition) {
                const std::size_t parent = level.composition;
                const std::size_t item = begin(*child.item.composition, level.folder);
                walk_.layers.push_back({parent, item, nullptr});
            } else {
                walk_.layers.push_back({level.composition, footage(*child.item.file, level.folder), nullptr});
            }
        }
    }

    void special_passes(const CDoubleLinkedList<CCompoChild>& files) {
        if (files.head.next == &files.tail) {
            return;
        }
        const std::size_t folder = add({Origin::special_passes, kNone, nullptr, nullptr});
        for (const CListItem* node = files.head.next; node != &files.tail; node = node->next) {
            footage(*static_cast<const CCompoChild&>(*node).item.file, folder);
        }
    }

    void objects(const tagProjectSettings& settings) {
        const auto& objects = settings.objects;
        if (objects.head.next == &objects.tail) {
            return;
        }
        std::size_t composition = 0;
        if (settings.aspect != 1.0F) {
            composition = walk_.compositions++;
            constexpr std::size_t kFolderOfRoot = 0;
            walk_.layers.push_back(
                {0, add({Origin::objects_composition, kFolderOfRoot, nullptr, nullptr}), nullptr});
        }
        for (const CListItem* node = objects.head.next; node != &objects.tail; node = node->next) {
            const auto* const object = static_cast<const CSceneObject*>(node);
            walk_.layers.push_back({composition, kNone, object});
            walk_.objects.push_back(object);
        }
        std::reverse(walk_.objects.begin(), walk_.objects.end());
    }

  private:
    std::size_t add(const WalkedItem& item) {
        walk_.items.push_back(item);
        return walk_.items.size() - 1;
    }

    std::size_t footage(const CFileItem& file, std::size_t folder) {
        ++walk_.footage;
        return add({Origin::footage, folder, nullptr, &file});
    }

    // Returns the composition's item.
    std::size_t begin(const CComposition& composition, std::size_t folder_around) {
        const std::size_t folder = add({Origin::composition_folder, folder_around, &composition, nullptr});
        const std::size_t item = add({Origin::composition, folder, &composition, nullptr});
        levels_.push_back(
            {folder, walk_.compositions++, composition.children.head.next, &composition.children.tail});
        return item;
    }

    SceneWalk& walk_;
    std::vector<Level> levels_;
};

}  // namespace

ItemKind WalkedItem::kind() const {
    switch (origin) {
        case Origin::composition_folder:
        case Origin::special_passes:
            return ItemKind::folder;
        case Origin::composition:
        case Origin::objects_composition:
            return ItemKind::composition;
        case Origin::footage:
            break;
    }
    return ItemKind::footage;
}

SceneWalk walk_scene(const tagProjectSettings& settings) {
    SceneWalk walk;
    Walker walker(walk);
    walker.compositions(settings.composition);
    walker.special_passes(settings.files);
    walker.objects(settings);
    return walk;
}

}  // namespace handover
