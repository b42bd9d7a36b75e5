#include "handover/handover.h"

#include <algorithm>

namespace handover {

std::size_t component_count(Property property) {
    switch (property) {
        case Property::anchor:
        case Property::position:
        case Property::scale:
        case Property::orientation:
        case Property::color:
            return 3;
        case Property::rotate_x:
        case Property::rotate_y:
        case Property::rotate_z:
        case Property::zoom:
        case Property::intensity:
        case Property::cone_angle:
        case Property::cone_feather:
        case Property::casts_shadows:
            return 1;
    }
    return 1;
}

const char* word_of(LayerKind kind) {
    switch (kind) {
        case LayerKind::footage:
            return "footage";
        case LayerKind::composition:
            return "composition";
        case LayerKind::camera:
            return "camera";
        case LayerKind::light:
            return "light";
        case LayerKind::null:
            break;
    }
    return "null";
}

const char* word_of(Blend blend) {
    switch (blend) {
        case Blend::normal:
            break;
        case Blend::add:
            return "add";
        case Blend::multiply:
            return "multiply";
    }
    return "normal";
}

const char* word_of(ObjectKind kind) {
    switch (kind) {
        case ObjectKind::camera:
            return "camera";
        case ObjectKind::light:
            return "light";
        case ObjectKind::null:
            break;
    }
    return "null";
}

std::string file_name(const NumberedFiles& files, std::int64_t number) {
    std::string digits = std::to_string(number);
    const auto width = static_cast<std::size_t>(std::max(files.padding, 1));
    digits.insert(0, width - std::min(width, digits.size()), '0');
    return files.prefix + digits + files.suffix;
}

}  // namespace handover
