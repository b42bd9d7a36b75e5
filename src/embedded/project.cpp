#include "embedded/project.h"

#include <algorithm>

namespace embedded {

int component_count(StreamShape shape) {
    switch (shape) {
        case StreamShape::one_d:
            return 1;
        case StreamShape::two_d:
            return 2;
        case StreamShape::three_d:
            return 3;
        case StreamShape::color:
            return 4;
    }
    return 0;
}

std::vector<Id> Project::children_of(Id folder) const {
    std::vector<Id> children;
    for (const Item& candidate : items) {
        if (candidate.parent_folder == folder) {
            children.push_back(candidate.id);
        }
    }
    return children;
}

const Item* Project::find_item(std::string_view name) const {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [name](const Item& candidate) { return candidate.name == name; });
    return found == items.end() ? nullptr : &*found;
}

Project empty_project() {
    Project project;
    Item root;
    root.id = kRootFolder;
    project.items.push_back(root);
    return project;
}

}  // namespace embedded
